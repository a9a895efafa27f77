#include "host/cli/asking.h"

#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include <wlbrcm/wlbrcm.h>

#include "host/base/word_lists.h"
#include "host/control/control_socket.h"
#include "host/control/dispatch.h"
#include "host/show/results.h"
#include "host/show/tables.h"

namespace wlhost {
namespace {

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

void oneRadioOption(CLI::App &app, Values &values) {
    app.add_option("RADIO", values.radio, "Radio, such as wl0")->required();
}

void anyInterfaceOption(CLI::App &app, Values &values) {
    app.add_option("IF", values.interface, "Interface of a BSS, such as wl0.1; all without");
}

void switchOption(CLI::App &app, Values &values) {
    app.add_option("STATE", values.state, "on or off")->required()->check(CLI::IsMember({"on", "off"}));
}

void pinOption(CLI::App &app, Values &values) { app.add_option("PIN", values.pin, "4 or 8 digits")->required(); }

void waitOption(CLI::App &app, Values &values) {
    app.add_flag("--wait", values.wait, "Until the session ends; the exit status tells its result");
}

void noOptions(CLI::App &, Values &) {}

json noArgs(const Values &) { return json::object(); }
json radioArgs(const Values &values) { return {{"radio", values.radio}}; }
json interfaceArgs(const Values &values) { return {{"interface", values.interface}}; }

struct ClientCommand;
Status callCommand(const ClientCommand &command, const Values &values);

struct ClientCommand {
    const char *name, *about; // "group name" stands below its group
    void (*options)(CLI::App &, Values &);
    json (*args)(const Values &);
    std::string (*show)(const json &result);
    Status (*call)(const ClientCommand &, const Values &) = callCommand;
};

json requestOf(const ClientCommand &command, const Values &values) {
    return {{"command", command.name}, {"args", command.args(values)}};
}

// The result of an answer; throws what the host could not do.
json resultOf(const std::string &line) {
    json answer = json::parse(line);
    if (Status status = answer.at("status"); status != Status::kDone) {
        const json &error = answer.at("error");
        auto known = [&](const char *key) { return error[key].is_string() ? error[key].get<std::string>() : ""; };
        throw Failure(status, known("where"), known("text"), known("hint"));
    }
    return answer.at("result");
}

json ask(const json &request, const Values &values, const std::function<void(int)> &tick = {}) {
    return resultOf(callHost(values.socket, request.dump(), values.timeout, tick));
}

Status callCommand(const ClientCommand &command, const Values &values) {
    return show(ask(requestOf(command, values), values), values, command.show);
}

Status callScan(const ClientCommand &command, const Values &values) {
    json result;
    {
        Progress progress;
        result = ask(requestOf(command, values), values, [&](int seconds) {
            if (!values.cached)
                progress.tell(seconds, "scanning" + (seconds ? ", " + std::to_string(seconds) + " s" : std::string()));
        });
    }
    return show(result, values, command.show);
}

// What a session that ended means for who waited for it.
Status settle(const json &session, const Values &values) {
    json result = session["result"];
    if (result == "done")
        return show(session, values, showWps);
    bool timedOut = result == "timed-out" || session["state"] == "running";
    throw Failure(timedOut ? Status::kTimeout : Status::kFailed,
                  session["radio"].is_string() ? session["radio"] : "wps",
                  result == "not-taken" ? "the WPS daemon did not take the session"
                  : timedOut            ? "no station came within the time of the session"
                                        : "the session ended without a station: " + cell(result));
}

Status callSession(const ClientCommand &command, const Values &values) {
    constexpr int kGrace = 10; // for a daemon whose time runs longer than the host's
    json session = ask(requestOf(command, values), values);
    if (!values.wait)
        return show(session, values, command.show);
    {
        Progress progress;
        for (int waited = 0, over = 0; session["state"] == "running" && over < kGrace; ++waited) {
            progress.tell(waited, "waiting for a station, " + cell(session["seconds_left"]) + " s left");
            sleep(1);
            session = ask({{"command", "wps status"}}, values);
            over += session["seconds_left"] == 0;
        }
    }
    return settle(session, values);
}

Status callEvents(const ClientCommand &command, const Values &values) {
    ControlClient client(values.socket, requestOf(command, values).dump(), values.timeout);
    resultOf(client.nextLine(values.timeout));
    for (int seen = 0; values.count == 0 || seen < values.count; ++seen) {
        std::string line = client.nextLine(-1);
        std::printf("%s\n", values.json ? line.c_str() : command.show(json::parse(line)).c_str());
        if (std::fflush(stdout) != 0)
            return Status::kFailed;
    }
    return Status::kDone;
}

// Without a host there is still this program's own version to tell.
Status callVersion(const ClientCommand &command, const Values &values) {
    try {
        return callCommand(command, values);
    } catch (const Failure &failure) {
        if (failure.status != Status::kEnvironment)
            throw;
        json own = {{"host", kHostVersion}, {"abi", WLBRCM_ABI_VERSION}, {"module", nullptr}};
        return show(own, values, showMembers);
    }
}

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
    {"ssids", "SSIDs: security, bridge, filter, WPS", noOptions, noArgs, showSsids},
    {"stations", "Stations: signal, rates, traffic",
     [](CLI::App &app, Values &v) {
         app.add_option("IF", v.interface, "Interface of a BSS; all without");
         app.add_option("--sort", v.sort, "signal: the strongest first")->check(CLI::IsMember({"signal"}));
     },
     [](const Values &v) {
         return json{{"interface", v.interface}, {"sort", v.sort}};
     },
     showStations},
    {"scan", "Scan for neighbouring networks",
     [](CLI::App &app, Values &v) {
         radioOption(app, v);
         app.add_flag("--cached", v.cached, "Show what the last scan found");
     },
     [](const Values &v) {
         return json{{"radio", v.radio}, {"cached", v.cached}};
     },
     showScan, callScan},
    {"survey", "Networks on each channel, as the last scan counted them", radioOption, radioArgs, showSurvey},
    {"rates", "Rates: the highest, the current one, basic and supported ones", radioOption, radioArgs, showRates},
    {"load", "How busy the channel of a BSS is", anyInterfaceOption, interfaceArgs, showLoad},
    {"beacon", "What the beacon of a BSS announces", anyInterfaceOption, interfaceArgs, showBeacon},
    {"kick", "Send a station away; it may come back",
     [](CLI::App &app, Values &v) { interfaceOption(app, v), stationOption(app, v, true); },
     [](const Values &v) {
         return json{{"interface", v.interface}, {"station", v.station}};
     },
     showMembers},
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
     [](CLI::App &app, Values &v) { interfaceOption(app, v), switchOption(app, v); },
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
         oneRadioOption(app, v);
         app.add_option("ADDR", v.address, "Address")->required();
     },
     [](const Values &v) {
         return json{{"radio", v.radio}, {"mac", v.address}};
     },
     showMembers},
    {"wps push-button", "Let the station in whose button is pressed too",
     [](CLI::App &app, Values &v) {
         radioOption(app, v);
         app.add_flag("--hardware", v.hardware, "As the gateway's own button does; the module picks the radio");
         waitOption(app, v);
     },
     [](const Values &v) {
         return json{{"radio", v.radio}, {"hardware", v.hardware}};
     },
     showWps, callSession},
    {"wps pin", "Let the station in that has this PIN",
     [](CLI::App &app, Values &v) { oneRadioOption(app, v), pinOption(app, v), waitOption(app, v); },
     [](const Values &v) {
         return json{{"radio", v.radio}, {"pin", v.pin}};
     },
     showWps, callSession},
    {"wps check-pin", "Whether a PIN is one", pinOption,
     [](const Values &v) {
         return json{{"pin", v.pin}};
     },
     showMembers},
    {"wps cancel", "End the session", oneRadioOption, radioArgs, showWps},
    {"wps status", "The session: state, seconds left, result", noOptions, noArgs, showWps},
    {"wps apply", "Take over what a session agreed on", oneRadioOption, radioArgs, showMembers},
    {"events", "Follow the stations' coming and going; with --json a document a line",
     [](CLI::App &app, Values &v) {
         app.add_option("--count", v.count, "End after so many")->check(CLI::PositiveNumber);
     },
     noArgs, showEvent, callEvents},
    {"forward", "Pass driver events on to the steering agent, or stop that", switchOption,
     [](const Values &v) {
         return json{{"state", v.state}};
     },
     showMembers},
    {"version", "Versions of host, module and interface; the radios found", noOptions, noArgs, showMembers,
     callVersion},
};

// "wps pin" is the subcommand pin of wps.
CLI::App *subcommand(CLI::App &app, const ClientCommand &command) {
    std::string name = command.name;
    size_t blank = name.find(' ');
    if (blank == std::string::npos)
        return app.add_subcommand(name, command.about);
    auto sameGroup = [&](const CLI::App *known) { return known->get_name() == name.substr(0, blank); };
    auto known = app.get_subcommands(sameGroup);
    CLI::App *group = known.empty() ? nullptr : known.front();
    if (!group) {
        group = app.add_subcommand(name.substr(0, blank), "Wi-Fi Protected Setup");
        group->require_subcommand(1);
        group->fallthrough();
    }
    return group->add_subcommand(name.substr(blank + 1), command.about);
}

} // namespace

Status show(const json &result, const Values &values, std::string (*text)(const json &)) {
    std::fputs((values.json ? result.dump(2) + "\n" : text(result)).c_str(), stdout);
    return Status::kDone;
}

std::string absolutePath(const std::string &path) {
    char resolved[PATH_MAX];
    return !path.empty() && realpath(path.c_str(), resolved) ? resolved : path;
}

void addClientCommands(CLI::App &app, Values &values, Action &action) {
    for (const ClientCommand &command : kClientCommands) {
        CLI::App *sub = subcommand(app, command);
        command.options(*sub, values);
        sub->callback([&action, &command, &values] { action = [&] { return command.call(command, values); }; });
    }
}

} // namespace wlhost
