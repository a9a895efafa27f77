// wlsimd: the process that plays the wireless driver.
#include "client.h"
#include "options.h"
#include "scenario.h"
#include "server.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

using namespace wlsim;

int fail(const std::string &why, int status = 1) {
    fprintf(stderr, "wlsimd: %s\n", why.c_str());
    return status;
}

bool loadScenario(const std::string &path, Model *model, std::string *error) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    if (!file) {
        *error = path + ": cannot be read";
        return false;
    }
    bool good = readScenario(text.str(), model, error);
    *error = path + ": " + *error;
    return good;
}

/** Termination as a readable descriptor, so that the serving loop ends in an orderly way. */
int terminationFd() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

/** Leaves the caller's terminal; the caller goes on once the socket accepts. */
bool goToBackground() {
    pid_t pid = fork();
    if (pid > 0) {
        _exit(0);
    }
    setsid();
    int null = open("/dev/null", O_RDWR);
    for (int fd = 0; null >= 0 && fd < 2; fd++) {
        dup2(null, fd);
    }
    return pid == 0;
}

/** Without interfaces or daemons to look at, everything that is asked for is there. */
class AssumedProcesses : public Processes {
    bool running(const std::string &) const override { return true; }
};

} // namespace

int main(int argc, char **argv) {
    Options options = readOptions({argv + 1, argv + argc}, "--foreground --no-net", "--scenario");
    if (!options.error.empty() || !options.plain.empty()) {
        return fail("usage: wlsimd [--scenario FILE] [--foreground] [--no-net]", 2);
    }
    Model model = defaultModel();
    std::string error;
    if (options.has("--scenario") && !loadScenario(options.text("--scenario"), &model, &error)) {
        return fail(error, 2);
    }
    auto memory = std::make_unique<MemoryNet>();
    memory->startUp = true;
    bool real = !options.has("--no-net");
    auto net = real ? makeKernelNet() : std::unique_ptr<Net>(std::move(memory));
    auto processes = real ? makeKernelProcesses() : std::make_unique<AssumedProcesses>();
    auto events = makeEventSocket();
    auto clock = makeMonotonicClock();
    Driver driver(model, {*net, *processes, *events, *clock});
    Server server(driver);
    int stopFd = terminationFd();
    error = server.listen(socketPath());
    if (error.empty()) {
        error = driver.start();
    }
    if (!error.empty()) {
        return fail(error);
    }
    if (!options.has("--foreground") && !goToBackground()) {
        return fail("cannot fork");
    }
    server.serve(stopFd);
    driver.stop();
    return 0;
}
