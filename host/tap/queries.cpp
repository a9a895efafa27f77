#include "host/tap/queries.h"

#include <algorithm>
#include <climits>

namespace wlhost::tap {
namespace {

struct Verb {
    const char *tool, *name;
    int most; // arguments with which it still only asks
};

constexpr int kAny = INT_MAX;
constexpr Verb kVerbs[] = {
    {"wlctl", "2g_rate", 0},
    {"wlctl", "5g_rate", 0},
    {"wlctl", "assoclist", 0},
    {"wlctl", "authe_sta_list", 0},
    {"wlctl", "autho_sta_list", 0},
    {"wlctl", "band", 0},
    {"wlctl", "beacon_info", 0},
    {"wlctl", "bss", 0},
    {"wlctl", "bssid", 0},
    {"wlctl", "cap", 0},
    {"wlctl", "chanim_stats", 0},
    {"wlctl", "channel", 0},
    {"wlctl", "channels", 0},
    {"wlctl", "chanspec", 0},
    {"wlctl", "chanspecs", kAny},
    {"wlctl", "closed", 0},
    {"wlctl", "counters", 0},
    {"wlctl", "country", 0},
    {"wlctl", "cur_etheraddr", 0},
    {"wlctl", "isup", 0},
    {"wlctl", "mac", 0},
    {"wlctl", "macmode", 0},
    {"wlctl", "maxassoc", 0},
    {"wlctl", "noise", 0},
    {"wlctl", "phytype", 0},
    {"wlctl", "rate", 0},
    {"wlctl", "rateset", 0},
    {"wlctl", "revinfo", 0},
    {"wlctl", "rssi", 1},
    {"wlctl", "rxchain", 0},
    {"wlctl", "scanresults", 0},
    {"wlctl", "ssid", 0},
    {"wlctl", "sta_info", 1},
    {"wlctl", "status", 0},
    {"wlctl", "tp_id", 0},
    {"wlctl", "txchain", 0},
    {"wlctl", "ver", 0},
    {"dhdctl", "version", 0},
    {"acs_cli", "dump", kAny},
};
constexpr const char *kFilters[] = {"awk", "cat", "grep"};

std::string toolOf(const std::vector<std::string> &words) {
    std::string name = words[0].substr(words[0].rfind('/') + 1);
    return name == "wl" ? "wlctl" : name;
}

bool namesInterface(const std::vector<std::string> &words) { return words.size() > 2 && words[1] == "-i"; }

bool onlyAsks(const std::vector<std::string> &words) {
    const std::string tool = toolOf(words);
    if (std::find(std::begin(kFilters), std::end(kFilters), tool) != std::end(kFilters))
        return true;
    const size_t verb = namesInterface(words) ? 3 : 1;
    return verb < words.size() && std::any_of(std::begin(kVerbs), std::end(kVerbs), [&](const Verb &one) {
               return tool == one.tool && words[verb] == one.name &&
                      words.size() - verb - 1 <= static_cast<size_t>(one.most);
           });
}

} // namespace

bool isQuery(const ShellLine &line) {
    return !line.background && std::all_of(line.stages.begin(), line.stages.end(), onlyAsks) &&
           std::none_of(line.redirects.begin(), line.redirects.end(), [](const Redirect &one) { return one.appends; });
}

std::string radioOf(const std::string &interface) { return interface.substr(0, interface.find('.')); }

std::string askedRadio(const ShellLine &line) {
    for (const auto &stage : line.stages)
        if (namesInterface(stage))
            return radioOf(stage[2]);
    return "";
}

} // namespace wlhost::tap
