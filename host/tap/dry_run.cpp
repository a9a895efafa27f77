#include "host/tap/dry_run.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "host/base/failure.h"
#include "host/base/fd.h"
#include "host/tap/dry.h"
#include "host/tap/spawn.h"
#include "host/tap/tap.h"

namespace wlhost::tap {
namespace {

std::unique_ptr<DryHandler> dry;
Handler *before = nullptr; // the mode that goLive() goes back to

std::optional<std::string> text(const char *value) { return value ? std::optional<std::string>(value) : std::nullopt; }

json answerOf(const std::function<json()> &steps) {
    try {
        return {{"result", steps()}};
    } catch (const Failure &failure) {
        return {{"status", failure.status}, {"error", errorOf(failure)}};
    } catch (const std::exception &error) {
        return {{"status", Status::kFailed}, {"error", errorOf(Failure(Status::kFailed, "dry run", error.what()))}};
    }
}

// The child: it has the host's memory and descriptors, and leaves without a trace in either.
[[noreturn]] void beChild(int pipe, pid_t parent, const std::function<json()> &steps) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (int number : {SIGINT, SIGTERM, SIGHUP})
        signal(number, SIG_DFL);
    signal(SIGPIPE, SIG_DFL);
    if (getppid() != parent)
        _exit(1);
    goDry();
    const std::string text = answerOf(steps).dump(-1, ' ', false, json::error_handler_t::replace);
    for (size_t at = 0; at < text.size();) {
        ssize_t count = write(pipe, text.data() + at, text.size() - at);
        if (count < 0)
            _exit(1);
        at += static_cast<size_t>(count);
    }
    _exit(0);
}

// All that comes out of the pipe; nothing when the time is over before its end.
std::optional<std::string> readAll(int pipe, std::chrono::milliseconds limit) {
    using namespace std::chrono;
    const auto end = steady_clock::now() + limit;
    for (std::string text;;) {
        auto left = duration_cast<milliseconds>(end - steady_clock::now()).count();
        pollfd entry{pipe, POLLIN, 0};
        int ready = left <= 0 ? 0 : poll(&entry, 1, static_cast<int>(left));
        if (ready == 0)
            return std::nullopt;
        char buffer[65536];
        ssize_t count = ready < 0 ? -1 : read(pipe, buffer, sizeof buffer);
        if (count == 0)
            return text;
        if (count < 0 && errno != EINTR)
            throw Failure(Status::kFailed, "dry run", std::strerror(errno));
        text.append(buffer, count > 0 ? static_cast<size_t>(count) : 0);
    }
}

} // namespace

bool isDry() { return dry != nullptr; }

void goDry() {
    if (dry)
        return;
    dry = std::make_unique<DryHandler>();
    before = &handler();
    setHandler(dry.get());
}

void goLive() {
    if (!dry)
        return;
    setHandler(before);
    dry->files().writeOut();
    dry.reset();
}

Effects takeEffects() { return dry ? dry->takeEffects() : Effects(); }

std::optional<std::string> storedNow(const std::string &key) { return text(handler().nvramGet(key.c_str())); }
std::optional<std::string> storedReally(const std::string &key) { return text(platform().nvram_get(key.c_str())); }

json inDryRun(const std::function<json()> &steps, std::chrono::milliseconds limit) {
    if (dry)
        return steps();
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw Failure(Status::kFailed, "dry run", std::strerror(errno));
    Fd from(ends[0]), to(ends[1]);
    std::fflush(nullptr); // the child must not write it again
    const pid_t parent = getpid(), child = fork();
    if (child == 0)
        beChild(to.get(), parent, steps);
    to = Fd();
    if (child < 0)
        throw Failure(Status::kFailed, "dry run", std::strerror(errno));
    setpgid(child, child); // with the queries that it runs, whichever of the two comes first
    std::optional<std::string> text;
    try {
        text = readAll(from.get(), limit);
    } catch (const Failure &) {
        kill(-child, SIGKILL);
        waitFor(child);
        throw;
    }
    if (!text)
        kill(-child, SIGKILL);
    const int status = waitFor(child);
    if (!text)
        throw Failure(Status::kTimeout, "dry run", "took longer than " + std::to_string(limit.count()) + " ms",
                      "a query of the driver may hang");
    json answer = json::parse(*text, nullptr, false);
    if (status != 0 || !answer.is_object())
        throw Failure(Status::kFailed, "dry run", "ended unexpectedly (" + std::to_string(status) + ")");
    if (answer.contains("error"))
        throw failureOf(answer.at("status"), answer.at("error"));
    return answer.at("result");
}

int run(const std::string &function, const std::vector<std::string> &argv, std::string *output, std::string *error) {
    return handler().runForHost(function, argv, output, error);
}

} // namespace wlhost::tap
