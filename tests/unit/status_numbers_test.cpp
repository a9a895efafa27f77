// Numbers and words of foreign text, and the rate lists.
#include <climits>

#include <gtest/gtest.h>

#include "module/numbers.h"
#include "module/rates.h"

using namespace wlbrcm;

TEST(StatusNumbers, UnsignedNumbersAreReadWithAnyBase) {
    const std::pair<const char *, uint64_t> rows[] = {
        {"", 0},
        {"abc", 0},
        {"-", 0},
        {" \t\n 12 3", 12},
        {"+7", 7},
        {"0x1EF:", 0x1ef},
        {"0X1ef", 0x1ef},
        {"0x", 0},
        {"010", 8},
        {"08", 0},
        {"4294967295", 4294967295},
        {"4294967296", 4294967296},
        {"-1", UINT64_MAX},
    };
    for (const auto &[text, value] : rows) {
        EXPECT_EQ(value, unsignedNumber64(text)) << text;
        // At 32 bits the largest number, or the same number below zero.
        const bool fits = value <= UINT32_MAX || text[0] == '-';
        EXPECT_EQ(fits ? static_cast<uint32_t>(value) : UINT32_MAX, unsignedNumber(text)) << text;
    }
    for (const char *largest : {"18446744073709551615", "18446744073709551616", "-99999999999999999999"})
        EXPECT_EQ(UINT64_MAX, unsignedNumber64(largest)) << largest;
    EXPECT_EQ(-45, static_cast<int32_t>(unsignedNumber(" -45 dBm")));
    EXPECT_EQ(12U, unsignedNumber(std::string_view("12345", 2)));
    EXPECT_EQ(0xe02aU, hexNumber("0xe02a)"));
    EXPECT_EQ(0xe02aU, hexNumber(" E02a"));
    EXPECT_EQ(INT_MIN, decimalNumber("-2147483649"));
    EXPECT_EQ(INT_MAX, decimalNumber("2147483648"));
    EXPECT_EQ(-2147483647, decimalNumber("-2147483647"));
}

TEST(StatusNumbers, RateListsExistForRealWidthsAndStreams) {
    EXPECT_STREQ("7.2,14.4,21.7,28.9,43.3,57.8,65,72.2", htRates(20, 1));
    EXPECT_STREQ("15,30,45,60,90,120,135,150,180,240,270,300,360,405,450,480,540,600", htRates(40, 4));
    EXPECT_STREQ("32.5,65,97.5,130,195,260,292.5,325,390,433.3", vhtRates(80, 1));
    EXPECT_STREQ("231.2,260,288.8,346.8", vhtRates(20, 4));
    for (const int streams : {INT_MIN, 0, 5, INT_MAX}) {
        EXPECT_EQ(nullptr, htRates(20, streams)) << streams;
        EXPECT_EQ(nullptr, vhtRates(80, streams)) << streams;
    }
    EXPECT_EQ(nullptr, htRates(80, 1));
    EXPECT_EQ(nullptr, vhtRates(160, 1));
    // An HT list continues the one of a stream less; a VHT stream only adds.
    for (const int width : {20, 40}) {
        for (int streams = 2; streams <= 4; ++streams)
            EXPECT_EQ(0U,
                      std::string_view(htRates(width, streams)).find(std::string(htRates(width, streams - 1)) + ","))
                << width << " MHz, " << streams;
    }
}
