// What the module would do: operations in dry mode, in a child of the host or in the host itself.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/base/json.h"

namespace wlhost::tap {

// A command that was held back, as the module gave it.
struct Command {
    std::string command, function;
    bool driver = false; // a call of the driver's library
    int64_t pauseMs = 0; // waited behind it, before the next one
};

// A write of the store; no value removes the variable.
struct Write {
    std::string key;
    std::optional<std::string> value;
};

// What was held back, each list in order.
struct Effects {
    std::vector<Command> commands;
    std::vector<Write> writes;
    std::vector<std::string> datagrams;
    // Queries answered by the driver as it is, although a command about the same radio had been held back before.
    std::vector<Command> presentState;
    int64_t pauseMs = 0; // all pauses
};

bool isDry();
// Since the last call; nothing when the mode is not dry.
Effects takeEffects();
// A variable as the module sees it, and as it is stored.
std::optional<std::string> storedNow(const std::string &key);
std::optional<std::string> storedReally(const std::string &key);

// Runs the steps in dry mode in a child of this process and gives their result, or throws their Failure. Nothing that
// they do to this process' memory comes back. Throws status 5 when they take longer than the limit.
json inDryRun(const std::function<json()> &steps, std::chrono::milliseconds limit);

// The same in this very process. What was held back is forgotten by goLive(), but for the result files that the module
// keeps: those that do not exist are made.
void goDry();
void goLive();

// Runs a command of the host itself, without a shell: held back in dry mode, status 0 then. The exit status, 127 when
// it could not be started; what it printed, where that is wanted.
int run(const std::string &function, const std::vector<std::string> &argv, std::string *output = nullptr,
        std::string *error = nullptr);

} // namespace wlhost::tap
