// What was asked for beside what driver, kernel and store say: one table of checks, shared by every command that changes
// something, by `verify`, `status`, `ssids` and `why`. It only reads, with the tools the platform has.
#pragma once

#include <string>
#include <vector>

#include "host/state/host.h"

namespace wlhost {

// What a check is about; a change asks for those that it touched.
enum Subject : unsigned {
    kOfRadio = 1,     // up, channel, width, country
    kOfBss = 2,       // on air, SSID, hidden, security, station limit
    kOfInterface = 4, // exists, up, its bridge
    kOfDaemons = 8,
    kOfLan = 16,
    kOfFilter = 32,
    kOfLimits = 64, // rate limits
    kOfWps = 128,
    kOfCapabilities = 256,
    kOfEverything = 511
};

// One check and its outcome.
struct Finding {
    std::string radio, interface; // `interface` is empty for what concerns the whole radio, both for the gateway
    std::string check;            // "channel"
    std::string wanted, found;    // texts as a person reads them
    std::string cure;             // a command, or what to do
    std::string said;             // what the platform's tool said when it could not be asked
    bool holds = false;
};

// The checks of one radio, in the order of the way from the radio to a station. With `interface` only those of the radio
// and of that BSS. A radio that is no longer configured is wanted off.
std::vector<Finding> examine(Host &host, WlIntf &intf, unsigned subjects = kOfEverything,
                             const std::string &interface = {});
// The checks that concern no radio: LAN variables, the daemons that all radios share.
std::vector<Finding> examineGateway(Host &host, unsigned subjects = kOfEverything);

// Throws status 1 with a line for each finding that does not hold: what was wanted, what was found, what the platform
// said. The error's `differences` are the same for programs.
void demand(const std::vector<Finding> &findings);

json findingRow(const Finding &finding);

} // namespace wlhost
