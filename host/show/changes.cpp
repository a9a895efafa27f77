// Plans and their outcome as a person reads them.
#include <cstdio>

#include "host/base/word_lists.h"
#include "host/show/results.h"

namespace wlhost {
namespace {

std::string duration(const json &ms) {
    if (!ms.is_number())
        return "stays down";
    char text[64];
    std::snprintf(text, sizeof text, "down for about %.1f s", ms.get<double>() / 1000);
    return text;
}

// "02:00:00:00:00:01 on wl0"
std::string stationList(const json &drops) {
    std::vector<std::string> stations;
    for (const json &drop : drops)
        stations.push_back(cell(drop["mac"]) + " on " + cell(drop["interface"]));
    return joined(stations, "no station");
}

std::string value(const json &stored) {
    return stored.is_null() ? "not stored" : "\"" + stored.get<std::string>() + "\"";
}

std::string nvramLines(const json &part) {
    std::string text;
    for (const json &row : part["nvram"])
        text += "  nvram  " + cell(row["key"]) + ": " + value(row["old"]) + " -> " + value(row["new"]) + "\n";
    for (const json &row : part["commands"])
        text += "  run    " + cell(row["command"]) + "\n";
    return text;
}

// What happens besides: who loses the network, what leaves the air, what is undone. A line each, behind `start`.
std::string consequences(const json &radio, const std::string &start) {
    std::string text;
    if (radio["down_ms"] != 0 || !radio["drops"].empty())
        text += start + "drops  " + stationList(radio["drops"]) + "; " + duration(radio["down_ms"]) + "\n";
    if (!radio["off"].empty())
        text += start + "off    " + cell(radio["off"]) + "\n";
    for (const json &row : radio["undone"])
        text += start + "undone " + cell(row["what"]) + " of " + cell(row["interface"]) + ", as set at run time\n";
    return text;
}

std::string reasonOf(const json &radio) {
    const json reason = radio.value("reason", json());
    return reason.is_string() ? ": " + reason.get<std::string>() : "";
}

} // namespace

std::string showPlan(const json &plan, const std::vector<Column> &) {
    std::string text;
    for (const json &radio : plan["radios"]) {
        text += cell(radio["radio"]) + "  " + cell(radio["operation"]) + reasonOf(radio) + "\n";
        text += consequences(radio, "  ") + nvramLines(radio);
    }
    for (const json &name : plan["missing"])
        text += cell(name) + "  missing\n";
    if (std::string lan = nvramLines(plan["lan"]); !lan.empty())
        text += "lan\n" + lan;
    return text;
}

std::string showRadios(const json &result, const std::vector<Column> &columns) {
    std::string text = table(columns, result["radios"]);
    for (const json &radio : result["radios"])
        if (radio.contains("drops"))
            text += consequences(radio, "  " + cell(radio["radio"]) + ": ");
    return text;
}

std::string showReload(const json &result, const std::vector<Column> &columns) {
    std::string text = showRadios(result, columns) + "lan " + result["lan"].get<std::string>() + "\n";
    if (!result["undone"].empty())
        text += "undone LAN groups, as set by wlhost lan\n";
    if (!result["daemons_started"].empty())
        text += "started " + cell(result["daemons_started"]) + "\n";
    if (json seconds = result.value("rollback_seconds", json()); seconds.is_number())
        text += "the configuration before comes back in " + seconds.dump() + " s, unless: wlhost confirm\n";
    return text;
}

} // namespace wlhost
