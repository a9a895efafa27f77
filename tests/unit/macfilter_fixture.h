// A fresh MAC filter pool and table, and requests as the host's threads make them.
#ifndef WLBRCM_TESTS_MACFILTER_FIXTURE_H
#define WLBRCM_TESTS_MACFILTER_FIXTURE_H

#include <array>
#include <cstring>

#include "macfilter/pool.h"
#include "tests/unit/fake_platform.h"

using Mac = std::array<uint8_t, 6>;

inline Mac macOf(int number) {
    return {0xAA, 0xBB, 0xCC, 0xDD, static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)};
}

inline std::string macText(int number) {
    char text[18];
    snprintf(text, sizeof text, "AA:BB:CC:DD:%02X:%02X", (number >> 8) & 0xFF, number & 0xFF);
    return text;
}

class MacFilterTest : public PlatformTest {
  protected:
    MacFilterTest() { restart(); }
    ~MacFilterTest() override { restart(); }

    static int restart() {
        _mac_filter_ready = 0;
        return qvbrcm_MacFilter_init();
    }

    static MacFilterRequest request(const std::string &ifname, bool user, uint32_t cmd,
                                    const std::vector<int> &addresses = {}) {
        MacFilterRequest made = {};
        strncpy(made.data.intf_name, ifname.c_str(), sizeof made.data.intf_name - 1);
        made.data.b_user_config = user ? 1 : 0;
        made.data.cmd = cmd;
        for (const int address : addresses)
            EXPECT_EQ(1, qvbrcm_MacFilter_add_mac_to_request(&made, qvbrcm_MacFilter_get_mac(macOf(address).data())));
        return made;
    }

    static int set(const std::string &ifname, bool user, uint32_t cmd, const std::vector<int> &addresses = {}) {
        MacFilterRequest made = request(ifname, user, cmd, addresses);
        const int done = qvbrcm_MacFilter_set(&made);
        EXPECT_EQ(nullptr, made.mac_list); // taken over or given back
        return done;
    }

    // The commands and writes of one filter change.
    static Lines change(const std::string &ifname, int mode, const std::string &list = "") {
        constexpr const char *kNames[] = {"disable", "deny", "allow"};
        const std::string wlctl = "run wlctl -i " + ifname + " ";
        Lines lines = {wlctl + "macmode " + std::to_string(mode), "set " + ifname + "_macmode=" + kNames[mode],
                       wlctl + "mac none", "unset " + ifname + "_maclist"};
        if (mode != 0) {
            lines.push_back(wlctl + "mac " + list + " ");
            lines.push_back("set " + ifname + "_maclist=" + list);
        }
        return lines;
    }
};

#endif
