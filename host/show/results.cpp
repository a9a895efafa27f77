#include "host/show/results.h"

#include <algorithm>

#include "host/show/units.h"

namespace wlhost {
namespace {

std::string itemRows(const json &result) {
    json rows = json::array();
    for (const json &radio : result) {
        for (const auto &[name, value] : radio["items"].items()) {
            json shown = value.is_object() ? json(dumped(value)) : value;
            rows.push_back({{"radio", radio["radio"]}, {"item", name}, {"value", shown}});
        }
    }
    return table({{"RADIO", "radio"}, {"ITEM", "item"}, {"VALUE", "value", false, nullptr, true}}, rows);
}

// What was done, as one would type it.
std::string deed(const json &entry) {
    const std::string kind = entry["kind"], what = entry["what"];
    return kind == "nvram"      ? "nvram " + what
           : kind == "pause"    ? "sleep " + what
           : kind == "datagram" ? "send " + what
                                : what;
}

} // namespace

std::string showRows(const json &result, const std::vector<Column> &columns) { return table(columns, result); }

std::string showStatus(const json &result, const std::vector<Column> &columns) {
    return !result.empty() && result[0].contains("items") ? itemRows(result) : table(columns, result);
}

std::string showFindings(const json &result, const std::vector<Column> &columns) {
    json rows = json::array();
    for (json row : result["findings"]) {
        row["place"] = !row["interface"].is_null() ? row["interface"] : row["radio"];
        if (!row["said"].is_null())
            row["found"] = "no answer: " + row["said"].get<std::string>();
        rows.push_back(row);
    }
    return rows.empty() ? "ok\n" : table(columns, rows);
}

std::string showWhy(const json &result, const std::vector<Column> &columns) {
    json rows = json::array();
    for (const json &check : result["checks"]) {
        json row = check;
        if (row["holds"] == false)
            row.update({{"differs", {"found"}}, {"found", result["found"]}});
        rows.push_back(row);
        if (row["holds"] == false)
            break;
    }
    if (result["link"].is_null())
        return table(columns, rows) + "nothing stands in the way\n";
    auto line = [&](const char *name) { return std::string(name) + ": " + cell(result[name]) + "\n"; };
    return table(columns, rows) + line("why") + line("cure");
}

std::string showFilter(const json &result, const std::vector<Column> &columns) {
    json rows = {{{"interface", result["interface"]},
                  {"side", "user"},
                  {"mode", result["mode"]},
                  {"stations", result["stations"]}},
                 {{"interface", result["interface"]},
                  {"side", "run-time"},
                  {"mode", result["denied"].empty() ? "off" : "deny"},
                  {"stations", result["denied"]}}};
    return table(columns, rows);
}

std::string showLan(const json &result, const std::vector<Column> &columns) { return table(columns, result["groups"]); }

// An object as lines of name and value.
std::string showMembers(const json &result, const std::vector<Column> &) {
    json rows = json::array();
    for (const auto &[name, value] : result.items())
        rows.push_back({{"name", name}, {"value", value}});
    std::string text = table({{"", "name"}, {"", "value"}}, rows);
    return text.substr(text.find('\n') + 1);
}

std::string showSurvey(const json &result, const std::vector<Column> &columns) {
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
    return table(columns, rows);
}

std::string showRates(const json &result, const std::vector<Column> &columns) {
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
    return table(columns, rows);
}

std::string showBeacon(const json &result, const std::vector<Column> &columns) {
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
    return table(columns, rows);
}

std::string showSession(const json &result, const std::vector<Column> &columns) {
    std::string text = table(columns, json::array({result}));
    return result["next"].is_string() ? text + "next: " + result["next"].get<std::string>() + "\n" : text;
}

std::string showReplay(const json &result, const std::vector<Column> &) {
    auto side = [](const json &call, const json &function) {
        return (call.is_null() ? "no such call" : cell(call)) +
               (function.is_null() ? std::string() : " (" + cell(function) + ")") + "\n";
    };
    std::string text;
    for (const json &one : result["differences"]) {
        text += "operation " + cell(one["number"]) + " " + cell(one["operation"]) +
                (one["radio"].is_null() ? "" : " " + cell(one["radio"])) + ", call " + cell(one["call"]) +
                ":\n  archive: " + side(one["archive"], one["archive_function"]) +
                "  module:  " + side(one["module"], one["module_function"]);
    }
    const size_t more = result["difference_count"].get<size_t>() - result["differences"].size();
    text += more ? std::to_string(more) + " more differences\n" : "";
    for (const json &gap : result["gaps"])
        text += "operations " + cell(gap["from"]) + " to " + cell(gap["to"]) +
                " are not in the archive; what the module remembered of them may make differences behind them\n";
    return text + (result["same"] == true ? "same: " : "different: ") + cell(result["operations"]) + " operations, " +
           cell(result["calls"]) + " calls\n";
}

std::string showEvent(const json &event, const std::vector<Column> &) {
    // Behind what every event has: what one may tell more, with the word before it.
    constexpr const char *kMore[][2] = {{"method", ""},
                                        {"state", ""},
                                        {"result", ""},
                                        {"config", ""},
                                        {"count", ""},
                                        {"reason", ""},
                                        {"reason_code", "reason "},
                                        {"status_code", "status "}};
    std::string line;
    for (const char *key : {"sequence", "time", "interface", "mac", "event"})
        line += (line.empty() ? "" : " ") + cell(event.value(key, json()));
    if (line.compare(0, 4, "- - ") == 0)
        line = cell(event["event"]); // of the following itself
    if (event.contains("signal_dbm"))
        line += " " + cell(event["mode"]) + " " + mhz(event["width_mhz"]) + " " + dbm(event["signal_dbm"]);
    else if (event.value("interface", json()).is_null() && event.value("radio", json()).is_string())
        line += " " + event["radio"].get<std::string>();
    for (const auto &[key, word] : kMore)
        if (json value = event.value(key, json()); !value.is_null() && value != 0)
            line += " " + (word + cell(value));
    return line;
}

std::string showEntry(const json &entry) {
    const std::string status = entry["status"] == 0 ? "" : " (status " + cell(entry["status"]) + ")";
    return timeOfDay(entry["time"]) + " " + cell(entry["operation"]) + " " + cell(entry["function"]) + ": " +
           deed(entry) + status;
}

std::string showJournal(const json &result, const std::vector<Column> &columns) {
    json rows = result;
    for (json &row : rows)
        row["what"] = deed(row);
    return showRows(rows, columns);
}

} // namespace wlhost
