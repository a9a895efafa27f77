#include "host/base/log.h"

#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "host/base/escape.h"
#include "host/base/masking.h"
#include "host/base/times.h"
#include "host/base/word_lists.h"

namespace wlhost {
namespace {

struct LevelWord {
    LogLevel level;
    const char *word;
    int priority; // of syslog
};
constexpr LevelWord kLevels[] = {
    {LogLevel::kError, "error", LOG_ERR}, {LogLevel::kInfo, "info", LOG_INFO}, {LogLevel::kDebug, "debug", LOG_DEBUG}};

LogLevel shown = LogLevel::kError;
bool toSystem = false, muted = false;

const LevelWord &rowOf(LogLevel level) { return kLevels[static_cast<size_t>(level)]; }

// Whether stderr is the service manager's journal, which notes the time and reads the priority.
bool isServiceJournal() {
    const char *stream = getenv("JOURNAL_STREAM");
    struct stat file;
    return stream && fstat(STDERR_FILENO, &file) == 0 &&
           std::string(stream) == std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino);
}

// A backslash stays one: much of what is logged was escaped where it was found.
std::string escaped(const std::string &line) {
    std::string text;
    for (size_t at = 0, end; at <= line.size(); at = end + 1) {
        end = std::min(line.find('\\', at), line.size());
        text += escapeBytes(line.substr(at, end - at)) + (end < line.size() ? "\\" : "");
    }
    return text;
}

void logLine(LogLevel level, const char *who, const std::string &line) {
    static const bool kForJournal = isServiceJournal();
    const LevelWord &row = rowOf(level);
    const std::string text = std::string(row.word) + " " + who + ": " + escaped(masked(line));
    if (toSystem)
        syslog(row.priority, "%s", text.c_str());
    else if (kForJournal)
        fprintf(stderr, "<%d>%s\n", row.priority, text.c_str());
    else
        fprintf(stderr, "%s %s\n", utcText(std::chrono::system_clock::now()).c_str(), text.c_str());
}

} // namespace

LogLevel logLevelOf(const std::string &word) {
    for (const LevelWord &row : kLevels)
        if (word == row.word)
            return row.level;
    return LogLevel::kError;
}

const char *wordOf(LogLevel level) { return rowOf(level).word; }
LogLevel logLevel() { return shown; }
void setLogLevel(LogLevel level) { shown = level; }

void logToSystem() {
    openlog("wlhost", LOG_PID, LOG_DAEMON);
    toSystem = true;
}

void muteLog() { muted = true; }

void logText(LogLevel level, const char *who, const std::string &text) {
    if (muted || level > shown)
        return;
    for (const std::string &line : splitWords(text, '\n'))
        logLine(level, who, line);
}

} // namespace wlhost
