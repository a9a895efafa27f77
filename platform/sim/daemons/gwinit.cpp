// First process of a simulated gateway.
//
// It stays outside as the process that the caller knows, and forks the gateway's process 1 into a pid and mount
// namespace of its own. When either of the two ends, for whatever reason, the kernel ends everything inside: the outer
// one takes process 1 along (parent-death signal), process 1 takes the namespace along.
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sched.h>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kEnvironmentError = 7;
constexpr int kGraceSeconds = 5;
constexpr std::array kEndSignals{SIGTERM, SIGINT, SIGHUP};

using Words = std::vector<std::string>;

struct Options {
    std::string pidFile;
    Words prepare; // builds the root and enters it, with the caller's own shell
    Words boot;    // starts the gateway's services inside
    Words command;
};

[[noreturn]] void fail(const char *what, int status = kEnvironmentError) {
    std::fprintf(stderr, "gateway: %s: %s\n", what, std::strerror(errno));
    std::_Exit(status);
}

// Signals that the caller chose to ignore (nohup, a background job) stay ignored.
sigset_t watchedSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    for (int signal : kEndSignals) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
            sigaddset(&set, signal);
    }
    return set;
}

int exitStatus(int status) { return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status); }

[[noreturn]] void execute(const Words &words) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::vector<char *> argv;
    for (const std::string &word : words)
        argv.push_back(const_cast<char *>(word.c_str()));
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    int status = errno == ENOENT ? 127 : 126;
    fail(argv[0], status);
}

pid_t start(const Words &words) {
    pid_t pid = fork();
    if (pid < 0)
        fail("fork");
    if (pid == 0)
        execute(words);
    return pid;
}

// Reaps what has ended. Returns true when `pid` was among it, with its exit status stored.
bool reap(pid_t pid, int *result) {
    bool found = false;
    int status = 0;
    for (pid_t ended; (ended = waitpid(-1, &status, WNOHANG)) > 0;) {
        if (ended == pid) {
            *result = exitStatus(status);
            found = true;
        }
    }
    return found;
}

// Waits for one process and hands it the end signals meant for the gateway; `deadline` makes their effect certain.
int attend(pid_t pid, bool deadline) {
    sigset_t watched = watchedSignals();
    time_t killAt = 0;
    int result = 0;
    for (;;) {
        timespec tick{1, 0};
        siginfo_t info{};
        int signal = killAt ? sigtimedwait(&watched, &info, &tick) : sigwaitinfo(&watched, &info);
        if (reap(pid, &result))
            return result;
        if (killAt && time(nullptr) >= killAt)
            kill(pid, SIGKILL);
        if (signal <= 0 || signal == SIGCHLD)
            continue;
        // A terminal's interrupt has reached the whole process group already; a second one would cut a clean end short.
        if (info.si_code != SI_KERNEL)
            kill(pid, signal);
        if (deadline && !killAt)
            killAt = time(nullptr) + kGraceSeconds;
    }
}

void runStep(const Words &step) {
    int status = attend(start(step), false);
    if (status != 0)
        std::_Exit(status);
}

// Process 1: a root of its own, the services, then the command.
[[noreturn]] void gateway(const Options &options, int gate) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    char go = 0;
    if (read(gate, &go, 1) != 1) // the outer process is gone already
        std::_Exit(1);
    close(gate);
    if (unshare(CLONE_NEWNS) != 0)
        fail("cannot make a mount namespace");
    runStep(options.prepare);
    if (chdir("/") != 0)
        fail("/");
    runStep(options.boot);
    std::_Exit(attend(start(options.command), false));
}

// The namespace's identity goes along with the pid, so that a pid used again by a stranger is recognised.
void writePidFile(const std::string &path, pid_t pid) {
    char ns[64] = "";
    std::string link = "/proc/" + std::to_string(pid) + "/ns/pid";
    if (readlink(link.c_str(), ns, sizeof ns - 1) < 0)
        fail(link.c_str());
    FILE *file = std::fopen(path.c_str(), "w");
    if (!file)
        fail(path.c_str());
    std::fprintf(file, "%d %s\n", static_cast<int>(pid), ns);
    std::fclose(file);
}

Words takeWords(char **&arg, char **end) {
    Words words;
    while (arg != end && std::strcmp(*arg, "--") != 0)
        words.emplace_back(*arg++);
    if (arg != end)
        ++arg;
    return words;
}

// With the caller's end the outer process ends too, as if it had been asked to.
void attachToCaller() {
    const char *attached = std::getenv("GATEWAY_ATTACHED");
    if (attached && *attached)
        prctl(PR_SET_PDEATHSIG, SIGTERM);
}

int run(const Options &options) {
    attachToCaller();
    sigset_t watched = watchedSignals();
    sigprocmask(SIG_SETMASK, &watched, nullptr);
    int gate[2];
    if (pipe2(gate, O_CLOEXEC) != 0 || unshare(CLONE_NEWPID) != 0)
        fail("cannot make a pid namespace");
    pid_t pid = fork();
    if (pid < 0)
        fail("fork");
    if (pid == 0) {
        close(gate[1]);
        gateway(options, gate[0]);
    }
    close(gate[0]);
    if (!options.pidFile.empty())
        writePidFile(options.pidFile, pid);
    if (write(gate[1], "g", 1) != 1)
        fail("cannot start process 1");
    close(gate[1]);
    int status = attend(pid, true);
    if (!options.pidFile.empty())
        unlink(options.pidFile.c_str());
    return status;
}

} // namespace

// gwinit PIDFILE|'' PREPARE... -- BOOT... -- COMMAND...
int main(int argc, char **argv) {
    if (argc < 4) {
        std::fputs("gwinit: started by the gateway launcher only\n", stderr);
        return 2;
    }
    char **arg = argv + 2;
    char **end = argv + argc;
    Options options;
    options.pidFile = argv[1];
    options.prepare = takeWords(arg, end);
    options.boot = takeWords(arg, end);
    options.command.assign(arg, end);
    if (options.prepare.empty() || options.boot.empty() || options.command.empty()) {
        std::fputs("gwinit: a step is missing\n", stderr);
        return 2;
    }
    std::_Exit(run(options)); // nothing to tidy up, and a leak checker may not trace a process that changed namespaces
}
