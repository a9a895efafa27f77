// wlctl, wl, dhdctl, wlconf, wlsim: each hands its words to the driver and shows the answer.
#include "client.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

/** The one command that the driver cannot answer: whether it is there. */
int waitForDriver(const char *text) {
    char *end = nullptr;
    long seconds = strtol(text, &end, 10);
    if (end == text || *end != '\0' || seconds < 0 || seconds > 3600) {
        fprintf(stderr, "usage: wlsim wait [SECONDS]\n");
        return 2;
    }
    constexpr int kStepsPerSecond = 50;
    for (long step = 0; step <= seconds * kStepsPerSecond; step++) {
        if (wlsim::driverAccepts()) {
            return 0;
        }
        usleep(1000000 / kStepsPerSecond);
    }
    fprintf(stderr, "wlsim: the driver does not run (%s)\n", wlsim::socketPath().c_str());
    return wlsim::kNoDriver;
}

} // namespace

int main(int argc, char **argv) {
    std::vector<std::string> words(argv, argv + argc);
    words[0] = TOOL_NAME;
    if (words[0] == "wlsim" && argc > 1 && argc < 4 && words[1] == "wait") {
        return waitForDriver(argc == 3 ? argv[2] : "10");
    }
    std::string output;
    int status = wlsim::request(words, &output);
    fwrite(output.data(), 1, output.size(), stdout);
    return fflush(stdout) == 0 ? status : 1;
}
