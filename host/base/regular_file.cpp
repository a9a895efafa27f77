#include "host/base/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/base/escape.h"
#include "host/base/failure.h"
#include "host/base/fd.h"

namespace wlhost {
namespace {

const char *kindOf(mode_t mode) {
    return S_ISDIR(mode) ? "a folder" : S_ISFIFO(mode) ? "a FIFO" : S_ISSOCK(mode) ? "a socket" : "a device";
}

std::string sizeText(size_t bytes) {
    return bytes % (1UL << 20) == 0 ? std::to_string(bytes >> 20) + " MiB" : std::to_string(bytes) + " bytes";
}

} // namespace

std::string readRegularFile(const std::string &file, size_t largest) {
    auto refuse = [&](const std::string &why) { throw Failure(Status::kUsage, "", escapeBytes(file) + ": " + why); };
    auto checkKind = [&](int rc, const struct stat &entry) {
        if (rc != 0 && (errno == EACCES || errno == EPERM))
            throw systemFailure(Status::kEnvironment, escapeBytes(file), errno, "", file);
        if (rc != 0)
            refuse(std::string("cannot be read: ") + std::strerror(errno));
        if (!S_ISREG(entry.st_mode))
            refuse(std::string("is ") + kindOf(entry.st_mode) + "; a regular file is wanted");
    };
    struct stat entry {};
    checkKind(stat(file.c_str(), &entry), entry);
    Fd fd(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    checkKind(fd.get() < 0 ? -1 : fstat(fd.get(), &entry), entry);
    std::string text;
    char buffer[16384];
    for (ssize_t length; text.size() <= largest && (length = read(fd.get(), buffer, sizeof buffer)) != 0;) {
        if (length < 0 && errno != EINTR)
            refuse(std::string("cannot be read: ") + std::strerror(errno));
        text.append(buffer, length > 0 ? static_cast<size_t>(length) : 0);
    }
    if (text.size() > largest)
        refuse("is larger than " + sizeText(largest));
    return text;
}

} // namespace wlhost
