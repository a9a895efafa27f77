// Holding back: queries are answered for real, everything else is noted and taken for done.
#pragma once

#include <set>

#include "host/tap/dry_run.h"
#include "host/tap/handler.h"
#include "host/tap/overlay.h"
#include "host/tap/shell_line.h"

namespace wlhost::tap {

class DryHandler : public Handler {
  public:
    Effects takeEffects();
    const StoreOverlay &store() const { return store_; }
    const FileOverlay &files() const { return files_; }

    int runForHost(const std::string &function, const Words &argv, std::string *output, std::string *error) override;

    int system(const char *command) override;
    FILE *popen(const char *command, const char *type) override;
    int pclose(FILE *stream) override;
    int wlctlCmd(char *line) override;

    char *nvramGet(const char *key) override;
    int nvramSet(const char *key, const char *value) override;
    int nvramUnset(const char *key) override;

    int open(const char *path, int flags, mode_t mode) override;
    int remove(const char *path) override;
    int chmod(const char *path, mode_t mode) override;

    int schedSetaffinity(pid_t, size_t, const cpu_set_t *) override { return 0; }
    int schedSetscheduler(pid_t, int, const sched_param *) override { return 0; }

    ssize_t sendto(int fd, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length) override;
    ssize_t recv(int fd, void *data, size_t size, int flags) override;
    ssize_t recvfrom(int fd, void *data, size_t size, int flags, sockaddr *from, socklen_t *length) override;
    int poll(pollfd *fds, nfds_t count, int timeout) override;

    int nanosleep(const timespec *wanted, timespec *left) override;
    int clockGettime(clockid_t clock, timespec *now) override;
    time_t time(time_t *now) override;

    bool print(FILE *, const char *, size_t) override { return true; }

  private:
    void holdBack(const std::string &command, const std::string &function, bool driver);
    std::optional<ShellLine> asQuery(const std::string &command);
    int answer(const std::string &command, const ShellLine &line);

    Effects effects_;
    StoreOverlay store_;
    FileOverlay files_;
    std::set<std::string> changedRadios_; // first parts of the words of what was held back
    std::set<FILE *> empty_;              // answers of held-back commands
    int64_t skippedNs_ = 0;               // by pauses, so that no deadline is waited for
};

} // namespace wlhost::tap
