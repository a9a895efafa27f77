// The JSON values that requests, results and configurations are made of.
#pragma once

#include <nlohmann/json.hpp>

namespace wlhost {

using nlohmann::json;

} // namespace wlhost
