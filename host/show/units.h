// Values with their units, for cells of a table; unknown ones are "-".
#pragma once

#include <string>

#include "host/base/json.h"

namespace wlhost {

std::string mhz(const json &value);
std::string dbm(const json &value);
std::string db(const json &value);
std::string mbps(const json &value);
std::string percent(const json &value);
std::string seconds(const json &value);
// "2026-01-31T10:00:00.123Z" as "10:00:00.123".
std::string timeOfDay(const json &value);
// An exit status: "ok" for 0.
std::string exitText(const json &value);
// 866000 as "866 Mbit/s".
std::string kbps(const json &value);
// 1500 as "1.5 kB".
std::string bytes(const json &value);
// A list joined by slashes.
std::string slashed(const json &value);
// A text, empty when it is unknown.
std::string plain(const json &value);

} // namespace wlhost
