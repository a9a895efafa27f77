// The single steps of a bring-up: addresses, defaults, driver threads, preset SSIDs, addresses at run time.
#include <set>

#include "tests/unit/bringup_radio.h"

using BringUpDefaults = BringUpTest;

TEST_F(BringUpDefaults, AddressesOfOneRadio) {
    const struct {
        uint8_t last;
        int count;
        Lines texts;
    } rows[] = {
        {0xCE,
         6,
         {"00:10:18:AA:BB:CE", "72:10:18:AA:BB:CF", "72:10:18:AA:BB:C8", "72:10:18:AA:BB:C9", "72:10:18:AA:BB:CA",
          "72:10:18:AA:BB:CB"}},
        {0xFF, 2, {"00:10:18:AA:BB:FF", "62:10:18:AA:BB:FC"}},
        {0x01, 5, {"00:10:18:AA:BB:01", "6A:10:18:AA:BB:02"}},
    };
    for (const auto &row : rows) {
        const uint8_t base[6] = {0x00, 0x10, 0x18, 0xAA, 0xBB, row.last};
        memcpy(radio.baseMac, base, sizeof base);
        useEntries(row.count);
        EXPECT_EQ(0, qvWlanNvramInit(&radio, bss));
        for (size_t i = 0; i < row.texts.size(); ++i) {
            EXPECT_EQ(row.texts[i], bss[i].macText) << i;
            EXPECT_EQ(row.texts[i], platform.nvram[std::string(bss[i].ifName) + "_hwaddr"]);
        }
    }
}

TEST_F(BringUpDefaults, VifsWidthAndWep) {
    platform.nvram["wl0_vifs"] = "wl0.9";
    useEntries(1);
    const struct {
        uint8_t bandwidth;
        const char *capability;
    } rows[] = {{80, "7"}, {40, "3"}, {20, "1"}, {41, "1"}, {160, "1"}};
    for (const auto &row : rows) {
        radio.bandwidth = row.bandwidth;
        qvWlanNvramInit(&radio, bss);
        EXPECT_EQ(row.capability, platform.nvram["wl0_bw_cap"]);
    }
    EXPECT_EQ(0U, platform.nvram.count("wl0_vifs"));

    useEntries(3);
    setField(bss[1].encryption, "wep");
    setField(bss[2].ifName, "");
    platform.forget();
    qvWlanNvramInit(&radio, bss);
    EXPECT_EQ(Lines{"set wl_wep=disabled"}, platform.did("set wl_wep"));
    EXPECT_EQ("enabled", platform.nvram["wl0.1_wep"]);
    EXPECT_EQ("wl0.1", platform.nvram["wl0_vifs"]);
    EXPECT_EQ(Lines{}, platform.did("set _"));

    useEntries(6); // what is no name is neither listed nor part of a key
    setField(bss[1].ifName, "http_passwd=x");
    setField(bss[2].ifName, "wl0.2 wl0.7");
    platform.forget();
    qvWlanNvramInit(&radio, bss);
    EXPECT_EQ("wl0.3 wl0.4 wl0.5", platform.nvram["wl0_vifs"]);
    EXPECT_EQ(Lines{}, platform.did("set http"));
    EXPECT_EQ(2U, platform.logged(WLBRCM_LOG_ERR).size());
}

using BringUpThreads = BringUpTest;

TEST_F(BringUpThreads, Placement) {
    const struct {
        int radios;
        const char *ifname;
        std::map<int, std::string> processes;
        Lines placed, errors;
    } rows[] = {
        {1, "wl1", {{5, "dhd1_dpc"}, {6, "wfd1-thrd"}}, {"affinity 5 1", "affinity 6 1"}, {}},
        {2, "wl1", {{5, "dhd1_dpc"}, {6, "wfd1-thrd"}}, {"affinity 5 2", "affinity 6 2"}, {}},
        {2, "wl0.1", {{5, "dhd0_dpc"}, {6, "wfd0-thrd"}}, {"affinity 5 1", "affinity 6 1"}, {}},
        {2, "wl1", {{4, "wl1-kthrd"}, {5, "dhd1_dpc"}, {6, "wfd1-thrd"}}, {"affinity 5 2", "affinity 6 2"}, {}},
        {2, "wl1", {{4, "wl1-kthrd"}, {5, "dhd0_dpc"}}, {"affinity 4 2"}, {"Cannot find process wfd1-thrd pid.\n"}},
        {2, "wl1", {{6, "wfd1-thrd"}, {7, "dhd1_dpcx"}}, {}, {"Cannot find process wl1 pid.\n"}},
        {2, "", {{5, "dhd0_dpc"}}, {}, {"parse interface name fail ().\n"}},
    };
    for (const auto &row : rows) {
        act_wl_cnt = row.radios;
        setField(bss[0].ifName, row.ifname);
        platform.processes = row.processes;
        platform.forget();
        EXPECT_EQ(0, qvWlanReset(&radio, bss, &caps));
        EXPECT_EQ(row.placed, platform.did("affinity")) << row.ifname;
        EXPECT_EQ(row.errors, platform.logged(4)) << row.ifname;
        EXPECT_TRUE(ran("/bin/wlconf wl0 down"));
    }
}

TEST_F(BringUpThreads, ProcessLookup) {
    platform.processes = {{7, "nas"}, {8, "eapd"}, {9, "nas"}, {10, "two words"}, {11, "paren)"}, {12, "gone"}};
    platform.failing["open /proc/7/stat"] = 1;
    int pid = 0;
    EXPECT_EQ("could not open /proc/7/stat\n", printed([&] { pid = prctl_getPidByName("nas"); }));
    EXPECT_EQ(9, pid);
    platform.failing.clear();
    EXPECT_EQ(7, prctl_getPidByName("nas"));
    EXPECT_EQ(10, prctl_getPidByName("two")); // a name ends at its first blank
    EXPECT_EQ(11, prctl_getPidByName("paren)"));
    for (const char *none : {"na", "nas)", "", "self"})
        EXPECT_EQ(-1, prctl_getPidByName(none)) << none;
    platform.failing["opendir"] = 1;
    EXPECT_EQ("prctl_getPidByName : could not open /proc\n", printed([&] { pid = prctl_getPidByName("eapd"); }));
    EXPECT_EQ(-1, pid);
}

TEST_F(BringUpThreads, Priority) {
    const struct {
        std::map<int, std::string> processes;
        const char *cpu; // what the driver says, null for nothing
        Lines raised;
    } rows[] = {
        {{{5, "wl0-kthrd"}, {6, "wl0-tmr-kthrd"}, {7, "events/0"}}, "0", {"priority 5 2 5", "priority 6 2 5"}},
        {{{6, "wl0-tmr-kthrd"}, {7, "events/0"}, {8, "events/1"}}, "0\n", {"priority 7 2 5", "priority 6 2 5"}},
        {{{7, "events/0"}, {8, "events/1"}}, "1\n", {"priority 8 2 5"}},
        {{{7, "events/0"}, {8, "events/1"}}, "2\n", {}},
        {{{7, "events/0"}}, "", {"priority 7 2 5"}},
        {{{7, "events/0"}}, nullptr, {}},
        {{}, "0", {}},
    };
    for (const auto &row : rows) {
        platform.processes = row.processes;
        platform.answer("wlctl -i wl0 tp_id", row.cpu != nullptr ? row.cpu : "");
        if (row.cpu == nullptr)
            platform.loseOutput("wlctl -i wl0 tp_id");
        platform.forget();
        EXPECT_EQ(0, qvWlanSetPriority("wl0"));
        EXPECT_EQ(row.raised, platform.did("priority"));
    }
    platform.answer("wlctl -i wl0 tp_id", std::string(70, '1'));
    EXPECT_EQ(-1, get_event_pid("wl0"));
    EXPECT_EQ("run wlctl -i wl0 tp_id > /tmp/wlctl_tp_id", platform.journal.back());
    EXPECT_TRUE(wasLogged(64, "read of output: rc=63 cpu=2147483647 buf=" + std::string(63, '1') + "\n"));
    EXPECT_TRUE(wasLogged(64, "returning pid -1\n"));
    platform.forget();
    for (const char *name : {"eth0", "wl0;reboot", ""})
        EXPECT_EQ(-1, get_event_pid(name));
    EXPECT_EQ(Lines{}, platform.journal);
}

using BringUpPreset = BringUpTest;

TEST_F(BringUpPreset, VifsList) {
    const std::string most(57, 'x'), over(58, 'x'); // with the new name 63 characters, the most, and 64
    const struct {
        std::string before;
        int enable;
        const char *ifname;
        std::string after;
    } rows[] = {
        {"wl0.1", 1, "wl0.2", "wl0.1 wl0.2"},
        {"wl0.1 wl0.2", 1, "wl0.2", "wl0.1 wl0.2"},
        {"wl0.10", 1, "wl0.1", "wl0.10 wl0.1"},
        {"wl0.1 wl0.2 wl0.3", 0, "wl0.2", "wl0.1 wl0.3"},
        {"wl0.1 wl0.2", 0, "wl0.1", "wl0.2"},
        {"wl0.10 wl0.1", 0, "wl0.1", "wl0.10"},
        {"wl0.2", 0, "wl0.2", ""},
        {"", 0, "wl0.2", ""},
        {most, 1, "wl0.2", most + " wl0.2"},
        {over, 1, "wl0.2", over},
        {over + "x5678 wl0.2", 0, "wl0.2", over + "x5678"},
    };
    for (const auto &row : rows) {
        platform.nvram.clear();
        if (!row.before.empty())
            platform.nvram["wl0_vifs"] = row.before;
        EXPECT_EQ(0, qvbrcm_SetVifsForPresetIntf(row.enable, row.ifname));
        EXPECT_EQ(row.after.empty() ? 0U : 1U, platform.nvram.count("wl0_vifs"));
        EXPECT_EQ(row.after, platform.nvram["wl0_vifs"]) << row.before;
    }
    EXPECT_TRUE(wasLogged(64, "enable 0, ifname wl0.2\n"));
    EXPECT_TRUE(wasLogged(64, "set wl0_vifs in nvram to wl0.2\n"));
    platform.forget();
    for (const char *bad : {"", "wl0.1 wl0.2", "wl0.2;x", "wl0.1234567890123"})
        EXPECT_EQ(-14, qvbrcm_SetVifsForPresetIntf(1, bad));
    EXPECT_EQ(Lines{}, platform.journal);
}

TEST_F(BringUpPreset, OnDemand) {
    EXPECT_EQ(0, qvbrcm_EnablePresetSSID("wl0.2", 7));
    EXPECT_EQ(0, qvbrcm_EnablePresetSSID("wl0.2", 0));
    EXPECT_EQ(Lines({"run ifconfig wl0.2 up", "set wl0_vifs= wl0.2", "run wl -i wl0.2 bss up",
                     "run ifconfig wl0.2 down", "unset wl0_vifs", "run wl -i wl0.2 bss down"}),
              platform.journal);
    EXPECT_EQ(Lines({"Enable wl0.2 interface.\n", "Disable wl0.2 interface.\n"}), platform.logged(8));
    EXPECT_FALSE(wasLogged(64, "cmd = ")) << "the shell is used directly";
    platform.forget();
    EXPECT_EQ(-14, qvbrcm_EnablePresetSSID("wl0.2;x", 1));
    EXPECT_EQ(Lines{}, platform.journal);
}

TEST_F(BringUpPreset, OnlyTheFirstOfA5GHzRadioIsForced) {
    useEntries(3);
    for (int i = 1; i < 4; ++i) {
        bss[i].presetRole = WLBRCM_PRESET_ON_DEMAND;
        bss[i].enable = 0;
    }
    radio.band = WLBRCM_BAND_2G;
    qvbrcm_ForceConfigurePresetSSID(&radio, bss);
    EXPECT_EQ(0, bss[1].enable);
    radio.band = WLBRCM_BAND_5G;
    qvbrcm_ForceConfigurePresetSSID(&radio, bss);
    EXPECT_EQ(1, bss[1].enable);
    EXPECT_EQ(0, bss[2].enable);
    radio.bssCount = 1;
    bss[1].enable = 0;
    qvbrcm_ForceConfigurePresetSSID(&radio, bss);
    EXPECT_EQ(0, bss[1].enable) << "beyond the entries in use";
}

using BringUpServices = BringUpTest;

TEST_F(BringUpServices, ChannelDaemonServesTheRadiosThatAreOn) {
    const std::string full(252, 'x');
    const struct {
        const char *before;
        uint8_t on;
        std::string after;
    } rows[] = {
        {nullptr, 1, "wl0"},
        {nullptr, 0, ""},
        {"wl0", 0, ""},
        {" wl0  wl1 wl0", 1, "wl1 wl0"},
        {"wl01 wl0.1", 0, "wl01 wl0.1"},
        {full.c_str() + 1, 1, full.substr(1) + " wl0"},
        {full.c_str(), 1, full},
    };
    for (const auto &row : rows) {
        platform.nvram.clear();
        platform.forget();
        if (row.before != nullptr)
            platform.nvram["acs_ifnames"] = row.before;
        radio.radioOn = row.on;
        qvWlanStartAcsd(&radio, bss);
        EXPECT_EQ(row.after, platform.nvram["acs_ifnames"]);
        EXPECT_EQ("run /bin/acsd", platform.journal.back());
    }
    setField(radio.ifName, "");
    platform.forget();
    qvWlanStartAcsd(&radio, bss);
    EXPECT_EQ(Lines({"set acs_2g_ch_no_restrict=1", "set acs_ctrl_chan_adjust=0", "run /bin/acsd"}), platform.journal);
}

TEST_F(BringUpServices, AddressAtRunTime) {
    const uint8_t mac[6] = {0x00, 0x0A, 0xFF, 0x10, 0x01, 0xB2};
    setField(intf->intfName, "wl0");
    EXPECT_EQ(0, qvbrcm_SetWlanMacAddr(intf, mac));
    EXPECT_EQ(0, qvbrcm_SetWlanMacAddr(intf, mac));
    EXPECT_EQ(Lines{"run ifconfig wl0 hw ether 00:0a:ff:10:01:b2"}, platform.journal);
    EXPECT_TRUE(wasLogged(64, "change wl0 MAC address, macaddr = 00:0a:ff:10:01:b2\n"));
    EXPECT_EQ(0, memcmp(mac, intf->macAddr, sizeof mac));
    setField(intf->intfName, "wl0;x");
    intf->macAddr[0] = 0x02;
    EXPECT_EQ(-5, qvbrcm_SetWlanMacAddr(intf, mac));
    EXPECT_EQ(0x02, intf->macAddr[0]);
    EXPECT_EQ(1U, platform.journal.size());

    useEntries(2);
    setField(bss[0].macText, "00:10:18:AA:BB:CE");
    setField(bss[1].macText, "00:10:18:AA:BB:`x");
    platform.forget();
    EXPECT_EQ(0, qvWlanSetIfaceMAC(&radio, bss));
    EXPECT_EQ(2U, platform.journal.size());
    EXPECT_TRUE(wasLogged(4, "00:10:18:AA:BB:`x"));
}
