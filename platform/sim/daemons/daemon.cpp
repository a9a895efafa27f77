#include "platform/sim/daemons/daemon.h"

#include "platform/sim/common/sim_log.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace wlsim {
namespace {

// A daemon just killed may still be on its way out when its successor starts: "killall eapd; eapd" has to work.
constexpr int kLockTries = 50;
constexpr auto kLockPause = std::chrono::milliseconds(20);

std::runtime_error systemError(const std::string &what) {
    return std::runtime_error(what + ": " + std::strerror(errno));
}

int lockPidFile(const std::string &name) {
    std::string path = "/var/run/" + name + ".pid";
    int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0)
        throw systemError(path);
    for (int i = 0; i < kLockTries; ++i) {
        if (flock(fd, LOCK_EX | LOCK_NB) == 0)
            return fd;
        std::this_thread::sleep_for(kLockPause);
    }
    throw std::runtime_error("already running");
}

void writePid(int fd, pid_t pid) {
    std::string text = std::to_string(pid) + "\n";
    if (ftruncate(fd, 0) != 0 || pwrite(fd, text.data(), text.size(), 0) < 0)
        throw systemError("pid file");
}

void writeFurtherPidFile(const std::string &path, pid_t pid) {
    if (path.empty())
        return;
    int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0)
        throw systemError(path);
    writePid(fd, pid);
    close(fd);
}

void detach() {
    setsid();
    std::string log = logPath();
    int in = open("/dev/null", O_RDONLY | O_CLOEXEC);
    int out = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (in < 0 || out < 0)
        throw systemError(log);
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(out, STDERR_FILENO);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::signal(SIGPIPE, SIG_IGN);
    if (chdir("/") != 0)
        throw systemError("/");
}

[[noreturn]] void background(const DaemonTask &task) {
    try {
        detach();
        logLine("daemon", "started");
        task.serve();
        logLine("daemon", "ended");
        std::_Exit(0);
    } catch (const std::exception &error) {
        logLine("daemon", std::string("ended: ") + error.what());
    }
    std::_Exit(1);
}

} // namespace

int startDaemon(const DaemonTask &task) {
    try {
        int lock = lockPidFile(task.name);
        task.prepare();
        pid_t pid = fork();
        if (pid < 0)
            throw systemError("fork");
        if (pid == 0)
            background(task);
        writePid(lock, pid);
        writeFurtherPidFile(task.pidFile, pid);
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s: %s\n", task.name.c_str(), error.what());
        return 1;
    }
}

int runInForeground(const DaemonTask &task) {
    try {
        task.prepare();
        task.serve();
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s: %s\n", task.name.c_str(), error.what());
        return 1;
    }
}

Words plainArguments(int argc, char **argv, std::size_t most, const char *usage) {
    Words arguments(argv + 1, argv + argc);
    bool plain = arguments.size() <= most;
    for (const std::string &argument : arguments)
        plain = plain && !argument.empty() && argument[0] != '-';
    if (!plain) {
        std::fprintf(stderr, "usage: %s\n", usage);
        std::exit(1);
    }
    return arguments;
}

} // namespace wlsim
