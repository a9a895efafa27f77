#include "client.h"

#include "frame.h"

#include <cstdio>
#include <cstdlib>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace wlsim {
namespace {

int connectToDriver() {
    sockaddr_un to{};
    std::string path = socketPath();
    to.sun_family = AF_UNIX;
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    bool fits = path.size() < sizeof to.sun_path;
    if (fd >= 0 && fits) {
        path.copy(to.sun_path, path.size());
        if (connect(fd, reinterpret_cast<sockaddr *>(&to), sizeof to) == 0) {
            return fd;
        }
    }
    if (fd >= 0) {
        close(fd);
    }
    return -1;
}

bool sendAll(int fd, const std::string &text) {
    for (size_t at = 0; at < text.size();) {
        ssize_t sent = send(fd, text.data() + at, text.size() - at, MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        at += static_cast<size_t>(sent);
    }
    return true;
}

/** The answer: status, delay, output, errors. Empty when the driver went away. */
std::vector<std::string> receiveAnswer(int fd) {
    std::string buffer;
    char block[65536];
    bool sane = true;
    while (sane) {
        ssize_t got = recv(fd, block, sizeof block, 0);
        if (got <= 0) {
            break;
        }
        buffer.append(block, static_cast<size_t>(got));
        if (auto fields = takeFrame(&buffer, &sane)) {
            return fields->size() == 4 ? *fields : std::vector<std::string>();
        }
    }
    return {};
}

} // namespace

std::string socketPath() {
    const char *path = getenv("WLSIM_SOCKET");
    return path && *path ? path : "/var/sim/driver.sock";
}

bool driverAccepts() {
    int fd = connectToDriver();
    if (fd >= 0) {
        close(fd);
    }
    return fd >= 0;
}

int request(const std::vector<std::string> &words, std::string *output, std::string *errors) {
    int fd = connectToDriver();
    bool sent = fd >= 0 && sendAll(fd, packFrame(words));
    std::vector<std::string> answer = sent ? receiveAnswer(fd) : std::vector<std::string>();
    if (fd >= 0) {
        close(fd);
    }
    std::string error = answer.empty() ? words[0] + ": the driver does not run (" + socketPath() + ")\n" : answer[3];
    if (errors) {
        *errors = error;
    } else {
        fwrite(error.data(), 1, error.size(), stderr);
    }
    if (answer.empty()) {
        return kNoDriver;
    }
    if (output) {
        *output = answer[2];
    }
    usleep(static_cast<useconds_t>(atoi(answer[1].c_str())) * 1000);
    return atoi(answer[0].c_str());
}

} // namespace wlsim
