/** @file
 * How a tool asks the running driver.
 */
#pragma once

#include <string>
#include <vector>

namespace wlsim {

/** Exit status of a request that found no driver. */
constexpr int kNoDriver = 7;

/** Where the driver listens: WLSIM_SOCKET, or /var/sim/driver.sock. */
std::string socketPath();

/** Whether a driver accepts requests. */
bool driverAccepts();

/**
 * Runs one command line in the driver.
 * @param words   the tool and its arguments: {"wlctl", "-i", "wl0", "chanspec"}.
 * @param output  receives the standard output; may be null.
 * @param errors  receives the error text; null sends it to standard error.
 * @return the command's exit status, or kNoDriver.
 */
int request(const std::vector<std::string> &words, std::string *output, std::string *errors = nullptr);

} // namespace wlsim
