#include "host/tap/overlay.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace wlhost::tap {
namespace {

// Devices are asked, never written.
bool isDevice(const std::string &path) {
    struct stat entry;
    return stat(path.c_str(), &entry) == 0 && S_ISCHR(entry.st_mode);
}

int fail(int reason) {
    errno = reason;
    return -1;
}

} // namespace

bool FileOverlay::exists(const std::string &path) const {
    auto known = files_.find(path);
    struct stat entry;
    return known != files_.end() ? known->second.fd.get() >= 0 : lstat(path.c_str(), &entry) == 0;
}

int FileOverlay::create(const std::string &path) {
    Kept kept;
    kept.fd = Fd(memfd_create("held-back", 0));
    return (files_[path] = std::move(kept)).fd.get();
}

int FileOverlay::openKept(const std::string &path, int flags) {
    const bool writes = (flags & O_ACCMODE) != O_RDONLY;
    if ((flags & O_CREAT) && (flags & O_EXCL) && exists(path))
        return fail(EEXIST);
    if (files_.count(path) == 0 && (!writes || isDevice(path)))
        return kUnknown;
    if (!exists(path) && !(flags & O_CREAT))
        return fail(ENOENT);
    auto known = files_.find(path);
    if (known == files_.end() || known->second.fd.get() < 0 || (flags & O_TRUNC)) {
        if (create(path) < 0)
            return -1;
        known = files_.find(path);
    }
    // With an offset of its own, as a file that is opened again.
    const std::string link = "/proc/self/fd/" + std::to_string(known->second.fd.get());
    return ::open(link.c_str(), (flags & (O_ACCMODE | O_APPEND)) | O_CLOEXEC);
}

int FileOverlay::remove(const std::string &path) {
    if (!exists(path))
        return fail(ENOENT);
    struct stat entry;
    if (files_.count(path) == 0 && lstat(path.c_str(), &entry) == 0 && S_ISDIR(entry.st_mode))
        return fail(ENOTEMPTY);
    files_[path].fd = Fd();
    return 0;
}

void FileOverlay::setMode(const std::string &path, int mode) {
    auto known = files_.find(path);
    if (known != files_.end())
        known->second.mode = mode;
}

void FileOverlay::writeOut() const {
    for (const auto &[path, kept] : files_) {
        struct stat entry;
        if (kept.fd.get() < 0 || fstat(kept.fd.get(), &entry) != 0)
            continue;
        Fd file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        off_t from = 0;
        if (file.get() >= 0 && sendfile(file.get(), kept.fd.get(), &from, static_cast<size_t>(entry.st_size)) >= 0)
            fchmod(file.get(), static_cast<mode_t>(kept.mode));
    }
}

} // namespace wlhost::tap
