// The status items.
#include <climits>
#include <cstring>

#include "tests/unit/fake_platform.h"

class StatusUpdate : public PlatformTest {
  protected:
    StatusUpdate() {
        strcpy(intf.radio.ifName, "wl0");
        strcpy(intf.radio.phyType, "v");
        strcpy(intf.radio.countryCode, "DE/3");
        intf.radio.radioIndex = 1;
        intf.radio.band = WLBRCM_BAND_5G;
        intf.radio.wirelessMode = 9;
        intf.radio.bandwidth = 80;
        platform.answer("wlctl -i wl0 chanspec >", "36/80 (0xe02a)\n");
        platform.answer("wlctl -i wl0 isup", "1\n");
        platform.answer("wlctl -i wl0 status", "NSS1\nNSS2\n");
        platform.answer("wlctl -i wl0 status | grep", "-88\n");
        platform.answer("wlctl -i wl0 rateset", "MCS SET : [ 0 15 ]\nVHT\n9x4\n");
        platform.answer("wlctl -i wl0 5g_rate", "auto\n");
        platform.answer("wlctl -i wl0.1 counters", "txframe 1 txbyte 2 rxframe 3 rxbyte 4 txerror 5 rxerror 6 "
                                                   "txnoassoc 7 rxbadda 8");
    }

    // Asks for one item. Null when it was left alone.
    void *ask(const char *name) {
        WlStatusItem item = {name, 0x1234, &untouched};
        EXPECT_EQ(0, qvbrcm_StatusUpdate(&intf, &item, 1));
        EXPECT_EQ(0x1234U, item.hostWord);
        return item.value == &untouched ? nullptr : item.value;
    }
    std::string text(const char *name) {
        char *value = static_cast<char *>(ask(name));
        const std::string copy = value != nullptr ? value : "(none)";
        free(value);
        return copy;
    }
    long number(const char *name) {
        constexpr long kNone = LONG_MIN;
        auto *value = static_cast<int32_t *>(ask(name));
        const long copy = value != nullptr ? *value : kNone;
        free(value);
        return copy;
    }

    WlIntf intf = {};
    int untouched = 0;
    const long none = LONG_MIN;
};

TEST_F(StatusUpdate, EveryItemHasItsValue) {
    const std::pair<const char *, long> numbers[] = {{"MaxBitRate", 867},    {"CurChannel", 36}, {"CurBandwidth", 80},
                                                     {"CurChanspec", 57386}, {"SideBand", 3},    {"Noise", -88},
                                                     {"WPSStatus", 0}};
    for (const auto &[name, value] : numbers)
        EXPECT_EQ(value, number(name)) << name;
    const std::pair<const char *, const char *> texts[] = {
        {"RadioStatus", "Up"},
        {"CurRate", "1733 Mbps"},
        {"DataTransmitRates", "Done"},
        {"wl0_DataTransmitRates", "Done"},
        {"DataTransmitRatesTrafficInfo", "(none)"}, // counters come first, and there is no name to ask for
    };
    for (const auto &[name, value] : texts)
        EXPECT_EQ(value, text(name)) << name;
    for (const char *name : {"Noise ", " Noise", "noise", "", "CurChannels", "TrafficInfo", "_TrafficInfo"})
        EXPECT_EQ(nullptr, ask(name)) << name;
    EXPECT_EQ(Lines{}, platform.logged(WLBRCM_LOG_ERR));
    platform.files.erase("/tmp/wl0DataTxRates.txt");
}

TEST_F(StatusUpdate, ChannelListsAreAskedForByWidthAndSideband) {
    platform.answer("wlctl -i wl0 chanspecs -b 5 -w 20 >", "36 (0xd024)\n");
    platform.answer("wlctl -i wl0 chanspecs -b 5 -w 40 >", "36l (0xd826)\n40u (0xd926)\n");
    platform.answer("wlctl -i wl0 chanspecs -b 5 -w 80 >", "36/80 (0xe02a)\n");
    EXPECT_EQ("36", text("20M_Channel"));
    EXPECT_EQ("40", text("40M_UpperChannel"));
    EXPECT_EQ("36", text("40M_LowerChannel"));
    EXPECT_EQ("36", text("80M_Channel"));
    EXPECT_EQ(Lines(4, "wlctl wlctl -i wl0 country DE/3"), platform.did("wlctl"));
    intf.radio.band = WLBRCM_BAND_2G;
    EXPECT_EQ("", text("40M_UpperChannel"));
    EXPECT_EQ("run wlctl -i wl0 chanspecs -b 2 -w 40 > /tmp/wl0chspeclist", platform.journal.back());
}

TEST_F(StatusUpdate, FailedGettersLeaveTheirItem) {
    platform.answer("wlctl -i wl0 chanspec >", "none\n");
    platform.answer("wlctl -i wl0 isup", "");
    platform.answer("wlctl -i wl0 status", "");
    platform.answer("wlctl -i wl0 status | grep", "");
    platform.failPipe("wlctl -i wl0.2 counters");
    platform.loseOutput("wlctl -i wl0 rateset");
    for (const char *name :
         {"CurBandwidth", "CurChanspec", "SideBand", "Noise", "RadioStatus", "wl0.2_TrafficInfo", "wl0;id_TrafficInfo"})
        EXPECT_EQ(nullptr, ask(name)) << name;
    EXPECT_EQ(0, number("CurChannel"));
    EXPECT_EQ(0, number("MaxBitRate"));
    EXPECT_EQ("Fail", text("DataTransmitRates"));
    memset(intf.radio.ifName, 'w', sizeof intf.radio.ifName); // not terminated
    EXPECT_EQ(nullptr, ask("CurRate"));
    EXPECT_EQ(nullptr, ask("20M_Channel"));
}

TEST_F(StatusUpdate, ValuesAreTranslated) {
    const std::pair<const char *, long> progress[] = {{"0", 0}, {"7", 7}, {"10", 10}, {"11", 3}, {"12", 3}, {"-1", 3}};
    for (const auto &[stored, value] : progress) {
        platform.nvram["wps_proc_status"] = stored;
        EXPECT_EQ(value, number("WPSStatus")) << stored;
    }
    for (const auto &[report, value] : {std::pair<const char *, const char *>{"0\n", "Down"}, {"2\n", "Down"}}) {
        platform.answer("wlctl -i wl0 isup", report);
        EXPECT_EQ(value, text("RadioStatus"));
    }
    intf.radio.band = WLBRCM_BAND_2G;
    intf.radio.wirelessMode = 1;
    EXPECT_EQ("11 Mbps", text("CurRate"));
    intf.radio.band = 0; // any other is 5 GHz
    intf.radio.wirelessMode = 5;
    EXPECT_EQ("54 Mbps", text("CurRate"));
}

TEST_F(StatusUpdate, ItemsAreServedInOrderEachWithItsOwnBlock) {
    WlStatusItem items[] = {{"wl0.1_TrafficInfo", 1, nullptr},
                            {nullptr, 2, nullptr},
                            {"unknown", 3, &untouched},
                            {"Noise", 4, nullptr},
                            {"Noise", 5, nullptr},
                            {"1_DataTransmitRates", 6, nullptr}};
    EXPECT_EQ(0, qvbrcm_StatusUpdate(&intf, items, 6));
    const WlTrafficCounters counters = {2, 4, 1, 5, 7, 3, 6, 8};
    ASSERT_NE(nullptr, items[0].value);
    EXPECT_EQ(0, memcmp(&counters, items[0].value, sizeof counters));
    EXPECT_EQ(nullptr, items[1].value);
    EXPECT_EQ(&untouched, items[2].value);
    ASSERT_NE(nullptr, items[3].value);
    EXPECT_NE(items[3].value, items[4].value);
    EXPECT_EQ(0, memcmp(items[3].value, items[4].value, 4));
    EXPECT_STREQ("Done", static_cast<char *>(items[5].value));
    const Lines debug = platform.logged(WLBRCM_LOG_DEBUG);
    EXPECT_EQ(
        (Lines{"enter.\n", "enter\n", ": 1_DataTransmitRates: Input Data:{ifName:wl0, wifiMode:9, Bw:80, Band:1}\n"}),
        Lines(debug.begin(), debug.begin() + 3));
    EXPECT_EQ("qvbrcm_StatusUpdate", platform.logs[2].function);
    for (const int used : {0, 3, 4, 5})
        free(items[used].value);

    platform.failAllocation(0);
    EXPECT_EQ(0, qvbrcm_StatusUpdate(&intf, items, 1));
    EXPECT_TRUE(platform.allocationFailed);
    EXPECT_EQ(nullptr, items[0].value);
    platform.files.erase("/tmp/wl0DataTxRates.txt");
}
