// The host's log: on stderr, or with --syslog in the system's.
#pragma once

#include <string>

namespace wlhost {

enum class LogLevel { kError, kInfo, kDebug };

// "error", "info" or "debug"; the least detailed for any other word.
LogLevel logLevelOf(const std::string &word);
const char *wordOf(LogLevel level);
LogLevel logLevel();
void setLogLevel(LogLevel level);
void logToSystem();
// Nothing is logged any more: in replay the module says again what the log of the field said.
void muteLog();

// One line for each line of the text, when its level is shown. `who` is the part of the host that says it, "module" or
// "command" for the words of others. Secrets are masked and foreign bytes escaped.
void logText(LogLevel level, const char *who, const std::string &text);

} // namespace wlhost
