// wlsim: hands its words to the driver, apart from what happens beside the driver: waiting for it, WPS enrollees,
// senders and receivers of events.
#include "platform/sim/common/sim_log.h"
#include "platform/sim/common/sim_options.h"
#include "platform/sim/common/sim_socket.h"
#include "platform/sim/driver/event_message.h"
#include "platform/sim/tools/wps_device.h"

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using wlsim::Options;
using wlsim::Words;

int fail(const char *what) {
    fprintf(stderr, "wlsim: %s: %s\n", what, strerror(errno));
    return 1;
}

int usage(const std::string &text, const std::string &error = "") {
    fprintf(stderr, "usage: wlsim %s\n%s%s", text.c_str(), error.c_str(), error.empty() ? "" : "\n");
    return 2;
}

int waitForDriver(const Words &words) {
    auto seconds = wlsim::parseNumber(words.empty() ? "10" : words[0]);
    if (words.size() > 1 || !seconds || *seconds < 0 || *seconds > 3600) {
        return usage("wait [SECONDS]");
    }
    constexpr int kStepsPerSecond = 50;
    for (long step = 0; step <= *seconds * kStepsPerSecond; step++) {
        if (wlsim::accepts(wlsim::driverSocket())) {
            return 0;
        }
        usleep(1000000 / kStepsPerSecond);
    }
    fprintf(stderr, "wlsim: the driver does not run (%s)\n", wlsim::driverSocket().c_str());
    return wlsim::kNoDriver;
}

// Sends past the driver, which stays free to answer whoever receives.
int flood(const Words &words) {
    Options options = wlsim::readOptions(words, "", "--count --number --mac");
    long count = options.number("--count", 100000, 1, 100000000);
    auto number = static_cast<unsigned>(options.number("--number", wlsim::kEventDeauthInd, 0, INT_MAX));
    auto mac = wlsim::parseMac(options.text("--mac", "02:00:00:00:00:01"));
    if (options.plain.size() != 1 || !mac || !options.error.empty()) {
        return usage("flood IF [--count N] [--number EVENT] [--mac MAC]", options.error);
    }
    std::string message = wlsim::eventMessage({number, options.plain[0], *mac, 0, 0});
    int fd = wlsim::loopbackSocket(wlsim::kEventPort, connect);
    if (fd < 0) {
        return fail("event port");
    }
    auto start = std::chrono::steady_clock::now();
    long refused = 0;
    for (long i = 0; i < count; i++) {
        refused += send(fd, message.data(), message.size(), 0) < 0 ? 1 : 0;
    }
    wlsim::logLine("event", wlsim::format("%s number %u station %s %ld times past the driver", options.plain[0].c_str(),
                                          number, mac->text().c_str(), count));
    std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    close(fd);
    printf("sent %ld events in %.3f s, %ld refused\n", count, seconds.count(), refused);
    return refused == count ? 1 : 0;
}

// One line per datagram; what it lacks reads as zero.
void printForwarded(const std::string &message) {
    constexpr size_t kNumber = 28, kStation = 48, kName = 54, kNameSize = 16;
    auto byte = [&](size_t at) { return at < message.size() ? static_cast<unsigned char>(message[at]) : 0u; };
    unsigned number = byte(kNumber) << 24 | byte(kNumber + 1) << 16 | byte(kNumber + 2) << 8 | byte(kNumber + 3);
    wlsim::Mac mac;
    for (size_t i = 0; i < mac.bytes.size(); i++) {
        mac.bytes[i] = static_cast<uint8_t>(byte(kStation + i));
    }
    std::string name = message.size() > kName ? message.substr(kName, kNameSize) : "";
    printf("%zu bytes event %u station %s interface %s\n", message.size(), number, mac.text().c_str(),
           wlsim::escapeBytes(name.c_str()).c_str());
    fflush(stdout);
}

// The steering agent's end of the forwarding.
int agent(const Words &words) {
    Options options = wlsim::readOptions(words, "", "--count");
    long count = options.number("--count", LONG_MAX, 1, LONG_MAX);
    if (!options.plain.empty() || !options.error.empty()) {
        return usage("agent [--count N]", options.error);
    }
    int fd = wlsim::loopbackSocket(wlsim::kAgentPort, bind);
    if (fd < 0) {
        return fail("port of the steering agent");
    }
    fprintf(stderr, "listening\n");
    std::string buffer(65536, '\0');
    for (long i = 0; i < count; i++) {
        ssize_t got = recv(fd, buffer.data(), buffer.size(), 0);
        if (got < 0) {
            return fail("receiving");
        }
        printForwarded(buffer.substr(0, static_cast<size_t>(got)));
    }
    close(fd);
    return 0;
}

constexpr struct {
    const char *name;
    int (*run)(const Words &);
} kLocal[] = {{"wait", waitForDriver}, {"wps", wlsim::wpsCommand}, {"flood", flood}, {"agent", agent}};

} // namespace

int main(int argc, char **argv) {
    Words words(argv + 1, argv + argc);
    for (const auto &command : kLocal) {
        if (!words.empty() && words[0] == command.name) {
            return command.run(Words(words.begin() + 1, words.end()));
        }
    }
    words.insert(words.begin(), "wlsim");
    return wlsim::requestAndShow(words);
}
