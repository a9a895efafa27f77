#include "platform/sim/common/sim_socket.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <sys/un.h>
#include <unistd.h>

namespace wlsim {
namespace {

// A message is a list of fields with their length before them, and the whole length before that.
constexpr uint32_t kLargestFrame = 64u << 20;

void putSize(std::string &out, size_t size) {
    auto value = static_cast<uint32_t>(size);
    out.append(reinterpret_cast<const char *>(&value), sizeof value);
}

uint32_t sizeAt(const std::string &buffer, size_t at) {
    uint32_t value;
    memcpy(&value, buffer.data() + at, sizeof value);
    return value;
}

std::string packFrame(const Words &fields) {
    std::string body;
    for (const std::string &field : fields) {
        putSize(body, field.size());
        body += field;
    }
    std::string out;
    putSize(out, body.size());
    return out + body;
}

// Takes one frame off the front of a buffer; nothing while it is incomplete. Clears `sane` for a broken one.
std::optional<Words> takeFrame(std::string *buffer, bool *sane) {
    constexpr size_t kSize = sizeof(uint32_t);
    *sane = buffer->size() < kSize || sizeAt(*buffer, 0) <= kLargestFrame;
    if (!*sane || buffer->size() < kSize || buffer->size() < kSize + sizeAt(*buffer, 0)) {
        return std::nullopt;
    }
    size_t end = kSize + sizeAt(*buffer, 0);
    Words fields;
    for (size_t at = kSize; at < end;) {
        if (end - at < kSize || end - at - kSize < sizeAt(*buffer, at)) {
            *sane = false;
            return std::nullopt;
        }
        fields.push_back(buffer->substr(at + kSize, sizeAt(*buffer, at)));
        at += kSize + sizeAt(*buffer, at);
    }
    buffer->erase(0, end);
    return fields;
}

// A local socket that is attached to a path with bind or connect; -1 with errno when that fails.
int localSocket(const std::string &path, int flags, int (*attach)(int, const sockaddr *, socklen_t)) {
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    if (path.size() >= sizeof name.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    path.copy(name.sun_path, path.size());
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0);
    if (fd >= 0 && attach(fd, reinterpret_cast<sockaddr *>(&name), sizeof name) == 0) {
        return fd;
    }
    close(fd);
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

// The answer: status, delay, output, errors. Empty when the other end went away.
Words receiveAnswer(int fd) {
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
            return fields->size() == 4 ? *fields : Words();
        }
    }
    return {};
}

} // namespace

std::string driverSocket() {
    const char *path = getenv("WLSIM_SOCKET");
    return path && *path ? path : "/var/sim/driver.sock";
}

bool accepts(const std::string &path) {
    int fd = localSocket(path, 0, connect);
    return fd >= 0 && close(fd) == 0;
}

Reply done(std::string out) { return {0, std::move(out), "", 0}; }

Reply refuse(const std::string &why, int status) { return {status, "", why, 0}; }

int request(const Words &words, std::string *output, std::string *errors, const std::string &path) {
    int fd = localSocket(path, 0, connect);
    bool sent = fd >= 0 && sendAll(fd, packFrame(words));
    Words answer = sent ? receiveAnswer(fd) : Words();
    if (fd >= 0) {
        close(fd);
    }
    std::string error = answer.empty() ? words[0] + ": the driver does not run (" + path + ")\n" : answer[3];
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

int requestAndShow(const Words &words) {
    std::string output;
    int status = request(words, &output);
    fwrite(output.data(), 1, output.size(), stdout);
    return fflush(stdout) == 0 ? status : 1;
}

std::string Server::listen(const std::string &path) {
    if (accepts(path)) {
        return path + ": in use already";
    }
    unlink(path.c_str()); // left by one that was killed
    listener_ = localSocket(path, SOCK_NONBLOCK, bind);
    path_ = path;
    return listener_ < 0 || ::listen(listener_, 128) != 0 ? path + ": " + strerror(errno) : "";
}

void Server::accept() {
    int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (fd >= 0) {
        connections_[fd];
    }
}

bool Server::receive(int fd, Connection &connection) {
    char block[65536];
    ssize_t got = recv(fd, block, sizeof block, 0);
    if (got <= 0) {
        return got < 0 && (errno == EAGAIN || errno == EINTR);
    }
    connection.in.append(block, static_cast<size_t>(got));
    bool sane = true;
    while (auto words = takeFrame(&connection.in, &sane)) {
        Reply reply = answer_(*words);
        connection.out +=
            packFrame({std::to_string(reply.status), std::to_string(reply.delayMs), reply.out, reply.err});
    }
    return sane;
}

bool Server::flush(int fd, Connection &connection) {
    ssize_t sent = send(fd, connection.out.data(), connection.out.size(), MSG_NOSIGNAL);
    if (sent < 0) {
        return errno == EAGAIN || errno == EINTR;
    }
    connection.out.erase(0, static_cast<size_t>(sent));
    return true;
}

void Server::handle(int fd, short events) {
    Connection &connection = connections_[fd];
    bool alive = (events & (POLLIN | POLLHUP | POLLERR)) == 0 || receive(fd, connection);
    if (alive && !connection.out.empty()) {
        alive = flush(fd, connection);
    }
    if (!alive) {
        close(fd);
        connections_.erase(fd);
    }
}

void Server::serve(int stopFd, int tickMs, const std::function<void()> &tick) {
    for (;;) {
        std::vector<pollfd> polled = {{stopFd, POLLIN, 0}, {listener_, POLLIN, 0}};
        for (const auto &[fd, connection] : connections_) {
            polled.push_back({fd, static_cast<short>(connection.out.empty() ? POLLIN : POLLIN | POLLOUT), 0});
        }
        if (poll(polled.data(), polled.size(), tickMs) < 0 && errno != EINTR) {
            break;
        }
        if (polled[0].revents != 0) {
            break;
        }
        for (size_t i = 2; i < polled.size(); i++) {
            if (polled[i].revents != 0) {
                handle(polled[i].fd, polled[i].revents);
            }
        }
        if (polled[1].revents != 0) {
            accept();
        }
        if (tick) {
            tick();
        }
    }
    unlink(path_.c_str());
}

int loopbackSocket(uint16_t port, int (*attach)(int, const sockaddr *, socklen_t)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd >= 0 && attach(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

} // namespace wlsim
