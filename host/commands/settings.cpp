#include <functional>

#include "host/base/addresses.h"
#include "host/base/word_lists.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/journal/journal.h"
#include "host/report/recording.h"
#include "host/state/planning.h"
#include "host/state/radio_check.h"
#include "host/tap/dry_run.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

constexpr std::chrono::seconds kReloadPlanTime{20};

Host::ReloadRequest reloadRequest(const json &args) {
    return {textArg(args, "radio"), textArg(args, "config"), flagArg(args, "all"),
            std::chrono::seconds(args.value("rollback", 0))};
}

void demandAddress(const Host &host, const std::string &radio, const std::string &wanted) {
    Finding finding;
    finding.radio = radio;
    finding.check = "address";
    finding.wanted = wanted;
    std::string found = host.platform->readFile("/sys/class/net/" + radio + "/address").value_or("none");
    finding.found = splitWords(found, '\n').front();
    finding.holds = finding.found == wanted;
    finding.said = finding.holds ? "" : lastComplaint(radio);
    finding.cure = "wlhost journal --failed";
    demand({finding});
}

// Followers of the events hear what came of it.
json told(Host &host, json event, const std::function<json()> &change) {
    auto tell = [&](const char *result) {
        event.update({{"result", result}, {"config", host.configFile()}});
        host.tell(event);
    };
    try {
        json result = change();
        tell("done");
        return result;
    } catch (const Failure &failure) {
        tell(statusWord(failure.status));
        throw;
    }
}

} // namespace

json preset(Host &host, const json &args) {
    std::string ifname = textArg(args, "interface");
    bool on = textArg(args, "state") == "on";
    const Host::Bss target = host.bss(ifname);
    const WlSsidCfg &record = target.record();
    std::vector<std::string> presets;
    for (const Host::Bss &bss : host.allBss())
        if (bss.record().presetRole == WLBRCM_PRESET_ON_DEMAND)
            presets.push_back(bss.record().ifName);
    if (record.presetRole != WLBRCM_PRESET_ON_DEMAND)
        throw Failure(Status::kNotFound, ifname, "is no on-demand SSID", "on demand: " + joined(presets));
    auto *enablePreset = host.operation(host.module().ops->enablePresetSsid, "enablePresetSsid");
    Host::check(enablePreset(ifname.c_str(), on), ifname, "enablePresetSsid");
    host.presets[ifname] = on;
    host.demandVerified(target.intf, kOfBss | kOfInterface | kOfBridge, ifname);
    return {{"interface", ifname}, {"preset", on ? "on" : "off"}};
}

json setMac(Host &host, const json &args) {
    WlIntf *intf = host.radio(textArg(args, "radio"));
    MacBytes mac = macOf(textArg(args, "mac"));
    if (mac == MacBytes{})
        throw Failure(Status::kUsage, formatMac(mac), "is no interface's address");
    auto *setWlanMacAddr = host.operation(host.module().ops->setWlanMacAddr, "setWlanMacAddr");
    Host::check(setWlanMacAddr(intf, mac.data()), intf->intfName, "setWlanMacAddr");
    if (host.verifies())
        demandAddress(host, intf->intfName, formatMac(mac));
    return {{"radio", intf->intfName}, {"mac", formatMac(mac)}};
}

json reload(Host &host, const json &args) {
    if (flagArg(args, "dry_run"))
        return plan(host, args);
    std::string radio = textArg(args, "radio");
    return told(host, {{"event", "reload"}, {"radio", radio.empty() ? json() : json(radio)}},
                [&] { return host.reload(reloadRequest(args)); });
}

json rollBack(Host &host) {
    return told(host, {{"event", "rollback"}}, [&] { return host.rollBack(); });
}

json plan(Host &host, const json &args) {
    return tap::inDryRun([&] { return host.planReload(reloadRequest(args)); }, kReloadPlanTime);
}

Status meaningOfPlan(const json &plan) { return changesAnything(plan) ? Status::kWouldChange : Status::kDone; }

json check(Host &host, const json &args) {
    return {{"warnings", warningsOfRadios(host.module(), *host.platform, Config::load(textArg(args, "config")))}};
}

json confirm(Host &host, const json &) { return host.confirm(); }

json lan(Host &host, const json &args) { return host.updateLan(textArg(args, "config")); }

json version(Host &host, const json &) {
    return {{"host", kHostVersion},
            {"abi", WLBRCM_ABI_VERSION},
            {"module", host.module().ops->name},
            {"library", host.module().library},
            {"radios", host.module().names()},
            {"events", host.eventCount},
            {"journal_kib", journal().bytes() / 1024},
            {"recording_kib", recording().bytes() / 1024}};
}

} // namespace wlhost
