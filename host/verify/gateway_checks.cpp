// Checks of what all radios share: daemons and LAN groups.
#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/verify/checks.h"

namespace wlhost {
namespace {

constexpr int kMostGroups = 10;

// "lan_ifnames" of the first group, "lan1_ifnames" of the next.
std::string groupKey(int group, const char *variable) {
    return "lan" + (group == 0 ? std::string() : std::to_string(group)) + "_" + variable;
}

std::string groupText(const std::string &name, const std::vector<std::string> &members) {
    std::string text = name + ":";
    for (const std::string &member : members)
        text += " " + member;
    return text;
}

} // namespace

void lookAtDaemon(const Place &place, Finding &finding, const char *daemon, bool wanted) {
    auto text = [](bool runs) { return runs ? "running" : "not running"; };
    const std::string program = std::string("/bin/") + daemon;
    bool runs = place.world.runs(daemon), missing = !runs && wanted && !place.world.platform().exists(program);
    compare(finding, text(wanted), missing ? "not installed" : text(runs));
    finding.cure = missing ? "install " + program : wanted ? program : std::string("killall ") + daemon;
}

void lookAtLanGroups(const Place &place, Finding &finding) {
    const WlLanCfg &lan = *place.host.lan().get();
    std::vector<std::string> wanted, found;
    for (int i = 0; i < lan.count && i < kMostGroups; ++i) {
        std::vector<std::string> members;
        for (int m = 0; m < lan.groups[i].memberCount; ++m)
            members.push_back(lan.groups[i].members[m].ifName);
        wanted.push_back(groupText(lan.groups[i].name, members));
    }
    finding.wanted = joined(wanted);
    if (!place.world.hasStore()) {
        finding.said = "the library offers no nvram_get";
        return;
    }
    for (int i = 0; i < kMostGroups; ++i)
        if (std::string name = place.world.stored(groupKey(i, "ifname")); !name.empty())
            found.push_back(groupText(name, splitWords(place.world.stored(groupKey(i, "ifnames")))));
    compare(finding, finding.wanted, escapeBytes(joined(found)));
}

void lookAtLanMembership(const Place &place, Finding &finding) {
    const WlLanCfg &lan = *place.host.lan().get();
    bool known = false;
    for (int i = 0; i < lan.count; ++i)
        known = known || std::string(lan.groups[i].name) == place.bss->bridge;
    if (!known)
        finding.cure = "name a bridge of lan.groups as \"network\" of this SSID in {config}, then wlhost reload";
    finding.wanted = "listed";
    if (!place.world.hasStore()) {
        finding.said = "the library offers no nvram_get";
        return;
    }
    bool listed = false;
    for (int i = 0; i < kMostGroups; ++i)
        for (const std::string &name : splitWords(place.world.stored(groupKey(i, "ifnames"))))
            listed = listed || name == place.interface();
    compare(finding, finding.wanted, listed ? "listed" : "in none of lan_ifnames, lan1_ifnames ...");
}

// The daemon serves all radios; whatever else they are, enabled SSIDs with WPS want it.
bool isWpsWanted(const Place &place) {
    for (const Host::Bss &bss : place.host.allBss()) {
        const WlSsidCfg &record = bss.record();
        bool main = std::string(record.ifName).find('.') == std::string::npos;
        if (bss.intf->caps.wpsCapable && record.enable && record.wpsEnable && main)
            return true;
    }
    return false;
}

} // namespace wlhost
