// Associated stations: the list of a radio and the record of one station.
#include <climits>
#include <cstring>

#include "tests/unit/fake_platform.h"

class StatusStations : public PlatformTest {
  protected:
    StatusStations() {
        intf.radio.bssCount = 3;
        strcpy(intf.radio.ifName, "wl0");
        for (int i = 0; i < 3; ++i) {
            intf.bss[i].enable = i != 1;
            snprintf(intf.bss[i].ifName, sizeof intf.bss[i].ifName, i == 0 ? "wl0" : "wl0.%d", i);
        }
    }
    ~StatusStations() override { free(list); }

    // The station's record after its report was read, over what it held before.
    WlStaInfo read(const std::string &report, char mode = 'd', WlStaInfo before = {}) {
        platform.answer("wlctl -i wl0.1 sta_info 00:11:22:AA:BB:CC", report);
        EXPECT_EQ(0, do_get_sta_info("wl0.1", "00:11:22:AA:BB:CC", &before, mode));
        return before;
    }

    WlIntf intf = {};
    WlStaInfo *list = nullptr;
    int count = -7;
};

TEST_F(StatusStations, ListCoversEnabledEntriesInOrder) {
    platform.answer("wlctl -i wl0 assoclist", "assoclist 00:11:22:aa:bb:cc\nassoclist nobody\nassoclist\nassoclist \n"
                                              "xassoclist 00:11:22:aa:bb:cd\r\nassoclist 0:1:2:3:4:5\r\n");
    platform.answer("wlctl -i wl0.2 assoclist", "assoclist\tFF:FF:FF:FF:FF:FE"); // no newline at the end
    platform.answer("wlctl -i wl0 status", "-90\n");
    platform.answer("wlctl -i wl0 rssi 00:11:22:AA:BB:CC", "-40\n");
    EXPECT_EQ(0, qvbrcm_GetAssocDevList(&intf, -1, &list, &count));
    ASSERT_EQ(3, count);
    const struct {
        const char *mac, *ifName;
        int rssi;
    } expected[] = {
        {"00:11:22:AA:BB:CC", "wl0", -40}, {"00:01:02:03:04:05", "wl0", 0}, {"FF:FF:FF:FF:FF:FE", "wl0.2", 0}};
    for (int i = 0; i < count; ++i) {
        EXPECT_STREQ(expected[i].mac, list[i].macAddr);
        EXPECT_STREQ(expected[i].ifName, list[i].ifName);
        EXPECT_EQ(expected[i].rssi, list[i].rssi);
        EXPECT_EQ(-90, list[i].noise);
        EXPECT_EQ(expected[i].rssi + 90, list[i].snr);
    }
    const Lines start(platform.journal.begin(), platform.journal.begin() + 5);
    EXPECT_EQ((Lines{"run wlctl -i wl0 assoclist > /tmp/.assoclist_result_wl0",
                     "run wlctl -i wl0.2 assoclist > /tmp/.assoclist_result_wl0.2",
                     "run wlctl -i wl0 status | grep \"noise:\" | awk '{sub(/.*noise:/,\"\");print $1}' > "
                     "/tmp/.noise_result",
                     "run wlctl -i wl0 rssi 00:11:22:AA:BB:CC > /tmp/.sta_result",
                     "run wlctl -i wl0 sta_info 00:11:22:AA:BB:CC > /tmp/.sta_result"}),
              start);
    EXPECT_EQ(Lines{"enter.\n"}, platform.logged(WLBRCM_LOG_DEBUG));
}

TEST_F(StatusStations, NoStationGivesNoList) {
    const Lines removal{"run rm -f /tmp/.assoclist_result_*"};
    const struct {
        std::string report;
        bool lost;
        int count;
        bool removed;
    } rows[] = {{"", false, 0, true},
                {"", true, 0, true},
                {"no\nstations\n", false, 2, false},
                {std::string(97, 'x') + "\n", false, 1, false},
                {std::string(98, 'x') + "\n", false, 2, false}};
    for (const auto &row : rows) {
        platform.forget();
        platform.answer("wlctl -i wl0 assoclist", row.report);
        if (row.lost)
            platform.loseOutput("wlctl -i wl0 assoclist");
        list = reinterpret_cast<WlStaInfo *>(&intf);
        EXPECT_EQ(0, qvbrcm_GetAssocDevList(&intf, 0, &list, &count));
        EXPECT_EQ(nullptr, list);
        EXPECT_EQ(row.count, count);
        EXPECT_EQ(row.removed ? removal : Lines{}, platform.did("run rm"));
        EXPECT_EQ(Lines{}, platform.leftFiles());
    }
    platform.answer("wlctl -i wl0 assoclist", "assoclist 02:00:00:00:00:01\n");
    platform.failAllocation(0);
    EXPECT_EQ(0, qvbrcm_GetAssocDevList(&intf, 0, &list, &count));
    EXPECT_TRUE(platform.allocationFailed);
    EXPECT_EQ(nullptr, list);
    EXPECT_EQ(1, count);
    EXPECT_EQ(removal, platform.did("run rm"));
}

// A listing that could not be asked for anew is not read: who knows how old it is.
TEST_F(StatusStations, AStaleListingIsNotRead) {
    platform.files["/tmp/.assoclist_result_wl0"] = "assoclist 02:00:00:00:00:99\n";
    platform.failing["remove /tmp/.assoclist_result_wl0"] = 1;
    platform.answer("wlctl -i wl0.2 assoclist", "assoclist 02:00:00:00:00:01\n");
    EXPECT_EQ(0, qvbrcm_GetAssocDevList(&intf, -1, &list, &count));
    ASSERT_EQ(1, count);
    EXPECT_STREQ("02:00:00:00:00:01", list[0].macAddr);
    platform.files.clear();
}

TEST_F(StatusStations, BadNamesAreSkippedAndLongLinesCountInPieces) {
    memset(intf.bss[0].ifName, 'a', sizeof intf.bss[0].ifName); // not terminated
    platform.answer("wlctl -i wl0.2 assoclist",
                    "assoclist 02:00:00:00:00:01" + std::string(400, 'x') + "\nassoclist 02:00:00:00:00:02\n");
    EXPECT_EQ(0, qvbrcm_GetAssocDevList(&intf, -1, &list, &count));
    ASSERT_EQ(2, count);
    EXPECT_STREQ("02:00:00:00:00:02", list[1].macAddr);
    EXPECT_EQ(1U, platform.logged(WLBRCM_LOG_ERR).size());
    EXPECT_EQ(1U, platform.did("run wlctl -i wl0.2 assoclist").size());
    free(list);
    platform.forget();
    strcpy(intf.bss[0].ifName, "wl0");
    intf.bss[1].enable = 1;
    EXPECT_EQ(0, qvbrcm_GetAssocDevList(&intf, 0, &list, &count)); // and no other BSS
    EXPECT_EQ(Lines{}, platform.did("run wlctl -i wl0."));
}

TEST_F(StatusStations, ReportFieldsReachTheRecord) {
    platform.answer("wlctl -i wl0.1 rssi", "-51\n");
    const WlStaInfo sta = read("[VER 4] STA 00:11:22:AA:BB:CC:\n"
                               "\t flags 0x11e03b: BRCM_CAP WME\n"
                               "\t HT caps 0x6f: LDPC 40MHz\n"
                               "\t VHT caps 0x1e3: LDPC\n"
                               "\t tx total pkts: 101\n"
                               "\t tx total bytes: 8589934592\n"
                               "\t tx pkts retries: 7\n"
                               "\t tx pkts retry exhausted: 3\n"
                               "\t tx failures: 5\n"
                               "\t rx data pkts: 0x66\n"
                               "\t rx data bytes: 4294967297\n"
                               "\t rate of last tx pkt: 866667 kbps - 650000 kbps\n"
                               "\t rate of last rx pkt: 24000 kbps\n");
    WlStaInfo expected = {};
    strcpy(expected.ifName, "wl0.1");
    expected.phyMode = 16;
    expected.bandwidth = 80;
    expected.authenticated = 1;
    expected.txRate = expected.lastTxRate = 866667;
    expected.rxRate = 24000;
    expected.rssi = -51;
    expected.txPkts = 101;
    expected.txBytes = 8589934592;
    expected.rxPkts = 102;
    expected.rxBytes = 4294967297;
    expected.txFailures = 5;
    expected.txRetries = 7;
    expected.txRetryExhausted = 3;
    EXPECT_EQ(0, memcmp(&expected, &sta, sizeof sta));
    EXPECT_EQ(0U, platform.logs.size());
}

TEST_F(StatusStations, ReportsDecideModeAndWidth) {
    const struct {
        const char *report, *band;
        uint32_t phyMode, bandwidth;
        int authenticated;
    } rows[] = {
        {"flags 0x11e03b:\nVHT caps 0x1ef:\n", "", 16, 160, 1},
        {"flags 0x11e03b:\nVHT caps 0x1e3:\nHT caps 0x6f:\n", "", 16, 80, 1},
        {"flags 0x1e03b:\nHT caps 0x6f:\n", "", 8, 40, 1},
        {"flags 0x1e03b:\nHT caps 0x1:\n", "", 8, 20, 1},
        {"flags 0x3b:\nrateset [ 1(b) 2(b) 5.5 11 ]:\n", "b", 1, 20, 1},
        {"flags 0x3b:\nrateset [ 1(b) 2(b) 12 ]:\n", "b", 2, 20, 1},
        {"flags 0x3b:\n", "b", 1, 20, 1},
        {"flags 0x3b:\nrateset: [ 1(b) 2(b) 12 ]\n", "b", 2, 20, 1},
        {"flags 0x3b:\nrateset54:\n", "b", 1, 20, 1}, // the text starts behind a separator
        {"flags 0x13:\nrateset [ 54 ]:\n", "1", 4, 20, 0},
        {"flags 0x13:\nrateset [ 54 ]:\n", "1\n", 2, 20, 0}, // the answer is compared as it is
        {"flags 0x13:\nrateset [ 54 ]\n", "b", 1, 20, 0},    // no key without a colon
        {"flags 0xb:\nHT caps 0x6f:\n", "", 77, 66, 1},
        {"flags 0x3:\n", "", 77, 66, 0},
        {"flags 0x0:\nHT caps 0x6f:\n", "", 77, 66, 55},
        {"flags:\n", "", 77, 66, 55},
        {"flags 0x3b\n", "", 77, 66, 55},
        {"", "", 77, 66, 55},
    };
    for (const auto &row : rows) {
        platform.answer("wlctl -i wl0 band", row.band);
        WlStaInfo before = {};
        before.phyMode = 77;
        before.bandwidth = 66;
        before.authenticated = 55;
        const WlStaInfo sta = read(row.report, 'b', before);
        EXPECT_EQ(row.phyMode, sta.phyMode) << row.report;
        EXPECT_EQ(row.bandwidth, sta.bandwidth) << row.report;
        EXPECT_EQ(row.authenticated, sta.authenticated) << row.report;
    }
}

TEST_F(StatusStations, ModesRssiAndCutValues) {
    const auto rate = [this](const std::string &value) { return read("rate of last tx pkt:" + value + "\n").txRate; };
    EXPECT_EQ(6000U, rate(" 6000"));
    EXPECT_EQ(0U, rate(" -6000 kbps"));
    EXPECT_EQ(0U, rate("kbps 6000"));
    EXPECT_EQ(UINT32_MAX, rate(" 99999999999 kbps"));

    WlStaInfo before = {};
    before.txPkts = 4;
    before.rssi = -3;
    for (const char *report : {"0\n", "12\n", "", " -5\n"}) {
        platform.answer("wlctl -i wl0.1 rssi", report);
        const WlStaInfo sta = read("tx total pkts: 9\ntx pkts retries: 9\nrate of last rx pkt: 5\n"
                                   "rate of last tx pkt: 6\n",
                                   'b', before);
        EXPECT_EQ(0U, sta.txRetries);
        EXPECT_EQ(6U, sta.txRate);
        EXPECT_EQ(-3, sta.rssi) << report;
        EXPECT_EQ(4U, sta.txPkts);
        EXPECT_EQ(5U, sta.rxRate);
    }
    WlStaInfo sta = {};
    EXPECT_EQ(0, get_sta_info("wl0.1", "00:11:22:AA:BB:CC", &sta));
    EXPECT_EQ(9U, sta.txPkts);
    EXPECT_EQ(0, get_sta_basic_info("wl0.1", "00:11:22:AA:BB:CC", &before));
    EXPECT_EQ(4U, before.txPkts);
    platform.forget();
    EXPECT_EQ(WLBRCM_EINVAL, get_sta_info("wl0;x", "00:11:22:AA:BB:CC", &sta));
    EXPECT_EQ(WLBRCM_EINVAL, get_sta_info("wl0", "00:11:22:AA:BB:C;", &sta));
    EXPECT_EQ(Lines{}, platform.journal);
}

TEST_F(StatusStations, BandOfAnInterfaceAndHighestRate) {
    platform.answer("wlctl -i wl0 band", "b");
    platform.answer("wlctl -i wl1 band", "1");
    platform.answer("wlctl -i wl2 band", "b" + std::string(100, 'b'));
    platform.failPipe("wlctl -i wl3 band");
    const std::pair<const char *, int> bands[] = {{"wl0.1", 2}, {"wl0.1;id", 2}, {"wl1", 1}, {"wl2", -1}, {"wl3", -1},
                                                  {"wl4", -1},  {nullptr, -1},   {"", -1},   {".1", -1},  {"a b", -1}};
    for (const auto &[ifname, band] : bands)
        EXPECT_EQ(band, checkWlBand(ifname)) << (ifname != nullptr ? ifname : "null");
    EXPECT_EQ("pipe wlctl -i wl0 band", platform.journal[0]);
    EXPECT_EQ(6U, platform.journal.size());

    const std::pair<const char *, int> rates[] = {
        {nullptr, -1}, {"", -1},   {"[ ]", -1},     {"[ 1(b) 5.5 11 ]", 11}, {"[ 54 11 ]", 54},       {"5.9", 5},
        {"0", 0},      {"-7", 7},  {"5.5.6 .7", 7}, {"2147483647", INT_MAX}, {"2147483648", INT_MAX}, {"1e99", INT_MAX},
        {"12", 12},    {"1 2", 2}, {"1x9", 9},
    };
    for (const auto &[text, highest] : rates)
        EXPECT_EQ(highest, getMaxRateSet(text)) << (text != nullptr ? text : "null");
}
