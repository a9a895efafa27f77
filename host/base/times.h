// Times as they are shown and asked for.
#pragma once

#include <chrono>
#include <string>

namespace wlhost {

using WallTime = std::chrono::system_clock::time_point;

// "2026-01-31T10:00:00.123Z".
std::string utcText(WallTime time);
// Reads such a time, without a fraction too, in local time without the Z; without a date it is one of today, in UTC; or
// how long ago: "90", "90s", "10m", "2h", "1d". Throws a Failure with status 2.
WallTime timeOf(const std::string &text, WallTime now = std::chrono::system_clock::now());

} // namespace wlhost
