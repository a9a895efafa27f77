#include "host/commands/station_rows.h"

#include <algorithm>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/values.h"
#include "host/state/light_changes.h"
#include "host/verify/readers.h"

namespace wlhost {
namespace {

json modeName(uint32_t phyMode) {
    for (const BitName &mode : kPhyModes)
        if (mode.bit == phyMode)
            return mode.name;
    return nullptr;
}

// The module gives an empty list also when the driver's command failed, so the driver is asked first.
json stationsOf(Host &host, World &world, const Host::Bss &bss) {
    auto *getAssocDevList = host.operation(host.module().ops->getAssocDevList, "getAssocDevList");
    driverStations(world, bss.record().ifName);
    List<WlStaInfo> list;
    Host::check(getAssocDevList(bss.intf, static_cast<int>(bss.index), list.place(), list.countPlace()),
                bss.record().ifName, "getAssocDevList");
    json rows = json::array();
    for (const WlStaInfo &station : list)
        rows.push_back(stationRow(station));
    World after(host);
    if (rows.empty() && !driverStations(after, bss.record().ifName).empty())
        throw Failure(Status::kFailed, bss.record().ifName,
                      "the module read none of the stations that the driver lists", "see the module's log");
    return rows;
}

bool isOn(const Host::Bss &bss) { return bss.record().enable && bss.intf->radio.radioOn; }

} // namespace

json stationMac(const WlStaInfo &station) {
    auto mac = parseMac(station.macAddr);
    return mac ? json(formatMac(*mac)) : json();
}

std::set<std::string> driverStations(World &world, const std::string &ifname) {
    const ToolAnswer &answer = world.driver(ifname, "assoclist");
    std::set<std::string> stations = readStations(answer.out);
    if (!answer)
        throw Failure(Status::kFailed, ifname, "the driver does not list its stations: " + answer.said,
                      "wlhost why " + ifname + " tells what is wrong");
    if (stations.empty() && answer.out.find_first_not_of(" \n") != std::string::npos)
        throw Failure(Status::kFailed, ifname, "the driver's list of stations cannot be read");
    return stations;
}

json stationRow(const WlStaInfo &station) {
    bool heard = station.rssi != 0;
    return {{"mac", stationMac(station)},
            {"interface", escapeBytes(station.ifName)},
            {"mode", modeName(station.phyMode)},
            {"width_mhz", unlessZero(station.bandwidth)},
            {"signal_dbm", heard ? json(station.rssi) : json()},
            {"snr_db", heard && station.noise ? json(station.snr) : json()},
            {"noise_dbm", unlessZero(station.noise)},
            {"rx_rate_kbps", unlessZero(station.rxRate)},
            {"tx_rate_kbps", unlessZero(station.txRate)},
            {"rx_bytes", station.rxBytes},
            {"tx_bytes", station.txBytes},
            {"rx_packets", station.rxPkts},
            {"tx_packets", station.txPkts},
            {"tx_retries", station.txRetries},
            {"tx_retries_exhausted", station.txRetryExhausted},
            {"tx_failures", station.txFailures},
            {"authenticated", station.authenticated != 0}};
}

json stations(Host &host, const json &args) {
    bool all = textArg(args, "interface").empty();
    World world(host);
    json rows = json::array();
    for (const Host::Bss &bss : bssArg(host, args))
        if (!all || isOn(bss))
            for (json &row : stationsOf(host, world, bss))
                rows.push_back(std::move(row));
    return rows;
}

json kick(Host &host, const json &args) {
    Host::Bss bss = host.bss(textArg(args, "interface"));
    MacBytes mac = macOf(textArg(args, "station"));
    std::string ifname = bss.record().ifName;
    std::vector<std::string> present;
    World world(host);
    for (const json &row : stationsOf(host, world, bss))
        if (row["mac"].is_string())
            present.push_back(row["mac"]);
    if (std::count(present.begin(), present.end(), formatMac(mac)) == 0)
        throw Failure(Status::kNotFound, formatMac(mac), "is not associated with " + ifname,
                      "associated: " + joined(present));
    sendAway(host, bss, mac);
    host.history.note(formatMac(mac), ifname, "kicked");
    return {{"interface", ifname}, {"kicked", formatMac(mac)}};
}

} // namespace wlhost
