#include "host/state/light_changes.h"

#include <algorithm>
#include <cstring>

#include "host/base/addresses.h"
#include "host/base/word_lists.h"
#include "host/state/bridges.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

int changeFilter(Host &host, const Host::Bss &bss, const WlSsidCfg &from, json &drops) {
    WlSsidCfg &record = bss.record();
    std::memcpy(record.macFilterMode, from.macFilterMode, sizeof record.macFilterMode);
    std::memcpy(record.macFilterList, from.macFilterList, sizeof record.macFilterList);
    int rc = host.operation(host.module().ops->stationFilter, "stationFilter")(bss.intf, record.objPath);
    if (rc == 0)
        for (const std::string &mac : sendDeniedAway(host, bss))
            drops.push_back({{"mac", mac}, {"interface", record.ifName}});
    return rc;
}

// As a bring-up does it: the flow cache would pass over the queue that limits the upstream rate.
int changeLimits(const Module &module, WlSsidCfg &record, const WlSsidCfg &from) {
    record.upstreamRate = from.upstreamRate;
    record.downstreamRate = from.downstreamRate;
    int results[] = {module.setUpstreamRate(record.ifName, record.upstreamRate),
                     module.setDownstreamRate(record.ifName, record.downstreamRate),
                     module.setFlowCache(record.ifName, record.upstreamRate == 0)};
    const int *failed = std::find_if(std::begin(results), std::end(results), [](int rc) { return rc != 0; });
    return failed == std::end(results) ? 0 : *failed;
}

int changePreset(Host &host, const Host::Bss &bss, const WlSsidCfg &from, json &drops) {
    WlSsidCfg &record = bss.record();
    record.presetRole = from.presetRole;
    bool on = record.presetRole != WLBRCM_PRESET_ON_DEMAND || host.isSwitchedOn(record);
    if (!on)
        for (const std::string &mac : host.stationsOn(bss))
            drops.push_back({{"mac", mac}, {"interface", record.ifName}});
    return host.operation(host.module().ops->enablePresetSsid, "enablePresetSsid")(record.ifName, on);
}

int changeBridge(WlSsidCfg &record, const WlSsidCfg &from) {
    std::memcpy(record.bridge, from.bridge, sizeof record.bridge);
    return joinBridge(record.ifName, record.bridge);
}

} // namespace

int changeInPlace(Host &host, WlIntf *intf, const RadioRecords &records, const Change &change, json &drops) {
    int result = 0;
    auto keep = [&](int rc) { result = result == 0 ? rc : result; };
    for (const LightChange &part : change.parts) {
        const Host::Bss bss{intf, part.index};
        const WlSsidCfg &from = records.bss[part.index];
        if (part.bridge)
            keep(changeBridge(bss.record(), from));
        if (part.preset)
            keep(changePreset(host, bss, from, drops));
        if (part.filter)
            keep(changeFilter(host, bss, from, drops));
        if (part.limits)
            keep(changeLimits(host.module(), bss.record(), from));
        bss.record().presetRole = from.presetRole;
    }
    return result;
}

bool isDenied(Host &host, const WlSsidCfg &bss, const std::string &mac) {
    auto bans = host.bans.find(bss.ifName);
    if (bans != host.bans.end() && bans->second.count(mac))
        return true;
    std::vector<std::string> listed;
    for (const std::string &word : splitWords(bss.macFilterList))
        if (auto address = parseMac(word))
            listed.push_back(formatMac(*address));
    bool isListed = std::count(listed.begin(), listed.end(), mac) != 0;
    std::string mode = bss.macFilterMode;
    // A list that lets nobody in counts as no filter for the module.
    return mode == "DENY" ? isListed : mode == "ALLOW" && !listed.empty() && !isListed;
}

void sendAway(Host &host, const Host::Bss &bss, const MacBytes &mac) {
    std::string ifname = bss.record().ifName;
    auto *disassociate = host.operation(host.module().ops->disassociateSta, "disassociateSta");
    Host::check(disassociate(ifname.c_str(), formatMac(mac, true).c_str()), ifname, "disassociateSta");
    if (!host.verifies())
        return;
    std::vector<std::string> present = host.stationsOn(bss);
    if (std::count(present.begin(), present.end(), formatMac(mac)) == 0)
        return;
    Finding finding;
    finding.radio = bss.intf->intfName;
    finding.interface = ifname;
    finding.check = "station " + formatMac(mac);
    finding.wanted = "sent away";
    finding.found = "still associated";
    finding.said = lastComplaint(ifname);
    finding.cure = "wlhost journal --failed";
    demand({finding});
}

std::vector<std::string> sendDeniedAway(Host &host, const Host::Bss &bss) {
    std::vector<std::string> sent;
    for (const std::string &mac : host.stationsOn(bss)) {
        auto address = parseMac(mac);
        if (!address || !isDenied(host, bss.record(), mac))
            continue;
        sendAway(host, bss, *address);
        sent.push_back(mac);
    }
    return sent;
}

} // namespace wlhost
