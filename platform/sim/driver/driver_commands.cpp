#include "platform/sim/driver/driver_commands.h"

#include <climits>

namespace wlsim {
namespace {

struct Command {
    const char *name;
    CommandFunction *run;
    // Number of arguments.
    size_t least, most;
    const char *usage;
};

constexpr size_t kAnyNumber = 512;

constexpr Command kCommands[] = {
    {"up", cmdUp, 0, 0, "up"},
    {"down", cmdDown, 0, 0, "down"},
    {"country", cmdCountry, 0, 1, "country [CODE[/REV]]"},
    {"chanspec", cmdChanspec, 0, 1, "chanspec [CHANSPEC]"},
    {"csa", cmdCsa, 3, 3, "csa MODE COUNT CHANSPEC"},
    {"ssid", cmdSsid, 0, 3, "ssid [-C BSS] [SSID]"},
    {"bss", cmdBss, 0, 3, "bss [-C BSS] [up|down]"},
    {"macmode", cmdMacMode, 0, 1, "macmode [0|1|2]"},
    {"mac", cmdMac, 0, kAnyNumber, "mac [none | ADDRESS...]"},
    {"cur_etheraddr", cmdAddress, 0, 1, "cur_etheraddr [ADDRESS]"},
    {"deauthenticate", cmdDeauthenticate, 1, 1, "deauthenticate ADDRESS"},
    {"scan", cmdScan, 0, 0, "scan"},
    {"cap", cmdCap, 0, 0, "cap"},
    {"revinfo", cmdRevInfo, 0, 0, "revinfo"},
    {"phytype", cmdPhyType, 0, 0, "phytype"},
    {"txchain", cmdTxChain, 0, 0, "txchain"},
    {"ver", cmdVersion, 0, 0, "ver"},
    {"tp_id", cmdTpId, 0, 0, "tp_id"},
    {"isup", cmdIsUp, 0, 0, "isup"},
    {"band", cmdBand, 0, 0, "band"},
    {"chanspecs", cmdChanspecs, 0, 6, "chanspecs [-b 2|5] [-w 20|40|80] [-c COUNTRY]"},
    {"channels", cmdChannels, 0, 0, "channels"},
    {"status", cmdStatus, 0, 0, "status"},
    {"counters", cmdCounters, 0, 0, "counters"},
    {"rateset", cmdRateSet, 0, 0, "rateset"},
    {"2g_rate", cmdRate2g, 0, 0, "2g_rate"},
    {"5g_rate", cmdRate5g, 0, 0, "5g_rate"},
    {"noise", cmdNoise, 0, 0, "noise"},
    {"bssid", cmdBssid, 0, 0, "bssid"},
    {"assoclist", cmdAssocList, 0, 0, "assoclist"},
    {"rssi", cmdRssi, 1, 1, "rssi ADDRESS"},
    {"sta_info", cmdStaInfo, 1, 1, "sta_info ADDRESS"},
    {"beacon_info", cmdBeaconInfo, 0, 0, "beacon_info"},
    {"chanim_stats", cmdChanimStats, 0, 0, "chanim_stats"},
    {"scanresults", cmdScanResults, 0, 0, "scanresults"},
};

// Numbers that the driver keeps and gives back.
struct Setting {
    const char *name;
    long lowest, highest, initial;
    bool perBss;
};
constexpr Setting kSettings[] = {
    {"leddc", 0, INT_MAX, 0x640000, false},
    {"nreqd", 0, 1, 0, false},
    {"phy_watchdog", 0, 1, 1, false},
    {"ampdu_tx_density", 0, 7, 7, false},
    {"ampdu_rx_density", 0, 7, 7, false},
    {"txbf", 0, 2, 1, false},
    {"interference_override", -1, 4, -1, false},
    {"pwr_percent", 1, 100, 100, false},
    {"aspm", 0, 0x103, 0x102, false},
    {"maxassoc", 1, 256, 128, false},
    {"fcache", 0, 1, 1, true},
    {"closed", 0, 1, 0, true},
    {"ap_isolate", 0, 1, 0, true},
    {"bss_maxassoc", 0, 256, 0, true},
    {"wmf_bss_enable", 0, 1, 0, true},
};

constexpr Command kDhdCommands[] = {{"version", cmdVersion, 0, 0, "version"}};

Reply readOrSet(const Setting &setting, std::map<std::string, long> &values, const Words &arguments) {
    if (arguments.size() > 1) {
        return refuse(format("usage: %s [%ld..%ld]", setting.name, setting.lowest, setting.highest), 2);
    }
    if (arguments.empty()) {
        auto found = values.find(setting.name);
        return done(std::to_string(found == values.end() ? setting.initial : found->second) + "\n");
    }
    auto value = parseNumber(arguments[0]);
    if (!value || *value < setting.lowest || *value > setting.highest) {
        return refuse(format("%s: bad argument %s (%ld..%ld)", setting.name, arguments[0].c_str(), setting.lowest,
                             setting.highest));
    }
    values[setting.name] = *value;
    return done();
}

Reply runCommand(const Command &command, Driver &driver, Target target, const Words &arguments) {
    if (arguments.size() < command.least || arguments.size() > command.most) {
        return refuse(format("usage: %s", command.usage), 2);
    }
    return command.run(driver, target, arguments);
}

template <typename Row, size_t N> const Row *findRow(const Row (&rows)[N], const std::string &name) {
    for (const Row &row : rows) {
        if (name == row.name) {
            return &row;
        }
    }
    return nullptr;
}

template <typename Row, size_t N> void addNames(const Row (&rows)[N], Words *names) {
    for (const Row &row : rows) {
        names->push_back(row.name);
    }
}

// The one setting that a dongle's host driver has too.
constexpr char kDhdSetting[] = "aspm";

} // namespace

Words driverCommandNames(bool dhd) {
    if (dhd) {
        return {kDhdCommands[0].name, kDhdSetting};
    }
    Words names;
    addNames(kCommands, &names);
    addNames(kSettings, &names);
    return names;
}

Reply runDriverCommand(Driver &driver, const Words &words) {
    if (words.size() < 4 || words[1] != "-i") {
        return refuse("usage: " + words[0] + " -i INTERFACE COMMAND [ARGUMENT...]", 2);
    }
    auto target = driver.find(words[2]);
    if (!target) {
        return refuse(words[2] + ": no such interface (there are: " + driver.interfaceNames() + ")");
    }
    bool dhd = words[0] == "dhdctl";
    if (dhd && !target->radio.dhd) {
        return refuse(words[2] + ": not a dongle host driver interface");
    }
    const std::string &name = words[3];
    Words arguments(words.begin() + 4, words.end());
    if (const Command *command = dhd ? findRow(kDhdCommands, name) : findRow(kCommands, name)) {
        return runCommand(*command, driver, *target, arguments);
    }
    const Setting *setting = dhd && name != kDhdSetting ? nullptr : findRow(kSettings, name);
    if (!setting) {
        return refuse(name + ": unknown command");
    }
    return readOrSet(*setting, setting->perBss ? target->bss.settings : target->radio.settings, arguments);
}

} // namespace wlsim
