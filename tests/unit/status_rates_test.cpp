// Highest rate, current rate and the file of data rates.
#include "tests/unit/fake_platform.h"

#include "module/rates.h"
#include "status/readers.h"

class StatusRates : public PlatformTest {};

TEST_F(StatusRates, HighestRateByPhy) {
    const std::string mcs = "Mode\n Supported HT MCS : ";
    const std::pair<const char *, int> ht[] = {
        {"0-6", 0},    {"0-7", 150}, {"0-14", 150}, {"0-15", 300}, {"0-22", 300},       {"0-23", 450},
        {"0-30", 450}, {"0-31", 0},  {"15", 0},     {"0--8", 0},   {"0-2147483647", 0},
    };
    for (const auto &[range, mbps] : ht) {
        platform.answer("wlctl -i wl0 status", mcs + range);
        EXPECT_EQ(mbps, qvWlanGetMaxBitRate(Arg("wl0", " n x"))) << range;
    }
    platform.answer("wlctl -i wl0 status",
                    std::string(90, ' ') + (mcs.c_str() + 6) + "0-15"); // the words are cut in pieces
    EXPECT_EQ(0, qvWlanGetMaxBitRate(Arg("wl0", "n")));
    std::string nss = "VHT\n";
    for (const int mbps : {0, 433, 867, 1300, 1733, 0}) {
        platform.answer("wlctl -i wl0 status", nss);
        EXPECT_EQ(mbps, qvWlanGetMaxBitRate(Arg("wl0", "v"))) << nss;
        for (const char *other : {"n", "g", "", "nv"})
            EXPECT_EQ(0, qvWlanGetMaxBitRate(Arg("wl0", other))) << other;
        nss += "NSS Tx: 0-9\n";
    }
    EXPECT_EQ("run wlctl -i wl0 status > /tmp/wl0_status", platform.journal[0]);
    EXPECT_EQ("cmd = wlctl -i wl0 status > /tmp/wl0_status\n", platform.logged(WLBRCM_LOG_DEBUG)[0]);
    platform.forget();
    EXPECT_EQ(0, qvWlanGetMaxBitRate(Arg("wl0 ", "n")));
    EXPECT_EQ(Lines{}, platform.journal);
    platform.loseOutput("wlctl -i wl0 status");
    EXPECT_EQ(0, qvWlanGetMaxBitRate(Arg("wl0", "n")));
}

TEST_F(StatusRates, CurrentRateByRateSetAndWidth) {
    const char *const k20 = "(0x1006)", *const k40 = "(0x1803)", *const k80 = "(0xe02a)";
    const char *const two = "[ 1 2 ]\nMCS SET : [ 0 1 7 8 15 ]\n";
    const std::string vht = std::string(two) + "VHT SET\n0-9x1 7x1 9x4\n";
    const struct {
        const char *value, *rate;
        std::string rateSet;
        const char *channel, *text;
    } rows[] = {
        {"2.4GHz 4", "auto\n", two, k40, "300 Mbps"},
        {"5GHz 9", "auto\n", vht, k80, "1733 Mbps"},
        {"5GHz 9", "auto", vht + "end", k80, "650 Mbps"}, // the last line has no such word
        {"2.4GHz 4", "auto\n", vht, k40, "300 Mbps"},
        {"2.4GHz 4", "auto\n", "MCS SET : [ 0 ]", k20, "7 Mbps"},
        {"2.4GHz 4", "auto\n", "MCS SET : [ 8 ]", k20, "14 Mbps"},
        {"2.4GHz 4", "auto\n", "MCS SET : [ 31 ]", k20, "288 Mbps"},
        {"2.4GHz 4", "auto\n", "MCS SET : [ 31 32 ]", k20, "288 Mbps"},
        {"2.4GHz 4", "auto\n", "MCS SET : [ 31 33 ]", k20, "385 Mbps"}, // MCS 9, four streams
        {"2.4GHz 4", "auto\n", "MCS SET : [ 9999999999999 ]", k20, "96 Mbps"},
        {"5GHz 8", "auto\n", "MCS VHT\n9x8", k80, "3466 Mbps"},
        {"5GHz 8", "auto\n", "MCS VHT\n9x9", k80, "3900 Mbps"},
        {"5GHz 8", "auto\n", "MCS VHT\n9x-2", k80, "0 kbps"},
        {"5GHz 8", "auto\n", "MCS VHT\n9x2 ax bx 5xx", k80, "520 Mbps"},
        {"2.4GHz 4", "auto\r\n", two, k40, "0 kbps"},
        {"2.4GHz 4", "54 Mbps\n", two, k40, "0 kbps"},
        {"2.4GHz 4", "", two, k40, "0 kbps"},
        {"2.4GHz 4", "auto\n", two, "none", "0 kbps"},
        {"2.4GHz 4", "auto\n", "", k40, "0 kbps"},
        {"2.4GHz 1", "54\n", "", k20, "11 Mbps"},
        {"2.4GHz 0", "auto\n", two, k20, "54 Mbps"},
        {"2.4GHz 2", "auto\n", two, k20, "54 Mbps"},
        {"5GHz 5", "auto\n", vht, k80, "54 Mbps"},
        {"5GHz 1", "6\n", "", k20, "0 kbps"},
        {"2.4GHz", "6\n", "", k20, "0 kbps"},
        {"WideBandRadioText2.4GHz 1", "6\n", "", k20, "0 kbps"}, // the band text has 15 characters
    };
    for (const auto &row : rows) {
        platform.answer("wlctl -i wl0 2g_rate", row.rate);
        platform.answer("wlctl -i wl0 5g_rate", row.rate);
        platform.answer("wlctl -i wl0 rateset", row.rateSet);
        platform.answer("wlctl -i wl0 chanspec", row.channel);
        char text[32] = "wrong";
        EXPECT_EQ(0, qvWlanRateUpdate(Arg("wl0", row.value, "", 0, text)));
        EXPECT_STREQ(row.text, text) << row.value << ", " << row.rate << ", " << row.rateSet << row.channel;
    }
    platform.forget();
    char text[32];
    qvWlanRateUpdate(Arg("wl0", "5GHz 9", "", 0, text));
    EXPECT_EQ((Lines{"run wlctl -i wl0 chanspec > /tmp/.cur_channel", "run wlctl -i wl0 5g_rate > /tmp/wl0_rate"}),
              platform.journal);
    EXPECT_EQ(1U, platform.logs.size());
    platform.answer("wlctl -i wl0 2g_rate", "auto");
    qvWlanRateUpdate(Arg("wl0", "2.4GHz 0", "", 0, text));
    EXPECT_EQ("run wlctl -i wl0 rateset > /tmp/wl0_rate", platform.journal.back());
}

TEST_F(StatusRates, RatesAreRoundedToTheNearestKbit) {
    const struct {
        wlbrcm::RateSet set;
        uint32_t bandwidth, kbps;
        bool good;
    } rows[] = {{{0, 1}, 20, 7222, true},      {{2, 1}, 20, 21667, true},
                {{11, 8}, 160, 8666667, true}, {{11, 400}, 160, 433333333, true},
                {{11, 401}, 160, 0, true},     {{0, -1}, 20, 0, true},
                {{0, 1}, 30, 0, true},         {{12, 1}, 20, 0, false},
                {{-1, 1}, 20, 0, false}};
    for (const auto &row : rows) {
        uint32_t kbps = 7;
        EXPECT_EQ(row.good, wlbrcm::phyRate(row.set, row.bandwidth, &kbps));
        EXPECT_EQ(row.kbps, kbps) << row.set.mcs << " of " << row.set.streams << " at " << row.bandwidth;
    }
}

TEST_F(StatusRates, CurrentRateReportsAnImpossibleMcs) {
    platform.answer("wlctl -i wl0 5g_rate", "auto\n");
    platform.answer("wlctl -i wl0 rateset", "MCS SET : [ -3 ]\n");
    char text[32] = "";
    const auto update = [&] { EXPECT_EQ(0, qvWlanRateUpdate(Arg("wl0", "5GHz 9", "", 0, text))); };
    EXPECT_EQ("error qvWlanRateUpdate: MCS value is out of range, please update ieee_80211_mcs_rate_info. \n",
              printed(update));
    EXPECT_STREQ("0 kbps", text);
    platform.forget();
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanRateUpdate(Arg("wl0", "5GHz 9")));
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanRateUpdate(Arg("wl0;id", "5GHz 9", "", 0, text)));
    EXPECT_EQ(Lines{}, platform.journal);
}

TEST_F(StatusRates, DataRatesByModeWidthAndStreams) {
    const std::string b = "1,2,5.5,11", g = "1,2,5.5,6,9,11,12,18,24,36,48,54", a = "6,9,12,18,24,36,48,54";
    const auto ht = [](int width, int streams) { return std::string(wlbrcm::htRates(width, streams)); };
    const auto vht = [](int width, int streams) {
        std::string list = wlbrcm::vhtRates(width, 1);
        for (int stream = 2; stream <= streams; ++stream)
            list += std::string(",") + wlbrcm::vhtRates(width, stream);
        return list;
    };
    const char *const one = "MCS SET : [ 0 7 ]\n", *const two = "MCS SET : [ 0 7 15 ]\n";
    const char *const three = "MCS SET : [ 7 15 23 ]\n", *const four = "MCS SET : [ 7 15 23 31 ]\n";
    const struct {
        int band, mode, width;
        const char *rateSet;
        std::string supported;
    } rows[] = {
        {2, 1, 20, one, b},           {2, 0, 20, one, g},           {2, 2, 40, one, g},
        {2, 3, 20, two, ht(20, 2)},   {2, 4, 40, three, ht(40, 3)}, {2, 4, 40, one, ""},
        {2, 4, 40, four, ""},         {2, 4, 80, two, ""},          {2, 5, 20, two, ""},
        {2, 7, 80, two, ""},          {1, 5, 20, one, a},           {1, 3, 20, four, ht(20, 4)},
        {1, 6, 40, two, ht(40, 2)},   {1, 6, 40, one, ""},          {1, 8, 80, three, vht(80, 3)},
        {1, 7, 20, four, vht(20, 4)}, {1, 9, 40, two, vht(40, 2)},  {1, 9, 80, one, ""},
        {1, 9, 160, four, ""},        {1, 4, 20, two, ""},          {1, 9, 20, "MCS SET [ 31 ]\n", vht(20, 2)},
        {1, 6, 20, "", ht(20, 2)},    {0, 4, 40, two, ""},          {1, -1, 20, two, ""},
    };
    const char *const file = "/tmp/wl0DataTxRates.txt";
    for (const auto &row : rows) {
        platform.answer("wlctl -i wl0 rateset", row.rateSet);
        EXPECT_EQ(0, qvWlanGetDataTxRates(Arg("wl0"), row.mode, row.width, row.band));
        const std::string basic = row.band == 2 ? b : row.band == 1 ? "6,12,24" : "";
        EXPECT_EQ(basic + ":BasR\n" + row.supported + ":SupR\n", platform.files[file])
            << "band " << row.band << " mode " << row.mode << " width " << row.width << " " << row.rateSet;
    }
    platform.forget();
    platform.answer("wlctl -i wl0 rateset", three);
    for (const int mode : {0, 1, 2, 5, 6})
        EXPECT_EQ(0, qvWlanGetDataTxRates(Arg("wl0"), mode, 20, 1));
    EXPECT_EQ(Lines{"run wlctl -i wl0 rateset > /tmp/wl0rateset.txt"}, platform.journal);
    EXPECT_EQ(": Enter. wl0 antenna number: 2.\n", platform.logs[0].text);
    EXPECT_EQ(": Enter. wl0 antenna number: 3.\n", platform.logs.back().text);
    EXPECT_EQ("qvWlanGetDataTxRates", platform.logs.back().function);
    platform.files.erase(file);
}

TEST_F(StatusRates, DataRatesNeedBothFiles) {
    platform.loseOutput("wlctl");
    EXPECT_EQ(WLBRCM_EFAILED, qvWlanGetDataTxRates(Arg("wl0"), 9, 80, 1));
    EXPECT_EQ(Lines{": /tmp/wl0rateset.txt no such file.\n"}, platform.logged(WLBRCM_LOG_ERR));
    platform.forget();
    platform.failing["open /tmp/wl0DataTxRates.txt"] = 1;
    EXPECT_EQ(WLBRCM_EFAILED, qvWlanGetDataTxRates(Arg("wl0"), 1, 20, 2));
    EXPECT_EQ(Lines{":/tmp/wl0DataTxRates.txt no such file.\n"}, platform.logged(WLBRCM_LOG_ERR));
    platform.forget();
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanGetDataTxRates(Arg("../etc/x"), 1, 20, 2));
    EXPECT_EQ(Lines{}, platform.journal);
}
