#include "module/files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wlbrcm {

int openOwnFile(const char *path) {
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    struct stat status;
    if (descriptor < 0 || (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
                           status.st_nlink < 2))
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

// Adds to what has not been taken yet, which moves to the front. False when nothing came.
bool LineReader::fill() {
    memmove(buffer_, buffer_ + at_, end_ - at_);
    end_ -= at_;
    at_ = 0;
    ssize_t count;
    do {
        // A host that answers commands from memory hands out streams without a descriptor.
        if (descriptor_ >= 0)
            count = read(descriptor_, buffer_ + end_, sizeof buffer_ - end_);
        else
            count =
                stream_ != nullptr ? static_cast<ssize_t>(fread(buffer_ + end_, 1, sizeof buffer_ - end_, stream_)) : 0;
    } while (count < 0 && errno == EINTR);
    if (count <= 0)
        return false;
    sawNul_ = sawNul_ || memchr(buffer_ + end_, '\0', static_cast<size_t>(count)) != nullptr;
    end_ += static_cast<size_t>(count);
    return true;
}

bool LineReader::takeLine(size_t longest, std::string_view *line) {
    size_t length = 0;
    const void *newline = nullptr;
    do {
        const size_t known = length;
        length = end_ - at_ < longest ? end_ - at_ : longest;
        newline = memchr(buffer_ + at_ + known, '\n', length - known);
    } while (newline == nullptr && length < longest && fill());
    if (newline != nullptr)
        length = static_cast<size_t>(static_cast<const char *>(newline) - buffer_) + 1 - at_;
    if (length == 0)
        return false;
    *line = {buffer_ + at_, sawNul_ ? strnlen(buffer_ + at_, length) : length};
    at_ += length;
    return true;
}

bool LineReader::copyLine(char *line, size_t longest) {
    std::string_view view;
    if (!takeLine(longest, &view))
        return false;
    memcpy(line, view.data(), view.size());
    line[view.size()] = '\0';
    return true;
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
