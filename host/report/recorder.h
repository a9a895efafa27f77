// Records what the module does and the answers that it gets, in every mode: the handler in force does it.
#pragma once

#include <map>
#include <memory>

#include "host/report/trace_ring.h"
#include "host/tap/tap.h"

namespace wlhost {

class Recorder : public tap::Handler {
  public:
    explicit Recorder(TraceRing &trace) : trace_(trace) {}

    void heard(const char *function, const std::string &text) override;

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
    int fcntl(int fd, int request, long argument) override { return next().fcntl(fd, request, argument); }
    size_t fread(void *data, size_t size, size_t count, FILE *stream) override;
    int fileno(FILE *stream) override;
    int remove(const char *path) override;
    int chmod(const char *path, mode_t mode) override;

    DIR *opendir(const char *path) override;
    dirent *readdir(DIR *directory) override;
    int closedir(DIR *directory) override;

    int schedSetaffinity(pid_t pid, size_t size, const cpu_set_t *set) override;
    int schedSetscheduler(pid_t pid, int policy, const sched_param *parameters) override;
    int sigaction(int number, const struct sigaction *action, struct sigaction *old) override;
    uid_t geteuid() override { return next().geteuid(); }

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

    bool print(FILE *stream, const char *text, size_t length) override { return next().print(stream, text, length); }
    bool print(int fd, const char *text, size_t length) override;

  private:
    // What was opened and is read: the bytes up to a limit are read whole, and the module is given them from here.
    struct Source {
        Entry *entry; // null when nothing was recorded
        std::string path;
        bool isRead;
        std::string bytes;
        size_t at;
    };

    static tap::Handler &next() { return tap::handler(); }
    // Notes a call with its result, and errno when that is negative; errno stays as it was.
    Entry *note(Entry entry, int64_t result);
    void answer(Entry *entry, std::string_view bytes);
    template <typename Read> void readWhole(Source &source, Read read);
    static size_t take(Source &source, void *data, size_t size);

    TraceRing &trace_;
    std::map<int, Source> files_;
    std::map<FILE *, Source> pipes_;
    std::map<DIR *, Entry *> directories_;
    Entry *write_ = nullptr; // the last one, whose line of the log follows
};

} // namespace wlhost
