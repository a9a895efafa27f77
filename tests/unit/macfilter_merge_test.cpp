// What the driver gets when the user's filter and the run-time deny list meet.
#include "tests/unit/macfilter_fixture.h"

#include <atomic>
#include <thread>

class MacFilterMerge : public MacFilterTest {};

TEST_F(MacFilterMerge, CommandsOfEachMerge) {
    const std::string a = macText(1), b = macText(2), c = macText(3);
    const struct {
        bool user;
        uint32_t cmd;
        std::vector<int> addresses;
        Lines expected;
    } rows[] = {
        // A request's list is in reverse order of its additions.
        {true, 1, {2, 1}, change("wl0", 1, a + " " + b)},
        {false, 1, {2}, change("wl0", 1, a + " " + b)},
        {false, 1, {3}, change("wl0", 1, a + " " + b + " " + c)},
        {false, 1, {3, 3}, change("wl0", 1, a + " " + b + " " + c)},
        {false, 2, {3}, change("wl0", 1, a + " " + b)},
        {true, 2, {2, 1}, change("wl0", 2, a)},
        {false, 1, {1}, change("wl0", 0)},
        {true, 0, {1}, change("wl0", 1, a + " " + b)},
        {true, 1, {}, change("wl0", 1, a + " " + b)},
        {false, 0, {2}, change("wl0", 0)},
    };
    platform.answer("wlctl", "", 1); // nothing is undone for a command that fails
    for (const auto &row : rows) {
        platform.forget();
        EXPECT_EQ(1, set("wl0", row.user, row.cmd, row.addresses));
        EXPECT_EQ(row.expected, platform.journal) << &row - rows;
    }
    EXPECT_EQ(512, _mac_free_cnt);

    platform.forget();
    set("wl0", true, 1, {1});
    const char *functions[] = {"_get_free_mac", "qvbrcm_MacFilter_set", "qvbrcm_MacFilter_set", "qvWlanSetMacAuthMode"};
    const char *texts[] = {"_mac_free_cnt = 511\n", "intf_name = wl0, b_user_config = 1, cmd = 1\n",
                           "mac = AA:BB:CC:DD:00:01\n", "cmd = wlctl -i wl0 macmode 1\n"};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(functions[i], platform.logs[i].function);
        EXPECT_EQ(texts[i], platform.logs[i].text);
    }
}

TEST_F(MacFilterMerge, EightyFiveAddressesReachTheDriver) {
    std::vector<int> addresses;
    std::string list;
    for (int i = 0; i < 85; ++i) {
        addresses.insert(addresses.begin(), i);
        list += (i > 0 ? " " : "") + macText(i);
    }
    EXPECT_EQ(1, set("wl0", true, 1, addresses));
    EXPECT_EQ(change("wl0", 1, list), platform.journal);

    platform.forget();
    addresses.push_back(85);
    EXPECT_EQ(0, set("wl0", true, 1, addresses));
    EXPECT_EQ(Lines{}, platform.journal);
    EXPECT_EQ((Lines{"insufficient length by mac_list_str\n", "fail to apply to driver\n"}), platform.logged(4));
    EXPECT_EQ(512 - 86, _mac_free_cnt); // the table keeps it for the next merge

    platform.forget();
    EXPECT_EQ(1, set("wl0", true, 2, {7}));
    EXPECT_EQ(change("wl0", 2, macText(7)), platform.journal);
    EXPECT_EQ(512 - 1, _mac_free_cnt);
}

TEST_F(MacFilterMerge, RefusedRequests) {
    const struct {
        const char *ifname;
        uint32_t cmd;
        bool ready, takesList;
        Lines errors;
    } rows[] = {
        {"wl0", 3, true, false, {"invalid request->data.cmd = 3\n"}},
        {"wl0", 1, false, false, {"not initialized yet\n"}},
        {"wl1", 1, true, true, {"insufficient interface\n"}}, // the 17th
        {"", 1, true, true, {"invalid interface name \"\".\n"}},
        {"wl0; reboot", 1, true, true, {"invalid interface name \"wl0; reboot\".\n"}},
        {"1234567890123456", 0, true, true, {"invalid interface name \"1234567890123456\".\n"}},
    };
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(1, set("wl0." + std::to_string(i), true, 1, {i}));
    for (const auto &row : rows) {
        platform.forget();
        MacFilterRequest made = request(row.ifname, true, row.cmd, {1, 2});
        _mac_filter_ready = row.ready ? 1 : 0;
        EXPECT_EQ(0, qvbrcm_MacFilter_set(&made));
        _mac_filter_ready = 1;
        Lines errors = row.errors;
        if (row.takesList) {
            errors.push_back("fail to get index of _intf_data\n");
            errors.push_back(std::string("invalid request on interface ") + row.ifname + "\n");
        }
        EXPECT_EQ(errors, platform.logged(4));
        EXPECT_EQ(row.takesList, made.mac_list == nullptr);
        EXPECT_EQ(Lines{}, platform.journal);
        qvbrcm_MacFilter_release_list(&made.mac_list);
        EXPECT_EQ(512 - 16, _mac_free_cnt);
    }
    EXPECT_EQ(1, set("wl0.15", true, 0)); // those that have a slot go on
    EXPECT_EQ(0, qvbrcm_MacFilter_set(nullptr));
    restart();
    MacFilterRequest unterminated = request("", false, 0);
    memset(unterminated.data.intf_name, 'w', sizeof unterminated.data.intf_name);
    EXPECT_EQ(0, qvbrcm_MacFilter_set(&unterminated));
    EXPECT_EQ(0, set("", true, 0));
    EXPECT_STREQ("", _intf_data[0].intf_name);
}

namespace {
std::atomic<int> inside{0}, overlaps{0};
// The internal steps log under the lock; the other thread gets every chance to be there as well.
void meet(int, const char *, const char *function, int, const char *, ...) {
    if (function[0] != '_')
        return;
    overlaps += ++inside > 1 ? 1 : 0;
    std::this_thread::yield();
    --inside;
}
} // namespace

TEST_F(MacFilterMerge, TwoThreadsNeverMeetInThePool) {
    brcm_print_fn = meet;
    const auto work = [](const char *ifname, int first) {
        for (int i = 0; i < 200; ++i) {
            set(ifname, false, 1, {first + i % 20, first + i % 7});
            set(ifname, false, 2, {first + i % 5});
            MacFilterEntry *list = qvbrcm_MacFilter_get_free_mac();
            qvbrcm_MacFilter_release_list(&list);
        }
        set(ifname, false, 0);
    };
    std::thread other(work, "wl1", 100);
    work("wl0", 0);
    other.join();
    EXPECT_EQ(0, overlaps);
    EXPECT_EQ(512, _mac_free_cnt);
}
