// Radio records for the bring-up tests.
#ifndef WLBRCM_TESTS_BRINGUP_RADIO_H
#define WLBRCM_TESTS_BRINGUP_RADIO_H

#include <cstring>
#include <memory>

#include "tests/unit/fake_platform.h"

template <size_t Size> void setField(char (&field)[Size], const std::string &text) {
    ASSERT_LT(text.size(), Size);
    strcpy(field, text.c_str());
}

// A test with the zeroed record of one radio, wl0.
class BringUpTest : public PlatformTest {
  protected:
    BringUpTest() { setField(radio.ifName, "wl0"); }

    // Puts `count` enabled entries in use, wl0, wl0.1 and so on.
    void useEntries(int count) {
        radio.bssCount = static_cast<uint16_t>(count);
        for (int i = 0; i < count && i < WLBRCM_MAX_BSS; ++i) {
            setField(bss[i].ifName, i == 0 ? "wl0" : "wl0." + std::to_string(i));
            bss[i].enable = bss[i].valid = 1;
        }
    }
    // Whether any command, not counting nvram, has this text in it.
    bool ran(const std::string &text) const {
        for (const std::string &entry : platform.journal) {
            if (entry.find("set ") != 0 && entry.find("unset ") != 0 && entry.find(text) != std::string::npos)
                return true;
        }
        return false;
    }
    bool wasLogged(int level, const std::string &text) const {
        for (const std::string &line : platform.logged(level)) {
            if (line.find(text) != std::string::npos)
                return true;
        }
        return false;
    }

    std::unique_ptr<WlIntf> record{new WlIntf()};
    WlIntf *intf = record.get();
    WlRadioCfg &radio = record->radio;
    WlSsidCfg *bss = record->bss;
    WlCaps &caps = record->caps;
};

#endif
