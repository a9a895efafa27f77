// What was asked for beside what driver, kernel and store say: one table of checks, shared by every command that
// changes something, by `verify`, `status`, `ssids` and `why`. It only reads, with the tools the platform has.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/state/host.h"
#include "host/verify/world.h"

namespace wlhost {

// What a check is about; a change asks for those that it touched.
enum Subject : unsigned {
    kOfRadio = 1,     // up, channel, width, country
    kOfBss = 2,       // on air, SSID, hidden, security, station limit
    kOfInterface = 4, // exists, up
    kOfDaemons = 8,
    kOfLan = 16,
    kOfFilter = 32,
    kOfLimits = 64, // rate limits
    kOfWps = 128,
    kOfCapabilities = 256,
    kOfBridge = 512,
    kOfEverything = 1023,
    kCuredByReload = kOfEverything & ~kOfCapabilities // the module reads those once, when it starts
};

// One check and its outcome.
struct Finding {
    std::string radio, interface; // `interface` is empty for what concerns the whole radio, both for the gateway
    std::string check;            // "channel"
    unsigned subject = 0;         // what it is about
    std::string wanted, found;    // texts as a person reads them; secrets never
    std::string cure;             // a command, or what to do; empty when the check holds
    std::string said;             // what the platform's tool said when it could not be asked, or did not do it
    bool holds = false;
    bool mayCome = false; // a daemon or an interface, which may be on its way
};
using Findings = std::vector<Finding>;

// The checks of one radio, in the order of the way from the radio to a station. With `interface` only those of the
// radio and of that BSS. A radio that is no longer configured is wanted off. Looks that share a world ask each question
// once.
Findings examine(Host &host, World &world, WlIntf &intf, unsigned subjects = kOfEverything,
                 const std::string &interface = {});
Findings examine(Host &host, WlIntf &intf, unsigned subjects = kOfEverything, const std::string &interface = {});
// The checks that concern no radio: LAN variables, the daemons that all radios share.
Findings examineGateway(Host &host, World &world, unsigned subjects = kOfEverything);
Findings examineGateway(Host &host, unsigned subjects = kOfEverything);
// Every configured radio and those that were taken off the air, or that one, and the gateway.
Findings examineAll(Host &host, unsigned subjects = kOfEverything, const std::string &radio = {});

// After a change: looks again for a moment while something that may still come has not. What holds costs no wait.
Findings settled(Host &host, const std::function<Findings()> &look);

// Throws status 1 with a line for each finding that does not hold: what was wanted, what was found, what the platform
// said. The error's `differences` are the same for programs.
void demand(const Findings &findings);

// What the last command of the operation under way said that failed for an interface or radio; empty when none did.
std::string lastComplaint(const std::string &name);

// "wl0.1 bridge: wanted br1, found br0", with what the platform said behind it
std::string differenceLine(const Finding &finding);
// Throws status 1 when a question had no answer: the platform could not be asked.
void demandAnswers(const Findings &findings);

json findingRow(const Finding &finding);

// How a host verifies on a device.
Verifier platformVerifier();

} // namespace wlhost
