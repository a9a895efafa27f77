// Whatever a driver prints: texts stay inside their fields, counts agree, nothing is left behind.
#include <cstring>
#include <random>

#include "fake_platform.h"

namespace {

const char *const kReports[] = {
    "assoclist 00:11:22:AA:BB:CC\nassoclist 00:11:22:AA:BB:CD\r\n",
    "flags 0x13:\nrateset [ 1(b) 2(b) 5.5 11 ]:\ntx total pkts: 12\nrate of last tx pkt: 6000 kbps - 1 kbps\n",
    "Capabilities: 0x431\nTag:45 Len:26 - HT Capabilities\nA: 1 2 3\nB: 4 5\nTag:191 Len:12\n1 2 3\nTag:192 Len:5\n1\n",
    "chanspec inbss\n0x1006 0 5 2 1 0 0 93 3 4\n",
    "txframe 10 txbyte 2000 txerror 1\nrxframe 20 rxbadda 4\n",
    "36/80 (0xe02a)\n",
    "auto\nMCS SET : [ 0 7 15 ]\nVHT 9x1 9x2\n",
    "Supported HT MCS : 0-15\nNSS1\nNSS2\n-90\n",
};

// A record between guards, all of it set to a mark.
template <class Record> struct Guarded {
    Guarded() { memset(static_cast<void *>(this), 0x5A, sizeof *this); }
    bool intact() const {
        uint8_t mark[sizeof before];
        memset(mark, 0x5A, sizeof mark);
        return memcmp(before, mark, sizeof mark) == 0 && memcmp(after, mark, sizeof mark) == 0;
    }
    uint8_t before[64];
    Record record;
    uint8_t after[64];
};

} // namespace

class StatusReports : public PlatformTest {
  protected:
    StatusReports() {
        intf.radio.bssCount = 1;
        strcpy(intf.radio.ifName, "wl0");
        intf.bss[0].enable = 1;
        strcpy(intf.bss[0].ifName, "wl0");
    }

    void stationsHold() {
        WlStaInfo *list = nullptr;
        int count = -1;
        EXPECT_EQ(0, qvbrcm_GetAssocDevList(&intf, -1, &list, &count));
        for (int i = 0; list != nullptr && i < count; ++i) {
            EXPECT_EQ(17U, strnlen(list[i].macAddr, sizeof list[i].macAddr));
            EXPECT_STREQ("wl0", list[i].ifName);
            EXPECT_EQ(static_cast<uint32_t>(list[i].rssi) - static_cast<uint32_t>(list[i].noise),
                      static_cast<uint32_t>(list[i].snr));
        }
        free(list);
        Guarded<WlStaInfo> sta;
        EXPECT_EQ(0, get_sta_info("wl0", "00:11:22:AA:BB:CC", &sta.record));
        EXPECT_STREQ("wl0", sta.record.ifName);
        EXPECT_TRUE(sta.intact());
    }

    void interfaceHolds() {
        Guarded<WlIntfInfo> info;
        EXPECT_EQ(0, qvbrcm_GetGenIntfInfo("wl0", 0, &info.record));
        EXPECT_EQ(0x5A, info.record.hostHead[152]);
        EXPECT_EQ(0x5A, info.record.hostTail[0]);
        EXPECT_TRUE(info.intact());
        Guarded<WlChannelInfo> channel;
        if (qvWlanGetCurrentChannelInfo(Arg("wl0", "", "", 0, &channel.record)) == 0) {
            EXPECT_NE(0, channel.record.chanspec);
            EXPECT_LE(channel.record.channel, 257);
        } else {
            EXPECT_EQ(0x5A5A, channel.record.chanspec);
        }
        EXPECT_TRUE(channel.intact());
        int fat;
        EXPECT_EQ(0, qvbrcm_GetFatIntfInfo("wl0", 0, &fat));
    }

    void ratesHold() {
        Guarded<char[32]> rate;
        EXPECT_EQ(0, qvWlanRateUpdate(Arg("wl0", "5GHz 9", "", 0, rate.record)));
        EXPECT_LT(strnlen(rate.record, sizeof rate.record), sizeof rate.record);
        EXPECT_TRUE(rate.intact());
        EXPECT_LE(qvWlanGetMaxBitRate(Arg("wl0", "v")), 1733);
        EXPECT_LE(qvWlanGetMaxBitRate(Arg("wl0", "n")), 450);
        EXPECT_EQ(0, qvWlanGetDataTxRates(Arg("wl0"), 9, 80, 1));
        platform.files.erase("/tmp/wl0DataTxRates.txt");
    }

    void everythingHolds(const std::string &report) {
        platform.forget();
        platform.answer("wlctl", report);
        stationsHold();
        interfaceHolds();
        ratesHold();
        Guarded<WlTrafficCounters> counters;
        EXPECT_EQ(0, qvWlanGetTrafficInfo("wl0", &counters.record));
        EXPECT_TRUE(counters.intact());
        EXPECT_EQ(Lines{}, platform.leftFiles());
    }

    WlIntf intf = {};
};

TEST_F(StatusReports, EveryPrefixOfAReport) {
    for (const std::string report : kReports) {
        for (size_t length = 0; length <= report.size(); ++length) {
            everythingHolds(report.substr(0, length));
            ASSERT_FALSE(HasFailure()) << report.substr(0, length);
        }
    }
}

TEST_F(StatusReports, DamagedAndBinaryReports) {
    std::mt19937 random(20240613);
    const auto below = [&](size_t limit) { return random() % limit; };
    for (int round = 0; round < 400; ++round) {
        std::string report = kReports[below(std::size(kReports))];
        report += kReports[below(std::size(kReports))];
        for (size_t damages = below(8); damages > 0; --damages)
            report[below(report.size())] = static_cast<char>(below(256));
        if (round % 4 == 0)
            report.insert(below(report.size()), std::string(below(700), "9- (:x"[below(6)]));
        everythingHolds(report);
        ASSERT_FALSE(HasFailure()) << "round " << round;
    }
}

// The longest text that is read at once ends in the first digit of "12".
TEST_F(StatusReports, LinesAreReadInPieces) {
    const auto upTo = [](size_t length, std::string start) {
        start.resize(length - 1, ' ');
        return start + "12\n";
    };
    const auto endsWith = [](size_t length, const std::string &end) {
        return std::string(length - end.size() - 1, ' ') + end + "12\n";
    };
    int value = 0;
    platform.answer("wlctl -i wl0 isup", upTo(48, ""));
    EXPECT_EQ(0, qvWlanGetRadioStatus(Arg("wl0", "", "", 0, &value)));
    EXPECT_EQ(1, value);
    platform.answer("wlctl -i wl0 status", upTo(254, ""));
    EXPECT_EQ(0, qvWlanGetNoise(Arg("wl0", "", "", 0, &value)));
    EXPECT_EQ(1, value);
    platform.answer("wlctl -i wl0 chanim_stats", "inbss\n" + upTo(254, "0x1006 0"));
    EXPECT_EQ(0, qvbrcm_GetFatIntfInfo("wl0", 0, &value));
    EXPECT_EQ(99, value);
    platform.answer("wlctl -i wl0 chanspec", endsWith(99, "("));
    EXPECT_EQ(1, qvWlanGetCurrentCh(Arg("wl0")));
    platform.answer("wlctl -i wl0 status", endsWith(99, "Supported HT MCS 0-"));
    EXPECT_EQ(0, qvWlanGetMaxBitRate(Arg("wl0", "n")));

    WlTrafficCounters counters;
    platform.answer("wlctl -i wl0 counters", endsWith(255, "txbyte "));
    EXPECT_EQ(0, qvWlanGetTrafficInfo("wl0", &counters));
    EXPECT_EQ(1U, counters.txbyte);
    WlStaInfo sta = {};
    platform.answer("wlctl -i wl0 rssi", upTo(254, "-"));
    platform.answer("wlctl -i wl0 sta_info", endsWith(254, "tx failures: "));
    EXPECT_EQ(0, get_sta_info("wl0", "00:11:22:AA:BB:CC", &sta));
    EXPECT_EQ(1U, sta.txFailures);
    WlIntfInfo info = {};
    platform.answer("wlctl -i wl0 beacon_info", "HT Capabilities\n" + upTo(98, "A:"));
    EXPECT_EQ(0, qvbrcm_GetGenIntfInfo("wl0", 0, &info));
    EXPECT_EQ(1, info.htCap[0]);
    char rate[32];
    platform.answer("wlctl -i wl0 chanspec", "(0x1006)");
    platform.answer("wlctl -i wl0 5g_rate", "auto");
    platform.answer("wlctl -i wl0 rateset", upTo(98, "MCS SET"));
    EXPECT_EQ(0, qvWlanRateUpdate(Arg("wl0", "5GHz 9", "", 0, rate)));
    EXPECT_STREQ("14 Mbps", rate);
}

TEST_F(StatusReports, LargeReportsAreReadOnce) {
    std::string stations;
    for (int i = 0; i < 512; ++i) {
        char line[40];
        snprintf(line, sizeof line, "assoclist 02:00:00:00:%02x:%02x\n", i / 256, i % 256);
        stations += line;
    }
    platform.answer("wlctl -i wl0 assoclist", stations);
    WlStaInfo *list = nullptr;
    int count = 0;
    EXPECT_EQ(0, qvbrcm_GetAssocDevList(&intf, 0, &list, &count));
    ASSERT_EQ(512, count);
    EXPECT_STREQ("02:00:00:00:01:FF", list[511].macAddr);
    EXPECT_EQ(2 + 2 * 512U, platform.journal.size()); // the list, the noise and two for each station
    free(list);

    std::string large;
    while (large.size() < 10 << 20)
        large += kReports[4] + std::string(3000, 'x');
    for (const char *command : {"wlctl -i wl0 sta_info", "wlctl -i wl0 beacon_info", "wlctl -i wl0 counters"})
        platform.answer(command, large);
    platform.answer("wlctl -i wl0 assoclist", "assoclist 00:11:22:AA:BB:CC\n");
    everythingHolds("");
}
