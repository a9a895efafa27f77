#include "status.h"

#include <cstring>

#include "failure.h"
#include "text.h"

namespace wlhost {
namespace {

constexpr const char *kNumberItems[] = {"MaxBitRate",  "CurChannel", "WPSStatus", "CurBandwidth",
                                        "CurChanspec", "SideBand",   "Noise"};

bool contains(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }

json countersOf(const void *block) {
    WlTrafficCounters counters;
    std::memcpy(&counters, block, sizeof counters);
    return {{"tx_bytes", counters.txbyte},       {"rx_bytes", counters.rxbyte},   {"tx_frames", counters.txframe},
            {"tx_errors", counters.txerror},     {"rx_frames", counters.rxframe}, {"rx_errors", counters.rxerror},
            {"tx_no_assoc", counters.txnoassoc}, {"rx_bad_da", counters.rxbadda}};
}

// The kind of a value follows from the item's name, in the module's order: exact names first.
json valueOf(const std::string &name, const void *block) {
    if (!block)
        return nullptr;
    for (const char *number : kNumberItems)
        if (name == number) {
            int32_t value;
            std::memcpy(&value, block, sizeof value);
            return value;
        }
    if (contains(name, "TrafficInfo"))
        return countersOf(block);
    return escapeBytes(static_cast<const char *>(block));
}

json readItems(const WlModuleOps &ops, WlIntf &intf, const std::vector<std::string> &names) {
    std::vector<WlStatusItem> items;
    for (const std::string &name : names)
        items.push_back({name.c_str(), 0, nullptr});
    int rc = ops.statusUpdate(&intf, items.data(), static_cast<int>(items.size()));
    json values = json::object();
    for (size_t i = 0; i < items.size(); ++i) {
        Block<void> block(items[i].value);
        values[names[i]] = valueOf(names[i], block.get());
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

json orNull(const std::string &text) { return text.empty() ? json() : json(text); }

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

} // namespace

std::string securityName(const WlSsidCfg &record) {
    for (const SecurityKind &kind : kSecurityKinds)
        if (std::strcmp(kind.authMode, record.authMode) == 0 && std::strcmp(kind.encryption, record.encryption) == 0)
            return kind.name;
    return std::string(record.authMode) + "/" + record.encryption;
}

json statusItems(Host &host, WlIntf &intf, const std::vector<std::string> &names) {
    host.operation(host.module().ops->statusUpdate, "statusUpdate");
    return readItems(*host.module().ops, intf, names);
}

json rawItems(Host &host, WlIntf &intf, const std::vector<std::string> &names) {
    return {{"radio", intf.intfName}, {"items", statusItems(host, intf, names)}};
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

const char *filterMode(const WlSsidCfg &record) {
    std::string mode = record.macFilterMode;
    return mode == "DENY" ? "deny" : mode == "ALLOW" ? "allow" : "off";
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

} // namespace wlhost
