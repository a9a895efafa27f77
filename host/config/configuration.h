// The configuration of a gateway: read from a file, checked as a whole, then bound to the radios that exist.
#pragma once

#include <string>
#include <vector>

#include "host/config/fields.h"

namespace wlhost {

struct RadioConfig {
    RadioFields fields;
    std::vector<SsidFields> ssids;

    std::string name() const { return fields.record.ifName; }
};

struct Config {
    Document document;
    std::vector<GroupFields> lan;
    std::vector<RadioConfig> radios;
    std::vector<Problem> warnings; // allowed, but surely a mistake

    // Reads and checks a file. Throws a Failure that lists everything wrong with it.
    static Config load(const std::string &file);
    static Config from(Document document);
};

// What a radio is given: exactly the two parts of its record that the host fills.
struct RadioRecords {
    WlRadioCfg radio;
    WlSsidCfg bss[WLBRCM_MAX_BSS];

    bool operator==(const RadioRecords &other) const;
};

// Checks the configuration of one radio against the radio itself (band, number of BSSs), and completes it with what
// only the radio knows. `phyType` is the PHY letter of the driver, or null.
RadioRecords bindRadio(const Config &config, size_t index, const WlIntf &intf, const char *phyType, Problems &problems);

// Members of a LAN group: its ports, then the interfaces of the SSIDs that name it.
std::vector<std::string> lanMembers(const Config &config, const GroupFields &group);

// 2 of "wl0.2", 0 of the radio's own interface.
int interfaceNumber(const std::string &ifname);

} // namespace wlhost
