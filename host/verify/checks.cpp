#include "host/verify/checks.h"

#include <algorithm>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/config/fields.h"
#include "host/verify/readers.h"

namespace wlhost {
namespace {

const char *upOrDown(bool up) { return up ? "up" : "down"; }

void lookAtRadio(const Place &place, Finding &finding) {
    bool on = isRadioWanted(place);
    finding.wanted = on ? "up" : "off";
    if (auto up = readAnswer(place.world.driver(place.radio(), "isup"), finding, firstNumber))
        compare(finding, finding.wanted, *up ? "up" : on ? "down" : "off");
}

void lookAtCountry(const Place &place, Finding &finding) {
    std::string wanted = place.intf->radio.countryCode;
    finding.wanted = wanted.find('/') == std::string::npos ? wanted + "/0" : wanted;
    if (auto found = readAnswer(place.world.driver(place.radio(), "country"), finding, readCountry))
        compare(finding, finding.wanted, escapeBytes(*found));
}

Chanspec wantedChannel(const WlRadioCfg &radio) {
    bool ht = radio.wirelessMode < 0 || static_cast<size_t>(radio.wirelessMode) >= kHwModes.size() ||
              kHwModes[static_cast<size_t>(radio.wirelessMode)].ht;
    int width = ht ? radio.bandwidth : 20;
    return {radio.channel, width, width != 40 ? '\0' : radio.sideband == 1 ? 'u' : 'l'};
}

void lookAtChannel(const Place &place, Finding &finding) {
    const WlRadioCfg &radio = place.intf->radio;
    Chanspec wanted = wantedChannel(radio);
    finding.wanted = radio.autoChannel ? "any, at most " + std::to_string(wanted.width) + " MHz" : wanted.text();
    auto found = readAnswer(place.world.driver(place.radio(), "chanspec"), finding, readChanspec);
    finding.found = found ? found->text() : "";
    finding.holds = found && (radio.autoChannel ? found->width <= wanted.width : found->sameAs(wanted));
}

void lookAtCapabilities(const Place &place, Finding &finding) {
    std::string file = "/tmp/" + place.radio() + "_cap";
    const ToolAnswer &answer = place.world.driver(place.radio(), "cap");
    finding.wanted = file + " as the driver says";
    finding.cure = "rm " + file + " and start the host again";
    if (answered(answer, finding))
        compare(finding, finding.wanted,
                place.world.platform().readFile(file) == answer.out ? finding.wanted : file + " says something else");
}

bool hasCapabilityFile(const Place &place) { return place.world.platform().exists("/tmp/" + place.radio() + "_cap"); }

// A limit that the driver keeps for a radio or a BSS.
void lookAtNumber(const Place &place, Finding &finding, const std::string &ifname, const char *command, int wanted) {
    finding.wanted = std::to_string(wanted);
    if (auto found = readAnswer(place.world.driver(ifname, command), finding, firstNumber))
        compare(finding, finding.wanted, std::to_string(*found));
}

// The limit of the whole radio is that of its main SSID.
int radioLimit(const Place &place) {
    int limit = 0;
    for (size_t i = 0; i < place.intf->radio.bssCount && i < WLBRCM_MAX_BSS; ++i)
        if (const WlSsidCfg &bss = place.intf->bss[i]; bss.valid && bss.enable && bss.main)
            limit = bss.maxSta;
    return limit;
}

bool isInUse(const WlIntf &intf, const std::string &ifname) {
    for (size_t i = 0; i < intf.radio.bssCount && i < WLBRCM_MAX_BSS; ++i)
        if (ifname == intf.bss[i].ifName)
            return true;
    return false;
}

// What earlier configurations left on the air.
void lookAtOthers(const Place &place, Finding &finding) {
    std::vector<std::string> found;
    finding.wanted = "none";
    for (const char *ifname : place.intf->caps.vifNames) {
        if (!ifname[0] || isInUse(*place.intf, ifname) || !place.world.hasInterface(ifname))
            continue;
        auto up = readAnswer(place.world.driver(ifname, "bss"), finding, readUp);
        if (!up)
            return;
        if (*up)
            found.push_back(ifname);
    }
    compare(finding, finding.wanted, joined(found));
}

void lookAtHidden(const Place &place, Finding &finding) {
    auto text = [](bool hidden) { return hidden ? "yes" : "no"; };
    finding.wanted = text(place.bss->hideSsid);
    if (auto found = readAnswer(place.world.driver(place.interface(), "closed"), finding, firstNumber))
        compare(finding, finding.wanted, text(*found != 0));
}

void lookAtBss(const Place &place, Finding &finding) {
    constexpr const char *kNames[] = {"off", "standby", "on air"};
    bool on = wantedAir(place) == Air::kOn;
    finding.wanted = kNames[static_cast<int>(wantedAir(place))];
    if (!place.world.hasInterface(place.interface()))
        return compare(finding, finding.wanted, on ? "no interface" : finding.wanted);
    auto up = readAnswer(place.world.driver(place.interface(), "bss"), finding, readUp);
    if (!up)
        return;
    compare(finding, finding.wanted, *up ? "on air" : on ? "down" : finding.wanted);
    if (!finding.holds && place.bss->presetRole == WLBRCM_PRESET_ON_DEMAND)
        finding.cure = std::string("wlhost preset {if} ") + (on ? "on" : "off");
}

void lookAtInterface(const Place &place, Finding &finding) {
    bool there = place.world.hasInterface(place.interface());
    compare(finding, "up", there ? upOrDown(place.world.isUp(place.interface())) : "missing");
    if (there)
        finding.cure = "ifconfig {if} up";
}

void lookAtBridge(const Place &place, Finding &finding) {
    std::string wanted = place.bss->bridge, found = place.world.bridgeOf(place.interface());
    auto named = [](const std::string &bridge) { return bridge.empty() ? "none" : bridge; };
    compare(finding, named(wanted), named(found));
    std::vector<std::string> steps;
    if (!found.empty())
        steps.push_back("brctl delif " + found + " {if}");
    if (!wanted.empty() && !place.world.hasInterface(wanted))
        steps.push_back("brctl addbr " + wanted);
    if (!wanted.empty())
        steps.push_back("brctl addif " + wanted + " {if}");
    for (const std::string &step : steps)
        finding.cure += (finding.cure.empty() ? "" : " && ") + step;
}

void lookAtSsid(const Place &place, Finding &finding) {
    finding.wanted = escapeBytes(place.bss->ssidName);
    if (auto found = readAnswer(place.world.driver(place.interface(), "ssid"), finding, readNetworkName))
        compare(finding, finding.wanted, escapeBytes(*found));
}

bool always(const Place &) { return true; }
bool isRadioOn(const Place &place) { return isRadioWanted(place); }
bool isConfigured(const Place &place) { return wantedAir(place) != Air::kOff; }
bool isOnAir(const Place &place) { return wantedAir(place) == Air::kOn; }
bool hasLanGroups(const Place &place) { return place.host.lan().count() > 0; }
bool hasRadios(const Place &place) { return !place.host.configuredRadios().empty(); }
bool selectsChannels(const Place &place) { return hasRadios(place) && place.world.platform().exists("/bin/acsd"); }

constexpr char kReload[] = "wlhost reload {radio}";
constexpr char kNoReason[] = "nas and eapd carry out the handshake of WPA; without them no station gets its keys";

} // namespace

const std::vector<Check> &checks() {
    static const std::vector<Check> kRows = {
        {"radio", kOfRadio, Scope::kRadio, always, lookAtRadio, kReload,
         "a radio that is down has no network on the air"},
        {"country", kOfRadio, Scope::kRadio, isRadioOn, lookAtCountry, kReload, nullptr},
        {"channel", kOfRadio, Scope::kRadio, isRadioOn, lookAtChannel, kReload,
         "stations that know the network by its channel look for it elsewhere"},
        {"station limit", kOfBss, Scope::kRadio,
         [](const Place &place) { return isRadioWanted(place) && radioLimit(place) > 0; },
         [](const Place &place, Finding &finding) {
             lookAtNumber(place, finding, place.radio(), "maxassoc", radioLimit(place));
         },
         kReload, nullptr},
        {"other BSSs", kOfBss, Scope::kRadio, isRadioOn, lookAtOthers, kReload, nullptr},
        {"capabilities", kOfCapabilities, Scope::kRadio, hasCapabilityFile, lookAtCapabilities, "", nullptr},
        {"BSS", kOfBss, Scope::kBss, always, lookAtBss, kReload, "a BSS that is not started sends no beacons", true},
        {"interface", kOfInterface, Scope::kBss, isOnAir, lookAtInterface, kReload,
         "what the BSS receives ends at an interface that is not up", true},
        {"SSID", kOfBss, Scope::kBss, isConfigured, lookAtSsid, kReload, "stations look for a network by its name"},
        {"hidden", kOfBss, Scope::kBss, isConfigured, lookAtHidden, kReload, nullptr},
        {"bridge", kOfBridge, Scope::kBss, isConfigured, lookAtBridge, "",
         "a station gets no address and reaches nobody outside the right bridge", true},
        {"nas", kOfDaemons, Scope::kGateway, hasRadios,
         [](const Place &place, Finding &finding) { lookAtDaemon(place, finding, "nas"); }, "", kNoReason, true},
        {"eapd", kOfDaemons, Scope::kGateway, hasRadios,
         [](const Place &place, Finding &finding) { lookAtDaemon(place, finding, "eapd"); }, "", kNoReason, true},
        {"security", kOfBss, Scope::kBss, isConfigured, lookAtSecurity, kReload,
         "a station that knows another key, or another kind of security, is refused"},
        {"LAN group", kOfLan, Scope::kBss,
         [](const Place &place) {
             return isConfigured(place) && needsAuthenticator(*place.bss) && (place.forStation || place.bss->bridge[0]);
         },
         lookAtLanMembership, "wlhost lan {config}", "nas serves only interfaces that a LAN group lists"},
        {"station limit", kOfBss, Scope::kBss, isConfigured,
         [](const Place &place, Finding &finding) {
             lookAtNumber(place, finding, place.interface(), "bss_maxassoc", place.bss->maxSta);
         },
         kReload, nullptr},
        {"MAC filter", kOfFilter, Scope::kBss, isConfigured, lookAtFilter, "", nullptr},
        {"limit up", kOfLimits, Scope::kBss, isOnAir, lookAtUplink, kReload, nullptr},
        {"limit down", kOfLimits, Scope::kBss, isOnAir, lookAtDownlink, kReload, nullptr},
        {"WPS", kOfWps, Scope::kBss,
         [](const Place &place) {
             return place.intf->caps.wpsCapable && isConfigured(place) &&
                    place.interface().find('.') == std::string::npos;
         },
         lookAtWps, kReload, nullptr},
        {"LAN groups", kOfLan, Scope::kGateway, hasLanGroups, lookAtLanGroups, "wlhost lan {config}", nullptr},
        {"acsd", kOfDaemons, Scope::kGateway, selectsChannels,
         [](const Place &place, Finding &finding) { lookAtDaemon(place, finding, "acsd"); }, "", nullptr, true},
        {"lld2d", kOfDaemons, Scope::kGateway, hasRadios,
         [](const Place &place, Finding &finding) {
             lookAtDaemon(place, finding, "lld2d");
             // It is told the first group's bridge.
             if (std::string bridge = place.world.stored("lan_ifname");
                 finding.found == "not running" && isInterfaceName(bridge))
                 finding.cure += " " + bridge;
         },
         "", nullptr, true},
        {"wps_monitor", kOfWps, Scope::kGateway, hasRadios,
         [](const Place &place, Finding &finding) { lookAtDaemon(place, finding, "wps_monitor", isWpsWanted(place)); },
         "", nullptr, true},
    };
    return kRows;
}

} // namespace wlhost
