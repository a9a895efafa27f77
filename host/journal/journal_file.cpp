#include "host/journal/journal_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host/base/failure.h"
#include "host/base/log.h"
#include "host/journal/journal.h"

namespace wlhost {

JournalFile::JournalFile(std::string path, size_t limit) : path_(std::move(path)), limit_(limit) { open(); }

void JournalFile::open() {
    // Without waiting: what stands there may be a pipe that nobody reads.
    Fd fd(::open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat entry {};
    if (fd.get() < 0 || fstat(fd.get(), &entry) != 0)
        throw Failure(Status::kEnvironment, path_, std::strerror(errno), "give --journal a file that can be written");
    if (!S_ISREG(entry.st_mode) || entry.st_uid != geteuid())
        throw Failure(Status::kEnvironment, path_, "is not a regular file of this user", "give --journal another name");
    fchmod(fd.get(), 0600);
    size_ = static_cast<size_t>(entry.st_size);
    fd_ = std::move(fd);
}

void JournalFile::rotate() {
    if (rename(path_.c_str(), (path_ + ".1").c_str()) != 0 && errno != ENOENT)
        throw Failure(Status::kFailed, path_, std::strerror(errno));
    open();
}

void JournalFile::add(const tap::Entry &entry) {
    try {
        const std::string line = dumped(journalRow(entry)) + "\n";
        if (size_ > 0 && size_ + line.size() > limit_)
            rotate();
        const ssize_t written = write(fd_.get(), line.data(), line.size());
        if (written != static_cast<ssize_t>(line.size()))
            throw Failure(Status::kFailed, path_, written < 0 ? std::strerror(errno) : "no space left");
        size_ += line.size();
        failed_ = false;
    } catch (const Failure &failure) {
        if (!failed_)
            logText(LogLevel::kError, "journal", failure.where + ": " + failure.what());
        failed_ = true;
    }
}

} // namespace wlhost
