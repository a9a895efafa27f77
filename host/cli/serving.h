// `wlhost run`: the host itself.
#pragma once

#include <string>

#include "host/base/failure.h"

namespace wlhost {

struct RunOptions {
    std::string config, library, socket;
    bool json = false, once = false;
};

// Brings the configured radios up and serves until a signal ends it.
Status runHost(const RunOptions &options);

// Starts the same command in a simulated gateway whose control socket appears at `options.socket`. Returns only by
// throwing a Failure.
[[noreturn]] void runInGateway(const RunOptions &options, const std::string &logLevel);

} // namespace wlhost
