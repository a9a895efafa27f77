#include "host/tap/dry.h"

#include <cerrno>
#include <cstring>

#include "host/base/word_lists.h"
#include "host/tap/queries.h"
#include "host/tap/tap.h"

namespace wlhost::tap {
namespace {

constexpr int64_t kPerSecond = 1000000000, kPerMillisecond = 1000000;

int nothing() {
    errno = EAGAIN;
    return -1;
}

} // namespace

Effects DryHandler::takeEffects() {
    Effects taken;
    std::swap(taken, effects_);
    return taken;
}

void DryHandler::holdBack(const std::string &command, const std::string &function, bool driver) {
    effects_.commands.push_back({command, function, driver});
    for (const std::string &word : splitWords(command))
        changedRadios_.insert(radioOf(word));
}

// The line of a command that only asks; noted when what is held back may have changed the answer.
std::optional<ShellLine> DryHandler::asQuery(const std::string &command) {
    std::optional<ShellLine> line = parseLine(command);
    if (!line || !isQuery(*line))
        return std::nullopt;
    if (changedRadios_.count(askedRadio(*line)))
        effects_.presentState.push_back({command, functionOf(command), false});
    return line;
}

// What a query writes goes to a file in memory under the name that the module opens: the name itself is also the host's
// and other programs'.
int DryHandler::answer(const std::string &command, const ShellLine &line) {
    std::string text = command;
    std::vector<int> kept;
    for (auto redirect = line.redirects.rbegin(); redirect != line.redirects.rend(); ++redirect) {
        if (redirect->reads || redirect->file == "/dev/null")
            continue;
        kept.push_back(files_.create(redirect->file));
        text.replace(redirect->at, redirect->length, "/proc/self/fd/" + std::to_string(kept.back()));
    }
    int rc = platform().system(text.c_str());
    for (int fd : kept)
        platform().fcntl(fd, F_SETFD, FD_CLOEXEC);
    return rc;
}

int DryHandler::runForHost(const std::string &function, const Words &argv, std::string *output, std::string *error) {
    for (std::string *text : {output, error})
        if (text)
            text->clear();
    holdBack(quotedLine(argv), function, false);
    return 0;
}

int DryHandler::system(const char *command) {
    if (auto line = asQuery(command))
        return answer(command, *line);
    holdBack(command, functionOf(command), false);
    return 0;
}

FILE *DryHandler::popen(const char *command, const char *type) {
    if (asQuery(command))
        return Handler::popen(command, type);
    holdBack(command, functionOf(command), false);
    FILE *stream = fopen("/dev/null", "re");
    empty_.insert(stream);
    return stream;
}

int DryHandler::pclose(FILE *stream) { return empty_.erase(stream) ? fclose(stream) : Handler::pclose(stream); }

int DryHandler::wlctlCmd(char *line) {
    if (asQuery(line))
        return Handler::wlctlCmd(line);
    holdBack(line, functionOf(line), true);
    return 0;
}

char *DryHandler::nvramGet(const char *key) {
    const StoreOverlay::Value *value = store_.find(key);
    if (!value)
        return Handler::nvramGet(key);
    return *value ? const_cast<char *>((*value)->c_str()) : nullptr; // the platform's prototype; nobody writes to it
}

int DryHandler::nvramSet(const char *key, const char *value) {
    effects_.writes.push_back({key, value});
    store_.set(key, value);
    return 0;
}

int DryHandler::nvramUnset(const char *key) {
    effects_.writes.push_back({key, std::nullopt});
    store_.set(key, std::nullopt);
    return 0;
}

int DryHandler::open(const char *path, int flags, mode_t mode) {
    int fd = files_.open(path, flags, [&] { return Handler::open(path, flags, mode); });
    if (fd >= 0 && (flags & O_CREAT))
        files_.setMode(path, static_cast<int>(mode));
    return fd;
}

int DryHandler::remove(const char *path) { return files_.remove(path); }

int DryHandler::chmod(const char *path, mode_t mode) {
    if (!files_.exists(path)) {
        errno = ENOENT;
        return -1;
    }
    files_.setMode(path, static_cast<int>(mode));
    return 0;
}

ssize_t DryHandler::sendto(int, const void *data, size_t size, int, const sockaddr *, socklen_t) {
    effects_.datagrams.emplace_back(static_cast<const char *>(data), size);
    return static_cast<ssize_t>(size);
}

ssize_t DryHandler::recv(int, void *, size_t, int) { return nothing(); }
ssize_t DryHandler::recvfrom(int, void *, size_t, int, sockaddr *, socklen_t *) { return nothing(); }

int DryHandler::poll(pollfd *fds, nfds_t count, int timeout) {
    for (nfds_t i = 0; i < count; ++i)
        fds[i].revents = 0;
    skippedNs_ += timeout > 0 ? timeout * kPerMillisecond : 0;
    return 0;
}

int DryHandler::nanosleep(const timespec *wanted, timespec *left) {
    const int64_t length = wanted->tv_sec * kPerSecond + wanted->tv_nsec;
    skippedNs_ += length;
    effects_.pauseMs += length / kPerMillisecond;
    if (!effects_.commands.empty())
        effects_.commands.back().pauseMs += length / kPerMillisecond;
    if (left)
        *left = {};
    return 0;
}

int DryHandler::clockGettime(clockid_t clock, timespec *now) {
    int rc = Handler::clockGettime(clock, now);
    const int64_t ns = now->tv_nsec + skippedNs_;
    now->tv_sec += static_cast<time_t>(ns / kPerSecond);
    now->tv_nsec = static_cast<long>(ns % kPerSecond);
    return rc;
}

time_t DryHandler::time(time_t *now) {
    const time_t seconds = Handler::time(nullptr) + static_cast<time_t>(skippedNs_ / kPerSecond);
    if (now)
        *now = seconds;
    return seconds;
}

} // namespace wlhost::tap
