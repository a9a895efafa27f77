// What this machine lacks to be a gateway.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace wlhost {

// Rows of `check`, `result` ("ok", "missing"), `required` and `hint`. Looks and changes nothing.
nlohmann::json examine(const std::string &library, const std::string &socket);

} // namespace wlhost
