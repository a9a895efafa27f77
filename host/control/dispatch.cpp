#include "host/control/dispatch.h"

#include <algorithm>
#include <cstring>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/commands/air.h"
#include "host/commands/arguments.h"
#include "host/commands/beacon_elements.h"
#include "host/commands/radio_status.h"
#include "host/commands/station_events.h"
#include "host/commands/station_rows.h"
#include "host/commands/wps_sessions.h"

namespace wlhost {

const char *const kHostVersion = "1.0";

namespace {

json status(Host &host, const json &args) {
    std::vector<std::string> items = listArg(args, "items");
    json rows = json::array();
    for (WlIntf *intf : radiosArg(host, args))
        rows.push_back(items.empty() ? radioStatus(host, *intf) : rawItems(host, *intf, items));
    return rows;
}

json ssids(Host &host, const json &) {
    json rows = json::array();
    for (const Host::Bss &bss : host.allBss())
        rows.push_back(ssidStatus(host, bss));
    return rows;
}

json filterState(Host &host, const Host::Bss &bss) {
    const WlSsidCfg &record = bss.record();
    json listed = json::array(), denied = json::array();
    for (const std::string &mac : splitWords(record.macFilterList))
        listed.push_back(formatMac(parseMac(mac).value_or(MacBytes{})));
    for (const std::string &mac : host.bans[record.ifName])
        denied.push_back(mac);
    return {{"interface", record.ifName}, {"mode", filterMode(record)}, {"stations", listed}, {"denied", denied}};
}

// The user's filter: an entry of the record, which the module then reads by the SSID's object path.
json filter(Host &host, const json &args) {
    Host::Bss bss = host.bss(textArg(args, "interface"));
    std::string mode = textArg(args, "mode");
    std::vector<std::string> stations = listArg(args, "stations");
    if (mode.empty() && stations.empty())
        return filterState(host, bss);
    if (mode != "deny" && mode != "allow" && mode != "off")
        throw Failure(Status::kUsage, mode, "is no filter mode", "deny, allow or off");
    if (mode == "off" && !stations.empty())
        throw Failure(Status::kUsage, mode, "takes no stations");
    std::vector<std::string> list;
    for (const std::string &station : stations)
        if (std::string mac = formatMac(macOf(station), true); std::count(list.begin(), list.end(), mac) == 0)
            list.push_back(mac);
    size_t most = static_cast<size_t>(fieldAt({"radios", "ssids", "maclist"}).high);
    if (list.size() > most)
        throw Failure(Status::kUsage, "filter", std::to_string(list.size()) + " stations",
                      "at most " + std::to_string(most));

    auto *stationFilter = host.operation(host.module().ops->stationFilter, "stationFilter");
    WlSsidCfg &record = bss.record();
    std::string joint;
    for (const std::string &mac : list)
        joint += (joint.empty() ? "" : " ") + mac;
    std::memset(record.macFilterList, 0, sizeof record.macFilterList);
    std::memset(record.macFilterMode, 0, sizeof record.macFilterMode);
    copyText(record.macFilterList, joint);
    copyText(record.macFilterMode, mode == "deny" ? "DENY" : mode == "allow" ? "ALLOW" : "");
    Host::check(stationFilter(bss.intf, record.objPath), record.ifName, "stationFilter");
    host.noteApplied(bss.intf);
    return filterState(host, bss);
}

enum class BanCommand { kClear = 0, kDeny = 1, kReadmit = 2 };

json setBan(Host &host, const json &args, BanCommand command) {
    Host::Bss bss = host.bss(textArg(args, "interface"));
    std::string ifname = bss.record().ifName;
    MacBytes mac = command == BanCommand::kClear ? MacBytes{} : macOf(textArg(args, "station"));
    auto *bsaMacFilter = host.operation(host.module().ops->bsaMacFilter, "bsaMacFilter");
    std::set<std::string> &bans = host.bans[ifname];
    if (command == BanCommand::kReadmit && bans.count(formatMac(mac)) == 0)
        throw Failure(Status::kNotFound, formatMac(mac), "is not banned on " + ifname,
                      "banned: " + joined({bans.begin(), bans.end()}));
    Host::check(bsaMacFilter(ifname.c_str(), static_cast<int>(command), mac.data()), ifname, "bsaMacFilter");
    if (command == BanCommand::kClear)
        bans.clear();
    else if (command == BanCommand::kDeny)
        bans.insert(formatMac(mac));
    else
        bans.erase(formatMac(mac));
    return filterState(host, bss);
}

json ban(Host &host, const json &args) { return setBan(host, args, BanCommand::kDeny); }

json unban(Host &host, const json &args) {
    bool all = flagArg(args, "all");
    if (all != textArg(args, "station").empty())
        throw Failure(Status::kUsage, "unban", "takes a station or --all, one of them");
    return setBan(host, args, all ? BanCommand::kClear : BanCommand::kReadmit);
}

json preset(Host &host, const json &args) {
    std::string ifname = textArg(args, "interface");
    bool on = switchArg(args, "state");
    const WlSsidCfg &record = host.bss(ifname).record();
    std::vector<std::string> presets;
    for (const Host::Bss &bss : host.allBss())
        if (bss.record().presetRole == WLBRCM_PRESET_ON_DEMAND)
            presets.push_back(bss.record().ifName);
    if (record.presetRole != WLBRCM_PRESET_ON_DEMAND)
        throw Failure(Status::kNotFound, ifname, "is no on-demand SSID", "on demand: " + joined(presets));
    auto *enablePreset = host.operation(host.module().ops->enablePresetSsid, "enablePresetSsid");
    Host::check(enablePreset(ifname.c_str(), on), ifname, "enablePresetSsid");
    host.presets[ifname] = on;
    return {{"interface", ifname}, {"preset", on ? "on" : "off"}};
}

json setMac(Host &host, const json &args) {
    WlIntf *intf = host.radio(textArg(args, "radio"));
    MacBytes mac = macOf(textArg(args, "mac"));
    auto *setWlanMacAddr = host.operation(host.module().ops->setWlanMacAddr, "setWlanMacAddr");
    Host::check(setWlanMacAddr(intf, mac.data()), intf->intfName, "setWlanMacAddr");
    return {{"radio", intf->intfName}, {"mac", formatMac(mac)}};
}

json reload(Host &host, const json &args) {
    return host.reload(textArg(args, "radio"), textArg(args, "config"), flagArg(args, "all"));
}

json lan(Host &host, const json &args) { return host.updateLan(textArg(args, "config")); }

json version(Host &host, const json &) {
    return {{"host", kHostVersion},
            {"abi", WLBRCM_ABI_VERSION},
            {"module", host.module().ops->name},
            {"library", host.module().library},
            {"radios", host.module().names()},
            {"events", host.eventCount}};
}

struct Command {
    const char *name;
    json (*run)(Host &, const json &args);
};

constexpr Command kCommands[] = {
    {"status", status},
    {"ssids", ssids},
    {"stations", listStations},
    {"scan", scan},
    {"survey", survey},
    {"rates", rates},
    {"load", load},
    {"beacon", beacon},
    {"kick", kick},
    {"reload", reload},
    {"filter", filter},
    {"ban", ban},
    {"unban", unban},
    {"preset", preset},
    {"lan", lan},
    {"mac", setMac},
    {"wps push-button", wpsPushButton},
    {"wps pin", wpsPin},
    {"wps check-pin", wpsCheckPin},
    {"wps cancel", wpsCancel},
    {"wps status", wpsStatus},
    {"wps apply", wpsApply},
    {"events", followEvents},
    {"forward", forward},
    {"version", version},
};

json run(Host &host, const json &request) {
    std::string name = request.is_object() ? textArg(request, "command") : "";
    json args = request.is_object() ? request.value("args", json::object()) : json::object();
    if (!args.is_object())
        throw Failure(Status::kUsage, "args", "is not an object");
    for (const Command &command : kCommands)
        if (name == command.name)
            return command.run(host, args);
    throw Failure(Status::kUsage, name, "is no command");
}

} // namespace

bool subscribes(const std::string &request) {
    json parsed = json::parse(request, nullptr, false);
    return parsed.is_object() && parsed.value("command", json()) == "events";
}

json answer(Host &host, const std::string &request) {
    try {
        return {{"status", Status::kDone}, {"result", run(host, json::parse(request))}};
    } catch (const Failure &failure) {
        return {{"status", failure.status}, {"error", errorOf(failure)}};
    } catch (const json::exception &error) {
        return {{"status", Status::kUsage}, {"error", errorOf(Failure(Status::kUsage, "request", error.what()))}};
    }
}

} // namespace wlhost
