#include <climits>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/radio_status.h"
#include "host/commands/values.h"
#include "host/verify/world.h"

namespace wlhost {
namespace {

constexpr BitName kCiphers[] = {{0x1, "tkip"}, {0x2, "ccmp"}};

// By the WPA bits of a record; a report does not tell an open network from a WEP one.
struct Security {
    const char *psk, *other;
};
constexpr Security kSecurity[] = {
    {"open/wep", "open/wep"}, {"psk", "wpa"}, {"psk2", "wpa2"}, {"psk-mixed", "wpa-mixed"}};

const char *securityOf(const WlScanAp &ap) {
    constexpr uint16_t kPsk = 2;
    const Security &row = kSecurity[ap.security & 3];
    return ap.akm == kPsk ? row.psk : row.other;
}

// "6,9,12" as numbers; what is none is left out.
json rateList(const std::string &text) {
    json list = json::array();
    for (const std::string &word : splitWords(text, ',')) {
        char *end = nullptr;
        double rate = std::strtod(word.c_str(), &end);
        if (end == word.c_str() || *end != '\0' || rate <= 0 || rate > 100000)
            continue;
        if (rate == static_cast<int>(rate))
            list.push_back(static_cast<int>(rate));
        else
            list.push_back(rate);
    }
    return list;
}

json bandName(int band) {
    return band == WLBRCM_BAND_2G ? json("2.4GHz") : band == WLBRCM_BAND_5G ? json("5GHz") : json();
}

json apRow(const WlIntf &intf, const WlScanAp &ap) {
    auto bssid = parseMac(ap.bssid);
    return {{"radio", intf.intfName},
            {"bssid", bssid ? json(formatMac(*bssid)) : json()},
            {"ssid", escapeBytes(ap.ssid)},
            {"ssid_hex", toHex(ap.ssid)},
            {"band", bandName(ap.band)},
            {"channel", unlessZero(ap.channel)},
            {"width_mhz", unlessZero(ap.bandwidth)},
            {"signal_dbm", unlessZero(ap.rssi)},
            {"noise_dbm", unlessZero(ap.noise)},
            {"security", securityOf(ap)},
            {"ciphers", bitNames(ap.ciphers, kCiphers)},
            {"modes", bitNames(ap.phyModes, kPhyModes)},
            {"wps", ap.wps != 0},
            {"ad_hoc", ap.mode == 0 ? json() : json(ap.mode == 2)},
            {"beacon_interval_tu", unlessZero(ap.beaconPeriod)},
            {"dtim_period", unlessZero(ap.dtimPeriod)},
            {"basic_rates_mbps", rateList(ap.basicRates)},
            {"supported_rates_mbps", rateList(ap.supportedRates)}};
}

void checkReport(int rc, const WlIntf &intf) {
    if (rc != 0)
        throw Failure(Status::kFailed, intf.intfName,
                      "there is no scan report; getChanScanRpt returned " + std::to_string(rc),
                      std::string("scan first: wlhost scan ") + intf.intfName);
}

// The module's report is empty, and no failure, when a command behind it failed.
void demandReports(Host &host, const WlIntf &intf) {
    World world(host);
    const std::vector<std::string> commands[] = {{"wlctl", "-i", intf.intfName, "scanresults"},
                                                 {"acs_cli", "-i", intf.intfName, "dump", "bss"}};
    for (const auto &command : commands)
        if (const ToolAnswer &answer = world.tool(command); !answer)
            throw Failure(Status::kFailed, intf.intfName, "there is no scan report; " + answer.said,
                          std::string("scan first: wlhost scan ") + intf.intfName);
}

json channelRow(const WlIntf &intf, const WlChanScanInfo &channel, const json &current) {
    return {{"radio", intf.intfName},
            {"band", channel.band == 2 ? "2.4GHz" : "5GHz"},
            {"channel", channel.channel},
            {"bss_count", channel.bssNum},
            {"current", channel.channel == current}};
}

json currentChannel(Host &host, WlIntf &intf) {
    return host.module().ops->statusUpdate ? statusItems(host, intf, {"CurChannel"})["CurChannel"] : json();
}

// The file that the item "DataTransmitRates" leaves: "<list>:BasR" and "<list>:SupR".
json readRates(const WlIntf &intf) {
    std::string path = std::string("/tmp/") + intf.radio.ifName + "DataTxRates.txt";
    std::ifstream file(path);
    if (!file)
        throw Failure(Status::kFailed, path, "cannot be read");
    json found = {{"BasR", nullptr}, {"SupR", nullptr}};
    for (std::string line; std::getline(file, line);) {
        size_t colon = line.rfind(':');
        std::string kind = colon == std::string::npos ? "" : line.substr(colon + 1);
        if (found.contains(kind))
            found[kind] = rateList(line.substr(0, colon));
    }
    return found;
}

// "866 Mbps" or "500 kbps"
json rateKbps(const json &text) {
    if (!text.is_string())
        return nullptr;
    std::istringstream stream(text.get<std::string>());
    unsigned rate = 0;
    std::string unit;
    if (!(stream >> rate >> unit) || (unit != "Mbps" && unit != "kbps"))
        return nullptr;
    return unlessZero(static_cast<uint64_t>(rate) * (unit == "Mbps" ? 1000 : 1));
}

} // namespace

json scan(Host &host, const json &args) {
    const WlModuleOps &ops = *host.module().ops;
    auto *channelScan = host.operation(ops.channelScan, "channelScan");
    auto *report = host.operation(ops.getChanScanRpt, "getChanScanRpt");
    bool cached = flagArg(args, "cached");
    json rows = json::array();
    for (WlIntf *intf : radiosArg(host, args)) {
        if (!cached)
            Host::check(channelScan(intf), intf->intfName, "channelScan");
        demandReports(host, *intf);
        List<WlChanScanInfo> channels;
        List<WlScanAp> aps;
        checkReport(report(intf, channels.place(), channels.countPlace(), aps.place(), aps.countPlace()), *intf);
        for (const WlScanAp &ap : aps)
            rows.push_back(apRow(*intf, ap));
    }
    return rows;
}

json survey(Host &host, const json &args) {
    auto *report = host.operation(host.module().ops->getChanScanRpt, "getChanScanRpt");
    json rows = json::array();
    for (WlIntf *intf : radiosArg(host, args)) {
        demandReports(host, *intf);
        List<WlChanScanInfo> channels;
        List<WlScanAp> aps;
        checkReport(report(intf, channels.place(), channels.countPlace(), aps.place(), aps.countPlace()), *intf);
        json current = currentChannel(host, *intf);
        for (const WlChanScanInfo &channel : channels)
            if (channel.valid)
                rows.push_back(channelRow(*intf, channel, current));
    }
    return rows;
}

json rates(Host &host, const json &args) {
    json rows = json::array();
    for (WlIntf *intf : radiosArg(host, args)) {
        demandDriver(host, *intf);
        json items = statusItems(host, *intf, {"DataTransmitRates", "MaxBitRate", "CurRate"});
        if (items["DataTransmitRates"] != "Done")
            throw Failure(Status::kFailed, intf->intfName, "the driver did not tell its rates", "is the radio up?");
        json lists = readRates(*intf);
        rows.push_back({{"radio", intf->intfName},
                        {"max_rate_mbps", unlessZero(items["MaxBitRate"])},
                        {"current_rate_kbps", rateKbps(items["CurRate"])},
                        {"basic_rates_mbps", lists["BasR"]},
                        {"supported_rates_mbps", lists["SupR"]}});
    }
    return rows;
}

json load(Host &host, const json &args) {
    auto *getLoad = host.operation(host.module().ops->getFatIntfInfo, "getFatIntfInfo");
    bool all = textArg(args, "interface").empty();
    json rows = json::array();
    for (const Host::Bss &bss : bssArg(host, args)) {
        // The BSSs of a radio share its channel.
        if (all && bss.index > 0)
            continue;
        demandDriver(host, *bss.intf);
        int free = INT_MIN;
        Host::check(getLoad(bss.intf->radio.ifName, bss.number(), &free), bss.record().ifName, "getFatIntfInfo");
        if (free == INT_MIN && !all)
            throw Failure(Status::kFailed, bss.record().ifName, "the driver gave no channel statistics",
                          "is the BSS up?");
        bool known = free != INT_MIN;
        rows.push_back({{"interface", bss.record().ifName},
                        {"radio", bss.intf->intfName},
                        {"free_percent", known ? json(free) : json()},
                        {"busy_percent", known ? json(int64_t{100} - free) : json()}});
    }
    return rows;
}

} // namespace wlhost
