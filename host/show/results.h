// Results of commands as a person reads them.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace wlhost {

using nlohmann::json;

std::string showStatus(const json &result);
std::string showSsids(const json &result);
std::string showReload(const json &result);
std::string showFilter(const json &result);
std::string showLan(const json &result);
std::string showStations(const json &result);
std::string showScan(const json &result);
std::string showSurvey(const json &result);
std::string showRates(const json &result);
std::string showLoad(const json &result);
std::string showBeacon(const json &result);
std::string showWps(const json &result);
// An object as lines of name and value.
std::string showMembers(const json &result);
// One line, without its end.
std::string showEvent(const json &event);

} // namespace wlhost
