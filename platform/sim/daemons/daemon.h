/** @file
 * What the gateway's daemons share: one instance by name, a place in the background, their log.
 */
#ifndef WLSIM_DAEMON_H
#define WLSIM_DAEMON_H

#include <functional>
#include <string>
#include <vector>

namespace wlsim {

struct DaemonTask {
    std::string name;
    std::function<void()> prepare = [] {}; ///< in the caller's foreground; throws std::runtime_error to refuse
    std::function<void()> serve;           ///< in the background, does not return
    std::string pidFile = {};              ///< further pid file that the platform expects; the lock is kept elsewhere
};

/** Starts a daemon: locks /var/run/NAME.pid as long as it lives, prepares, and goes to the background without a hold on
 * the caller's output. Whoever asks can rely on it: lock held means running, and a start that returned 0 serves.
 * @return exit status for the caller: 0, or 1 with the reason on stderr. */
int startDaemon(const DaemonTask &task);

/** The arguments, when there are at most `most` of them and none looks like an option; else usage on stderr and exit 1.
 */
std::vector<std::string> plainArguments(int argc, char **argv, std::size_t most, const char *usage);

/** A variable of the configuration store; `absent` when it is not set. */
std::string variable(const std::string &key, const std::string &absent = "");

/** The words of a list separated by any of `separators`. */
std::vector<std::string> words(const std::string &list, const char *separators = " ");

} // namespace wlsim

#endif
