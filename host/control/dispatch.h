// Requests of the control socket, answered from the table of commands.
#pragma once

#include <unistd.h>

#include <string>

#include "host/base/json.h"

namespace wlhost {

class Host;
struct Command;

struct Request {
    const Command *command; // that a host answers
    json args;              // those it takes, each of the right type
};
// Reads `{"command": ..., "args": {...}}`, which may be any bytes. Throws a Failure with status 2.
Request readRequest(const std::string &text);

// Answers one request with `{"status": 0, "result": ...}` or
// `{"status": 3, "error": {"code", "where", "text", "hint"}}`. A result may come with another status than 0: the
// command was carried out, and what it found is not well. Never throws.
json answer(Host &host, const std::string &request, uid_t user = geteuid());
// Who asked for what is being answered.
uid_t askingUser();

// What a request wants to be told about as it comes, behind its answer; empty for nothing.
std::string topicOf(const std::string &request);

} // namespace wlhost
