#include <fcntl.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "host/cli/calls.h"
#include "host/control/control_socket.h"
#include "host/control/runtime_folder.h"

namespace wlhost {
namespace {

std::string realPath(const std::string &path) {
    char resolved[PATH_MAX];
    if (!realpath(path.c_str(), resolved))
        throw systemFailure(Status::kUsage, path, errno, "");
    return resolved;
}

std::string folderOf(const std::string &path) { return path.substr(0, path.rfind('/')); }

std::string launcher() {
    const char *environment = getenv("WLHOST_GATEWAY");
    std::string path = environment && *environment ? environment : WLHOST_GATEWAY;
    if (access(path.c_str(), X_OK) != 0)
        throw Failure(Status::kEnvironment, path, "the simulated gateway is not there",
                      "name its launcher with WLHOST_GATEWAY");
    return path;
}

// The gateway's own socket lives in a folder that both sides see; the usual path points there. Both are gone
// afterwards.
class SharedSocket {
  public:
    explicit SharedSocket(std::string socket) : socket_(std::move(socket)), folder_(socket_ + ".sim") {
        secureRuntimeFolder(socket_);
        if (mkdir(folder_.c_str(), 0700) != 0 && errno != EEXIST)
            throw systemFailure(Status::kEnvironment, folder_, errno, "choose a path with --socket",
                                folderOf(folder_) + "/");
        // Its own folder and nobody else's: what is in it will be removed.
        lock_ = Fd(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        struct stat entry {};
        if (lock_.get() < 0 || fstat(lock_.get(), &entry) != 0 || entry.st_uid != geteuid())
            throw Failure(Status::kEnvironment, folder_, "is not this user's folder", "choose a path with --socket");
        if (flock(lock_.get(), LOCK_EX | LOCK_NB) != 0)
            throw Failure(Status::kEnvironment, folder_, "belongs to a gateway that runs",
                          "choose a path with --socket");
        folder_ = realPath(folder_);
        link();
    }
    ~SharedSocket() {
        if (pointsHere())
            unlink(socket_.c_str());
        std::error_code error;
        std::filesystem::remove_all(folder_, error);
        if (error)
            std::fprintf(stderr, "wlhost: %s: cannot be removed: %s\n", folder_.c_str(), error.message().c_str());
    }
    SharedSocket(const SharedSocket &) = delete;
    SharedSocket &operator=(const SharedSocket &) = delete;
    const std::string &folder() const { return folder_; }

  private:
    std::string target() const { return folder_ + "/wlhost.sock"; }
    bool pointsHere() const {
        std::error_code error;
        return std::filesystem::read_symlink(socket_, error) == target();
    }
    void link() {
        if (pointsHere()) // of one that ended without cleaning up
            unlink(socket_.c_str());
        if (symlink(target().c_str(), socket_.c_str()) == 0)
            return;
        const int reason = errno;
        std::filesystem::remove_all(folder_);
        throw systemFailure(Status::kEnvironment, socket_, reason, "choose a path with --socket");
    }

    std::string socket_, folder_;
    Fd lock_;
};

// The folder with the configuration stands at its own place inside, so that a reload may name its neighbours. A folder
// that the gateway has itself stays the gateway's; then only the file is shown.
std::string configBinding(const std::string &config) {
    std::string folder = folderOf(config);
    std::string shown = folder.find('/', 1) == std::string::npos ? config : folder;
    return shown + ":" + shown + ":ro";
}

std::vector<std::string> launchWords(const Call &call, const std::string &folder) {
    std::string config = realPath(call.args["config"]), self = realPath("/proc/self/exe");
    std::vector<std::string> words = {launcher(),    "--attached",
                                      "--build",     folderOf(folderOf(self)),
                                      "--run",       folder + "/run",
                                      "--bind",      configBinding(config),
                                      "--bind",      folder + ":/var/run/wlhost",
                                      "--",          "wlhost",
                                      "run",         config,
                                      "--socket",    "/var/run/wlhost/wlhost.sock",
                                      "--log-level", call.args.value("log_level", "error")};
    if (call.asJson)
        words.push_back("--json");
    if (call.args.value("once", false))
        words.push_back("--once");
    if (call.args.contains("library"))
        words.insert(words.end(), {"--library", call.args["library"]});
    return words;
}

// The first of the words is the program. It prints its results on `output`.
pid_t start(std::vector<std::string> words, int output = STDOUT_FILENO) {
    std::vector<char *> arguments;
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    pid_t child = 0;
    int error = posix_spawn(&child, arguments[0], &files, &attributes, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        throw systemFailure(Status::kEnvironment, words[0], error, "");
    return child;
}

// Waits for the gateway and passes on what it is asked to: to end, or to take its file over.
int attend(pid_t gateway, const sigset_t &watched, const std::string &socket) {
    for (;;) {
        siginfo_t info{};
        int number = sigwaitinfo(&watched, &info), status = 0;
        for (pid_t ended; (ended = waitpid(-1, &status, WNOHANG)) > 0;)
            if (ended == gateway)
                return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        // A terminal tells everything that runs on it by itself.
        if (number < 0 || number == SIGCHLD || info.si_code == SI_KERNEL)
            continue;
        if (number == SIGHUP)
            start({"/proc/self/exe", "--socket", socket, "reload"}, STDERR_FILENO);
        else
            kill(gateway, SIGTERM);
    }
}

} // namespace

Status runInGateway(const Call &call) {
    sigset_t watched;
    sigemptyset(&watched);
    for (int number : {SIGINT, SIGTERM, SIGHUP, SIGCHLD})
        sigaddset(&watched, number);
    sigprocmask(SIG_BLOCK, &watched, nullptr);
    realPath(call.args["config"]); // a file that is none leaves nothing behind either
    SharedSocket shared(call.socket);
    std::vector<std::string> words = launchWords(call, shared.folder());
    std::fprintf(stderr, "wlhost: enter this gateway with: %s enter --run %s/run -- sh\n", words[0].c_str(),
                 shared.folder().c_str());
    return static_cast<Status>(attend(start(words), watched, call.socket));
}

} // namespace wlhost
