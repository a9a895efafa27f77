#include "host/commands/radio_status.h"

#include <algorithm>
#include <cstring>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/failure.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/station_rows.h"
#include "host/commands/values.h"
#include "host/verify/readers.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

enum class ItemType { kNumber, kText, kCounters };

struct KnownItem {
    const char *name;
    ItemType type;
    bool partial = false; // found anywhere in a name
};

// The items whose values this host can read, in the order in which the module looks a name up.
constexpr KnownItem kKnownItems[] = {{"20M_Channel", ItemType::kText},
                                     {"40M_UpperChannel", ItemType::kText},
                                     {"40M_LowerChannel", ItemType::kText},
                                     {"80M_Channel", ItemType::kText},
                                     {"MaxBitRate", ItemType::kNumber},
                                     {"RadioStatus", ItemType::kText},
                                     {"CurChannel", ItemType::kNumber},
                                     {"CurRate", ItemType::kText},
                                     {"WPSStatus", ItemType::kNumber},
                                     {"CurBandwidth", ItemType::kNumber},
                                     {"CurChanspec", ItemType::kNumber},
                                     {"SideBand", ItemType::kNumber},
                                     {"Noise", ItemType::kNumber},
                                     {"TrafficInfo", ItemType::kCounters, true},
                                     {"DataTransmitRates", ItemType::kText, true}};

const KnownItem *findItem(const char *name) {
    for (const KnownItem &item : kKnownItems)
        if (item.partial ? std::strstr(name, item.name) != nullptr : std::strcmp(name, item.name) == 0)
            return &item;
    return nullptr;
}

json countersOf(const void *block) {
    WlTrafficCounters counters;
    std::memcpy(&counters, block, sizeof counters);
    return {{"tx_bytes", counters.txbyte},       {"rx_bytes", counters.rxbyte},   {"tx_frames", counters.txframe},
            {"tx_errors", counters.txerror},     {"rx_frames", counters.rxframe}, {"rx_errors", counters.rxerror},
            {"tx_no_assoc", counters.txnoassoc}, {"rx_bad_da", counters.rxbadda}};
}

// A block tells neither its type nor its size. One of an item that a newer module added stays closed.
json valueOf(const char *name, const void *block) {
    const KnownItem *item = findItem(name);
    if (!item || !block)
        return nullptr;
    if (item->type == ItemType::kText)
        return escapeBytes(static_cast<const char *>(block));
    if (item->type == ItemType::kCounters)
        return countersOf(block);
    int32_t number;
    std::memcpy(&number, block, sizeof number);
    return number;
}

json readItems(const WlModuleOps &ops, WlIntf &intf, const std::vector<std::string> &names) {
    std::vector<WlStatusItem> items;
    for (const std::string &name : names)
        items.push_back({name.c_str(), 0, nullptr});
    int rc = ops.statusUpdate(&intf, items.data(), static_cast<int>(items.size()));
    json values = json::object();
    for (size_t i = 0; i < items.size(); ++i) {
        Block<void> block(items[i].value);
        values[names[i]] = valueOf(items[i].name, block.get());
    }
    Host::check(rc, intf.intfName, "statusUpdate");
    return values;
}

// Stations of every SSID that has an interface to ask.
json stationCount(Host &host, World &world, const WlIntf &intf) {
    size_t count = 0;
    for (const Host::Bss &bss : host.allBss())
        if (bss.intf == &intf && bss.record().enable && world.hasInterface(bss.record().ifName))
            count += driverStations(world, bss.record().ifName).size();
    return count;
}

json enabledSsids(const WlIntf &intf) {
    int enabled = 0;
    for (size_t i = 0; i < intf.radio.bssCount && i < WLBRCM_MAX_BSS; ++i)
        enabled += intf.bss[i].enable != 0;
    return enabled;
}

const char *wpsState(const WlSsidCfg &record) {
    return !record.wpsEnable ? "off" : record.wpsConfigured ? "configured" : "unconfigured";
}

// Members of a row that are not as asked for, by the checks behind them.
struct Member {
    const char *check, *name;
};

template <size_t Size> json differences(const Findings &findings, const Member (&members)[Size]) {
    json names = json::array();
    for (const Finding &finding : findings) {
        for (const Member &member : members) {
            bool differs = !finding.holds && finding.check == member.check;
            if (differs && std::count(names.begin(), names.end(), member.name) == 0)
                names.push_back(member.name);
        }
    }
    return names;
}

const Finding *findingOf(const Findings &findings, const char *check) {
    auto found = std::find_if(findings.begin(), findings.end(), [&](const Finding &one) { return one.check == check; });
    return found == findings.end() ? nullptr : &*found;
}

bool isFound(const Findings &findings, const char *check, const char *text) {
    const Finding *finding = findingOf(findings, check);
    return finding && finding->found == text;
}

json radioStatus(Host &host, World &world, WlIntf &intf) {
    constexpr Member kMembers[] = {{"radio", "state"}, {"channel", "channel"}};
    const WlModuleOps &ops = *host.module().ops;
    Findings findings = examine(host, world, intf, kOfRadio, intf.intfName);
    demandAnswers(findings);
    bool up = isFound(findings, "radio", "up");
    json live = json::object();
    if (ops.statusUpdate)
        live = readItems(ops, intf, {"Noise", "MaxBitRate"});
    auto channel = up ? readChanspec(world.driver(intf.intfName, "chanspec").out) : std::nullopt;
    return {{"radio", intf.intfName},
            {"band", intf.bandCode == WLBRCM_BANDCODE_5G ? "5GHz" : "2.4GHz"},
            {"channel", channel ? json(channel->channel) : json()},
            {"width_mhz", channel ? json(channel->width) : json()},
            {"state", findingOf(findings, "radio")->found},
            {"max_rate_mbps", unlessZero(live.value("MaxBitRate", json()))},
            {"noise_dbm", unlessZero(live.value("Noise", json()))},
            {"ssids", enabledSsids(intf)},
            {"stations", stationCount(host, world, intf)},
            {"differs", differences(findings, kMembers)}};
}

// The checks of one BSS, and whether its radio is up.
Findings findingsOf(Host &host, World &world, const Host::Bss &bss) {
    Findings all = examine(host, world, *bss.intf, kOfRadio | kOfBss | kOfInterface | kOfBridge | kOfFilter | kOfWps,
                           bss.record().ifName);
    auto isOther = [](const Finding &one) { return one.interface.empty() && one.check != "radio"; };
    all.erase(std::remove_if(all.begin(), all.end(), isOther), all.end());
    demandAnswers(all);
    return all;
}

const char *ssidState(const Findings &findings) {
    bool interfaceUp = !findingOf(findings, "interface") || isFound(findings, "interface", "up");
    if (isFound(findings, "radio", "up") && interfaceUp && isFound(findings, "BSS", "on air"))
        return "on";
    return isFound(findings, "BSS", "off") ? "off" : isFound(findings, "BSS", "standby") ? "standby" : "down";
}

json ssidStatus(Host &host, World &world, const Host::Bss &bss) {
    constexpr Member kMembers[] = {{"radio", "state"},       {"interface", "state"}, {"BSS", "state"},
                                   {"SSID", "ssid"},         {"bridge", "bridge"},   {"security", "security"},
                                   {"MAC filter", "filter"}, {"WPS", "wps"}};
    const WlSsidCfg &record = bss.record();
    Findings findings = findingsOf(host, world, bss);
    auto mac = parseMac(record.macText);
    return {{"interface", record.ifName},
            {"radio", bss.intf->intfName},
            {"ssid", escapeBytes(record.ssidName)},
            {"ssid_hex", toHex(record.ssidName)},
            {"security", securityName(record)},
            {"bridge", orNull(world.bridgeOf(record.ifName).c_str())},
            {"bssid", mac ? json(formatMac(*mac)) : json()},
            {"filter", filterMode(record)},
            {"wps", wpsState(record)},
            {"state", ssidState(findings)},
            {"differs", differences(findings, kMembers)}};
}

} // namespace

std::string securityName(const WlSsidCfg &record) {
    for (const SecurityKind &kind : kSecurityKinds)
        if (std::strcmp(kind.authMode, record.authMode) == 0 && std::strcmp(kind.encryption, record.encryption) == 0)
            return kind.name;
    return std::string(record.authMode) + "/" + record.encryption;
}

const char *filterMode(const WlSsidCfg &record) {
    std::string mode = record.macFilterMode;
    return mode == "DENY" ? "deny" : mode == "ALLOW" ? "allow" : "off";
}

void demandDriver(const Host &host, const WlIntf &intf) {
    if (ToolAnswer answer = host.platform->run({"wlctl", "-i", intf.intfName, "isup"}); !answer)
        throw Failure(Status::kFailed, intf.intfName, "the driver does not answer: " + answer.said,
                      "wlhost verify shows more");
}

json statusItems(Host &host, WlIntf &intf, const std::vector<std::string> &names) {
    host.operation(host.module().ops->statusUpdate, "statusUpdate");
    return readItems(*host.module().ops, intf, names);
}

json status(Host &host, const json &args) {
    std::vector<std::string> names = listArg(args, "items");
    json rows = json::array();
    World world(host);
    for (WlIntf *intf : radiosArg(host, args)) {
        if (names.empty()) {
            rows.push_back(radioStatus(host, world, *intf));
            continue;
        }
        demandDriver(host, *intf);
        rows.push_back({{"radio", intf->intfName}, {"items", statusItems(host, *intf, names)}});
    }
    return rows;
}

json ssids(Host &host, const json &) {
    json rows = json::array();
    World world(host);
    for (const Host::Bss &bss : host.allBss())
        rows.push_back(ssidStatus(host, world, bss));
    return rows;
}

} // namespace wlhost
