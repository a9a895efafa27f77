/** @file
 * The other side of a WPS session: a device that wants to enrol, and the control protocol by hand.
 */
#include "wps_session.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr const char *kUsage =
    "usage: wlsim-wps state\n"
    "       wlsim-wps send TEXT                     a command as it stands, such as \"SET wps_config_command=2\"\n"
    "       wlsim-wps enrol IF {--push-button | --pin PIN} [--mac MAC] [--seconds N] [--join]\n";
constexpr const char *kStationTool = "/bin/wlsim";
constexpr int kAnswerMargin = 3;

int usage() {
    std::fputs(kUsage, stderr);
    return 2;
}

/** Sends one datagram to the daemon; the notice tells the user when that is done.
 * @return the answer, nothing when none came in time. */
std::optional<std::string> exchange(const std::string &text, int seconds, const char *notice = "") {
    int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(40500);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    std::optional<std::string> answer;
    if (fd >= 0 && connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0 &&
        send(fd, text.c_str(), text.size() + 1, 0) > 0) {
        std::fprintf(stderr, "%s", notice);
        pollfd waiting{fd, POLLIN, 0};
        char buffer[2048];
        ssize_t got = poll(&waiting, 1, seconds * 1000) > 0 ? recv(fd, buffer, sizeof buffer, 0) : -1;
        if (got > 0)
            answer.emplace(buffer, strnlen(buffer, static_cast<std::size_t>(got)));
    }
    close(fd);
    return answer;
}

int silent() {
    std::fputs("wlsim-wps: wps_monitor does not answer\n", stderr);
    return 1;
}

std::string unhex(const std::string &text) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2)
        bytes += static_cast<char>(std::strtol(text.substr(i, 2).c_str(), nullptr, 16));
    return bytes;
}

struct Enrolment {
    std::string ifname, pin, mac = "02:00:5E:00:53:01";
    bool pushButton = false, join = false;
    int seconds = 120;
};

bool read(int argc, char **argv, Enrolment *enrolment) {
    if (argc < 3)
        return false;
    enrolment->ifname = argv[2];
    for (int i = 3; i < argc; ++i) {
        std::string option = argv[i];
        if (option == "--push-button")
            enrolment->pushButton = true;
        else if (option == "--join")
            enrolment->join = true;
        else if (i + 1 == argc)
            return false;
        else if (option == "--pin")
            enrolment->pin = argv[++i];
        else if (option == "--mac")
            enrolment->mac = argv[++i];
        else if (option == "--seconds")
            enrolment->seconds = std::atoi(argv[++i]);
        else
            return false;
    }
    return enrolment->pushButton == enrolment->pin.empty() && enrolment->seconds > 0;
}

/** The new member joins with what it received. */
int join(const Enrolment &enrolment, wlsim::Fields &credentials) {
    std::string ssid = credentials["ssid_hex"];
    std::string key = unhex(credentials["key_hex"]);
    std::string akm = unhex(credentials["akm_hex"]);
    const char *security = akm.empty() ? "open" : akm.find("psk2") == std::string::npos ? "wpapsk" : "wpa2psk";
    execl(kStationTool, "wlsim", "join", enrolment.ifname.c_str(), "--ssid-hex", ssid.c_str(), "--mac",
          enrolment.mac.c_str(), "--security", security, akm.empty() ? nullptr : "--passphrase", key.c_str(),
          static_cast<char *>(nullptr));
    std::perror(kStationTool);
    return 1;
}

int enrol(const Enrolment &enrolment) {
    std::string text = "ENROL ifname=" + enrolment.ifname + " mac=" + enrolment.mac +
                       " method=" + (enrolment.pushButton ? "pbc" : "pin pin=" + enrolment.pin) +
                       " seconds=" + std::to_string(enrolment.seconds);
    auto answer = exchange(text, enrolment.seconds + kAnswerMargin, "looking for a registrar\n");
    if (!answer)
        return silent();
    if (answer->compare(0, 3, "OK ") != 0) {
        std::fprintf(stderr, "wlsim-wps: refused: %s\n", answer->c_str() + answer->find(' ') + 1);
        return 1;
    }
    std::printf("%s\n", answer->c_str() + 3);
    std::fflush(stdout);
    auto credentials = wlsim::readFields(answer->substr(3));
    return enrolment.join ? join(enrolment, credentials) : 0;
}

} // namespace

int main(int argc, char **argv) {
    std::string what = argc > 1 ? argv[1] : "";
    if (what == "state" && argc == 2) {
        auto answer = exchange("GET", kAnswerMargin);
        if (!answer)
            return silent();
        std::printf("%s\n", answer->c_str());
        return 0;
    }
    if (what == "send" && argc == 3) {
        exchange(argv[2], 0);
        return 0;
    }
    Enrolment enrolment;
    if (what != "enrol" || !read(argc, argv, &enrolment))
        return usage();
    return enrol(enrolment);
}
