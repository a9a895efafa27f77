#include "platform/sim/common/sim_log.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

namespace wlsim {
namespace {

// A full log becomes the old one, so that the two together stay below twice this size.
constexpr off_t kMostBytes = 2 << 20;
constexpr char kHidden[] = "(hidden)";

std::string timeText() {
    timeval now{};
    gettimeofday(&now, nullptr);
    tm parts{};
    gmtime_r(&now.tv_sec, &parts);
    char text[32];
    strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    return text + format(".%03dZ", static_cast<int>(now.tv_usec / 1000));
}

// Whoever holds the lock and still finds its file under the name moves it; the others write into it once more.
void turnOver(int fd, const std::string &path) {
    struct stat ours {
    }, named{};
    bool full = fstat(fd, &ours) == 0 && ours.st_size >= kMostBytes && flock(fd, LOCK_EX | LOCK_NB) == 0;
    if (full && stat(path.c_str(), &named) == 0 && named.st_ino == ours.st_ino &&
        rename(path.c_str(), (path + ".1").c_str()) == 0) {
        close(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    }
}

bool endsWith(const std::string &text, const std::string &end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

} // namespace

std::string logPath() {
    const char *path = getenv("WLSIM_LOG");
    return path && *path ? path : "/var/log/gateway.log";
}

void logLine(const char *kind, const std::string &text) {
    std::string path = logPath();
    int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (fd < 0) {
        return;
    }
    std::string line = timeText() + " " + program_invocation_short_name + " " + kind + " " + escapeBytes(text) + "\n";
    if (write(fd, line.data(), line.size()) > 0) {
        turnOver(fd, path);
    }
    close(fd);
}

void logCommand(const Words &words, int status, const std::string &reason) {
    Words shown = words;
    for (size_t i = 0; i + 1 < shown.size(); i++) {
        if (shown[i] == "--passphrase" || shown[i] == "--pin") {
            shown[i + 1] = kHidden;
        }
    }
    std::string why = reason.substr(0, reason.find('\n'));
    logLine("command", joinWords(shown) + " -> " + std::to_string(status) + (why.empty() ? "" : " " + why));
}

std::string shownValue(const std::string &key, const std::string &value) {
    for (const char *end : {"_psk", "_pin", "radius_key", "_key1", "_key2", "_key3", "_key4"}) {
        if (endsWith(key, end) && !value.empty()) {
            return kHidden;
        }
    }
    return value;
}

} // namespace wlsim
