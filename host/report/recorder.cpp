#include "host/report/recorder.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "host/report/calls.h"

namespace wlhost {
namespace {

constexpr size_t kMostRead = 4 << 20;

} // namespace

Entry *Recorder::note(Entry entry, int64_t result) {
    const int saved = errno;
    Entry *noted = nullptr;
    write_ = nullptr;
    if (trace_.isOpen()) {
        entry.result = result;
        if (result < 0)
            entry.error = errorName(saved);
        if (isCommand(entry))
            entry.function = tap::functionOf(entry.what);
        noted = &trace_.add(std::move(entry));
    }
    errno = saved;
    return noted;
}

void Recorder::heard(const char *function, const std::string &text) {
    if (write_ && text.rfind("nvram ", 0) == 0 && text.find(write_->what) != std::string::npos)
        write_->function = function;
    write_ = nullptr;
}

void Recorder::answer(Entry *entry, std::string_view bytes) {
    if (!entry)
        return;
    entry->answer = std::string(bytes);
    trace_.grew(bytes.size());
}

template <typename Read> void Recorder::readWhole(Source &source, Read read) {
    if (source.isRead)
        return;
    char piece[4096];
    for (ssize_t got; source.bytes.size() < kMostRead && (got = read(piece, sizeof piece)) != 0;) {
        if (got > 0)
            source.bytes.append(piece, static_cast<size_t>(got));
        else if (errno != EINTR)
            break;
    }
    source.isRead = true;
    answer(source.entry, source.bytes);
}

size_t Recorder::take(Source &source, void *data, size_t size) {
    const size_t count = std::min(size, source.bytes.size() - source.at);
    std::memcpy(data, source.bytes.data() + source.at, count);
    source.at += count;
    return count;
}

int Recorder::system(const char *command) {
    const int waited = next().system(command);
    note(callOf("system", textOf(command)), exitStatus(waited));
    return waited;
}

FILE *Recorder::popen(const char *command, const char *type) {
    FILE *stream = next().popen(command, type);
    Entry *entry = note(callOf("popen", textOf(command)), stream ? 0 : -1);
    if (!stream)
        return nullptr;
    // Commands that are run meanwhile do not inherit the pipe; the module, which has no descriptor of it, cannot see to
    // that.
    if (const int fd = next().fileno(stream); fd >= 0)
        next().fcntl(fd, F_SETFD, FD_CLOEXEC);
    pipes_[stream] = {entry, textOf(command), false, {}, 0};
    return stream;
}

int Recorder::pclose(FILE *stream) {
    const int waited = next().pclose(stream);
    auto pipe = pipes_.find(stream);
    if (pipe != pipes_.end()) {
        if (pipe->second.entry)
            pipe->second.entry->result = exitStatus(waited);
        pipes_.erase(pipe);
    }
    return waited;
}

int Recorder::wlctlCmd(char *line) {
    Entry entry = callOf("wlctl_cmd", textOf(line)); // the callee may change the text
    const int result = next().wlctlCmd(line);
    note(std::move(entry), result);
    return result;
}

char *Recorder::nvramGet(const char *key) {
    char *value = next().nvramGet(key);
    Entry *entry = note(callOf("nvram_get", textOf(key)), 0);
    if (value)
        answer(entry, value);
    return value;
}

int Recorder::nvramSet(const char *key, const char *value) {
    const int result = next().nvramSet(key, value);
    write_ = note(callOf("nvram_set", textOf(key), textOf(value)), result);
    return result;
}

int Recorder::nvramUnset(const char *key) {
    const int result = next().nvramUnset(key);
    write_ = note(callOf("nvram_unset", textOf(key)), result);
    return result;
}

int Recorder::open(const char *path, int flags, mode_t mode) {
    const int fd = next().open(path, flags, mode);
    Entry *entry = note(openCall(path, flags), fd < 0 ? -1 : 0);
    if (fd >= 0)
        files_[fd] = {entry, textOf(path), false, {}, 0};
    return fd;
}

int Recorder::fstat(int fd, struct stat *status) {
    const int result = next().fstat(fd, status);
    auto file = files_.find(fd);
    Entry *entry = note(callOf("fstat", file == files_.end() ? "" : file->second.path), result);
    if (result == 0)
        answer(entry, statusText(*status, next().geteuid()));
    return result;
}

int Recorder::close(int fd) {
    files_.erase(fd);
    return next().close(fd);
}

ssize_t Recorder::read(int fd, void *data, size_t size) {
    auto file = files_.find(fd);
    if (file == files_.end())
        return next().read(fd, data, size);
    readWhole(file->second, [&](char *piece, size_t most) { return next().read(fd, piece, most); });
    return static_cast<ssize_t>(take(file->second, data, size));
}

off_t Recorder::lseek(int fd, off_t offset, int whence) {
    auto file = files_.find(fd);
    if (file == files_.end() || offset != 0 || (whence != SEEK_END && !file->second.isRead))
        return next().lseek(fd, offset, whence);
    // Where the end is: replay knows it from what the file held.
    readWhole(file->second, [&](char *piece, size_t most) { return next().read(fd, piece, most); });
    file->second.at = whence == SEEK_SET ? 0 : file->second.bytes.size();
    return static_cast<off_t>(file->second.at);
}

size_t Recorder::fread(void *data, size_t size, size_t count, FILE *stream) {
    auto pipe = pipes_.find(stream);
    if (pipe == pipes_.end() || size != 1)
        return next().fread(data, size, count, stream);
    readWhole(pipe->second,
              [&](char *piece, size_t most) { return static_cast<ssize_t>(next().fread(piece, 1, most, stream)); });
    return take(pipe->second, data, count);
}

// A pipe has no descriptor for the module, so that it is read here.
int Recorder::fileno(FILE *stream) { return pipes_.count(stream) ? -1 : next().fileno(stream); }

int Recorder::remove(const char *path) {
    const int result = next().remove(path);
    note(callOf("remove", textOf(path)), result);
    return result;
}

int Recorder::chmod(const char *path, mode_t mode) {
    const int result = next().chmod(path, mode);
    note(callOf("chmod", textOf(path), std::to_string(mode)), result);
    return result;
}

DIR *Recorder::opendir(const char *path) {
    DIR *directory = next().opendir(path);
    Entry *entry = note(callOf("opendir", textOf(path)), directory ? 0 : -1);
    if (directory && entry) {
        entry->answer = "";
        directories_[directory] = entry;
    }
    return directory;
}

dirent *Recorder::readdir(DIR *directory) {
    dirent *entry = next().readdir(directory);
    auto noted = directories_.find(directory);
    if (entry && noted != directories_.end()) {
        const std::string line = listingLine(*entry);
        *noted->second->answer += line;
        trace_.grew(line.size());
    }
    return entry;
}

int Recorder::closedir(DIR *directory) {
    directories_.erase(directory);
    return next().closedir(directory);
}

int Recorder::schedSetaffinity(pid_t pid, size_t size, const cpu_set_t *set) {
    const int result = next().schedSetaffinity(pid, size, set);
    note(affinityCall(pid, size, *set), result);
    return result;
}

int Recorder::schedSetscheduler(pid_t pid, int policy, const sched_param *parameters) {
    const int result = next().schedSetscheduler(pid, policy, parameters);
    note(priorityCall(pid, policy, *parameters), result);
    return result;
}

int Recorder::sigaction(int number, const struct sigaction *action, struct sigaction *old) {
    const int result = next().sigaction(number, action, old);
    const bool ignored = old && (old->sa_handler == SIG_IGN || (old->sa_flags & SA_NOCLDWAIT) != 0);
    answer(note(signalCall(number), result), ignored ? "ignored" : "");
    return result;
}

int Recorder::socket(int domain, int type, int protocol) {
    const int fd = next().socket(domain, type, protocol);
    note(callOf("socket"), fd < 0 ? -1 : 0);
    return fd;
}

int Recorder::bind(int fd, const sockaddr *address, socklen_t length) {
    const int result = next().bind(fd, address, length);
    note(callOf("bind", addressText(address, length)), result);
    return result;
}

int Recorder::setsockopt(int fd, int level, int option, const void *value, socklen_t length) {
    const int result = next().setsockopt(fd, level, option, value, length);
    note(optionCall(level, option, value, length), result);
    return result;
}

ssize_t Recorder::sendto(int fd, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length) {
    const ssize_t sent = next().sendto(fd, data, size, flags, to, length);
    note(sendCall(data, size, to, length), sent);
    return sent;
}

ssize_t Recorder::recv(int fd, void *data, size_t size, int flags) {
    const ssize_t got = next().recv(fd, data, size, flags);
    Entry *entry = note(callOf("recv"), got);
    if (got >= 0)
        answer(entry, {static_cast<const char *>(data), static_cast<size_t>(got)});
    return got;
}

ssize_t Recorder::recvfrom(int fd, void *data, size_t size, int flags, sockaddr *from, socklen_t *length) {
    const ssize_t got = next().recvfrom(fd, data, size, flags, from, length);
    Entry *entry = note(callOf("recvfrom"), got);
    if (entry && got >= 0) {
        // The sender in front of the datagram.
        const std::string sender = (from && length ? addressText(from, *length) : "") + " ";
        answer(entry, sender + std::string(static_cast<const char *>(data), static_cast<size_t>(got)));
    }
    return got;
}

int Recorder::poll(pollfd *fds, nfds_t count, int timeout) {
    const int ready = next().poll(fds, count, timeout);
    note(callOf("poll"), ready);
    return ready;
}

int Recorder::ioctl(int fd, unsigned long request, void *block) {
    Entry entry = ioctlCall(request, block);
    const int result = next().ioctl(fd, request, block);
    Entry *noted = note(std::move(entry), result);
    if (result >= 0)
        answer(noted, ioctlAnswer(request, block));
    return result;
}

int Recorder::nanosleep(const timespec *wanted, timespec *left) {
    Entry entry = pauseCall(*wanted); // which `left` may overwrite
    const int result = next().nanosleep(wanted, left);
    Entry *noted = note(std::move(entry), result);
    if (result < 0 && left)
        answer(noted, timeText(*left));
    return result;
}

int Recorder::clockGettime(clockid_t clock, timespec *now) {
    const int result = next().clockGettime(clock, now);
    answer(note(callOf("clock_gettime"), result), timeText(*now));
    return result;
}

time_t Recorder::time(time_t *now) {
    const time_t result = next().time(now);
    answer(note(callOf("time"), 0), std::to_string(result));
    return result;
}

int Recorder::rand() {
    const int number = next().rand();
    answer(note(callOf("rand"), 0), std::to_string(number));
    return number;
}

void Recorder::srand(unsigned seed) {
    next().srand(seed);
    note(callOf("srand", std::to_string(seed)), 0);
}

bool Recorder::print(int fd, const char *data, size_t length) {
    const bool written = next().print(fd, data, length);
    auto file = files_.find(fd);
    if (file != files_.end())
        note(callOf("write", file->second.path, {data, length}), written ? 0 : -1);
    return written;
}

} // namespace wlhost
