#include "host/show/results.h"

#include <algorithm>
#include <cstdio>

#include "host/show/tables.h"

namespace wlhost {
namespace {

std::string withUnit(const json &value, const char *unit) {
    return value.is_null() ? cell(value) : cell(value) + " " + unit;
}
std::string mhz(const json &value) { return withUnit(value, "MHz"); }
std::string dbm(const json &value) { return withUnit(value, "dBm"); }
std::string db(const json &value) { return withUnit(value, "dB"); }
std::string mbps(const json &value) { return withUnit(value, "Mbit/s"); }
std::string percent(const json &value) { return withUnit(value, "%"); }
std::string seconds(const json &value) { return withUnit(value, "s"); }
std::string slashed(const json &value) {
    std::string text = cell(value);
    std::replace(text.begin(), text.end(), ' ', '/');
    return text;
}

std::string text(const json &value) { return value.is_string() ? value.get<std::string>() : ""; }

std::string oneDecimal(double value) {
    char text[32];
    std::snprintf(text, sizeof text, value < 100 ? "%.1f" : "%.0f", value);
    return text;
}

std::string kbps(const json &value) {
    return value.is_number() ? oneDecimal(value.get<double>() / 1000) + " Mbit/s" : cell(value);
}

std::string bytes(const json &value) {
    constexpr const char *kUnits[] = {"kB", "MB", "GB", "TB"};
    if (!value.is_number() || value < 1000)
        return withUnit(value, "B");
    double scaled = value.get<double>() / 1000;
    size_t unit = 0;
    for (; scaled >= 1000 && unit < 3; ++unit)
        scaled /= 1000;
    return oneDecimal(scaled) + " " + kUnits[unit];
}

std::string itemRows(const json &result) {
    json rows = json::array();
    for (const json &radio : result)
        for (const auto &[name, value] : radio["items"].items())
            rows.push_back(
                {{"radio", radio["radio"]}, {"item", name}, {"value", value.is_object() ? json(value.dump()) : value}});
    return table({{"RADIO", "radio"}, {"ITEM", "item"}, {"VALUE", "value"}}, rows);
}

} // namespace

std::string showStatus(const json &result) {
    if (!result.empty() && result[0].contains("items"))
        return itemRows(result);
    return table({{"RADIO", "radio"},
                  {"BAND", "band"},
                  {"CHAN", "channel", true},
                  {"WIDTH", "width_mhz", true, mhz},
                  {"STATE", "state"},
                  {"MAXRATE", "max_rate_mbps", true, mbps},
                  {"NOISE", "noise_dbm", true, dbm},
                  {"SSIDS", "ssids", true},
                  {"STAS", "stations", true}},
                 result);
}

std::string showSsids(const json &result) {
    return table({{"IF", "interface"},
                  {"SSID", "ssid"},
                  {"SECURITY", "security"},
                  {"BRIDGE", "bridge"},
                  {"BSSID", "bssid"},
                  {"FILTER", "filter"},
                  {"WPS", "wps"},
                  {"STATE", "state"}},
                 result);
}

std::string showReload(const json &result) {
    return table({{"RADIO", "radio"}, {"ACTION", "action"}}, result["radios"]) + "lan " +
           result["lan"].get<std::string>() + "\n";
}

std::string showFilter(const json &result) {
    json rows = {{{"interface", result["interface"]},
                  {"side", "user"},
                  {"mode", result["mode"]},
                  {"stations", result["stations"]}},
                 {{"interface", result["interface"]},
                  {"side", "run-time"},
                  {"mode", result["denied"].empty() ? "off" : "deny"},
                  {"stations", result["denied"]}}};
    return table({{"IF", "interface"}, {"SIDE", "side"}, {"MODE", "mode"}, {"STATIONS", "stations"}}, rows);
}

std::string showLan(const json &result) {
    return table({{"BRIDGE", "name"}, {"MAC", "mac"}, {"PORTS", "ports"}}, result["groups"]);
}

// An object as lines of name and value.
std::string showMembers(const json &result) {
    json rows = json::array();
    for (const auto &[name, value] : result.items())
        rows.push_back({{"name", name}, {"value", value}});
    std::string text = table({{"", "name"}, {"", "value"}}, rows);
    return text.substr(text.find('\n') + 1);
}

std::string showStations(const json &result) {
    return table({{"MAC", "mac"},
                  {"IF", "interface"},
                  {"MODE", "mode"},
                  {"WIDTH", "width_mhz", true, mhz},
                  {"SIGNAL", "signal_dbm", true, dbm},
                  {"SNR", "snr_db", true, db},
                  {"RX", "rx_rate_kbps", true, kbps},
                  {"TX", "tx_rate_kbps", true, kbps},
                  {"RX-BYTES", "rx_bytes", true, bytes},
                  {"TX-BYTES", "tx_bytes", true, bytes},
                  {"RETRIES", "tx_retries", true},
                  {"AUTH", "authenticated"}},
                 result);
}

std::string showScan(const json &result) {
    return table({{"BSSID", "bssid"},
                  {"SSID", "ssid"},
                  {"BAND", "band"},
                  {"CHAN", "channel", true},
                  {"WIDTH", "width_mhz", true, mhz},
                  {"SIGNAL", "signal_dbm", true, dbm},
                  {"SECURITY", "security"},
                  {"MODES", "modes", false, slashed},
                  {"WPS", "wps"}},
                 result);
}

std::string showSurvey(const json &result) {
    constexpr uint64_t kWidest = 40;
    uint64_t most = kWidest;
    for (const json &row : result)
        most = std::max(most, row["bss_count"].get<uint64_t>());
    json rows = json::array();
    for (json row : result) {
        uint64_t count = row["bss_count"];
        // What is there shows, however crowded another channel is.
        row["bar"] = std::string(static_cast<size_t>((count * kWidest + most - 1) / most), '#');
        row["place"] = cell(row["channel"]) + (row["current"] == true ? "*" : " ");
        rows.push_back(row);
    }
    return table({{"RADIO", "radio"},
                  {"BAND", "band"},
                  {"CHAN ", "place", true},
                  {"BSS", "bss_count", true},
                  {"", "bar", false, text}},
                 rows);
}

std::string showRates(const json &result) {
    json rows = json::array();
    for (const json &radio : result) {
        auto add = [&](const char *what, const std::string &value) {
            rows.push_back({{"radio", radio["radio"]}, {"what", what}, {"value", value}});
        };
        add("highest", mbps(radio["max_rate_mbps"]));
        add("current", kbps(radio["current_rate_kbps"]));
        add("basic", mbps(radio["basic_rates_mbps"]));
        add("supported", mbps(radio["supported_rates_mbps"]));
    }
    return table({{"RADIO", "radio"}, {"RATES", "what"}, {"", "value"}}, rows);
}

std::string showLoad(const json &result) {
    return table(
        {{"IF", "interface"}, {"BUSY", "busy_percent", true, percent}, {"FREE", "free_percent", true, percent}},
        result);
}

std::string showBeacon(const json &result) {
    json rows = json::array();
    for (const json &bss : result) {
        auto add = [&](const char *element, const json &from, const char *channel) {
            json row = {{"interface", bss["interface"]}, {"element", element}, {"announces", from["capabilities"]}};
            if (channel)
                row.update({{"streams", from["streams"]}, {"channel", from[channel]}});
            rows.push_back(row);
        };
        add("802.11", bss, nullptr);
        if (bss["ht"].is_object())
            add("HT", bss["ht"], "primary_channel");
        if (bss["vht"].is_object())
            add("VHT", bss["vht"], "center_channel");
    }
    return table({{"IF", "interface"},
                  {"ELEMENT", "element"},
                  {"STREAMS", "streams", true},
                  {"CHAN", "channel", true},
                  {"ANNOUNCES", "announces"}},
                 rows);
}

std::string showWps(const json &result) {
    return table({{"RADIO", "radio"},
                  {"METHOD", "method"},
                  {"STATE", "state"},
                  {"LEFT", "seconds_left", true, seconds},
                  {"RESULT", "result"}},
                 json::array({result}));
}

std::string showEvent(const json &event) {
    std::string line = cell(event["sequence"]) + " " + cell(event["time"]) + " " + cell(event["interface"]) + " " +
                       cell(event["mac"]) + " " + cell(event["event"]);
    if (event.contains("signal_dbm"))
        line += " " + cell(event["mode"]) + " " + mhz(event["width_mhz"]) + " " + dbm(event["signal_dbm"]);
    return line;
}

} // namespace wlhost
