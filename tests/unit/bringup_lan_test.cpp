// LAN groups, and what a WPS session changes in a radio record.
#include "bringup_radio.h"

class BringUpLan : public PlatformTest {
  protected:
    void addGroup(const std::string &name, const Lines &names) {
        auto &members = members_[groups_.size()];
        for (const std::string &member : names) {
            members.push_back({});
            setField(members.back().ifName, member);
        }
        groups_.push_back({});
        setField(groups_.back().name, name);
        setField(groups_.back().hwaddr, "00:10:18:00:00:01");
        groups_.back().memberCount = static_cast<int32_t>(names.size());
        groups_.back().members = members.data();
    }
    int update() {
        const WlLanCfg lan = {static_cast<int32_t>(groups_.size()), groups_.data()};
        return qvbrcm_UpdateLaninfo(nullptr, nullptr, &lan);
    }

    std::vector<WlLanGroup> groups_;
    std::vector<WlLanMember> members_[12];
};

TEST_F(BringUpLan, GroupsBecomeVariables) {
    platform.nvram = {{"lan2_ifname", "old"},
                      {"lan9_hwaddr", "old"},
                      {"lan10_ifname", "kept"},
                      {"eth0_hwaddr", "x"},
                      {"lan_wps_reg", ""}};
    addGroup("br0", {"eth0", "", "wl0", "wl0.1"});
    addGroup("br1", {"usb0", "wl1"});
    EXPECT_EQ(0, update());
    EXPECT_EQ(Lines({"unset lan2_ifname", "unset lan9_hwaddr", "set lan_ifname=br0", "set lan_ifnames=eth0 wl0 wl0.1",
                     "set lan_hwaddr=00:10:18:00:00:01", "set eth0_ifname=eth0", "unset eth0_hwaddr",
                     "set lan1_ifname=br1", "set lan1_ifnames=usb0 wl1", "set lan1_hwaddr=00:10:18:00:00:01",
                     "set usb0_ifname=usb0", "unset usb0_hwaddr", "set lan_wps_reg=enabled", "set lan_wps_oob=disabled",
                     "set lan1_wps_reg=enabled", "set lan1_wps_oob=disabled", "run killall eapd", "run /bin/eapd"}),
              platform.journal);
}

TEST_F(BringUpLan, RegistrarVariables) {
    const struct {
        std::map<std::string, std::string> nvram;
        const char *oob[3];
        bool monitor;
    } rows[] = {
        {{}, {"disabled", "disabled", "disabled"}, false},
        {{{"wl0_wps_config_state", "1"}, {"wl1_wps_config_state", "0"}}, {"disabled", "enabled", "enabled"}, false},
        {{{"wl0_wps_config_state", "2"}, {"wl1_wps_config_state", "1"}}, {"disabled", "disabled", "disabled"}, false},
        {{{"wl0.1_wps_config_state", "0"}, {"eth0_wps_mode", "enabled"}}, {"disabled", "disabled", "disabled"}, false},
        {{{"wl1_wps_mode", "enabled"}, {"wl0_wps_mode", "disabled"}}, {"disabled", "disabled", "disabled"}, true},
    };
    addGroup("br0", {"eth0", "wl0", "wl0.1"});
    addGroup("br1", {"wl1"});
    addGroup("br2", {"wl2"});
    for (const auto &row : rows) {
        platform.nvram = row.nvram;
        platform.forget();
        EXPECT_EQ(0, update());
        const char *keys[] = {"lan_wps_oob", "lan1_wps_oob", "lan2_wps_oob"};
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(row.oob[i], platform.nvram[keys[i]]) << i;
        const Lines monitor = {"run killall -15 wps_monitor 2>/dev/null", "run rm /tmp/wps_monitor.pid 2>/dev/null",
                               "run /bin/wps_monitor &", "run killall eapd", "run /bin/eapd"};
        EXPECT_EQ(row.monitor ? monitor : Lines({"run killall eapd", "run /bin/eapd"}), platform.did("run "));
    }
}

// 255 characters fit; a name that does not, with the blank before it, ends its group.
TEST_F(BringUpLan, MembersStayWhole) {
    const std::string half(63, 'a'), rest(62, 'b');
    addGroup("br0", {half, half, half, std::string(63, 'c')});
    addGroup("br1", {half, half, half, std::string(64, 'd'), "e"});
    EXPECT_EQ(0, update());
    const std::string three = half + " " + half + " " + half;
    EXPECT_EQ(three + " " + std::string(63, 'c'), platform.nvram["lan_ifnames"]);
    EXPECT_EQ(three, platform.nvram["lan1_ifnames"]);
    EXPECT_EQ("Error, not enough space to insert data....\n", platform.logged(64)[2].substr(0, 43));
}

TEST_F(BringUpLan, NothingToBuild) {
    WlLanCfg lan = {0, nullptr};
    EXPECT_EQ(-14, qvbrcm_UpdateLaninfo(nullptr, nullptr, nullptr));
    EXPECT_EQ(-5, qvbrcm_UpdateLaninfo(nullptr, nullptr, &lan));
    EXPECT_EQ(Lines{"Lan number = 0\n"}, platform.logged(4));
    addGroup("br0", {"eth0"});
    platform.forget();
    platform.failAllocation(0);
    EXPECT_EQ(-5, update());
    EXPECT_TRUE(platform.allocationFailed);
    EXPECT_EQ(Lines{"Alloc memory error, size = 306.\n"}, platform.logged(4));
    lan = {-1, groups_.data()};
    EXPECT_EQ(-5, qvbrcm_UpdateLaninfo(nullptr, nullptr, &lan));
    EXPECT_EQ(Lines{}, platform.journal);
}

using BringUpSession = BringUpTest;

TEST_F(BringUpSession, TakesOver) {
    struct Settings {
        const char *ssid, *authMode, *encryption, *psk;
    };
    const struct {
        const char *name;
        std::map<std::string, std::string> nvram;
        Settings before, after;
        int changed;
        Lines errors;
    } rows[] = {
        {"a whole session",
         {{"wl0_ssid", "New"}, {"wl0_akm", "psk2 "}, {"wl0_crypto", "aes"}, {"wl0_wpa_psk", "secret12"}},
         {"Old", "open", "none", ""},
         {"New", "wpa2psk", "aes", "secret12"},
         1,
         {}},
        {"mixed mode",
         {{"wl0_akm", "psk psk2 "}, {"wl0_crypto", "tkip+aes"}},
         {"Old", "wpa2psk", "aes", "k"},
         {"Old", "wpapskmix", "tkipaes", "k"},
         1,
         {}},
        {"all in force",
         {{"wl0_ssid", "Old"}, {"wl0_akm", "psk2 "}, {"wl0_crypto", "aes"}, {"wl0_wpa_psk", "k"}},
         {"Old", "wpa2psk", "aes", "k"},
         {"Old", "wpa2psk", "aes", "k"},
         0,
         {}},
        {"in force, as the bring-up stores it",
         {{"wl0_akm", "psk2"}, {"wl0_crypto", "aes"}},
         {"Old", "wpa2psk", "aes", "k"},
         {"Old", "wpa2psk", "aes", "k"},
         0,
         {}},
        {"opened", {{"wl0_akm", ""}}, {"Old", "wpa2psk", "aes", "k"}, {"Old", "open", "none", "k"}, 1, {}},
        {"open already", {{"wl0_akm", ""}}, {"Old", "open", "wep", "k"}, {"Old", "open", "wep", "k"}, 0, {}},
        {"unknown key management, the rest counts",
         {{"wl0_akm", "wpa3"}, {"wl0_ssid", "New"}, {"wl0_crypto", "tkip+aes"}, {"wl0_wpa_psk", "l"}},
         {"Old", "wpa2psk", "aes", "k"},
         {"New", "wpa2psk", "tkipaes", "l"},
         1,
         {"Not support authMode : wpa3.\n"}},
        {"without its blank it is none of a session",
         {{"wl0_akm", "psk2"}},
         {"Old", "open", "none", ""},
         {"Old", "open", "none", ""},
         0,
         {"Not support authMode : psk2.\n"}},
        {"cipher and key are not for an open network",
         {{"wl0_crypto", "aes"}, {"wl0_wpa_psk", "l"}},
         {"Old", "open", "none", "k"},
         {"Old", "open", "none", "k"},
         0,
         {}},
        {"unknown cipher",
         {{"wl0_crypto", "tkip"}},
         {"Old", "wpa2psk", "aes", "k"},
         {"Old", "wpa2psk", "aes", "k"},
         0,
         {}},
        {"empty counts as unset",
         {{"wl0_ssid", ""}, {"wl0_wpa_psk", ""}},
         {"Old", "wpa2psk", "aes", "k"},
         {"Old", "wpa2psk", "aes", "k"},
         0,
         {}},
    };
    useEntries(1);
    bss[0].wpsEnable = caps.wpsCapable = 1;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        platform.nvram = row.nvram;
        platform.forget();
        setField(bss[0].ssidName, row.before.ssid);
        setField(bss[0].authMode, row.before.authMode);
        setField(bss[0].encryption, row.before.encryption);
        setField(bss[0].wpaPsk, row.before.psk);
        bss[0].wpsConfigured = 0;
        uint8_t changed = 9;
        EXPECT_EQ(0, qvbrcm_WPSUpdateConfg(intf, &changed));
        EXPECT_EQ(row.changed, changed);
        EXPECT_EQ(row.changed, bss[0].wpsConfigured);
        EXPECT_EQ(Lines({row.after.ssid, row.after.authMode, row.after.encryption, row.after.psk}),
                  Lines({bss[0].ssidName, bss[0].authMode, bss[0].encryption, bss[0].wpaPsk}));
        const bool reported = row.errors.empty() ? wasLogged(4, "Not support") : !wasLogged(4, row.errors[0]);
        EXPECT_FALSE(reported);
        EXPECT_EQ(row.changed != 0, ran("/bin/wlconf wl0 down")) << "only a change reloads the radio";
        EXPECT_TRUE(ran("/bin/wps_monitor&"));
    }
}

TEST_F(BringUpSession, LongValuesAreCutOnce) {
    useEntries(1);
    bss[0].wpsEnable = caps.wpsCapable = 1;
    setField(bss[0].authMode, "wpa2psk");
    platform.nvram = {{"wl0_ssid", std::string(40, 's')}, {"wl0_wpa_psk", std::string(80, 'p')}};
    uint8_t changed = 0;
    qvbrcm_WPSUpdateConfg(intf, &changed);
    EXPECT_EQ(1, changed);
    EXPECT_EQ(std::string(32, 's'), bss[0].ssidName);
    EXPECT_EQ(std::string(66, 'p'), bss[0].wpaPsk);
    platform.nvram = {{"wl0_ssid", std::string(40, 's')}, {"wl0_wpa_psk", std::string(80, 'p')}};
    qvbrcm_WPSUpdateConfg(intf, &changed);
    EXPECT_EQ(0, changed);
}

TEST_F(BringUpSession, OnlyWithWps) {
    useEntries(1);
    uint8_t changed = 9;
    for (const bool capable : {true, false}) {
        platform.nvram = {{"wl0_ssid", "New"}};
        bss[0].wpsEnable = capable ? 0 : 1;
        caps.wpsCapable = capable ? 1 : 0;
        EXPECT_EQ(0, qvbrcm_WPSUpdateConfg(intf, &changed));
        EXPECT_EQ(0, changed);
        EXPECT_STREQ("", bss[0].ssidName);
    }
}
