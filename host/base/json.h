// The JSON values that requests, results and configurations are made of.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace wlhost {

using nlohmann::json;

// The text of a value, on one line unless there is an indentation. Texts of drivers, files and tools end up in values:
// bytes of theirs that are no UTF-8 come out as U+FFFD, where json::dump() would throw.
std::string dumped(const json &value, int indent = -1);

} // namespace wlhost
