#include "server.h"

#include "client.h"
#include "frame.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace wlsim {

Server::~Server() {
    for (const auto &[fd, connection] : connections_) {
        close(fd);
    }
    if (listener_ >= 0) {
        close(listener_);
        unlink(path_.c_str());
    }
}

std::string Server::listen(const std::string &path) {
    sockaddr_un name{};
    if (path.size() >= sizeof name.sun_path) {
        return "socket path too long: " + path;
    }
    if (driverAccepts()) {
        return "a driver already runs at " + path;
    }
    unlink(path.c_str());
    name.sun_family = AF_UNIX;
    path.copy(name.sun_path, path.size());
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr *>(&name), sizeof name) != 0 || ::listen(fd, 128) != 0) {
        std::string error = path + ": " + strerror(errno);
        close(fd);
        return error;
    }
    listener_ = fd;
    path_ = path;
    return "";
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
        Reply reply = driver_.run(*words);
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

void Server::serve(int stopFd) {
    for (;;) {
        std::vector<pollfd> polled = {{stopFd, POLLIN, 0}, {listener_, POLLIN, 0}};
        for (const auto &[fd, connection] : connections_) {
            polled.push_back({fd, static_cast<short>(connection.out.empty() ? POLLIN : POLLIN | POLLOUT), 0});
        }
        if (poll(polled.data(), polled.size(), -1) < 0 && errno != EINTR) {
            return;
        }
        if (polled[0].revents != 0) {
            return;
        }
        for (size_t i = 2; i < polled.size(); i++) {
            if (polled[i].revents != 0) {
                handle(polled[i].fd, polled[i].revents);
            }
        }
        if (polled[1].revents != 0) {
            accept();
        }
    }
}

} // namespace wlsim
