// The functions that the loader binds the module's imports to, before the platform's own: exported by the program under
// the platform's names. Calls of the host and of the platform's libraries come along here too and go straight on.
#include <cstdarg>
#include <cstring>
#include <string>

#include "host/tap/tap.h"

namespace {

// What a format and its arguments say.
std::string formatted(const char *format, va_list args) {
    va_list again;
    va_copy(again, args);
    int length = vsnprintf(nullptr, 0, format, again);
    va_end(again);
    std::string text(length < 0 ? 0 : static_cast<size_t>(length), '\0');
    vsnprintf(text.data(), text.size() + 1, format, args);
    return text;
}

template <typename Place> int print(wlhost::tap::Handler &handler, Place place, const std::string &text) {
    return handler.print(place, text.data(), text.size()) ? static_cast<int>(text.size()) : -1;
}

} // namespace

// By the name in the object file alone: the C libraries differ in how their headers declare these.
// NOLINTBEGIN(bugprone-macro-parentheses,readability-identifier-naming,cert-dcl50-cpp)
#define WLHOST_EXPORT(name, result, ...)                                                                               \
    extern "C" __attribute__((visibility("default"))) result tapped_##name(__VA_ARGS__) __asm__(#name);                \
    extern "C" result tapped_##name(__VA_ARGS__)
#define WLHOST_HANDLER wlhost::tap::handlerFor(__builtin_return_address(0))
#define WLHOST_PRINT(place)                                                                                            \
    va_list args;                                                                                                      \
    va_start(args, format);                                                                                            \
    std::string text = formatted(format, args);                                                                        \
    va_end(args);                                                                                                      \
    return print(WLHOST_HANDLER, place, text)

WLHOST_EXPORT(system, int, const char *command) { return WLHOST_HANDLER.system(command); }
WLHOST_EXPORT(popen, FILE *, const char *command, const char *type) { return WLHOST_HANDLER.popen(command, type); }
WLHOST_EXPORT(pclose, int, FILE *stream) { return WLHOST_HANDLER.pclose(stream); }
WLHOST_EXPORT(wlctl_cmd, int, char *line) { return WLHOST_HANDLER.wlctlCmd(line); }

WLHOST_EXPORT(nvram_get, char *, const char *key) { return WLHOST_HANDLER.nvramGet(key); }
WLHOST_EXPORT(nvram_set, int, const char *key, const char *value) { return WLHOST_HANDLER.nvramSet(key, value); }
WLHOST_EXPORT(nvram_unset, int, const char *key) { return WLHOST_HANDLER.nvramUnset(key); }

WLHOST_EXPORT(open, int, const char *path, int flags, ...) {
    mode_t mode = 0;
    if (flags & O_CREAT) {
        va_list args;
        va_start(args, flags);
        mode = va_arg(args, mode_t);
        va_end(args);
    }
    return WLHOST_HANDLER.open(path, flags, mode);
}
WLHOST_EXPORT(fstat, int, int fd, struct stat *status) { return WLHOST_HANDLER.fstat(fd, status); }
WLHOST_EXPORT(close, int, int fd) { return WLHOST_HANDLER.close(fd); }
WLHOST_EXPORT(read, ssize_t, int fd, void *data, size_t size) { return WLHOST_HANDLER.read(fd, data, size); }
WLHOST_EXPORT(lseek, off_t, int fd, off_t offset, int whence) { return WLHOST_HANDLER.lseek(fd, offset, whence); }
WLHOST_EXPORT(fcntl, int, int fd, int request, ...) {
    va_list args;
    va_start(args, request);
    long argument = va_arg(args, long);
    va_end(args);
    return WLHOST_HANDLER.fcntl(fd, request, argument);
}
WLHOST_EXPORT(fread, size_t, void *data, size_t size, size_t count, FILE *stream) {
    return WLHOST_HANDLER.fread(data, size, count, stream);
}
WLHOST_EXPORT(fileno, int, FILE *stream) { return WLHOST_HANDLER.fileno(stream); }
WLHOST_EXPORT(remove, int, const char *path) { return WLHOST_HANDLER.remove(path); }
WLHOST_EXPORT(chmod, int, const char *path, mode_t mode) { return WLHOST_HANDLER.chmod(path, mode); }

WLHOST_EXPORT(opendir, DIR *, const char *path) { return WLHOST_HANDLER.opendir(path); }
WLHOST_EXPORT(readdir, dirent *, DIR *directory) { return WLHOST_HANDLER.readdir(directory); }
WLHOST_EXPORT(closedir, int, DIR *directory) { return WLHOST_HANDLER.closedir(directory); }

WLHOST_EXPORT(sched_setaffinity, int, pid_t pid, size_t size, const cpu_set_t *set) {
    return WLHOST_HANDLER.schedSetaffinity(pid, size, set);
}
WLHOST_EXPORT(sched_setscheduler, int, pid_t pid, int policy, const sched_param *parameters) {
    return WLHOST_HANDLER.schedSetscheduler(pid, policy, parameters);
}
WLHOST_EXPORT(sigaction, int, int number, const struct sigaction *action, struct sigaction *old) {
    return WLHOST_HANDLER.sigaction(number, action, old);
}
WLHOST_EXPORT(geteuid, uid_t, void) { return WLHOST_HANDLER.geteuid(); }

WLHOST_EXPORT(socket, int, int domain, int type, int protocol) { return WLHOST_HANDLER.socket(domain, type, protocol); }
WLHOST_EXPORT(bind, int, int fd, const sockaddr *address, socklen_t length) {
    return WLHOST_HANDLER.bind(fd, address, length);
}
WLHOST_EXPORT(setsockopt, int, int fd, int level, int option, const void *value, socklen_t length) {
    return WLHOST_HANDLER.setsockopt(fd, level, option, value, length);
}
WLHOST_EXPORT(sendto, ssize_t, int fd, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length) {
    return WLHOST_HANDLER.sendto(fd, data, size, flags, to, length);
}
WLHOST_EXPORT(recv, ssize_t, int fd, void *data, size_t size, int flags) {
    return WLHOST_HANDLER.recv(fd, data, size, flags);
}
WLHOST_EXPORT(recvfrom, ssize_t, int fd, void *data, size_t size, int flags, sockaddr *from, socklen_t *length) {
    return WLHOST_HANDLER.recvfrom(fd, data, size, flags, from, length);
}
WLHOST_EXPORT(poll, int, pollfd *fds, nfds_t count, int timeout) { return WLHOST_HANDLER.poll(fds, count, timeout); }
WLHOST_EXPORT(ioctl, int, int fd, unsigned long request, ...) {
    va_list args;
    va_start(args, request);
    void *block = va_arg(args, void *);
    va_end(args);
    return WLHOST_HANDLER.ioctl(fd, request, block);
}

WLHOST_EXPORT(nanosleep, int, const timespec *wanted, timespec *left) { return WLHOST_HANDLER.nanosleep(wanted, left); }
WLHOST_EXPORT(clock_gettime, int, clockid_t clock, timespec *now) { return WLHOST_HANDLER.clockGettime(clock, now); }
WLHOST_EXPORT(time, time_t, time_t *now) { return WLHOST_HANDLER.time(now); }
WLHOST_EXPORT(rand, int, void) { return WLHOST_HANDLER.rand(); }
WLHOST_EXPORT(srand, void, unsigned seed) { WLHOST_HANDLER.srand(seed); }

WLHOST_EXPORT(printf, int, const char *format, ...) { WLHOST_PRINT(stdout); }
WLHOST_EXPORT(fprintf, int, FILE *stream, const char *format, ...) { WLHOST_PRINT(stream); }
WLHOST_EXPORT(dprintf, int, int fd, const char *format, ...) { WLHOST_PRINT(fd); }
WLHOST_EXPORT(puts, int, const char *text) { return print(WLHOST_HANDLER, stdout, text + std::string("\n")); }
WLHOST_EXPORT(fputs, int, const char *text, FILE *stream) {
    return WLHOST_HANDLER.print(stream, text, strlen(text)) ? 0 : EOF;
}
// NOLINTEND(bugprone-macro-parentheses,readability-identifier-naming,cert-dcl50-cpp)
