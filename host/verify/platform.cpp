#include "host/verify/platform.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <memory>

#include "host/base/escape.h"

namespace wlhost {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kToolPatience = std::chrono::seconds(5);
constexpr size_t kMostOutput = size_t{256} * 1024;

struct Pipe {
    int ends[2] = {-1, -1};

    Pipe() {
        if (pipe2(ends, O_CLOEXEC) != 0)
            ends[0] = ends[1] = -1;
    }
    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;
    void closeEnd(int end) {
        if (ends[end] >= 0)
            close(ends[end]);
        ends[end] = -1;
    }
};

// Starts the tool with its output in the two pipes; an errno.
int start(const std::vector<std::string> &words, const Pipe &out, const Pipe &err, pid_t *pid) {
    std::vector<char *> argv;
    for (const std::string &word : words)
        argv.push_back(const_cast<char *>(word.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out.ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.ends[1], STDERR_FILENO);
    int error = posix_spawnp(pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

// What can be read now, into what is kept of it; false at the end.
bool drain(Pipe &pipe, std::string *kept) {
    char buffer[4096];
    ssize_t got = read(pipe.ends[0], buffer, sizeof buffer);
    if (got < 0 && errno == EINTR)
        return true;
    if (got <= 0) {
        pipe.closeEnd(0);
        return false;
    }
    kept->append(buffer, std::min(static_cast<size_t>(got), kMostOutput - kept->size()));
    return true;
}

// Reads both until they end; false when that takes too long.
bool readBoth(Pipe &out, Pipe &err, ToolAnswer *answer) {
    const auto end = Clock::now() + kToolPatience;
    while (out.ends[0] >= 0 || err.ends[0] >= 0) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd fds[] = {{out.ends[0], POLLIN, 0}, {err.ends[0], POLLIN, 0}};
        if (left <= 0)
            return false;
        if (poll(fds, 2, static_cast<int>(left)) <= 0)
            continue;
        if (fds[0].revents != 0)
            drain(out, &answer->out);
        if (fds[1].revents != 0)
            drain(err, &answer->said);
    }
    return true;
}

// The first line that says something, escaped.
std::string firstLine(const std::string &text) {
    size_t from = std::min(text.find_first_not_of(" \n"), text.size());
    return escapeBytes(text.substr(from, std::min<size_t>(text.find('\n', from) - from, 300)));
}

std::string complaint(const ToolAnswer &answer, int wait) {
    std::string said = firstLine(answer.said.empty() ? answer.out : answer.said);
    if (!said.empty())
        return said;
    return WIFEXITED(wait) ? "exit status " + std::to_string(WEXITSTATUS(wait))
                           : "ended by signal " + std::to_string(WTERMSIG(wait));
}

} // namespace

ToolAnswer Platform::run(const std::vector<std::string> &words) const {
    ToolAnswer answer;
    Pipe out, err;
    pid_t pid = 0;
    int error = out.ends[0] < 0 || err.ends[0] < 0 ? errno : start(words, out, err, &pid);
    if (error != 0) {
        answer.said = words[0] + ": " + std::strerror(error);
        return answer;
    }
    out.closeEnd(1);
    err.closeEnd(1);
    bool inTime = readBoth(out, err, &answer);
    if (!inTime)
        kill(pid, SIGKILL);
    // Without a status, as where SIGCHLD is ignored, it counts as one that was killed.
    int wait = SIGKILL;
    while (waitpid(pid, &wait, 0) < 0 && errno == EINTR) {
    }
    answer.late = !inTime;
    answer.status = inTime && WIFEXITED(wait) ? WEXITSTATUS(wait) : -1;
    answer.said = answer ? "" : inTime ? complaint(answer, wait) : words[0] + " did not answer in time";
    return answer;
}

std::optional<std::string> Platform::readFile(const std::string &path) const {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0)
        return std::nullopt;
    std::string text;
    struct stat info {};
    char buffer[4096];
    ssize_t got = fstat(fd, &info) == 0 && S_ISREG(info.st_mode) ? 1 : -1;
    while (got > 0 && text.size() < kMostOutput)
        if ((got = read(fd, buffer, sizeof buffer)) > 0)
            text.append(buffer, static_cast<size_t>(got));
    close(fd);
    return got == 0 ? std::optional(text) : std::nullopt;
}

bool Platform::exists(const std::string &path) const { return access(path.c_str(), F_OK) == 0; }

std::optional<std::string> Platform::linkedName(const std::string &path) const {
    char target[512];
    ssize_t length = readlink(path.c_str(), target, sizeof target);
    if (length <= 0)
        return std::nullopt;
    std::string text(target, static_cast<size_t>(length));
    return text.substr(text.rfind('/') + 1);
}

std::vector<std::string> Platform::processes() const {
    std::vector<std::string> names;
    std::unique_ptr<DIR, int (*)(DIR *)> proc(opendir("/proc"), closedir);
    while (const dirent *entry = proc ? readdir(proc.get()) : nullptr) {
        std::string pid = entry->d_name;
        if (pid.find_first_not_of("0123456789") != std::string::npos)
            continue;
        // "12 (name) S ...": the name may hold anything; a process that ended and was not waited for does not run.
        std::string stat = readFile("/proc/" + pid + "/stat").value_or("");
        size_t open = stat.find('('), close = stat.rfind(')');
        if (open != std::string::npos && close != std::string::npos && stat.compare(close, 3, ") Z") != 0)
            names.push_back(stat.substr(open + 1, close - open - 1));
    }
    return names;
}

void Platform::pause(int milliseconds) const { poll(nullptr, 0, milliseconds); }

const Platform &devicePlatform() {
    static const Platform kDevice;
    return kDevice;
}

} // namespace wlhost
