#include "module/files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wlbrcm {

int openOwnFile(const char *path) {
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    struct stat status;
    if (descriptor < 0 || (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid()))
        return descriptor;
    close(descriptor);
    return -1;
}

int createOwnFile(const char *path) {
    constexpr mode_t kByUmask = 0666;
    return open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kByUmask);
}

bool clearPlace(Here here, const char *path, const char *purpose) {
    if (remove(path) == 0 || errno == ENOENT)
        return true;
    WLBRCM_LOG_AT(here, LOG_ERR, "cannot remove %s (error %d), not done: %s\n", path, errno, purpose);
    return false;
}

void LineReader::readFrom(FILE *stream) {
    stream_ = stream;
    descriptor_ = stream != nullptr ? fileno(stream) : -1;
}

bool LineReader::fill() {
    ssize_t count;
    do {
        // A host that answers commands from memory hands out streams without a descriptor.
        if (descriptor_ >= 0)
            count = read(descriptor_, buffer_, sizeof buffer_);
        else
            count = stream_ != nullptr ? static_cast<ssize_t>(fread(buffer_, 1, sizeof buffer_, stream_)) : 0;
    } while (count < 0 && errno == EINTR);
    at_ = 0;
    end_ = count > 0 ? static_cast<size_t>(count) : 0;
    return end_ > 0;
}

bool LineReader::nextLine(char *line, size_t size) {
    size_t used = 0;
    const void *newline = nullptr;
    while (newline == nullptr && used + 1 < size && (at_ < end_ || fill())) {
        const size_t room = size - 1 - used < end_ - at_ ? size - 1 - used : end_ - at_;
        const char *from = buffer_ + at_;
        newline = memchr(from, '\n', room);
        const size_t count =
            newline != nullptr ? static_cast<size_t>(static_cast<const char *>(newline) - from) + 1 : room;
        memcpy(line + used, from, count);
        used += count;
        at_ += count;
    }
    if (used > 0)
        line[used] = '\0';
    return used > 0;
}

size_t LineReader::takeRest(char *text, size_t longest) {
    size_t used = 0;
    while (used < longest && (at_ < end_ || fill())) {
        const size_t count = longest - used < end_ - at_ ? longest - used : end_ - at_;
        memcpy(text + used, buffer_ + at_, count);
        used += count;
        at_ += count;
    }
    text[used] = '\0';
    return used;
}

void LineReader::rewind() {
    lseek(descriptor_, 0, SEEK_SET);
    at_ = end_ = 0;
}

} // namespace wlbrcm
