// The host's side of the control socket: what each command does to the host.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace wlhost {

class Host;
using nlohmann::json;

// Version of wlhost itself.
extern const char *const kHostVersion;

// Answers one request `{"command": ..., "args": {...}}` with `{"status": 0, "result": ...}` or
// `{"status": 3, "error": {"code", "where", "text", "hint"}}`. Never throws.
json answer(Host &host, const std::string &request);

// Whether a request asks for events as they come, behind its answer.
bool subscribes(const std::string &request);

} // namespace wlhost
