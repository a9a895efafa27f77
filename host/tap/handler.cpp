#include "host/tap/handler.h"

#include "host/tap/spawn.h"

namespace wlhost::tap {

int Handler::runForHost(const std::string &, const Words &argv, std::string *output, std::string *error) {
    return spawn(argv, output, error);
}

int Handler::system(const char *command) { return platform().system(command); }
FILE *Handler::popen(const char *command, const char *type) { return platform().popen(command, type); }
int Handler::pclose(FILE *stream) { return platform().pclose(stream); }
int Handler::wlctlCmd(char *line) { return platform().wlctl_cmd(line); }

char *Handler::nvramGet(const char *key) { return platform().nvram_get(key); }
int Handler::nvramSet(const char *key, const char *value) { return platform().nvram_set(key, value); }
int Handler::nvramUnset(const char *key) { return platform().nvram_unset(key); }

int Handler::open(const char *path, int flags, mode_t mode) { return platform().open(path, flags, mode); }
int Handler::fstat(int fd, struct stat *status) { return platform().fstat(fd, status); }
int Handler::close(int fd) { return platform().close(fd); }
ssize_t Handler::read(int fd, void *data, size_t size) { return platform().read(fd, data, size); }
off_t Handler::lseek(int fd, off_t offset, int whence) { return platform().lseek(fd, offset, whence); }
int Handler::fcntl(int fd, int request, long argument) { return platform().fcntl(fd, request, argument); }
size_t Handler::fread(void *data, size_t size, size_t count, FILE *stream) {
    return platform().fread(data, size, count, stream);
}
int Handler::fileno(FILE *stream) { return platform().fileno(stream); }
int Handler::remove(const char *path) { return platform().remove(path); }
int Handler::chmod(const char *path, mode_t mode) { return platform().chmod(path, mode); }

DIR *Handler::opendir(const char *path) { return platform().opendir(path); }
dirent *Handler::readdir(DIR *directory) { return platform().readdir(directory); }
int Handler::closedir(DIR *directory) { return platform().closedir(directory); }

int Handler::schedSetaffinity(pid_t pid, size_t size, const cpu_set_t *set) {
    return platform().sched_setaffinity(pid, size, set);
}
int Handler::schedSetscheduler(pid_t pid, int policy, const sched_param *parameters) {
    return platform().sched_setscheduler(pid, policy, parameters);
}
int Handler::sigaction(int number, const struct sigaction *action, struct sigaction *old) {
    return platform().sigaction(number, action, old);
}
uid_t Handler::geteuid() { return platform().geteuid(); }

int Handler::socket(int domain, int type, int protocol) { return platform().socket(domain, type, protocol); }
int Handler::bind(int fd, const sockaddr *address, socklen_t length) { return platform().bind(fd, address, length); }
int Handler::setsockopt(int fd, int level, int option, const void *value, socklen_t length) {
    return platform().setsockopt(fd, level, option, value, length);
}
ssize_t Handler::sendto(int fd, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length) {
    return platform().sendto(fd, data, size, flags, to, length);
}
ssize_t Handler::recv(int fd, void *data, size_t size, int flags) { return platform().recv(fd, data, size, flags); }
ssize_t Handler::recvfrom(int fd, void *data, size_t size, int flags, sockaddr *from, socklen_t *length) {
    return platform().recvfrom(fd, data, size, flags, from, length);
}
int Handler::poll(pollfd *fds, nfds_t count, int timeout) { return platform().poll(fds, count, timeout); }
int Handler::ioctl(int fd, unsigned long request, void *block) { return platform().ioctl(fd, request, block); }

int Handler::nanosleep(const timespec *wanted, timespec *left) { return platform().nanosleep(wanted, left); }
int Handler::clockGettime(clockid_t clock, timespec *now) { return platform().clock_gettime(clock, now); }
time_t Handler::time(time_t *now) { return platform().time(now); }
int Handler::rand() { return platform().rand(); }
void Handler::srand(unsigned seed) { platform().srand(seed); }

bool Handler::print(FILE *stream, const char *text, size_t length) { return fwrite(text, 1, length, stream) == length; }
bool Handler::print(int fd, const char *text, size_t length) {
    return write(fd, text, length) == static_cast<ssize_t>(length);
}

} // namespace wlhost::tap
