// The other side of a WPS session: a device that wants to enrol, and the control protocol by hand.
#include "platform/sim/tools/wps_device.h"

#include "platform/sim/common/sim_options.h"
#include "platform/sim/common/sim_socket.h"
#include "platform/sim/daemons/wps_session.h"

#include <cstdio>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace wlsim {
namespace {

constexpr int kAnswerMargin = 3;

int usage(const std::string &error = "") {
    fprintf(stderr,
            "usage: wlsim wps state\n"
            "       wlsim wps send TEXT          a command as it stands, such as \"SET wps_config_command=2\"\n"
            "       wlsim wps enrol IF {--push-button | --pin PIN} [--mac MAC] [--seconds N] [--join]\n%s%s",
            error.c_str(), error.empty() ? "" : "\n");
    return 2;
}

// Sends one datagram to the daemon; the notice tells the user when that is done. Returns the answer, nothing when none
// came in time.
std::optional<std::string> exchange(const std::string &text, long seconds, const char *notice = "") {
    std::optional<std::string> answer;
    int fd = loopbackSocket(kWpsPort, connect);
    if (fd >= 0 && send(fd, text.c_str(), text.size() + 1, 0) > 0) {
        fprintf(stderr, "%s", notice);
        pollfd waiting{fd, POLLIN, 0};
        char buffer[2048];
        ssize_t got = poll(&waiting, 1, static_cast<int>(seconds * 1000)) > 0 ? recv(fd, buffer, sizeof buffer, 0) : -1;
        if (got > 0) {
            answer.emplace(buffer, strnlen(buffer, static_cast<size_t>(got)));
        }
    }
    close(fd);
    return answer;
}

int silent() {
    fputs("wlsim: wps_monitor does not answer\n", stderr);
    return 1;
}

// The new member joins with what it received.
int join(const std::string &ifName, const std::string &mac, Fields credentials) {
    std::string akm = bytesFromHex(credentials["akm_hex"]).value_or("");
    const char *security = akm.empty() ? "open" : akm.find("psk2") == std::string::npos ? "wpapsk" : "wpa2psk";
    Words words = {"wlsim", "join", ifName,       "--ssid-hex", credentials["ssid_hex"],
                   "--mac", mac,    "--security", security};
    if (!akm.empty()) {
        words.insert(words.end(), {"--passphrase", bytesFromHex(credentials["key_hex"]).value_or("")});
    }
    return requestAndShow(words);
}

int enrol(const Words &words) {
    Options options = readOptions(words, "--push-button --join", "--pin --mac --seconds");
    long seconds = options.number("--seconds", 120, 1, 3600);
    std::string mac = options.text("--mac", "02:00:5E:00:53:01"), pin = options.text("--pin");
    if (options.plain.size() != 1 || !options.error.empty() || options.has("--push-button") == options.has("--pin")) {
        return usage(options.error);
    }
    std::string text = "ENROL ifname=" + options.plain[0] + " mac=" + mac +
                       " method=" + (pin.empty() ? "pbc" : "pin pin=" + pin) + " seconds=" + std::to_string(seconds);
    auto answer = exchange(text, seconds + kAnswerMargin, "looking for a registrar\n");
    if (!answer) {
        return silent();
    }
    if (answer->compare(0, 3, "OK ") != 0) {
        fprintf(stderr, "wlsim: refused: %s\n", answer->c_str() + answer->find(' ') + 1);
        return 1;
    }
    printf("%s\n", answer->c_str() + 3);
    fflush(stdout);
    return options.has("--join") ? join(options.plain[0], mac, readFields(answer->substr(3))) : 0;
}

} // namespace

int wpsCommand(const Words &words) {
    std::string what = words.empty() ? "" : words[0];
    if (what == "state" && words.size() == 1) {
        auto answer = exchange("GET", kAnswerMargin);
        return answer ? printf("%s\n", answer->c_str()) < 0 : silent();
    }
    if (what == "send" && words.size() == 2) {
        exchange(words[1], 0);
        return 0;
    }
    return what == "enrol" ? enrol(Words(words.begin() + 1, words.end())) : usage();
}

} // namespace wlsim
