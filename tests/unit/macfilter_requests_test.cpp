// The pool, address texts, the host's two operations and the driver's setters.
#include "tests/unit/macfilter_fixture.h"

#include <memory>

class MacFilterRequests : public MacFilterTest {
  protected:
    static std::vector<Mac> addresses(const MacFilterEntry *list) {
        std::vector<Mac> found;
        for (; list != nullptr; list = list->next)
            found.push_back({list->mac[0], list->mac[1], list->mac[2], list->mac[3], list->mac[4], list->mac[5]});
        return found;
    }
};

TEST_F(MacFilterRequests, ThePoolHas512Entries) {
    EXPECT_EQ(512, _mac_free_cnt);
    MacFilterEntry *list = nullptr;
    for (int i = 0; i < 512; ++i) {
        MacFilterEntry *entry = qvbrcm_MacFilter_get_free_mac();
        ASSERT_NE(nullptr, entry) << i;
        ASSERT_TRUE(entry->prev == nullptr && entry->next == nullptr);
        wlbrcm::pushFront(&list, entry);
    }
    platform.forget();
    EXPECT_EQ(nullptr, qvbrcm_MacFilter_get_free_mac());
    EXPECT_EQ((Lines{"insufficient mac\n"}), platform.logged(4));
    EXPECT_EQ((Lines{"_mac_free_cnt = 0\n"}), platform.logged(64));

    MacFilterEntry *more = nullptr;
    EXPECT_EQ(0, qvbrcm_MacFilter_parse_str_to_mac_list("0:1:2:3:4:5", &more));
    EXPECT_EQ("insufficient free MAC\n", platform.logged(4).back());
    EXPECT_EQ(2, qvbrcm_BsaMacFilter("wl0", 1, macOf(1).data()));
    EXPECT_EQ("fail to get free MAC\n", platform.logged(4).back());
    EXPECT_EQ(0, qvbrcm_BsaMacFilter("wl0", 0, nullptr)); // needs none

    MacFilterEntry *head = list;
    qvbrcm_MacFilter_release_list(&list);
    EXPECT_EQ(nullptr, list);
    EXPECT_EQ(512, _mac_free_cnt);
    EXPECT_NE(head, qvbrcm_MacFilter_get_free_mac()) << "last in, first out";
}

TEST_F(MacFilterRequests, InitHappensOnceAndNeedsItsLock) {
    ASSERT_NE(nullptr, qvbrcm_MacFilter_get_free_mac());
    EXPECT_EQ(1, qvbrcm_MacFilter_init());
    EXPECT_EQ(511, _mac_free_cnt);
    platform.failing["mutex"];
    EXPECT_EQ(0, restart());
    EXPECT_EQ((Lines{"fail to init mutex\n"}), platform.logged(4));
    platform.failing.clear();
    EXPECT_EQ(1, restart());
    EXPECT_EQ(512, _mac_free_cnt);
}

TEST_F(MacFilterRequests, AddressTexts) {
    const struct {
        const char *text;
        bool good;
        Mac mac;
    } rows[] = {
        {"00:11:22:33:44:55", true, {0, 0x11, 0x22, 0x33, 0x44, 0x55}},
        {"a:B:0c:ff:FF:0", true, {0xA, 0xB, 0xC, 0xFF, 0xFF, 0}},
        {"00:11:22:33:44:55;reboot", true, {0, 0x11, 0x22, 0x33, 0x44, 0x55}}, // the rest is ignored
        {"0001: 2:+3:0x4:5:6:7", true, {1, 2, 3, 4, 5, 6}},
        {"00:11:22:33:44", false, {}},
        {"00:11:22:33:44:100", false, {}},
        {"100000001:1:1:1:1:1", false, {}},
        {"10000000000000001:1:1:1:1:1", false, {}},
        {"-1:11:22:33:44:55", false, {}},
        {"00:11:22:33:44:-0", false, {}},
        {"00-11-22-33-44-55", false, {}},
        {"00 :11:22:33:44:55", false, {}},
        {"", false, {}},
    };
    for (const auto &row : rows) {
        platform.forget();
        MacFilterEntry *list = nullptr;
        EXPECT_EQ(row.good ? 1 : 0, qvbrcm_MacFilter_parse_str_to_mac_list(row.text, &list)) << row.text;
        EXPECT_EQ(row.good ? std::vector<Mac>{row.mac} : std::vector<Mac>{}, addresses(list)) << row.text;
        const Lines errors = {std::string("invalid MAC string = ") + row.text + "\n"};
        EXPECT_EQ(row.good ? Lines{} : errors, platform.logged(4));
        qvbrcm_MacFilter_release_list(&list);
    }
    EXPECT_EQ(512, _mac_free_cnt);
}

TEST_F(MacFilterRequests, ListTexts) {
    const Mac first = {0, 0x11, 0x22, 0x33, 0x44, 0x55}, second = {0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB};
    const std::string longest = "0000000000000000000:11:22:33:44:55"; // cut to 32 and 33 characters below
    const struct {
        std::string text;
        std::vector<Mac> expected;
        Lines errors;
    } rows[] = {
        {"00:11:22:33:44:55  66:77:88:99:AA:BB ", {second, first}, {}},
        {" 00:11:22:33:44:55", {first}, {}},
        {"", {}, {}},
        {longest.substr(2), {first}, {}},
        {"66:77:88:99:AA:BB " + longest.substr(1), {}, {"invalid si = 32\n"}},
        {"00:11:22:33:44:55 zz", {}, {"invalid MAC string = zz\n", "fail to parse and insert MAC list\n"}},
    };
    for (const auto &row : rows) {
        platform.forget();
        MacFilterEntry *list = qvbrcm_MacFilter_mac_list_by_str(row.text.c_str());
        EXPECT_EQ(row.expected, addresses(list)) << row.text;
        EXPECT_EQ(row.errors, platform.logged(4)) << row.text;
        qvbrcm_MacFilter_release_list(&list);
        EXPECT_EQ(512, _mac_free_cnt) << row.text;
    }
    EXPECT_EQ(nullptr, qvbrcm_MacFilter_mac_list_by_str(nullptr));
}

TEST_F(MacFilterRequests, NullArgumentsAndModeTexts) {
    MacFilterRequest made = {};
    MacFilterEntry *list = nullptr;
    EXPECT_EQ(0, qvbrcm_MacFilter_add_mac_to_request(nullptr, nullptr));
    EXPECT_EQ(0, qvbrcm_MacFilter_add_mac_to_request(&made, nullptr));
    EXPECT_EQ(0, qvbrcm_MacFilter_parse_str_to_mac_list(nullptr, &list));
    EXPECT_EQ(0, qvbrcm_MacFilter_parse_str_to_mac_list("0:0:0:0:0:0", nullptr));
    EXPECT_EQ(nullptr, qvbrcm_MacFilter_get_mac(nullptr));
    qvbrcm_MacFilter_release_list(nullptr);
    _release_mac(nullptr);
    EXPECT_EQ(3, qvbrcm_MacFilter_get_cmd(nullptr));
    EXPECT_EQ((Lines{"request == NULL\n", "mac == NULL\n", "str == NULL\n", "mac_list == NULL\n", "mac_addr == NULL\n",
                     "mac == NULL\n", "method == NULL\n"}),
              platform.logged(4));
    EXPECT_EQ(1, qvbrcm_MacFilter_get_cmd("DENY"));
    EXPECT_EQ(2, qvbrcm_MacFilter_get_cmd("ALLOW"));
    for (const char *other : {"deny", "DENY ", "DISABLE", "ALLOWED", ""})
        EXPECT_EQ(0, qvbrcm_MacFilter_get_cmd(other)) << other;
}

TEST_F(MacFilterRequests, StationFilterAppliesEveryMatchingEntry) {
    auto intf = std::make_unique<WlIntf>();
    intf->radio.bssCount = 200; // more than there are
    const struct {
        const char *path, *ifname, *mode, *list;
    } rows[] = {{"Device.SSID.1", "wl0", "DENY", "AA:BB:CC:DD:00:01 AA:BB:CC:DD:00:02"},
                {"Device.SSID.2", "wl0.1", "DENY", "AA:BB:CC:DD:00:03"},
                {"Device.SSID.1", "wl0.2", "ALLOW", "nonsense"},
                {"Device.SSID.1", "wl0;id", "DENY", ""},
                {"Device.SSID.1", "wl0.3", "off", "AA:BB:CC:DD:00:04"}};
    for (size_t i = 0; i < std::size(rows); ++i) {
        strcpy(intf->bss[i].objPath, rows[i].path);
        strcpy(intf->bss[i].ifName, rows[i].ifname);
        strcpy(intf->bss[i].macFilterMode, rows[i].mode);
        strcpy(intf->bss[i].macFilterList, rows[i].list);
    }
    EXPECT_EQ(0, qvbrcm_StationFilter(intf.get(), "Device.SSID"));
    EXPECT_EQ(Lines{}, platform.journal);
    EXPECT_EQ((Lines{"objPath = Device.SSID\n"}), platform.logged(64));

    EXPECT_EQ(0, qvbrcm_StationFilter(intf.get(), "Device.SSID.1"));
    Lines expected = change("wl0", 1, macText(2) + " " + macText(1));
    for (const Lines &more : {change("wl0.2", 0), change("wl0.3", 0)})
        expected.insert(expected.end(), more.begin(), more.end());
    EXPECT_EQ(expected, platform.journal);
    EXPECT_EQ("fail to set to driver\n", platform.logged(4).back());
    EXPECT_EQ(510, _mac_free_cnt);
}

TEST_F(MacFilterRequests, BsaFilterResults) {
    const Mac mac = macOf(0x1234);
    EXPECT_EQ(0, qvbrcm_BsaMacFilter("wl0", 1, mac.data()));
    EXPECT_EQ(change("wl0", 1, "AA:BB:CC:DD:12:34"), platform.journal);
    EXPECT_EQ("ifname = wl0, cmd = 1, mac = AA:BB:CC:DD:12:34\n", platform.logs[0].text);
    platform.forget();
    for (const int bad : {-1, 3})
        EXPECT_EQ(-17, qvbrcm_BsaMacFilter("wl0", bad, mac.data()));
    EXPECT_EQ(2, qvbrcm_BsaMacFilter("wl0", 2, nullptr));
    EXPECT_EQ(WLBRCM_EFAILED, qvbrcm_BsaMacFilter("wl0|id", 1, mac.data()));
    EXPECT_EQ(WLBRCM_EFAILED, qvbrcm_BsaMacFilter(std::string(200, 'w').c_str(), 1, mac.data()));
    EXPECT_EQ(Lines{}, platform.journal);
    EXPECT_EQ(511, _mac_free_cnt);

    platform.forget();
    EXPECT_EQ(0, qvbrcm_BsaMacFilter("wl0", 0, nullptr));
    EXPECT_EQ("ifname = wl0, cmd = 0, mac = 00:00:00:00:00:00\n", platform.logs[0].text);
    EXPECT_EQ(change("wl0", 0), platform.journal);
    EXPECT_EQ(0U, platform.nvram.count("wl0_maclist"));
    EXPECT_EQ(512, _mac_free_cnt);
}

TEST_F(MacFilterRequests, DriverFilterIsRefusedAsAWhole) {
    const std::string a = macText(1);
    EXPECT_EQ(0, qvWifiStaFilter("wl0", "DENY", (a + " ").c_str()));
    EXPECT_EQ(change("wl0", 1, a), platform.journal);
    platform.forget();
    EXPECT_EQ(0, qvWifiStaFilter("wl0", "deny", "; reboot")); // no filter, so no list
    EXPECT_EQ(change("wl0", 0), platform.journal);

    platform.forget();
    std::string tooLong;
    while (tooLong.size() < 1536)
        tooLong += a + " ";
    for (const std::string &list : {a + ";", a + "\n" + a, std::string("`id`"), a + " $(id)", tooLong})
        EXPECT_EQ(WLBRCM_EINVAL, qvWifiStaFilter("wl0", "ALLOW", list.c_str())) << list;
    EXPECT_EQ(5U, platform.logged(4).size());
    EXPECT_EQ(WLBRCM_EINVAL, qvWifiStaFilter("wl0 ", "DENY", a.c_str()));
    EXPECT_EQ(Lines{}, platform.journal);
}

TEST_F(MacFilterRequests, DriverSettersCheckTheirArgument) {
    int mode = 1;
    for (const auto setter :
         {qvWlanSetMacAuthMode, qvWlanSetMacAuthList, qvWlanClearMacAuthList, qvWlanGetMacAuthList}) {
        Arg arg("wl0$(id)");
        if (setter == qvWlanSetMacAuthMode)
            arg.record.value = reinterpret_cast<char *>(&mode);
        EXPECT_EQ(WLBRCM_EINVAL, setter(arg));
        arg.record.prefix = nullptr;
        EXPECT_EQ(WLBRCM_EINVAL, setter(arg));
        EXPECT_EQ(WLBRCM_EINVAL, setter(nullptr));
    }
    EXPECT_EQ(4U, platform.logged(4).size());
    for (int bad : {-1, 3}) {
        Arg arg("wl0");
        arg.record.value = reinterpret_cast<char *>(&bad);
        EXPECT_EQ(WLBRCM_EINVAL, qvWlanSetMacAuthMode(arg));
        arg.record.value = nullptr;
        EXPECT_EQ(WLBRCM_EINVAL, qvWlanSetMacAuthMode(arg));
        EXPECT_EQ(WLBRCM_EINVAL, qvWlanSetMacAuthList(arg));
    }
    std::string longest;
    while (longest.size() < 1500)
        longest += macText(1) + " ";
    longest.resize(1535, ' ');
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanSetMacAuthList(Arg("wl0", longest + " ")));
    EXPECT_EQ(Lines{}, platform.journal);
    EXPECT_EQ(0, qvWlanSetMacAuthList(Arg("wl0", longest)));
    Arg deny("wl0");
    deny.record.value = reinterpret_cast<char *>(&mode);
    EXPECT_EQ(0, qvWlanSetMacAuthMode(deny));
    platform.forget();

    platform.answer("wlctl -i wl0 mac >", "mac AA:BB:CC:DD:00:01\n" + std::string(500, 'x'));
    EXPECT_EQ(0, qvWlanGetMacAuthList(Arg("wl0")));
    EXPECT_EQ(Lines{"run wlctl -i wl0 mac > /tmp/wl0_mac_filter_list"}, platform.journal);
}
