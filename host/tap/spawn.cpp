#include "host/tap/spawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "host/base/fd.h"

namespace wlhost::tap {
namespace {

struct Actions {
    posix_spawn_file_actions_t list;
    Actions() { posix_spawn_file_actions_init(&list); }
    ~Actions() { posix_spawn_file_actions_destroy(&list); }
    Actions(const Actions &) = delete;
    Actions &operator=(const Actions &) = delete;
};

} // namespace

int waitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    return status;
}

int exitStatus(int status) { return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status); }

int memoryFile() { return memfd_create("printed", MFD_CLOEXEC | MFD_ALLOW_SEALING); }

std::string takeText(int fd) {
    constexpr off_t kMost = 1024L * 1024;
    fcntl(fd, F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_GROW);
    std::string text(static_cast<size_t>(std::clamp<off_t>(lseek(fd, 0, SEEK_END), 0, kMost)), '\0');
    ssize_t count = text.empty() ? 0 : pread(fd, text.data(), text.size(), 0);
    text.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return text;
}

int spawn(const std::vector<std::string> &argv, std::string *output, std::string *error) {
    std::vector<char *> words;
    for (const std::string &word : argv)
        words.push_back(const_cast<char *>(word.c_str())); // the prototype's; nobody writes to them
    words.push_back(nullptr);
    Actions actions;
    posix_spawn_file_actions_addopen(&actions.list, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    const Fd printed(output ? memoryFile() : -1), said(error ? memoryFile() : -1);
    if (output)
        posix_spawn_file_actions_adddup2(&actions.list, printed.get(), STDOUT_FILENO);
    if (error)
        posix_spawn_file_actions_adddup2(&actions.list, said.get(), STDERR_FILENO);
    pid_t child;
    if (int reason = posix_spawnp(&child, words[0], &actions.list, nullptr, words.data(), environ); reason != 0) {
        errno = reason;
        return 127;
    }
    int status = exitStatus(waitFor(child));
    if (output)
        *output = takeText(printed.get());
    if (error)
        *error = takeText(said.get());
    return status;
}

} // namespace wlhost::tap
