#include "host/control/runtime_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "host/base/failure.h"

namespace wlhost {
namespace {

bool isOwn(const std::string &folder) {
    struct stat entry {};
    return lstat(folder.c_str(), &entry) == 0 && S_ISDIR(entry.st_mode) && entry.st_uid == geteuid() &&
           (entry.st_mode & 07777) == 0700;
}

std::string folderInTmp() { return "/tmp/wlhost-" + std::to_string(geteuid()); }

} // namespace

std::string runtimeFolder() {
    if (access("/run", W_OK | X_OK) == 0)
        return "/run";
    const char *session = getenv("XDG_RUNTIME_DIR");
    return session && session[0] == '/' && isOwn(session) ? session : folderInTmp();
}

void secureRuntimeFolder(const std::string &path) {
    const std::string folder = folderInTmp();
    if (path.compare(0, folder.size() + 1, folder + "/") != 0)
        return;
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        throw Failure(Status::kEnvironment, folder, std::strerror(errno), "name a socket with --socket");
    if (!isOwn(folder))
        throw Failure(Status::kEnvironment, folder, "is not this user's own folder with mode 0700",
                      "remove it, or set XDG_RUNTIME_DIR to such a folder");
}

} // namespace wlhost
