#include "host/commands/radio_status.h"

#include <cstring>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/failure.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/values.h"

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

json stateOf(const WlIntf &intf, const json &items) {
    if (!intf.radio.radioOn)
        return "off";
    if (intf.state == WLBRCM_STATE_SETTING_UP)
        return "configuring";
    if (intf.state != WLBRCM_STATE_READY)
        return "idle";
    json live = items.value("RadioStatus", json());
    return live.is_null() ? json("ready") : live == "Up" ? json("up") : json("down");
}

json stationCount(const WlModuleOps &ops, WlIntf &intf) {
    if (!ops.getAssocDevList)
        return nullptr;
    List<WlStaInfo> list;
    int rc = ops.getAssocDevList(&intf, -1, list.place(), list.countPlace());
    return rc != 0 ? json() : json(list.size());
}

json enabledSsids(const WlIntf &intf) {
    int enabled = 0;
    for (size_t i = 0; i < intf.radio.bssCount && i < WLBRCM_MAX_BSS; ++i)
        enabled += intf.bss[i].enable != 0;
    return enabled;
}

const char *ssidState(Host &host, const WlIntf &intf, const WlSsidCfg &record) {
    if (!record.enable || !intf.radio.radioOn)
        return "off";
    if (record.presetRole != WLBRCM_PRESET_ON_DEMAND)
        return "on";
    auto known = host.presets.find(record.ifName);
    return known != host.presets.end() && known->second ? "on" : "standby";
}

const char *wpsState(const WlSsidCfg &record) {
    return !record.wpsEnable ? "off" : record.wpsConfigured ? "configured" : "unconfigured";
}

json radioStatus(Host &host, WlIntf &intf) {
    const WlModuleOps &ops = *host.module().ops;
    json live = json::object();
    if (ops.statusUpdate)
        live = readItems(ops, intf, {"RadioStatus", "CurChannel", "CurBandwidth", "Noise", "MaxBitRate"});
    auto configured = [](unsigned value) { return unlessZero(json(value)); };
    json channel = ops.statusUpdate ? unlessZero(live["CurChannel"]) : configured(intf.radio.channel);
    json width = ops.statusUpdate ? live["CurBandwidth"] : configured(intf.radio.bandwidth);
    return {{"radio", intf.intfName},
            {"band", intf.bandCode == WLBRCM_BANDCODE_5G ? "5GHz" : "2.4GHz"},
            {"channel", channel},
            {"width_mhz", width},
            {"state", stateOf(intf, live)},
            {"max_rate_mbps", unlessZero(live.value("MaxBitRate", json()))},
            {"noise_dbm", unlessZero(live.value("Noise", json()))},
            {"ssids", enabledSsids(intf)},
            {"stations", stationCount(ops, intf)}};
}

json ssidStatus(Host &host, const Host::Bss &bss) {
    const WlSsidCfg &record = bss.record();
    auto mac = parseMac(record.macText);
    return {{"interface", record.ifName},
            {"radio", bss.intf->intfName},
            {"ssid", escapeBytes(record.ssidName)},
            {"ssid_hex", toHex(record.ssidName)},
            {"security", securityName(record)},
            {"bridge", orNull(record.bridge)},
            {"bssid", mac ? json(formatMac(*mac)) : json()},
            {"filter", filterMode(record)},
            {"wps", wpsState(record)},
            {"state", ssidState(host, *bss.intf, record)}};
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

json statusItems(Host &host, WlIntf &intf, const std::vector<std::string> &names) {
    host.operation(host.module().ops->statusUpdate, "statusUpdate");
    return readItems(*host.module().ops, intf, names);
}

json status(Host &host, const json &args) {
    std::vector<std::string> names = listArg(args, "items");
    json rows = json::array();
    for (WlIntf *intf : radiosArg(host, args)) {
        if (names.empty())
            rows.push_back(radioStatus(host, *intf));
        else
            rows.push_back({{"radio", intf->intfName}, {"items", statusItems(host, *intf, names)}});
    }
    return rows;
}

json ssids(Host &host, const json &) {
    json rows = json::array();
    for (const Host::Bss &bss : host.allBss())
        rows.push_back(ssidStatus(host, bss));
    return rows;
}

} // namespace wlhost
