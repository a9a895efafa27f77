#include <algorithm>
#include <cstring>

#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/radio_status.h"
#include "host/state/light_changes.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

json filterState(Host &host, const Host::Bss &bss, const std::vector<std::string> &sentAway = {}) {
    const WlSsidCfg &record = bss.record();
    json listed = json::array(), denied = json::array();
    for (const std::string &mac : splitWords(record.macFilterList))
        listed.push_back(formatMac(parseMac(mac).value_or(MacBytes{})));
    for (const std::string &mac : host.bans[record.ifName])
        denied.push_back(mac);
    return {{"interface", record.ifName},
            {"mode", filterMode(record)},
            {"stations", listed},
            {"denied", denied},
            {"sent_away", sentAway}};
}

// A filter keeps stations from joining; those that are there already are sent away, unless they may stay.
json enforced(Host &host, const Host::Bss &bss, const json &args) {
    host.demandVerified(bss.intf, kOfFilter, bss.record().ifName);
    return filterState(host, bss, flagArg(args, "keep") ? std::vector<std::string>() : sendDeniedAway(host, bss));
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
    return enforced(host, bss, args);
}

} // namespace

// The user's filter: an entry of the record, which the module then reads by the SSID's object path.
json filter(Host &host, const json &args) {
    Host::Bss bss = host.bss(textArg(args, "interface"));
    std::string mode = textArg(args, "mode");
    std::vector<std::string> named = listArg(args, "stations");
    if (mode.empty() && named.empty())
        return filterState(host, bss);
    if (mode.empty())
        throw Failure(Status::kUsage, "filter", "stations need a mode", "deny or allow");
    if (mode == "off" && !named.empty())
        throw Failure(Status::kUsage, mode, "takes no stations");
    std::vector<std::string> list;
    for (const std::string &station : named)
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
    return enforced(host, bss, args);
}

json ban(Host &host, const json &args) { return setBan(host, args, BanCommand::kDeny); }

json unban(Host &host, const json &args) {
    bool all = flagArg(args, "all");
    if (all != textArg(args, "station").empty())
        throw Failure(Status::kUsage, "unban", "takes a station or --all, one of them");
    return setBan(host, args, all ? BanCommand::kClear : BanCommand::kReadmit);
}

} // namespace wlhost
