// The time of day.
#pragma once

#include <string>

namespace wlhost {

// "2026-03-01T08:15:04.077Z"
std::string utcNow();

} // namespace wlhost
