/** @file
 * Client of the channel selection daemon: sends one request and prints the answer as it comes.
 */
#include "acs.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char *kUsage = "usage: acs_cli -i INTERFACE {acs_policy NUMBER | csscan_force | dump bss}\n";

struct Form {
    const char *word;
    int arguments;
};
constexpr Form kForms[] = {{"acs_policy", 1}, {"csscan_force", 0}, {"dump", 1}};

/** The request line, empty for arguments that are none. */
std::string requestLine(const std::vector<std::string> &arguments) {
    if (arguments.size() < 3 || arguments[0] != "-i")
        return {};
    for (const Form &form : kForms) {
        if (arguments[2] != form.word || arguments.size() != 3 + static_cast<std::size_t>(form.arguments))
            continue;
        std::string line = arguments[1] + " " + form.word;
        if (form.arguments)
            line += " " + arguments[3];
        return line + "\n";
    }
    return {};
}

int connectDaemon() {
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, wlsim::kAcsSocket);
    if (fd >= 0 && connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0)
        return fd;
    std::fprintf(stderr, "acs_cli: acsd does not answer: %s\n", std::strerror(errno));
    return -1;
}

/** Prints up to the NUL. @return the status behind it, 1 when the daemon went away before. */
int printAnswer(int fd) {
    char buffer[4096];
    bool ended = false;
    for (ssize_t got; (got = read(fd, buffer, sizeof buffer)) > 0;) {
        std::string text(buffer, static_cast<std::size_t>(got));
        std::size_t end = ended ? 0 : text.find('\0');
        std::fwrite(text.data(), 1, end == std::string::npos ? text.size() : end, stdout);
        std::fflush(stdout);
        if (end == std::string::npos)
            continue;
        std::string status = text.substr(ended ? 0 : end + 1);
        ended = true;
        if (!status.empty())
            return status[0] - '0';
    }
    std::fputs("acs_cli: acsd went away\n", stderr);
    return 1;
}

} // namespace

int main(int argc, char **argv) {
    std::string line = requestLine({argv + 1, argv + argc});
    if (line.empty()) {
        std::fputs(kUsage, stderr);
        return 1;
    }
    int fd = connectDaemon();
    if (fd < 0)
        return 1;
    if (send(fd, line.data(), line.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(line.size())) {
        std::perror("acs_cli");
        return 1;
    }
    return printAnswer(fd);
}
