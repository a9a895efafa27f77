// LAN groups, and what a WPS session changes in a radio record.
#include <sstream>

#include "tests/unit/bringup_radio.h"

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
    platform.nvram = {{"lan2_ifname", "old"},  {"lan9_hwaddr", "old"},   {"lan3_wps_reg", "old"},
                      {"lan3_wps_oob", "old"}, {"lan10_ifname", "kept"}, {"eth0_hwaddr", "x"},
                      {"lan_wps_reg", ""}};
    addGroup("br0", {"eth0", "", "wl0", "wl0.1"});
    addGroup("br1", {"usb0", "wl1", "eth=1"});
    EXPECT_EQ(0, update());
    EXPECT_EQ(Lines{"invalid interface name \"eth=1\".\n"}, Lines({platform.logged(4)[0]}));
    EXPECT_EQ(Lines({"unset lan2_ifname",
                     "unset lan3_wps_reg",
                     "unset lan3_wps_oob",
                     "unset lan9_hwaddr",
                     "set lan_ifname=br0",
                     "set lan_ifnames=eth0 wl0 wl0.1",
                     "set lan_hwaddr=00:10:18:00:00:01",
                     "set eth0_ifname=eth0",
                     "unset eth0_hwaddr",
                     "set lan1_ifname=br1",
                     "set lan1_ifnames=usb0 wl1 eth=1",
                     "set lan1_hwaddr=00:10:18:00:00:01",
                     "set usb0_ifname=usb0",
                     "unset usb0_hwaddr",
                     "set lan_wps_reg=enabled",
                     "set lan_wps_oob=disabled",
                     "set lan1_wps_reg=enabled",
                     "set lan1_wps_oob=disabled",
                     "run killall eapd",
                     "run /bin/eapd"}),
              platform.journal);
}

TEST_F(BringUpLan, RegistrarVariables) {
    const struct {
        std::map<std::string, std::string> nvram;
        const char *oob[3];
        bool monitor;
    } rows[] = {
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
    const std::string half(63, 'a');
    addGroup("br0", {half, half, half, std::string(63, 'c')});
    addGroup("br1", {half, half, half, std::string(64, 'd'), "e"});
    EXPECT_EQ(0, update());
    const std::string three = half + " " + half + " " + half;
    EXPECT_EQ(three + " " + std::string(63, 'c'), platform.nvram["lan_ifnames"]);
    EXPECT_EQ(three, platform.nvram["lan1_ifnames"]);
    EXPECT_EQ("Error, not enough space to insert data....\n", platform.logged(64)[1]);
}

TEST_F(BringUpLan, NothingToBuild) {
    WlLanCfg lan = {0, nullptr};
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

class BringUpSession : public BringUpTest {
  protected:
    BringUpSession() {
        useEntries(1);
        bss[0].wpsEnable = caps.wpsCapable = 1;
    }
    // Settings of entry 0 in one text: SSID|authentication|encryption|passphrase.
    void setSettings(const std::string &text) {
        std::istringstream words(text + "|");
        std::string word[4];
        for (std::string &each : word)
            std::getline(words, each, '|');
        setField(bss[0].ssidName, word[0]);
        setField(bss[0].authMode, word[1]);
        setField(bss[0].encryption, word[2]);
        setField(bss[0].wpaPsk, word[3]);
    }
    std::string settings() const {
        return std::string(bss[0].ssidName) + "|" + bss[0].authMode + "|" + bss[0].encryption + "|" + bss[0].wpaPsk;
    }
};

TEST_F(BringUpSession, TakesOver) {
    const struct {
        std::string before, after, error;
        std::map<std::string, std::string> nvram;
    } rows[] = {
        {"Old|open|none|",
         "New|wpa2psk|aes|secret12",
         "",
         {{"ssid", "New"}, {"akm", "psk2 "}, {"crypto", "aes"}, {"wpa_psk", "secret12"}}},
        {"Old|wpa2psk|aes|k", "Old|wpapskmix|tkipaes|k", "", {{"akm", "psk psk2 "}, {"crypto", "tkip+aes"}}},
        // As this module's own bring-up stores them.
        {"Old|wpa2psk|aes|k", "Old|wpa2psk|aes|k", "", {{"akm", "psk2"}, {"crypto", "aes"}}},
        {"Old|wpapskmix|aes|k", "Old|wpapskmix|aes|k", "", {{"akm", "psk psk2"}}},
        {"Old|wpa2psk|aes|k", "Old|open|none|k", "", {{"akm", ""}}},
        {"Old|open|wep|k", "Old|open|wep|k", "", {{"akm", ""}}},
        {"Old|wpa2|aes|k", "Old|wpa2|aes|k", "", {{"akm", "wpa2"}}},
        // Unknown key management: the rest still counts.
        {"Old|wpa2psk|aes|k",
         "New|wpa2psk|tkipaes|l",
         "wpa3",
         {{"akm", "wpa3"}, {"ssid", "New"}, {"crypto", "tkip+aes"}, {"wpa_psk", "l"}}},
        {"Old|open|none|", "Old|open|none|", "psk2", {{"akm", "psk2"}}},
        // Cipher and passphrase are not for an open network; an unknown cipher and empty values change nothing.
        {"Old|open|none|k", "Old|open|none|k", "", {{"crypto", "aes"}, {"wpa_psk", "l"}}},
        {"Old|wpa2|aes|k", "Old|wpa2|aes|k", "", {{"crypto", "tkip"}, {"ssid", ""}, {"wpa_psk", ""}}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.before + " to " + row.after);
        platform.nvram.clear();
        for (const auto &[key, value] : row.nvram)
            platform.nvram["wl0_" + key] = value;
        platform.forget();
        setSettings(row.before);
        bss[0].wpsConfigured = 0;
        const int change = row.before != row.after ? 1 : 0;
        uint8_t changed = 9;
        EXPECT_EQ(0, qvbrcm_WPSUpdateConfg(intf, &changed));
        EXPECT_EQ(change, changed);
        EXPECT_EQ(change, bss[0].wpsConfigured);
        EXPECT_EQ(row.after, settings());
        EXPECT_EQ(!row.error.empty(), wasLogged(4, "Not support authMode : " + row.error + ".\n"));
        EXPECT_EQ(!row.error.empty(), wasLogged(4, "Not support"));
        EXPECT_EQ(change != 0, ran("/bin/wlconf wl0 down")) << "only a change reloads the radio";
        EXPECT_TRUE(ran("/bin/wps_monitor&"));
    }
}
