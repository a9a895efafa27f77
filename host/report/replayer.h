// Answers the module's calls from a trace. Nothing is touched: no command, no file, no socket, no pause.
#pragma once

#include <map>
#include <memory>

#include "host/report/script.h"
#include "host/tap/handler.h"

namespace wlhost {

class Replayer : public tap::Handler {
  public:
    explicit Replayer(Script &script) : script_(script) {}

    int system(const char *command) override;
    FILE *popen(const char *command, const char *type) override;
    int pclose(FILE *stream) override;
    int wlctlCmd(char *line) override;

    char *nvramGet(const char *key) override;
    int nvramSet(const char *key, const char *value) override;
    int nvramUnset(const char *key) override;

    int open(const char *path, int flags, mode_t mode) override;
    int fstat(int fd, struct stat *status) override;
    int close(int fd) override;
    ssize_t read(int fd, void *data, size_t size) override;
    off_t lseek(int fd, off_t offset, int whence) override;
    int fcntl(int, int, long) override { return 0; }
    size_t fread(void *data, size_t size, size_t count, FILE *stream) override;
    int fileno(FILE *) override { return -1; }
    int remove(const char *path) override;
    int chmod(const char *path, mode_t mode) override;

    DIR *opendir(const char *path) override;
    dirent *readdir(DIR *directory) override;
    int closedir(DIR *directory) override;

    int schedSetaffinity(pid_t pid, size_t size, const cpu_set_t *set) override;
    int schedSetscheduler(pid_t pid, int policy, const sched_param *parameters) override;
    int sigaction(int number, const struct sigaction *action, struct sigaction *old) override;
    uid_t geteuid() override { return kOwner; }

    int socket(int domain, int type, int protocol) override;
    int bind(int fd, const sockaddr *address, socklen_t length) override;
    int setsockopt(int fd, int level, int option, const void *value, socklen_t length) override;
    ssize_t sendto(int fd, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length) override;
    ssize_t recv(int fd, void *data, size_t size, int flags) override;
    ssize_t recvfrom(int fd, void *data, size_t size, int flags, sockaddr *from, socklen_t *length) override;
    int poll(pollfd *fds, nfds_t count, int timeout) override;
    int ioctl(int fd, unsigned long request, void *block) override;

    int nanosleep(const timespec *wanted, timespec *left) override;
    int clockGettime(clockid_t clock, timespec *now) override;
    time_t time(time_t *now) override;
    int rand() override;
    void srand(unsigned seed) override;

    // What the module prints for a person is not compared.
    bool print(FILE *, const char *, size_t) override { return true; }
    bool print(int fd, const char *text, size_t length) override;

  private:
    static constexpr uid_t kOwner = 0;

    // What the module believes to be an open file, pipe or folder: the answer of an entry.
    struct Source {
        std::string path, bytes;
        size_t at = 0;
        int64_t result = 0; // of a pipe
        dirent entry{};
    };
    // The entry's result with errno; `missing` when no entry fits.
    int resultOf(const Entry *entry, int missing);
    int plain(const Entry &call, int missing = 0);
    template <typename Handle> Handle openSource(const Entry &call, std::map<Handle, Source> &sources, Handle handle);
    template <typename Handle> static Source *find(std::map<Handle, Source> &sources, Handle handle);
    static size_t take(Source *source, void *data, size_t size);

    Script &script_;
    std::map<int, Source> files_;
    std::map<FILE *, Source> pipes_;
    std::map<DIR *, Source> directories_;
    uintptr_t handles_ = 1000; // no descriptor of this process is so large
    std::string stored_;       // what nvram_get() gave last
};

} // namespace wlhost
