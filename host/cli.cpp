#include "cli.h"

#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <functional>

#include <algorithm>
#include <sstream>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "config.h"
#include "control.h"
#include "doctor.h"
#include "fields.h"
#include "module.h"
#include "output.h"
#include "run.h"

namespace wlhost {
namespace {

// What options and arguments of all commands are read into.
struct Values {
    std::string socket, library, config, radio, interface, mode, state, station, address, items;
    std::vector<std::string> stations;
    std::string logLevel = "error";
    int timeout = 120;
    bool json = false, all = false, once = false, sim = false;
};

// A path as the host finds it, which has its own working directory.
std::string absolutePath(const std::string &path) {
    char resolved[PATH_MAX];
    return !path.empty() && realpath(path.c_str(), resolved) ? resolved : path;
}

json splitItems(const std::string &text) {
    json items = json::array();
    std::istringstream stream(text);
    for (std::string item; std::getline(stream, item, ',');)
        if (!item.empty())
            items.push_back(item);
    return items;
}

void radioOption(CLI::App &app, Values &values) { app.add_option("RADIO", values.radio, "Radio, such as wl0"); }

void interfaceOption(CLI::App &app, Values &values) {
    app.add_option("IF", values.interface, "Interface of a BSS, such as wl0.1")->required();
}

void stationOption(CLI::App &app, Values &values, bool required) {
    app.add_option("MAC", values.station, "Station")->required(required);
}

std::string itemRows(const json &result) {
    json rows = json::array();
    for (const json &radio : result)
        for (const auto &[name, value] : radio["items"].items())
            rows.push_back(
                {{"radio", radio["radio"]}, {"item", name}, {"value", value.is_object() ? json(value.dump()) : value}});
    return table({{"RADIO", "radio"}, {"ITEM", "item"}, {"VALUE", "value"}}, rows);
}

std::string showStatus(const json &result) {
    if (!result.empty() && result[0].contains("items"))
        return itemRows(result);
    return table({{"RADIO", "radio"},
                  {"BAND", "band"},
                  {"CHAN", "channel", true},
                  {"WIDTH", "width_mhz", true},
                  {"STATE", "state"},
                  {"MAXRATE", "max_rate_mbps", true},
                  {"NOISE", "noise_dbm", true},
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

struct ClientCommand {
    const char *name, *about;
    void (*options)(CLI::App &, Values &);
    json (*args)(const Values &);
    std::string (*show)(const json &result);
};

const ClientCommand kClientCommands[] = {
    {"status", "Radios: channel, state, rates, stations",
     [](CLI::App &app, Values &v) {
         radioOption(app, v);
         app.add_option("--items", v.items, "Raw status items instead, joined by commas");
     },
     [](const Values &v) {
         return json{{"radio", v.radio}, {"items", splitItems(v.items)}};
     },
     showStatus},
    {"ssids", "SSIDs: security, bridge, filter, WPS", [](CLI::App &, Values &) {},
     [](const Values &) { return json::object(); }, showSsids},
    {"reload", "Take the configuration file over again: the radios that it changes, or RADIO",
     [](CLI::App &app, Values &v) {
         radioOption(app, v);
         app.add_option("--config", v.config, "Another file, which takes the place of the first");
         app.add_flag("--all", v.all, "Unchanged radios as well");
     },
     [](const Values &v) {
         return json{{"radio", v.radio}, {"config", absolutePath(v.config)}, {"all", v.all}};
     },
     showReload},
    {"filter", "Show the MAC filter of an SSID, or set the user's side of it",
     [](CLI::App &app, Values &v) {
         interfaceOption(app, v);
         app.add_option("MODE", v.mode, "deny, allow or off")->check(CLI::IsMember({"deny", "allow", "off"}));
         app.add_option("MAC", v.stations, "Stations");
     },
     [](const Values &v) {
         return json{{"interface", v.interface}, {"mode", v.mode}, {"stations", v.stations}};
     },
     showFilter},
    {"ban", "Deny a station until unban, whatever the user's filter says",
     [](CLI::App &app, Values &v) { interfaceOption(app, v), stationOption(app, v, true); },
     [](const Values &v) {
         return json{{"interface", v.interface}, {"station", v.station}};
     },
     showFilter},
    {"unban", "Admit a banned station again",
     [](CLI::App &app, Values &v) {
         interfaceOption(app, v);
         stationOption(app, v, false);
         app.add_flag("--all", v.all, "Every banned station of the SSID");
     },
     [](const Values &v) {
         return json{{"interface", v.interface}, {"station", v.station}, {"all", v.all}};
     },
     showFilter},
    {"preset", "Switch an on-demand SSID",
     [](CLI::App &app, Values &v) {
         interfaceOption(app, v);
         app.add_option("STATE", v.state, "on or off")->required()->check(CLI::IsMember({"on", "off"}));
     },
     [](const Values &v) {
         return json{{"interface", v.interface}, {"state", v.state}};
     },
     showMembers},
    {"lan", "Take the LAN groups of a configuration file over",
     [](CLI::App &app, Values &v) { app.add_option("CONFIG", v.config, "Configuration file")->required(); },
     [](const Values &v) {
         return json{{"config", absolutePath(v.config)}};
     },
     showLan},
    {"mac", "Set the address of a radio's interface",
     [](CLI::App &app, Values &v) {
         app.add_option("RADIO", v.radio, "Radio, such as wl0")->required();
         app.add_option("ADDR", v.address, "Address")->required();
     },
     [](const Values &v) {
         return json{{"radio", v.radio}, {"mac", v.address}};
     },
     showMembers},
    {"version", "Versions of host, module and interface; the radios found", [](CLI::App &, Values &) {},
     [](const Values &) { return json::object(); }, showMembers},
};

// Prints a result in the form that was asked for.
int show(const json &result, const Values &values, std::string (*text)(const json &)) {
    std::fputs((values.json ? result.dump(2) + "\n" : text(result)).c_str(), stdout);
    return kDone;
}

int callCommand(const ClientCommand &command, const Values &values) {
    json request = {{"command", command.name}, {"args", command.args(values)}};
    json answer = json::parse(callHost(values.socket, request.dump(), values.timeout));
    if (int status = answer.at("status"); status != kDone) {
        printError(answer.at("error"), values.json);
        return status;
    }
    return show(answer.at("result"), values, command.show);
}

// Without a host there is still this program's own version to tell.
int showVersion(const ClientCommand &command, const Values &values) {
    try {
        return callCommand(command, values);
    } catch (const Failure &failure) {
        if (failure.status != kEnvironment)
            throw;
        json own = {{"host", kHostVersion}, {"abi", WLBRCM_ABI_VERSION}, {"module", nullptr}};
        return show(own, values, showMembers);
    }
}

int doctor(const Values &values) {
    json rows = examine(libraryName(values.library), values.socket);
    show(rows, values, [](const json &result) {
        return table({{"CHECK", "check"}, {"RESULT", "result"}, {"REQUIRED", "required"}, {"HINT", "hint"}}, result);
    });
    bool lacking = std::any_of(rows.begin(), rows.end(),
                               [](const json &row) { return row["required"] == true && row["result"] != "ok"; });
    return lacking ? kEnvironment : kDone;
}

int run(const Values &values) {
    setLogLevel(values.logLevel == "debug"  ? WLBRCM_LOG_DEBUG
                : values.logLevel == "info" ? WLBRCM_LOG_INFO
                                            : WLBRCM_LOG_ERR);
    RunOptions options{absolutePath(values.config), values.library, values.socket, values.json, values.once};
    if (values.sim)
        runInGateway(options, values.logLevel);
    return runHost(options);
}

using Action = std::function<int()>;

void addClientCommands(CLI::App &app, Values &values, Action &action) {
    for (const ClientCommand &command : kClientCommands) {
        CLI::App *sub = app.add_subcommand(command.name, command.about);
        command.options(*sub, values);
        bool version = std::string(command.name) == "version";
        sub->callback([&action, &command, &values, version] {
            action = [&, version] { return version ? showVersion(command, values) : callCommand(command, values); };
        });
    }
}

void addLocalCommands(CLI::App &app, Values &values, Action &action) {
    CLI::App *host = app.add_subcommand("run", "Be the host: bring the configured radios up and serve");
    host->add_option("CONFIG", values.config, "Configuration file")->required();
    host->add_flag("--sim", values.sim, "Run in a simulated gateway of its own");
    host->add_flag("--once", values.once, "Bring the radios up and end");
    host->add_option("--library", values.library, "The module (WLHOST_LIBRARY)");
    host->add_option("--log-level", values.logLevel, "Of the module's log on stderr")
        ->check(CLI::IsMember({"error", "info", "debug"}));
    host->callback([&] { action = [&] { return run(values); }; });

    CLI::App *examiner = app.add_subcommand("doctor", "What this machine lacks to be a gateway");
    examiner->add_option("--library", values.library, "The module (WLHOST_LIBRARY)");
    examiner->callback([&] { action = [&] { return doctor(values); }; });

    CLI::App *check = app.add_subcommand("check", "Check a configuration file and apply nothing");
    check->add_option("CONFIG", values.config, "Configuration file")->required();
    check->callback([&] {
        action = [&] {
            Config config = Config::load(values.config);
            return show({{"config", values.config}, {"radios", config.radios.size()}}, values, showMembers);
        };
    });

    CLI::App *schema = app.add_subcommand("schema", "Print the JSON schema of the configuration file");
    schema->callback([&] {
        action = [] {
            std::printf("%s\n", configSchema().dump(2).c_str());
            return kDone;
        };
    });
}

bool asksForJson(int argc, char **argv) {
    return std::any_of(argv, argv + argc, [](const char *word) { return std::string(word) == "--json"; });
}

} // namespace

int commandLine(int argc, char **argv) {
    CLI::App app{"Reference host of the Wi-Fi driver adaptation module"};
    app.name("wlhost");
    app.require_subcommand(1);
    app.fallthrough();
    Values values;
    Action action;
    app.add_option("--socket", values.socket, "Control socket (WLHOST_SOCKET, /tmp/wlhost.sock)");
    app.add_option("--timeout", values.timeout, "Seconds to wait for the host")->check(CLI::Range(1, 3600));
    app.add_flag("--json", values.json, "One JSON document on stdout, errors too");
    addLocalCommands(app, values, action);
    addClientCommands(app, values, action);
    try {
        app.parse(argc, argv);
        values.socket = socketPath(values.socket);
        return action();
    } catch (const CLI::CallForHelp &help) {
        return app.exit(help);
    } catch (const CLI::ParseError &error) {
        printError(Failure(kUsage, "arguments", error.what(), "see wlhost --help"), asksForJson(argc, argv));
        return kUsage;
    } catch (const Failure &failure) {
        printError(failure, values.json);
        return failure.status;
    } catch (const std::exception &error) {
        printError(Failure(kFailed, "internal", error.what()), values.json);
        return kFailed;
    }
}

} // namespace wlhost
