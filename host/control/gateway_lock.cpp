#include "host/control/gateway_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include "host/base/escape.h"
#include "host/base/failure.h"

namespace wlhost {
namespace {

[[noreturn]] void fail(const std::string &file, const std::string &why) {
    throw Failure(Status::kEnvironment, file, "cannot be locked: " + why);
}

Fd openLock(const std::string &file) {
    Fd fd(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
    struct stat entry {};
    if (fd.get() < 0 || fstat(fd.get(), &entry) != 0)
        fail(file, std::strerror(errno));
    if (!S_ISREG(entry.st_mode))
        fail(file, "not a regular file");
    return fd;
}

bool locksInTime(int fd, const std::string &file, std::chrono::milliseconds patience) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + patience;
    while (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            fail(file, std::strerror(errno));
        if (Clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

// Not when a holder that served nobody has removed it meanwhile.
bool isStill(int fd, const std::string &file) {
    struct stat held {
    }, found{};
    return fstat(fd, &held) == 0 && lstat(file.c_str(), &found) == 0 && held.st_dev == found.st_dev &&
           held.st_ino == found.st_ino;
}

std::string contentOf(int fd) {
    char text[256];
    const ssize_t length = pread(fd, text, sizeof text, 0);
    return {text, length > 0 ? static_cast<size_t>(length) : 0};
}

bool replaceContent(int fd, const std::string &content) {
    return ftruncate(fd, 0) == 0 &&
           pwrite(fd, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size());
}

// The holder wrote "PID SOCKET", or "PID" alone.
Failure heldBy(int fd, const std::string &file) {
    std::string holder = contentOf(fd);
    holder = escapeBytes(holder.substr(0, holder.find('\n')));
    const size_t blank = holder.find(' ');
    const std::string pid = holder.substr(0, blank);
    if (blank == std::string::npos)
        return Failure(Status::kEnvironment, file, "pid " + pid + " looks at the radios", "try again in a moment");
    const std::string socket = holder.substr(blank + 1);
    return Failure(Status::kEnvironment, file, "a host serves this gateway already: pid " + pid + ", socket " + socket,
                   "ask that one with --socket " + socket + ", or end it with: kill " + pid);
}

} // namespace

GatewayLock::GatewayLock(const std::string &socket, const std::string &file, std::chrono::milliseconds patience)
    : file_(file), serves_(!socket.empty()) {
    secureRuntimeFolder(file);
    do {
        fd_ = openLock(file);
        if (!locksInTime(fd_.get(), file, patience))
            throw heldBy(fd_.get(), file);
    } while (!isStill(fd_.get(), file));
    struct stat entry {};
    if (fstat(fd_.get(), &entry) == 0)
        times_[0] = entry.st_atim, times_[1] = entry.st_mtim;
    before_ = contentOf(fd_.get());
    if (!replaceContent(fd_.get(), std::to_string(getpid()) + (serves_ ? " " + socket : "") + "\n"))
        fail(file, std::strerror(errno));
}

GatewayLock::~GatewayLock() {
    if (serves_)
        return;
    if (before_.empty())
        unlink(file_.c_str());
    else if (replaceContent(fd_.get(), before_))
        futimens(fd_.get(), times_);
}

} // namespace wlhost
