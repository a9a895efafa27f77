// The first steps of a host, taken or only planned.
#pragma once

#include <memory>
#include <set>
#include <string>

#include "host/state/host.h"

namespace wlhost {

// What a start would do: loads the library and brings the radios up in a process of its own with every effect held
// back. Throws what the radios cannot do. With `fresh`, radios that are as wanted already count as any other.
json planStart(const std::string &library, const Config &config, bool fresh);

// What the radios will surely not do; empty where there are none or no module.
json warningsBeforeStart(const std::string &library, const Config &config);

// Radios of such a plan that are left as they are.
std::set<std::string> adoptedBy(const json &plan);

// Loads the library and lets it start. What the module's start does to radios (it takes them down) is held back for the
// adopted ones.
std::unique_ptr<Host> startHost(const std::string &library, Config config, const std::set<std::string> &adopted);

} // namespace wlhost
