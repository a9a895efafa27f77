// The setters that are a range, a key and a conversion, with both neighbours of every limit; and what all setters
// refuse.
#include <climits>

#include "tests/unit/fake_platform.h"

namespace {

using Setter = int (*)(WlanParamArg *);

// Any number from lowest to highest, stored as it is or as the word at its place.
struct RangeRow {
    const char *name;
    Setter set;
    const char *key;
    long lowest, highest;
    const char *usage = "";
    Lines words = {};
};
#define RANGE(setter, ...)                                                                                             \
    { #setter, setter, __VA_ARGS__ }

const RangeRow kRanges[] = {
    RANGE(qvWlanSetRadioOn, "radio", 0, 1),
    RANGE(qvWlanSetHideSSID, "closed", 0, 1),
    RANGE(qvWlanSetBssIsolation, "ap_isolate", 0, 1),
    RANGE(qvWlanSetMulticastFwd, "wmf_bss_enable", INT_MIN, INT_MAX),
    RANGE(qvWlanSetRekeyInterval, "wpa_gtk_rekey", INT_MIN, INT_MAX),
    RANGE(qvWlanSetProtectMF, "mfp", 0, 2),
    RANGE(qvWlanSetDefaultKeyID, "key", 1, 4),
    RANGE(qvWlanSetDtimPeriod, "dtim", INT_MIN, INT_MAX),
    RANGE(qvWlanSetRTSThreshold, "rts", 1, 2347, "RTSThreshold : 1~2347\n"),
    RANGE(qvWlanSetFragThreshold, "frag", 256, 2346, "FragThreshold : 256~2346\n"),
    RANGE(qvWlanSetWmmAdvDisable, "wme_bss_disable", 0, 1),
    RANGE(qvWlanSetLazyWds, "lazywds", INT_MIN, INT_MAX),
    RANGE(qvWlanSetAntennaDiv, "antdiv", INT_MIN, INT_MAX),
    RANGE(qvWlanSetTxBF_BFR, "txbf_bfr_cap", 0, 1),
    RANGE(qvWlanSetTxBF_BFE, "txbf_bfe_cap", 0, 1),
    RANGE(qvWlanSetProbRespSW, "probresp_sw", 0, 2),
    RANGE(qvWlanSetTxPreamble, "plcphdr", 0, 1, "0 : Long Preamble\n1 : Auto\n", {"long", "auto"}),
    RANGE(qvWlanSetFrameBurst, "frameburst", 0, 1, "FrameBurst : 0~1\n", {"off", "on"}),
    RANGE(qvWlanSetAmpdu, "ampdu", -1, 1, "", {"auto", "off", "on"}),
    RANGE(qvWlanSetAmsdu, "amsdu", -1, 1, "", {"auto", "off", "on"}),
    RANGE(qvWlanSetRifsAdv, "rifs_advert", -1, 0, "set the rifs mode advertisement status. value: <-1/0> (Auto/Off)",
          {"auto", "off"}),
    RANGE(qvWlanSetWmm, "wme", -1, 1, "", {"auto", "off", "on"}),
    RANGE(qvWlanSetWmmNoack, "wme_no_ack", 0, 1, "", {"off", "on"}),
    RANGE(qvWlanSetWmmApsd, "wme_apsd", 0, 1, "", {"off", "on"}),
};

// One value of any other setter.
struct Row {
    const char *name;
    Setter set;
    const char *value;
    const char *effect; // the journal, entries joined by '|'; null when the value is refused
    const char *usage;  // on stdout
};
#define ACCEPTS(setter, value, effect)                                                                                 \
    { #setter, setter, value, effect, "" }
#define REFUSES(setter, value, usage)                                                                                  \
    { #setter, setter, value, nullptr, usage }

constexpr char kBeaconUsage[] = "20 ~ 1024 (unit is in milli-seconds)\n";
const std::string kLongText = "US/" + std::string(2048, '1');
const char *const kLongRevision = kLongText.c_str();
constexpr char kPowerUsage[] = "1~100 (power output percentage)\n";
#define POLICES(rate, burst)                                                                                           \
    "run tc qdisc del dev wl0.1 ingress 2> /dev/null|run tc qdisc add dev wl0.1 handle ffff: ingress 2> /dev/null|"    \
    "run tc filter add dev wl0.1 parent ffff: protocol all u32 match u32 0 0 police rate " rate "kbit burst " burst    \
    "kb drop flowid :1 2> /dev/null"
#define SHAPES(rate, burst)                                                                                            \
    "run tc qdisc del dev wl0.1 root 2> /dev/null|run tc qdisc add dev wl0.1 root tbf rate " rate                      \
    "kbit latency 50ms burst " burst "kb 2> /dev/null"

const Row kRows[] = {
    ACCEPTS(qvWlanSetGlobalMaxStaNum, "abc", "set wl0.1_maxassoc=0"),
    ACCEPTS(qvWlanSetPerBssMaxStaNum, "abc", "set wl0.1_bss_maxassoc=abc"),
    ACCEPTS(qvWlanSetPerBssMaxStaNum, "", "unset wl0.1_bss_maxassoc"),
    ACCEPTS(qvWlanSetCountryCode, "US", "set wl0.1_country_code=US|set wl0.1_country_rev=0"),
    ACCEPTS(qvWlanSetCountryCode, "US/", "set wl0.1_country_code=US|set wl0.1_country_rev=0"),
    REFUSES(qvWlanSetCountryCode, kLongRevision, ""),
    ACCEPTS(qvWlanSetCountryCode, "/a/b", "unset wl0.1_country_code|set wl0.1_country_rev=a/b"),
    ACCEPTS(qvWlanSetCountryCode, "0123456789012345678901234567890x/1",
            "set wl0.1_country_code=0123456789012345678901234567890|set wl0.1_country_rev=1"),
    ACCEPTS(qvWlanSetPreSharedKey, "ends in a blank ", "set wl0.1_wpa_psk=ends in a blank "),
    ACCEPTS(qvWlanSetPreSharedKey, "", "unset wl0.1_wpa_psk"),
    ACCEPTS(qvWlanSetWepKey, "12345 ", "set wl0.1_key1=12345"),
    ACCEPTS(qvWlanSetMulticastRate, "0", "set wl0.1_mrate=-1"),
    REFUSES(qvWlanSetBeaconPeriod, "19", kBeaconUsage),
    ACCEPTS(qvWlanSetBeaconPeriod, "20", "set wl0.1_bcn=20|set wl0.1_bcn_rotate=1"),
    ACCEPTS(qvWlanSetBeaconPeriod, "1024", "set wl0.1_bcn=1024|set wl0.1_bcn_rotate=1"),
    REFUSES(qvWlanSetBeaconPeriod, "1025", kBeaconUsage),
    REFUSES(qvWlanSetTxPower, "0", kPowerUsage),
    ACCEPTS(qvWlanSetTxPower, "1", "wlctl wlctl -i wl0.1 pwr_percent 1"),
    ACCEPTS(qvWlanSetTxPower, "100", "wlctl wlctl -i wl0.1 pwr_percent 100"),
    REFUSES(qvWlanSetTxPower, "101", kPowerUsage),
    ACCEPTS(qvWlanSetStbcTx, "-1", "set wl0.1_stbc_tx=auto"),
    ACCEPTS(qvWlanSetStbcTx, "1", "set wl0.1_stbc_tx=on"),
    ACCEPTS(qvWlanSetStbcTx, "2", "set wl0.1_stbc_tx=off"),
    ACCEPTS(qvWlanSetStbcTx, "-2", "set wl0.1_stbc_tx=off"),
    ACCEPTS(qvWlanSetWdsMacList, "00:11:22:33:44:55 ", "set wl0.1_wds=00:11:22:33:44:55"),
    ACCEPTS(qvWlanSetWdsMacList, "", "unset wl0.1_wds"),
    ACCEPTS(qvWlanSetATF, "1", "set wl0.1_atf=1"),
    ACCEPTS(qvWlanSetATF, "01", "set wl0.1_atf=0"),
    REFUSES(qvWlanSetInterferenceMode, "-2", ""),
    ACCEPTS(qvWlanSetInterferenceMode, "-1", "run wlctl -i wl0.1 interference_override -1"),
    ACCEPTS(qvWlanSetInterferenceMode, "4", "run wlctl -i wl0.1 interference_override 4"),
    REFUSES(qvWlanSetInterferenceMode, "5", ""),
    ACCEPTS(qvWlanSetRxChainPwSave, "1 10 x 9",
            "set wl0.1_rxchain_pwrsave_stas_assoc_check=1|set wl0.1_rxchain_pwrsave_enable=1|"
            "set wl0.1_rxchain_pwrsave_quiet_time=10|set wl0.1_rxchain_pwrsave_pps=0"),
    ACCEPTS(qvWlanSetRadioPwSave, " 1  20 30 4 5",
            "set wl0.1_radio_pwrsave_stas_assoc_check=1|set wl0.1_radio_pwrsave_enable=1|"
            "set wl0.1_radio_pwrsave_quiet_time=20|set wl0.1_radio_pwrsave_pps=30|set wl0.1_radio_pwrsave_level=4"),
    ACCEPTS(qvWlanSetRadioPwSave, "1 20",
            "set wl0.1_radio_pwrsave_stas_assoc_check=1|set wl0.1_radio_pwrsave_enable=1|"
            "set wl0.1_radio_pwrsave_quiet_time=20|set wl0.1_radio_pwrsave_pps=0|set wl0.1_radio_pwrsave_level=0"),
    ACCEPTS(qvWlanSetUpstreamRate, "-1", "run tc qdisc del dev wl0.1 ingress 2> /dev/null"),
    ACCEPTS(qvWlanSetUpstreamRate, "0", "run tc qdisc del dev wl0.1 ingress 2> /dev/null"),
    ACCEPTS(qvWlanSetUpstreamRate, "1", POLICES("1", "50")),
    ACCEPTS(qvWlanSetUpstreamRate, "4999", POLICES("4999", "50")),
    ACCEPTS(qvWlanSetUpstreamRate, "5000", POLICES("5000", "100")),
    ACCEPTS(qvWlanSetUpstreamRate, "9999", POLICES("9999", "100")),
    ACCEPTS(qvWlanSetUpstreamRate, "10000", POLICES("10000", "150")),
    ACCEPTS(qvWlanSetUpstreamRate, "14999", POLICES("14999", "150")),
    ACCEPTS(qvWlanSetUpstreamRate, "15000", POLICES("15000", "200")),
    ACCEPTS(qvWlanSetDownstreamRate, "0", "run tc qdisc del dev wl0.1 root 2> /dev/null"),
    ACCEPTS(qvWlanSetDownstreamRate, "1", SHAPES("1", "10")),
    ACCEPTS(qvWlanSetDownstreamRate, "9999", SHAPES("9999", "10")),
    ACCEPTS(qvWlanSetDownstreamRate, "10000", SHAPES("10000", "30")),
    ACCEPTS(qvWlanSetDownstreamRate, "14999", SHAPES("14999", "30")),
    ACCEPTS(qvWlanSetDownstreamRate, "15000", SHAPES("15000", "60")),
    ACCEPTS(qvWlanSetDtimPeriod, " 3x", "set wl0.1_dtim=3"),
    REFUSES(qvWlanSetFragThreshold, "-99999999999999999999", "FragThreshold : 256~2346\n"),
};

const Row kOthers[] = {
    REFUSES(qvWlanSetSSID, "", ""),         REFUSES(qvWlanSetRate, "", ""),
    REFUSES(qvWlanSetHTProtect, "", ""),    REFUSES(qvWlanSetApCoex, "", ""),
    REFUSES(qvWlanSetStbcRx, "", ""),       REFUSES(qvWlanSetBGProtection, "", ""),
    REFUSES(qvWlanSetAuthMode, "", ""),     REFUSES(qvWlanSetEncrypType, "", ""),
    REFUSES(qvWlanSetAutoChPolicy, "", ""), REFUSES(qvWlanAutoChannelSkip, "", ""),
    REFUSES(qvWlanChannelList, "", ""),     REFUSES(qvWlanSetWlMode, "", ""),
};

std::string joined(const Lines &lines) {
    std::string text;
    for (const std::string &line : lines)
        text += (text.empty() ? "" : "|") + line;
    return text;
}

} // namespace

class ParamValues : public PlatformTest {
  protected:
    void check(const Row &row) {
        SCOPED_TRACE(std::string(row.name) + " \"" + row.value + "\"");
        platform.forget();
        Arg arg("wl0.1", row.value, "wl0");
        int result = 1;
        EXPECT_EQ(row.usage, printed([&] { result = row.set(arg); }));
        EXPECT_EQ(row.effect != nullptr ? 0 : -14, result);
        EXPECT_EQ(row.effect != nullptr ? row.effect : "", joined(platform.journal));
        EXPECT_EQ(row.value, arg.value) << "the caller's text changed";
        for (const LogLine &line : platform.logs)
            EXPECT_EQ(row.name, line.function);
    }

    // Neither a missing part nor a prefix that a store could take for another variable.
    void refusesMissingParts(const char *name, Setter set) {
        SCOPED_TRACE(name);
        char text[] = "1", radio[] = "wl0", other[] = "http_passwd=x";
        WlanParamArg noName = {other, text, radio, text, 0};
        WlanParamArg noPrefix = {nullptr, text, text, text, 0};
        WlanParamArg noValue = {radio, nullptr, radio, nullptr, 0};
        for (WlanParamArg *arg : {static_cast<WlanParamArg *>(nullptr), &noPrefix, &noValue, &noName})
            EXPECT_EQ(-14, set(arg));
    }
};

TEST_F(ParamValues, Ranges) {
    for (const RangeRow &row : kRanges) {
        std::vector<long> accepted = {row.lowest, row.highest};
        if (row.words.size() == 3)
            accepted.push_back(row.lowest + 1);
        for (const long number : accepted) {
            const std::string value = std::to_string(number);
            const std::string stored =
                row.words.empty() ? value : row.words.at(static_cast<size_t>(number - row.lowest));
            const std::string effect = std::string("set wl0.1_") + row.key + "=" + stored;
            check({row.name, row.set, value.c_str(), effect.c_str(), ""});
        }
        if (row.lowest == INT_MIN)
            continue;
        for (const long number : {row.lowest - 1, row.highest + 1})
            check({row.name, row.set, std::to_string(number).c_str(), nullptr, row.usage});
    }
}

TEST_F(ParamValues, Rows) {
    for (const Row &row : kRows)
        check(row);
    check(ACCEPTS(qvWlanSetAutoCh, "1", "unset acs_mode"));
}

TEST_F(ParamValues, MissingArgumentsAreRefused) {
    for (const RangeRow &row : kRanges)
        refusesMissingParts(row.name, row.set);
    for (const Row &row : kRows)
        refusesMissingParts(row.name, row.set);
    for (const Row &row : kOthers)
        refusesMissingParts(row.name, row.set);
    EXPECT_EQ(Lines{}, platform.journal);
    EXPECT_EQ(0, qvWlanSetAutoCh(nullptr));
    EXPECT_EQ(Lines{"unset acs_mode"}, platform.journal);
}

TEST_F(ParamValues, DoNothingSettersAcceptAnything) {
    int (*const setters[])(WlanParamArg *) = {
        qvWlanSetMBSS,     qvWlanSetDisableOLBC,   qvWlanSetTxAntenna,    qvWlanClearWepKey, qvWlanSetHTBw,
        qvWlanSetHTExtCha, qvWlanSetBoardClkState, qvWlanSetInterference, qvWlanSetMimoTxbw, qvWlanSetSsStf};
    Arg arg("wl0", "99");
    for (const auto &set : setters) {
        EXPECT_EQ(0, set(nullptr));
        EXPECT_EQ(0, set(arg));
    }
    EXPECT_EQ(Lines{}, platform.journal);
}

// A name that a shell or the driver tool would read otherwise gets no command, and the log names it.
TEST_F(ParamValues, HostileNamesRunNothing) {
    const Row commands[] = {
        REFUSES(qvWlanSetTxPower, "50", ""),
        REFUSES(qvWlanSetInterferenceMode, "1", ""),
        REFUSES(qvWlanSetUpstreamRate, "9", ""),
        REFUSES(qvWlanSetDownstreamRate, "9", ""),
        REFUSES(qvWlanSetAutoChPolicy, "1", "qvWlanSetAutoChPolicy: 1\n"),
        REFUSES(qvWlanSetChannel, "36", ""),
        REFUSES(qvWlanChannelList, "5GHz,20", ""),
        REFUSES(qvWlanGetValidChannel, "", ""),
    };
    for (const char *name : {"wl0; reboot", "$(reboot)", "", "-wl0", "wl0 up", "1234567890123456"}) {
        for (const Row &row : commands) {
            SCOPED_TRACE(std::string(row.name) + " " + name);
            platform.forget();
            char list[WLBRCM_CHANNEL_LIST_SIZE] = "";
            Arg arg(name, row.value, "5G", 0, list);
            EXPECT_EQ(row.usage, printed([&] { EXPECT_EQ(-14, row.set(arg)); }));
            EXPECT_EQ(Lines{}, platform.journal);
            EXPECT_EQ(Lines{"invalid interface name \"" + std::string(name) + "\".\n"},
                      platform.logged(WLBRCM_LOG_ERR));
            EXPECT_EQ(row.name, platform.logs.back().function);
        }
        platform.forget();
        EXPECT_EQ(-14, qvWlanSetSSID(Arg("wl0", "home", name)));
        EXPECT_EQ(-14, qvWlanFlowCacheSetup(Arg(name, "0"), 1));
        EXPECT_EQ(Lines{}, platform.journal);
        EXPECT_EQ(2U, platform.logged(WLBRCM_LOG_ERR).size());
    }
}
