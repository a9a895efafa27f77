// The order in which a radio is brought up: one rich radio in full, and what the others leave out.
#include <set>

#include "tests/unit/bringup_radio.h"
#include "tests/unit/data_lines.h"

namespace {

WlLanMember member(const char *name) {
    WlLanMember result = {};
    setField(result.ifName, name);
    return result;
}

} // namespace

class BringUpSequence : public BringUpTest {
  protected:
    BringUpSequence() {
        qvbrcm_MacFilter_init();
        act_wl_cnt = 2;
        setField(lan.name, "br0");
        setField(lan.hwaddr, "00:10:18:AA:BB:00");
    }
    void fillRadio() {
        const uint8_t mac[6] = {0x00, 0x10, 0x18, 0xAA, 0xBB, 0xCE};
        memcpy(radio.baseMac, mac, sizeof mac);
        memset(&caps, 1, offsetof(WlCaps, hostByte1));
        radio.radioIndex = radio.radioOn = radio.frameBurst = radio.atfEnable = radio.txbfMu = 1;
        radio.apCoex = radio.htProtect = radio.txPreamble = radio.sideband = radio.txbfBfr = 1;
        radio.bgProtection = 2;
        radio.rifsAdv = -1;
        radio.wirelessMode = 9;
        radio.bandwidth = radio.txPower = 80;
        radio.channel = 36;
        radio.acsScanTimer = 900;
        const std::pair<int32_t WlRadioCfg::*, int32_t> numbers[] = {
            {&WlRadioCfg::acsPolicyIndex, -2},   {&WlRadioCfg::beaconPeriod, 100},
            {&WlRadioCfg::dtimPeriod, 3},        {&WlRadioCfg::rtsThreshold, 2347},
            {&WlRadioCfg::fragThreshold, 2346},  {&WlRadioCfg::rate, 54},
            {&WlRadioCfg::band, WLBRCM_BAND_5G}, {&WlRadioCfg::mcs, 7},
            {&WlRadioCfg::multicastRate, 11},    {&WlRadioCfg::regMode, 1},
            {&WlRadioCfg::dfsPreIsm, 60},        {&WlRadioCfg::dfsPostIsm, 61},
            {&WlRadioCfg::interferenceMode, 4},  {&WlRadioCfg::tpcDb, 3}};
        for (const auto &[field, number] : numbers)
            radio.*field = number;
        const int32_t rxChain[] = {1, 10, 20}, whole[] = {0, 5, 6, 7};
        memcpy(radio.rxChainPwrsaveParams, rxChain, sizeof rxChain);
        memcpy(radio.radioPwrsaveParams, whole, sizeof whole);
        setField(radio.acsSkipList, "52,56");
        setField(radio.wdsMode, "wds");
        setField(radio.wdsMacList, "00:11:22:33:44:55");
        setField(radio.phyType, "v");
        setField(radio.countryCode, "DE/3");
    }
    void fillHome(WlSsidCfg &home) {
        home.main = home.wmm = home.wmmApsd = home.preauth = home.defaultKeyId = 1;
        setField(home.ssidName, "Home");
        home.maxSta = 32;
        setField(home.bridge, "br0");
        setField(home.authMode, "wpa2psk");
        setField(home.encryption, "aes");
        setField(home.wpaPskFallback, "not this one");
        setField(home.wpaPsk, "agreed by WPS");
        home.rekeyInterval = 1800;
        home.netReauth = 3600;
        setField(home.radiusIpaddr, "192.168.1.9");
        home.radiusPort = 1812;
        setField(home.radiusKey, "secret");
        setField(home.macFilterMode, "DENY");
        setField(home.macFilterList, "AA:BB:CC:DD:EE:01 AA:BB:CC:DD:EE:02");
        home.wpsEnable = home.wpsConfigured = home.wpsVersion2 = home.wpsPbcEnable = home.wpsStaPinEnable = 1;
        home.wpsConfigMethod = 0x2288;
        setField(home.wpsDevicePin, "31415927");
        setField(home.wpsUuid, "0102");
        home.upstreamRate = 6000;
        home.downstreamRate = 12000;
        home.protectMF = 1;
    }
    void fillOthers() {
        WlSsidCfg &old = bss[1], &later = bss[2], &off = bss[3];
        setField(old.ssidName, "Old");
        old.hideSsid = old.bssIsolation = old.multicastFwd = 1;
        old.maxSta = 8;
        setField(old.bridge, "br1");
        setField(old.encryption, "wep");
        old.defaultKeyId = 3;
        setField(old.wepKeys[2], "third");
        setField(old.wpaPskFallback, "fallback");
        setField(later.ssidName, "Later");
        setField(later.encryption, "none");
        later.maxSta = 4;
        later.presetRole = WLBRCM_PRESET_ON_DEMAND;
        later.enable = 0;
        setField(old.authMode, "open");
        setField(later.authMode, "open");
        off.enable = 0;
        off.main = 1;
        off.maxSta = 99;
        setField(off.bridge, "br0");
    }
    void fillRichRadio() {
        fillRadio();
        useEntries(4);
        fillHome(bss[0]);
        fillOthers();
        platform.processes = {{1, "init"}, {101, "wl0-kthrd"}, {102, "wfd0-thrd"}, {103, "wl0-tmr-kthrd"}};
        platform.files["/bin/acsd"] = "";
        platform.nvram = {{"lan_wps_oob", "enabled"}, {"lan1_ifname", "br9"}, {"acs_ifnames", "wl0 wl1"}};
        platform.answer("wlctl -i wl0 ver", "7.14 WLTEST\n");
    }
    WlLanMember members[4] = {member("eth0"), member(""), member("wl0"), member("wl0.1")};
    WlLanGroup lan = {{}, 4, {}, members};
    WlLanCfg lans = {1, &lan};
};

// With every command failing the same things are done: results do not matter, and no setter's refusal stops anything.
TEST_F(BringUpSequence, RichRadioIsPinned) {
    const Lines expected = readLines("bringup_rich_radio.txt");
    ASSERT_GT(expected.size(), 250U);
    for (const bool works : {true, false}) {
        platform.forget();
        fillRichRadio();
        if (!works) {
            platform.answer("", "", 1);
            platform.answer("wlctl -i wl0 ver", "WLTEST\n", 1);
            platform.failing = {{"affinity", 1}, {"priority", 1}};
        }
        intf->state = 0;
        const std::string output = printed([&] { EXPECT_EQ(0, qvbrcm_InitWlan(intf, &lans)); });
        for (size_t i = 0; i < expected.size() && i < platform.journal.size(); ++i)
            ASSERT_EQ(expected[i], platform.journal[i]) << "step " << i;
        EXPECT_EQ(expected.size(), platform.journal.size());
        EXPECT_EQ(WLBRCM_STATE_READY, intf->state);
        EXPECT_EQ("\nqvbrcm_ForceConfigurePresetSSID: wlanSsid[2].enable = 1......\n", platform.logged(8)[0]);
        EXPECT_EQ(!works, output.find("Failed to make wlan processing on wl0 realtime\n") != std::string::npos);
        EXPECT_EQ(works ? Lines{}
                        : Lines({"sched_setaffinity failed, rc=-1, wl0-kthrd(101)\n",
                                 "sched_setaffinity failed, rc=-1, wfd0-thrd(102)\n"}),
                  platform.logged(4));
    }
}

TEST_F(BringUpSequence, ReloadAnnouncesInsteadOfWritingLanVariables) {
    fillRichRadio();
    qvbrcm_InitWlan(intf, &lans);
    Lines expected = readLines("bringup_rich_radio.txt");
    expected.erase(expected.begin(), expected.begin() + 7);
    platform.forget();
    EXPECT_EQ(0, qvbrcm_ReloadWlan(intf));
    EXPECT_EQ(expected, platform.journal) << "without an announcer";

    bss[5].presetRole = WLBRCM_PRESET_ANNOUNCER; // beyond the entries in use
    setField(bss[5].ifName, "wl0.5");
    expected.insert(expected.begin(), {"run wl -i wl0.5 csa 0 20 36/80", "sleep 3"});
    platform.forget();
    EXPECT_EQ(0, qvbrcm_ReloadWlan(intf));
    EXPECT_EQ(expected, platform.journal);
    EXPECT_EQ(WLBRCM_STATE_READY, intf->state);

    const struct { int band, autoChannel; } silent[] = {{WLBRCM_BAND_2G, 0}, {WLBRCM_BAND_5G, 1}};
    for (const auto &row : silent) {
        radio.band = row.band;
        radio.autoChannel = static_cast<uint8_t>(row.autoChannel);
        platform.forget();
        qvbrcm_ReloadWlan(intf);
        EXPECT_FALSE(ran(" csa ")) << row.band;
    }
}

// Its fixed 40 MHz channel is not in the driver's list, so it also falls back to automatic selection.
TEST_F(BringUpSequence, BareRadioThatIsOff) {
    radio.band = WLBRCM_BAND_2G;
    radio.bandwidth = 40;
    radio.sideband = 1;
    radio.channel = 36;
    radio.apCoex = 1;
    EXPECT_EQ(0, qvbrcm_SetupWlan(&radio, bss, &caps));
    EXPECT_EQ(Lines{"set wl0_obss_coex=1"}, platform.did("set wl0_obss"));
    ASSERT_GT(platform.journal.size(), 4U);
    EXPECT_EQ(Lines({"set wl0_maxassoc=0", "run /bin/lld2d ", "run /bin/eapd", "run /bin/nas"}),
              Lines(platform.journal.end() - 4, platform.journal.end()));
    EXPECT_EQ(Lines{"set wl0_wme=off"}, platform.did("set wl0_wme"));
    for (const char *absent : {"ampdu", "amsdu", "lazywds", "wds", "mode", "rxchain", "radio_pwrsave", "txbf"})
        EXPECT_EQ(Lines{}, platform.did(std::string("set wl0_") + absent)) << absent;
    EXPECT_EQ(Lines({"set wl0_channel=0", "set wl0_chanspec=0"}), platform.did("set wl0_chan"));
    EXPECT_EQ(Lines{"unset acs_mode"}, platform.did("unset acs_mode"));
    EXPECT_FALSE(ran("wlconf"));
    EXPECT_EQ(Lines{}, platform.did("priority"));

    caps.txbf = radio.txbfBfr = 1;
    caps.radioPwrsave = 1; // in this order, behind the one that is always 1
    for (int i = 0; i < 4; ++i)
        radio.radioPwrsaveParams[i] = i + 2;
    qvbrcm_AdvanceSetupWlan(&radio, bss, &caps);
    std::string saved;
    for (const std::string &entry : platform.did("set wl0_radio_pwrsave"))
        saved += entry.back();
    EXPECT_EQ("12345", saved);
    EXPECT_EQ(Lines({"set wl0_txbf_bfr_cap=1", "set wl0_txbf_bfe_cap=0"}), platform.did("set wl0_txbf"));
}

namespace {

const WlIntf *watched;
std::set<int> states;
void watchState(int, const char *, const char *, int, const char *, ...) { states.insert(watched->state); }

} // namespace

TEST_F(BringUpSequence, TheStateTellsWhatIsGoingOn) {
    watched = intf;
    brcm_print_fn = watchState;
    for (const bool reload : {false, true}) {
        states.clear();
        intf->state = 0;
        EXPECT_EQ(0, reload ? qvbrcm_ReloadWlan(intf) : qvbrcm_InitWlan(intf, &lans));
        EXPECT_EQ(std::set<int>{WLBRCM_STATE_SETTING_UP}, states);
        EXPECT_EQ(WLBRCM_STATE_READY, intf->state);
    }
}

// wl0 itself comes up once more, unless the entry after the last one in use is enabled.
TEST_F(BringUpSequence, OwnInterface) {
    const struct {
        int inUse;
        bool nextEnabled;
        size_t ups;
    } rows[] = {{1, false, 2}, {5, true, 1}, {6, false, 2}, {7, false, 2}};
    radio.radioOn = 1;
    for (const auto &row : rows) {
        memset(bss, 0, sizeof intf->bss);
        useEntries(row.inUse);
        if (row.nextEnabled)
            bss[row.inUse].enable = 1;
        platform.forget();
        qvWlanFinishSetup(&radio, bss);
        EXPECT_EQ(row.ups, platform.did("run ifconfig wl0 up 2>/dev/null").size()) << row.inUse;
    }
}

TEST_F(BringUpSequence, StepsLogUnderTheirOwnNames) {
    fillRichRadio();
    qvbrcm_InitWlan(intf, &lans);
    std::map<std::string, std::string> functions;
    for (const LogLine &line : platform.logs) {
        if (line.level == 64)
            functions.emplace(line.text, line.function);
    }
    const char *const rows[][2] = {{"cmd = killall -9 nas 2>/dev/null\n", "qvWlanStopServices"},
                                   {"wl0, wl0-kthrd(101), wfd0-thrd(102)\n", "qvWlanSetupTPs"},
                                   {"cmd = wlctl -i wl0 phy_watchdog 0\n", "qvWlanReset"},
                                   {"cmd = brctl delif br1 wl0.1 2>/dev/null\n", "qvWlanIfaceDown"},
                                   {"cmd = brctl addif br1 wl0.1\n", "qvWlanSetupBridge"},
                                   {"cmd = /bin/nas\n", "qvWlanStartServices"},
                                   {"cmd = ifconfig wl0.1 up 2>/dev/null\n", "qvWlanIfaceUp"},
                                   {"cmd = /bin/acsd\n", "qvWlanStartAcsd"},
                                   {"ifname = wl0.1\n", "qvbrcm_SetupWlan"},
                                   {"nvram set lan_ifname = br0\n", "qvWlanLanVarInit"}};
    for (const auto &[text, function] : rows)
        EXPECT_EQ(function, functions[text]) << text;
}

// Names that no shell may see: nothing of them is run, each is reported, and the other BSSs come up all the same.
TEST_F(BringUpSequence, HostileNames) {
    fillRichRadio();
    setField(bss[0].bridge, "br0; reboot");
    setField(bss[1].ifName, "wl0.1$(reboot)");
    setField(bss[1].macFilterMode, "DENY");
    setField(bss[2].ifName, "-reboot");
    setField(bss[3].ifName, std::string(64, 'r'));
    setField(lan.name, "br0 && reboot");
    EXPECT_EQ(0, qvbrcm_InitWlan(intf, &lans));
    EXPECT_FALSE(ran("reboot"));
    EXPECT_FALSE(ran("rrrr"));
    EXPECT_FALSE(ran("/bin/lld2d"));
    EXPECT_TRUE(ran("killall -9 lld2d"));
    for (const char *key : {"set wl0_ssid", "set wl0_closed", "set wl0_akm"})
        EXPECT_EQ(1U, platform.did(key).size()) << "what was refused landed under the radio's prefix";
    for (const char *name : {"br0; reboot", "wl0.1$(reboot)", "-reboot", "br0 && reboot", "rrrrrrrr"})
        EXPECT_TRUE(wasLogged(4, name)) << name;
    for (const char *command : {"wlconf wl0 start", "ifconfig wl0 up", "ifconfig wl0 down", "/bin/nas"})
        EXPECT_TRUE(ran(command)) << command;
    EXPECT_EQ(WLBRCM_STATE_READY, intf->state);

    setField(radio.ifName, "wl0;reboot");
    setField(bss[0].ifName, "wl0;reboot");
    setField(bss[0].macText, "0");
    bss[5].presetRole = WLBRCM_PRESET_ANNOUNCER;
    setField(bss[5].ifName, "`reboot`");
    platform.forget();
    EXPECT_EQ(0, qvbrcm_ReloadWlan(intf));
    EXPECT_FALSE(ran("reboot"));
    EXPECT_EQ(Lines{}, platform.did("sleep 3"));
    EXPECT_TRUE(ran("/bin/nas"));
}

// Every text field full to its last byte and far too many entries: nothing reads past a field or the record.
TEST_F(BringUpSequence, UnterminatedRecord) {
    memset(static_cast<void *>(intf), 'w', sizeof *intf);
    radio.bssCount = 0xFFFF;
    EXPECT_EQ(0, qvbrcm_InitWlan(intf, &lans));
    EXPECT_EQ(0, qvbrcm_ReloadWlan(intf));
    uint8_t changed = 9;
    EXPECT_EQ(0, qvbrcm_WPSUpdateConfg(intf, &changed));
    EXPECT_EQ(0, changed);
    EXPECT_FALSE(ran("www"));
    for (const auto &[key, value] : platform.nvram)
        EXPECT_LE(value.size(), 2047U) << key;
}
