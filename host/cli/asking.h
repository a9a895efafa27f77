// The commands that ask a running host.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "host/base/failure.h"

namespace wlhost {

using nlohmann::json;

// What options and arguments of all commands are read into.
struct Values {
    std::string socket, library, config, radio, interface, mode, state, station, address, items, pin, sort;
    std::vector<std::string> stations;
    std::string logLevel = "error";
    int timeout = 120, count = 0;
    bool json = false, all = false, once = false, sim = false, cached = false, hardware = false, wait = false;
};

// What the command line asks for; gives the exit status.
using Action = std::function<Status()>;

void addClientCommands(CLI::App &app, Values &values, Action &action);

// Prints a result in the form that was asked for.
Status show(const json &result, const Values &values, std::string (*text)(const json &));

// A path as the host finds it, which has its own working directory.
std::string absolutePath(const std::string &path);

} // namespace wlhost
