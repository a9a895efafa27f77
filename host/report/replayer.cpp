#include "host/report/replayer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "host/base/escape.h"
#include "host/report/calls.h"
#include "host/tap/tap.h"

namespace wlhost {
namespace {

Entry commandOf(const char *name, const std::string &command) {
    Entry entry = callOf(name, command);
    entry.function = tap::functionOf(command);
    return entry;
}

long numberIn(const Entry *entry) {
    return entry && entry->answer ? std::strtol(entry->answer->c_str(), nullptr, 10) : 0;
}

} // namespace

int Replayer::resultOf(const Entry *entry, int missing) {
    if (!entry) {
        errno = missing < 0 ? ENOENT : errno;
        return missing;
    }
    if (!entry->error.empty())
        errno = errorNumber(entry->error);
    return static_cast<int>(entry->result);
}

int Replayer::plain(const Entry &call, int missing) { return resultOf(script_.next(call), missing); }

template <typename Handle>
Handle Replayer::openSource(const Entry &call, std::map<Handle, Source> &sources, Handle handle) {
    const Entry *entry = script_.next(call);
    if (resultOf(entry, -1) < 0)
        return Handle{};
    sources[handle] = {call.what, entry->answer.value_or(""), 0, entry->result, {}};
    return handle;
}

template <typename Handle> Replayer::Source *Replayer::find(std::map<Handle, Source> &sources, Handle handle) {
    auto found = sources.find(handle);
    return found == sources.end() ? nullptr : &found->second;
}

size_t Replayer::take(Source *source, void *data, size_t size) {
    if (!source)
        return 0;
    const size_t count = std::min(size, source->bytes.size() - source->at);
    std::memcpy(data, source->bytes.data() + source->at, count);
    source->at += count;
    return count;
}

int Replayer::system(const char *command) { return waitedStatus(plain(commandOf("system", textOf(command)))); }

FILE *Replayer::popen(const char *command, const char *) {
    // The exit status of a pipe may be any; only one that could not be started has no stream.
    const Entry *entry = script_.next(commandOf("popen", textOf(command)));
    if (!entry || (entry->result < 0 && !entry->error.empty())) {
        resultOf(entry, -1);
        return nullptr;
    }
    auto *handle = reinterpret_cast<FILE *>(++handles_); // NOLINT(performance-no-int-to-ptr): a name
    pipes_[handle] = {entry->what, entry->answer.value_or(""), 0, entry->result, {}};
    return handle;
}

int Replayer::pclose(FILE *stream) {
    const Source *pipe = find(pipes_, stream);
    const int status = pipe ? waitedStatus(pipe->result) : -1;
    pipes_.erase(stream);
    return status;
}

int Replayer::wlctlCmd(char *line) { return plain(commandOf("wlctl_cmd", textOf(line))); }

char *Replayer::nvramGet(const char *key) {
    const Entry *entry = script_.next(callOf("nvram_get", textOf(key)));
    if (!entry || !entry->answer)
        return nullptr;
    stored_ = *entry->answer;
    return stored_.data();
}

int Replayer::nvramSet(const char *key, const char *value) {
    return plain(callOf("nvram_set", textOf(key), textOf(value)));
}
int Replayer::nvramUnset(const char *key) { return plain(callOf("nvram_unset", textOf(key))); }

int Replayer::open(const char *path, int flags, mode_t) {
    const int fd = openSource(openCall(path, flags), files_, static_cast<int>(++handles_));
    return fd == 0 ? -1 : fd;
}

int Replayer::fstat(int fd, struct stat *status) {
    const Source *file = find(files_, fd);
    const Entry *entry = script_.next(callOf("fstat", file ? file->path : ""));
    putStatus(entry && entry->answer ? *entry->answer : "other", kOwner, *status);
    return resultOf(entry, -1);
}

int Replayer::close(int fd) {
    files_.erase(fd);
    return 0;
}

ssize_t Replayer::read(int fd, void *data, size_t size) {
    return static_cast<ssize_t>(take(find(files_, fd), data, size));
}

off_t Replayer::lseek(int fd, off_t offset, int whence) {
    Source *file = find(files_, fd);
    if (!file)
        return offset;
    const off_t from = whence == SEEK_END ? static_cast<off_t>(file->bytes.size()) : 0;
    file->at = std::min(file->bytes.size(), static_cast<size_t>(std::max<off_t>(from + offset, 0)));
    return static_cast<off_t>(file->at);
}

size_t Replayer::fread(void *data, size_t size, size_t count, FILE *stream) {
    return size == 0 ? 0 : take(find(pipes_, stream), data, size * count) / size;
}

int Replayer::remove(const char *path) { return plain(callOf("remove", textOf(path)), -1); }
int Replayer::chmod(const char *path, mode_t mode) {
    return plain(callOf("chmod", textOf(path), std::to_string(mode)));
}

DIR *Replayer::opendir(const char *path) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a name
    return openSource(callOf("opendir", textOf(path)), directories_, reinterpret_cast<DIR *>(++handles_));
}

dirent *Replayer::readdir(DIR *directory) {
    Source *source = find(directories_, directory);
    const size_t end = source ? source->bytes.find('\n', source->at) : std::string::npos;
    if (end == std::string::npos || end - source->at < 2)
        return nullptr;
    const std::string line = source->bytes.substr(source->at, end - source->at);
    source->at = end + 1;
    source->entry = {};
    source->entry.d_type = line[0] == 'd' ? DT_DIR : DT_REG;
    copyText(source->entry.d_name, line.substr(2));
    return &source->entry;
}

int Replayer::closedir(DIR *directory) {
    directories_.erase(directory);
    return 0;
}

int Replayer::schedSetaffinity(pid_t pid, size_t size, const cpu_set_t *set) {
    return plain(affinityCall(pid, size, *set));
}

int Replayer::schedSetscheduler(pid_t pid, int policy, const sched_param *parameters) {
    return plain(priorityCall(pid, policy, *parameters));
}

int Replayer::sigaction(int number, const struct sigaction *, struct sigaction *old) {
    const Entry *entry = script_.next(signalCall(number));
    if (old) {
        *old = {};
        old->sa_handler = entry && entry->answer == "ignored" ? SIG_IGN : SIG_DFL;
    }
    return resultOf(entry, 0);
}

int Replayer::socket(int, int, int) { return plain(callOf("socket")) < 0 ? -1 : static_cast<int>(++handles_); }

int Replayer::bind(int, const sockaddr *address, socklen_t length) {
    return plain(callOf("bind", addressText(address, length)));
}

int Replayer::setsockopt(int, int level, int option, const void *value, socklen_t length) {
    return plain(optionCall(level, option, value, length));
}

ssize_t Replayer::sendto(int, const void *data, size_t size, int, const sockaddr *to, socklen_t length) {
    return plain(sendCall(data, size, to, length), static_cast<int>(size));
}

ssize_t Replayer::recv(int, void *data, size_t size, int) {
    const Entry *entry = script_.next(callOf("recv"));
    if (resultOf(entry, -1) < 0)
        return -1;
    Source datagram{{}, entry->answer.value_or(""), 0, 0, {}};
    return static_cast<ssize_t>(take(&datagram, data, size));
}

ssize_t Replayer::recvfrom(int, void *data, size_t size, int, sockaddr *from, socklen_t *length) {
    const Entry *entry = script_.next(callOf("recvfrom"));
    if (resultOf(entry, -1) < 0)
        return -1;
    const std::string answer = entry->answer.value_or("");
    const size_t blank = std::min(answer.find(' '), answer.size());
    const sockaddr_in sender = inetAddressOf(answer.substr(0, blank));
    if (from && length) {
        std::memcpy(from, &sender, std::min<size_t>(*length, sizeof sender));
        *length = sizeof sender;
    }
    Source datagram{{}, answer, std::min(blank + 1, answer.size()), 0, {}};
    return static_cast<ssize_t>(take(&datagram, data, size));
}

int Replayer::poll(pollfd *fds, nfds_t count, int) {
    const int ready = plain(callOf("poll"));
    for (nfds_t i = 0; i < count; ++i)
        fds[i].revents = static_cast<short>(ready > 0 ? fds[i].events : 0);
    return ready;
}

int Replayer::ioctl(int, unsigned long request, void *block) {
    const Entry *entry = script_.next(ioctlCall(request, block));
    if (entry && entry->answer)
        putIoctlAnswer(request, *entry->answer, block);
    return resultOf(entry, -1);
}

int Replayer::nanosleep(const timespec *wanted, timespec *left) {
    const Entry *entry = script_.next(pauseCall(*wanted));
    if (entry && entry->answer && left)
        *left = timespecOf(*entry->answer);
    return resultOf(entry, 0);
}

int Replayer::clockGettime(clockid_t, timespec *now) {
    const Entry *entry = script_.next(callOf("clock_gettime"));
    // Without an entry each look at the clock is a second later, so that no wait becomes endless.
    *now = entry && entry->answer ? timespecOf(*entry->answer) : timespec{static_cast<time_t>(++handles_), 0};
    return resultOf(entry, 0);
}

time_t Replayer::time(time_t *now) {
    const auto seconds = static_cast<time_t>(numberIn(script_.next(callOf("time"))));
    if (now)
        *now = seconds;
    return seconds;
}

int Replayer::rand() { return static_cast<int>(numberIn(script_.next(callOf("rand")))); }
void Replayer::srand(unsigned seed) { script_.next(callOf("srand", std::to_string(seed))); }

bool Replayer::print(int fd, const char *data, size_t length) {
    const Source *file = find(files_, fd);
    return plain(callOf("write", file ? file->path : "", {data, length})) >= 0;
}

} // namespace wlhost
