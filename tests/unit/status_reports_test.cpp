// How reports are read: in pieces of the line buffers, and whole when they are large.
#include <cstring>

#include "tests/unit/fake_platform.h"

class StatusReports : public PlatformTest {
  protected:
    StatusReports() {
        intf.radio.bssCount = 1;
        strcpy(intf.radio.ifName, "wl0");
        intf.bss[0].enable = 1;
        strcpy(intf.bss[0].ifName, "wl0");
    }

    WlIntf intf = {};
};

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
