// What becomes of the module's calls into the world. This one passes each on to the platform; the modes are the others.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/tap/platform.h"

namespace wlhost::tap {

// A method for each tapped function, with its arguments, its result and errno.
class Handler {
  public:
    Handler() = default;
    virtual ~Handler() = default;
    Handler(const Handler &) = delete;
    Handler &operator=(const Handler &) = delete;

    // A line of the module's log, with the function that wrote it. A command's stands before it, a write's behind it.
    virtual void heard(const char * /*function*/, const std::string & /*text*/) {}

    // The operation ends: nothing more is heard about what was done in it.
    virtual void settle() {}

    // A command of the host itself, without a shell: its exit status, 127 when it could not be started, 128 and the
    // signal that ended it. What it printed goes where it is wanted, else where the host's own goes.
    using Words = std::vector<std::string>;
    virtual int runForHost(const std::string &function, const Words &argv, std::string *output, std::string *error);

    // Commands
    virtual int system(const char *command);
    virtual FILE *popen(const char *command, const char *type);
    virtual int pclose(FILE *stream);
    // Driver calls
    virtual int wlctlCmd(char *line);

    // The store
    virtual char *nvramGet(const char *key);
    virtual int nvramSet(const char *key, const char *value);
    virtual int nvramUnset(const char *key);

    // Files, and what was opened otherwise and has a descriptor
    virtual int open(const char *path, int flags, mode_t mode);
    virtual int fstat(int fd, struct stat *status);
    virtual int close(int fd);
    virtual ssize_t read(int fd, void *data, size_t size);
    virtual off_t lseek(int fd, off_t offset, int whence);
    virtual int fcntl(int fd, int request, long argument);
    virtual size_t fread(void *data, size_t size, size_t count, FILE *stream);
    virtual int fileno(FILE *stream);
    virtual int remove(const char *path);
    virtual int chmod(const char *path, mode_t mode);

    // Directories
    virtual DIR *opendir(const char *path);
    virtual dirent *readdir(DIR *directory);
    virtual int closedir(DIR *directory);

    // Processes
    virtual int schedSetaffinity(pid_t pid, size_t size, const cpu_set_t *set);
    virtual int schedSetscheduler(pid_t pid, int policy, const sched_param *parameters);
    virtual int sigaction(int number, const struct sigaction *action, struct sigaction *old);
    virtual uid_t geteuid();

    // Sockets
    virtual int socket(int domain, int type, int protocol);
    virtual int bind(int fd, const sockaddr *address, socklen_t length);
    virtual int setsockopt(int fd, int level, int option, const void *value, socklen_t length);
    virtual ssize_t sendto(int fd, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length);
    virtual ssize_t recv(int fd, void *data, size_t size, int flags);
    virtual ssize_t recvfrom(int fd, void *data, size_t size, int flags, sockaddr *from, socklen_t *length);
    virtual int poll(pollfd *fds, nfds_t count, int timeout);
    virtual int ioctl(int fd, unsigned long request, void *block);

    // Pauses, the clock, chance
    virtual int nanosleep(const timespec *wanted, timespec *left);
    virtual int clockGettime(clockid_t clock, timespec *now);
    virtual time_t time(time_t *now);
    virtual int rand();
    virtual void srand(unsigned seed);

    // Printing: printf(), puts(), fputs(), fprintf() to a stream and dprintf() to a descriptor, formatted. True when
    // all of it was written.
    virtual bool print(FILE *stream, const char *text, size_t length);
    virtual bool print(int fd, const char *text, size_t length);
};

} // namespace wlhost::tap
