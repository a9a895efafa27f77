#include "host/commands/station_rows.h"

#include <algorithm>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/values.h"

namespace wlhost {
namespace {

json modeName(uint32_t phyMode) {
    for (const BitName &mode : kPhyModes)
        if (mode.bit == phyMode)
            return mode.name;
    return nullptr;
}

json stationsOf(Host &host, const Host::Bss &bss) {
    auto *getAssocDevList = host.operation(host.module().ops->getAssocDevList, "getAssocDevList");
    List<WlStaInfo> list;
    Host::check(getAssocDevList(bss.intf, static_cast<int>(bss.index), list.place(), list.countPlace()),
                bss.record().ifName, "getAssocDevList");
    json rows = json::array();
    for (const WlStaInfo &station : list)
        rows.push_back(stationRow(station));
    return rows;
}

bool isOn(const Host::Bss &bss) { return bss.record().enable && bss.intf->radio.radioOn; }

// The strongest first, those without a signal last.
bool stronger(const json &a, const json &b) {
    const json &left = a["signal_dbm"], &right = b["signal_dbm"];
    return !left.is_null() && (right.is_null() || left > right);
}

} // namespace

json stationMac(const WlStaInfo &station) {
    auto mac = parseMac(station.macAddr);
    return mac ? json(formatMac(*mac)) : json();
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
    json rows = json::array();
    for (const Host::Bss &bss : bssArg(host, args))
        if (!all || isOn(bss))
            for (json &row : stationsOf(host, bss))
                rows.push_back(std::move(row));
    if (textArg(args, "sort") == "signal")
        std::stable_sort(rows.begin(), rows.end(), stronger);
    return rows;
}

json kick(Host &host, const json &args) {
    Host::Bss bss = host.bss(textArg(args, "interface"));
    MacBytes mac = macOf(textArg(args, "station"));
    std::string ifname = bss.record().ifName;
    auto *disassociate = host.operation(host.module().ops->disassociateSta, "disassociateSta");
    std::vector<std::string> present;
    for (const json &row : stationsOf(host, bss))
        if (row["mac"].is_string())
            present.push_back(row["mac"]);
    if (std::count(present.begin(), present.end(), formatMac(mac)) == 0)
        throw Failure(Status::kNotFound, formatMac(mac), "is not associated with " + ifname,
                      "associated: " + joined(present));
    Host::check(disassociate(ifname.c_str(), formatMac(mac, true).c_str()), ifname, "disassociateSta");
    return {{"interface", ifname}, {"kicked", formatMac(mac)}};
}

} // namespace wlhost
