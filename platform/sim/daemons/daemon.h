// What the gateway's daemons share: one instance by name, a place in the background, their log.
#pragma once

#include "platform/sim/common/sim_text.h"

#include <functional>

namespace wlsim {

struct DaemonTask {
    std::string name;
    // In the caller's foreground; throws std::runtime_error to refuse.
    std::function<void()> prepare = [] {};
    // In the background, until the daemon ends.
    std::function<void()> serve;
    // Further pid file that the platform expects; the lock is kept elsewhere.
    std::string pidFile = {};
};

// Starts a daemon: locks /var/run/NAME.pid as long as it lives, prepares, and goes to the background without a hold on
// the caller's output. Whoever asks can rely on it: lock held means running, and a start that returned 0 serves.
// Returns the exit status for the caller: 0, or 1 with the reason on stderr.
int startDaemon(const DaemonTask &task);

// Prepares and serves without lock, log file or a place of its own. Returns the exit status.
int runInForeground(const DaemonTask &task);

// The arguments, when there are at most `most` of them and none looks like an option; else usage on stderr and exit 1.
Words plainArguments(int argc, char **argv, size_t most, const char *usage);

} // namespace wlsim
