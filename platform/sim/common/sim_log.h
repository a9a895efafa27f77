// The gateway's log: what happened, one line each. docs/simulator.md describes its format.
#pragma once

#include "platform/sim/common/sim_text.h"

namespace wlsim {

// WLSIM_LOG, or /var/log/gateway.log.
std::string logPath();

// Appends a line to the log file. The boot makes the file; where there is none, as outside a gateway, nothing is
// written.
void logLine(const char *kind, const std::string &text);

// A command and how it ended. The reason may be empty.
void logCommand(const Words &words, int status, const std::string &reason);

// What the log may show of a variable: keys, passphrases and PINs stay hidden.
std::string shownValue(const std::string &key, const std::string &value);

} // namespace wlsim
