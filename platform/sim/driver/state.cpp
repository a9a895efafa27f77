#include "platform/sim/driver/state.h"

#include <nlohmann/json.hpp>

namespace wlsim {
namespace {

using nlohmann::json;

const char *stageName(Stage stage) {
    constexpr const char *kNames[] = {"down", "configured", "secured", "started"};
    return kNames[static_cast<int>(stage)];
}

const char *macModeName(MacMode mode) {
    constexpr const char *kNames[] = {"disable", "deny", "allow"};
    return kNames[static_cast<int>(mode)];
}

json orNull(const std::string &text) { return text.empty() ? json() : json(text); }

json stationState(const Station &station) {
    const StationCounters &counters = station.counters;
    return {{"mac", station.mac.text()},
            {"phy", station.phy},
            {"streams", station.streams},
            {"width_mhz", station.width},
            {"rssi_dbm", station.rssi},
            {"tx_rate_kbps", station.txRate},
            {"rx_rate_kbps", station.rxRate},
            {"security", station.security},
            {"traffic_kbps", station.trafficKbit},
            {"tx_packets", counters.txPackets},
            {"tx_bytes", counters.txBytes},
            {"rx_packets", counters.rxPackets},
            {"rx_bytes", counters.rxBytes},
            {"tx_failures", counters.txFailures},
            {"tx_retries", counters.txRetries},
            {"tx_retry_exhausted", counters.txExhausted}};
}

json bssState(Driver &driver, const Radio &radio, const Bss &bss) {
    json list = json::array(), stations = json::array();
    for (const Mac &mac : bss.macList) {
        list.push_back(mac.text());
    }
    for (const Station &station : bss.stations) {
        stations.push_back(stationState(station));
    }
    return {{"interface", bss.ifName},
            {"index", bss.index},
            {"up", bss.up},
            {"on_air", driver.onAir(radio, bss)},
            {"interface_up", driver.ports.net.up(bss.ifName)},
            {"bssid", driver.address(radio, bss).text()},
            {"bridge", orNull(driver.ports.net.bridge(bss.ifName))},
            {"ssid", escapeBytes(bss.ssid)},
            {"ssid_hex", hexText(bss.ssid)},
            {"security", bss.security.text()},
            {"refusal", orNull(bss.refusal)},
            {"macmode", macModeName(bss.macMode)},
            {"maclist", list},
            {"settings", bss.settings},
            {"stations", stations}};
}

json neighbourState(const Neighbour &ap) {
    return {{"bssid", ap.bssid.text()},
            {"ssid", escapeBytes(ap.ssid)},
            {"ssid_hex", hexText(ap.ssid)},
            {"chanspec", ap.chanspec.text()},
            {"channel", ap.chanspec.control},
            {"rssi_dbm", ap.rssi},
            {"noise_dbm", ap.noise},
            {"security", ap.security},
            {"wps", ap.wps},
            {"phy", ap.phy},
            {"streams", ap.streams},
            {"beacon_period", ap.beaconPeriod},
            {"dtim", ap.dtim},
            {"adhoc", ap.adhoc}};
}

json switchState(const ChannelSwitch &change) {
    return {{"interface", change.ifName},
            {"mode", change.mode},
            {"count", change.count},
            {"chanspec", change.target.text()},
            {"done", change.done}};
}

json radioState(Driver &driver, const Radio &radio) {
    json bsses = json::array(), neighbours = json::array(), switches = json::array();
    for (const Bss &bss : radio.bss) {
        if (bss.exists) {
            bsses.push_back(bssState(driver, radio, bss));
        }
    }
    for (const Neighbour &ap : radio.neighbours) {
        neighbours.push_back(neighbourState(ap));
    }
    for (const ChannelSwitch &change : radio.switches) {
        switches.push_back(switchState(change));
    }
    return {{"name", radio.name},
            {"band", static_cast<int>(radio.band)},
            {"dhd", radio.dhd},
            {"cpu", radio.cpu},
            {"up", radio.up},
            {"stage", stageName(radio.stage)},
            {"country", radio.country + "/" + std::to_string(radio.countryRev)},
            {"chanspec", radio.chanspec->text()},
            {"channel", radio.chanspec->control},
            {"width_mhz", radio.chanspec->width},
            {"max_width_mhz", radio.maxWidth},
            {"auto_channel", radio.autoChannel},
            {"noise_dbm", radio.noise},
            {"n", radio.n},
            {"vht", radio.vht},
            {"fixed_rate", orNull(radio.fixedRate)},
            {"beacon_period", radio.beaconPeriod},
            {"settings", radio.settings},
            {"scanned", radio.scanned.has_value()},
            {"switches", switches},
            {"neighbours", neighbours},
            {"bss", bsses}};
}

} // namespace

std::string stateJson(Driver &driver) {
    json radios = json::array();
    for (const Radio &radio : driver.model.radios) {
        radios.push_back(radioState(driver, radio));
    }
    return json{{"radios", radios}}.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

std::string stateTable(Driver &driver) {
    std::string out = format("%-8s %-9s %-17s %-6s %-20s %-26s %s\n", "IF", "STATE", "BSSID", "BRIDGE", "SSID",
                             "SECURITY", "STATIONS");
    for (const Radio &radio : driver.model.radios) {
        out += format("%s: %s GHz, %s, channel %s, %s, country %s/%ld\n", radio.name.c_str(),
                      radio.band == Band::kGhz5 ? "5" : "2.4", radio.up ? "up" : "down", radio.chanspec->text().c_str(),
                      stageName(radio.stage), radio.country.c_str(), radio.countryRev);
        for (const Bss &bss : radio.bss) {
            if (!bss.exists) {
                continue;
            }
            std::string bridge = driver.ports.net.bridge(bss.ifName);
            out += format("%-8s %-9s %-17s %-6s %-20s %-26s %zu\n", bss.ifName.c_str(),
                          driver.onAir(radio, bss) ? "on air" : "down", driver.address(radio, bss).text().c_str(),
                          bridge.empty() ? "-" : bridge.c_str(), escapeBytes(bss.ssid).c_str(),
                          bss.security.text().c_str(), bss.stations.size());
        }
    }
    return out;
}

} // namespace wlsim
