// Checks of one BSS against the store, the driver's filter and the queues.
#include <algorithm>
#include <cstring>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/commands/radio_status.h"
#include "host/verify/checks.h"
#include "host/verify/readers.h"

namespace wlhost {
namespace {

// What the module stores for the words of a record.
struct StoredWord {
    const char *word, *stored;
};
constexpr StoredWord kKeyManagement[] = {{"wpa2psk", "psk2"}, {"wpapskmix", "psk psk2"}, {"wpa2", "wpa2"}};
constexpr StoredWord kCiphers[] = {{"aes", "aes"}, {"tkipaes", "tkip+aes"}};
constexpr StoredWord kAuthentication[] = {{"shared", "1"}, {"wepauto", "2"}};

template <size_t Size> std::string storedFor(const StoredWord (&rows)[Size], const char *word, const char *otherwise) {
    for (const StoredWord &row : rows)
        if (std::strcmp(row.word, word) == 0)
            return row.stored;
    return otherwise;
}

struct StoredValue {
    std::string key, value;
    const char *name; // what a person calls it
    bool secret = false;
};

// The module cuts the blank at the end of any value but a passphrase.
std::string inStore(const StoredValue &wanted) {
    bool cut = wanted.key != "wpa_psk" && !wanted.value.empty() && wanted.value.back() == ' ';
    return wanted.value.substr(0, wanted.value.size() - (cut ? 1 : 0));
}

// A WPS session stores its list of key managements with a blank behind each.
bool isStored(const StoredValue &wanted, const std::string &found) {
    return found == inStore(wanted) || (wanted.key == "akm" && splitWords(found) == splitWords(wanted.value));
}

std::string passphraseOf(const WlSsidCfg &bss) { return bss.wpaPsk[0] ? bss.wpaPsk : bss.wpaPskFallback; }

// Everything in the store that the security of a BSS hangs on.
std::vector<StoredValue> wantedSecurity(const WlSsidCfg &bss) {
    bool wep = std::strcmp(bss.encryption, "wep") == 0;
    std::string akm = storedFor(kKeyManagement, bss.authMode, "");
    std::vector<StoredValue> values = {{"akm", akm, "key management"},
                                       {"crypto", storedFor(kCiphers, bss.encryption, ""), "cipher"},
                                       {"wep", wep ? "enabled" : "disabled", "wep"},
                                       {"auth", storedFor(kAuthentication, bss.authMode, "0"), "authentication"},
                                       {"mfp", std::to_string(bss.protectMF), "frame protection"}};
    if (akm.find("psk") != std::string::npos)
        values.push_back({"wpa_psk", passphraseOf(bss), "key", true});
    if (wep && bss.defaultKeyId >= 1 && bss.defaultKeyId <= 4) {
        std::string number = std::to_string(bss.defaultKeyId);
        values.push_back({"key", number, "key number"});
        values.push_back({"key" + number, bss.wepKeys[bss.defaultKeyId - 1], "key", true});
    }
    if (akm == "wpa2") {
        values.push_back({"radius_ipaddr", bss.radiusIpaddr, "RADIUS server"});
        values.push_back({"radius_port", std::to_string(bss.radiusPort), "RADIUS port"});
        values.push_back({"radius_key", bss.radiusKey, "RADIUS key", true});
    }
    return values;
}

bool isStationListed(const std::string &word) { return parseMac(word).has_value(); }

std::string filterText(const MergedFilter &filter) {
    constexpr const char *kModes[] = {"off", "deny", "allow"};
    std::string text = kModes[filter.mode];
    for (const std::string &station : filter.stations)
        text += " " + station;
    return text;
}

// What sets the user's side again, and with it both.
std::string filterCommand(const WlSsidCfg &bss) {
    std::string command = std::string("wlhost filter {if} ") + filterMode(bss);
    if (std::strcmp(filterMode(bss), "off") != 0)
        for (const std::string &station : listedStations(bss))
            command += " " + station;
    return command;
}

std::string rateText(long kbit) { return kbit > 0 ? std::to_string(kbit) + " kbit/s" : "none"; }

void compareRate(Finding &finding, long wanted, const std::optional<long> &found) {
    compare(finding, rateText(wanted), found ? rateText(*found) : "a rate that cannot be read");
}

} // namespace

bool needsAuthenticator(const WlSsidCfg &bss) { return !storedFor(kKeyManagement, bss.authMode, "").empty(); }

// Keys are compared and never shown.
void lookAtSecurity(const Place &place, Finding &finding) {
    finding.wanted = securityName(*place.bss);
    if (!place.world.hasStore()) {
        finding.said = "the library offers no nvram_get";
        return;
    }
    std::vector<std::string> differences;
    for (const StoredValue &wanted : wantedSecurity(*place.bss)) {
        std::string found = place.world.stored(place.interface() + "_" + wanted.key);
        if (isStored(wanted, found))
            continue;
        differences.push_back(wanted.secret ? (found.empty() ? "no " : "another ") + std::string(wanted.name)
                                            : std::string(wanted.name) + " " + inQuotes(escapeBytes(found)));
    }
    finding.holds = differences.empty();
    finding.found = finding.holds ? finding.wanted : joined(differences);
    if (place.host.wps && place.host.wps->radio == place.interface())
        finding.cure = "wlhost wps apply {radio}"; // the session may have agreed on it
}

std::set<std::string> listedStations(const WlSsidCfg &bss) {
    std::set<std::string> stations;
    std::vector<std::string> words = splitWords(bss.macFilterList);
    // The module takes a list with one malformed address for an empty one.
    if (std::all_of(words.begin(), words.end(), isStationListed))
        for (const std::string &word : words)
            stations.insert(formatMac(*parseMac(word)));
    return stations;
}

MergedFilter wantedFilter(Host &host, const WlSsidCfg &bss) {
    MergedFilter merged;
    auto known = host.bans.find(bss.ifName);
    const std::set<std::string> bans = known == host.bans.end() ? std::set<std::string>() : known->second;
    std::string mode = filterMode(bss);
    merged.mode = mode == "allow" ? 2 : 1;
    merged.stations = mode == "off" ? bans : listedStations(bss);
    for (const std::string &ban : bans) {
        if (mode == "allow")
            merged.stations.erase(ban);
        else
            merged.stations.insert(ban);
    }
    // A list without stations is no filter, to the module.
    if (merged.stations.empty())
        merged.mode = 0;
    return merged;
}

void lookAtFilter(const Place &place, Finding &finding) {
    MergedFilter wanted = wantedFilter(place.host, *place.bss);
    finding.wanted = filterText(wanted);
    finding.cure = filterCommand(*place.bss);
    auto mode = readAnswer(place.world.driver(place.interface(), "macmode"), finding, firstNumber);
    if (!mode)
        return;
    const ToolAnswer &list = place.world.driver(place.interface(), "mac");
    bool off = *mode < 1 || *mode > 2;
    if (off || answered(list, finding))
        compare(finding, finding.wanted,
                filterText({off ? 0 : *mode, off ? std::set<std::string>() : readStations(list.out)}));
}

void lookAtDownlink(const Place &place, Finding &finding) {
    const ToolAnswer &queues = place.world.tool({"tc", "qdisc", "show"});
    finding.wanted = rateText(place.bss->downstreamRate);
    if (answered(queues, finding))
        compareRate(finding, place.bss->downstreamRate, readShaper(queues.out, place.interface()));
}

void lookAtUplink(const Place &place, Finding &finding) {
    std::string ifname = place.interface();
    long wanted = place.bss->upstreamRate;
    const ToolAnswer &queues = place.world.tool({"tc", "qdisc", "show"});
    finding.wanted = rateText(wanted);
    if (!answered(queues, finding))
        return;
    if (!hasIngress(queues.out, ifname))
        return compareRate(finding, wanted, 0);
    const ToolAnswer &filters = place.world.tool({"tc", "filter", "show", "dev", ifname, "parent", "ffff:"});
    if (!answered(filters, finding))
        return;
    compareRate(finding, wanted, readPolicer(filters.out));
    if (wanted < 1 || !finding.holds)
        return;
    // Packets of the flow cache pass no queue, so a limit needs the rule that keeps the BSS off it.
    const ToolAnswer &rules = place.world.tool({"ebtables", "-t", "broute", "-L", "SKIP_FCACHE"});
    if (answered(rules, finding) && !skipsFlowCache(rules.out, ifname))
        compare(finding, finding.wanted, finding.found + ", which the flow cache passes over");
}

void lookAtWps(const Place &place, Finding &finding) {
    const WlSsidCfg &bss = *place.bss;
    auto text = [](bool on, bool configured) { return !on ? "off" : configured ? "configured" : "unconfigured"; };
    finding.wanted = text(bss.wpsEnable, bss.wpsConfigured);
    if (!place.world.hasStore())
        finding.said = "the library offers no nvram_get";
    else
        compare(finding, finding.wanted,
                text(place.world.stored(place.interface() + "_wps_mode") == "enabled",
                     place.world.stored(place.interface() + "_wps_config_state") == "1"));
}

} // namespace wlhost
