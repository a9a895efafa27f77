// wlsimd: the process that plays the wireless driver.
#include "platform/sim/common/sim_options.h"
#include "platform/sim/daemons/daemon.h"
#include "platform/sim/driver/scenario.h"
#include "platform/sim/driver/sim_driver.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/signalfd.h>

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

// Termination as a readable descriptor, so that the serving loop ends in an orderly way.
int terminationFd() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

// Without interfaces or daemons to look at, everything that is asked for is there.
class AssumedProcesses : public Processes {
    bool running(const std::string &) const override { return true; }
};

} // namespace

int main(int argc, char **argv) {
    Options options = readOptions({argv + 1, argv + argc}, "--foreground --no-net --boot-steps", "--scenario");
    if (!options.error.empty() || !options.plain.empty()) {
        return fail("usage: wlsimd [--scenario FILE] [--foreground] [--no-net] | --boot-steps --scenario FILE", 2);
    }
    Model model = defaultModel();
    std::string error;
    if (options.has("--scenario") && !loadScenario(options.text("--scenario"), &model, &error)) {
        return fail(error, 2);
    }
    if (options.has("--boot-steps")) {
        return fputs(bootSteps(model).c_str(), stdout) < 0;
    }
    auto memory = std::make_unique<MemoryNet>();
    memory->startUp = true;
    bool real = !options.has("--no-net");
    auto net = real ? makeKernelNet() : std::unique_ptr<Net>(std::move(memory));
    auto processes = real ? makeKernelProcesses() : std::make_unique<AssumedProcesses>();
    auto events = makeEventSocket();
    auto clock = makeMonotonicClock();
    Driver driver(model, {*net, *processes, *events, *clock});
    Server server([&](const Words &words) { return driver.run(words); });
    int stopFd = terminationFd();
    DaemonTask task;
    task.name = "wlsimd";
    task.prepare = [&] {
        error = server.listen(driverSocket());
        error = error.empty() ? driver.start() : error;
        if (!error.empty()) {
            throw std::runtime_error(error);
        }
    };
    task.serve = [&] {
        server.serve(stopFd);
        driver.stop();
    };
    return options.has("--foreground") ? runInForeground(task) : startDaemon(task);
}
