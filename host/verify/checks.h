// The table of checks, in the order of the way from a radio to its stations.
#pragma once

#include <set>

#include "host/verify/verification.h"

namespace wlhost {

// What a check looks at: a radio, a BSS of it, or with neither the gateway.
struct Place {
    Host &host;
    World &world;
    WlIntf *intf = nullptr;
    const WlSsidCfg *bss = nullptr;
    bool forStation = false; // what a station needs counts, not only what was asked for

    std::string radio() const { return intf ? intf->intfName : ""; }
    std::string interface() const { return bss ? bss->ifName : ""; }
};

enum class Scope { kRadio, kBss, kGateway };

struct Check {
    const char *name;
    Subject subject;
    Scope scope;
    bool (*applies)(const Place &place);
    // Fills in what is wanted, what was found and whether that agrees; a cure only where the usual one is none.
    void (*look)(const Place &place, Finding &finding);
    // The usual one; {radio}, {if} and {config} stand for names.
    const char *cure;
    // Why a station depends on it; null when it does not.
    const char *matters;
    bool mayCome = false;
};

const std::vector<Check> &checks();

// One check carried out.
Finding carryOut(const Check &check, const Place &place);

// How a BSS is wanted: its radio and the SSID enabled, and no on-demand SSID that is switched off.
enum class Air { kOff, kStandby, kOn };
Air wantedAir(const Place &place);
bool isRadioWanted(const Place &place);
// Notes that a question had no answer, unless it had.
bool answered(const ToolAnswer &answer, Finding &finding);
// What a reader makes of an answer; without an answer, or with one that says nothing to it, that is noted.
template <typename Value>
std::optional<Value> readAnswer(const ToolAnswer &answer, Finding &finding,
                                std::optional<Value> (*reader)(const std::string &text)) {
    std::optional<Value> value = answered(answer, finding) ? reader(answer.out) : std::nullopt;
    if (answer && !value)
        finding.said = "its answer cannot be read";
    return value;
}
void compare(Finding &finding, const std::string &wanted, const std::string &found);

// Looks of checks that take more than a few lines, by what they are about.
void lookAtSecurity(const Place &place, Finding &finding);
bool needsAuthenticator(const WlSsidCfg &bss);
void lookAtFilter(const Place &place, Finding &finding);
void lookAtUplink(const Place &place, Finding &finding);
void lookAtDownlink(const Place &place, Finding &finding);
void lookAtLanGroups(const Place &place, Finding &finding);
void lookAtLanMembership(const Place &place, Finding &finding);
void lookAtWps(const Place &place, Finding &finding);
bool isWpsWanted(const Place &place);
void lookAtDaemon(const Place &place, Finding &finding, const char *daemon, bool wanted = true);

// The module's merged MAC filter of a BSS: 0 off, 1 deny, 2 allow, and the addresses.
struct MergedFilter {
    int mode = 0;
    std::set<std::string> stations;
};
MergedFilter wantedFilter(Host &host, const WlSsidCfg &bss);
std::set<std::string> listedStations(const WlSsidCfg &bss);

} // namespace wlhost
