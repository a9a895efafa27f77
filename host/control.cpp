#include "control.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "failure.h"

namespace wlhost {
namespace {

constexpr size_t kLargestRequest = 64 * 1024;
constexpr size_t kLargestAnswer = 64 * 1024 * 1024;
constexpr size_t kMostConnections = 32;
constexpr std::chrono::seconds kPatience{10};

sockaddr_un addressOf(const std::string &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path)
        throw Failure(kEnvironment, path, "is no path for a socket", "1 to 107 characters");
    path.copy(address.sun_path, path.size());
    return address;
}

bool connected(int fd, const sockaddr_un &address) {
    return connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

Fd newSocket(int flags) {
    Fd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
    if (fd.get() < 0)
        throw Failure(kEnvironment, "socket", std::strerror(errno));
    return fd;
}

// Removes what a host that ended without cleaning up left behind: only a socket, and only when nobody serves it.
void removeStale(const std::string &path, const sockaddr_un &address) {
    struct stat entry;
    if (lstat(path.c_str(), &entry) != 0 || !S_ISSOCK(entry.st_mode))
        return;
    if (connected(newSocket(SOCK_NONBLOCK).get(), address) || errno == EAGAIN)
        throw Failure(kEnvironment, path, "is served by another host", "end that one, or choose a path with --socket");
    if (errno == ECONNREFUSED)
        unlink(path.c_str());
}

bool wouldBlock() { return errno == EAGAIN || errno == EINTR; }

void waitFor(int fd, short events, std::chrono::steady_clock::time_point deadline, const std::string &path) {
    using namespace std::chrono;
    pollfd entry{fd, events, 0};
    int rc;
    do {
        auto left = duration_cast<milliseconds>(deadline - steady_clock::now()).count();
        rc = poll(&entry, 1, static_cast<int>(std::max<long>(left, 0)));
    } while (rc < 0 && errno == EINTR);
    if (rc <= 0)
        throw Failure(kTimeout, path, "the host does not answer", "it may be busy; wait longer with --timeout");
}

} // namespace

Fd::~Fd() {
    if (fd_ >= 0)
        close(fd_);
}

Fd &Fd::operator=(Fd &&other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

int Fd::release() {
    int fd = fd_;
    fd_ = -1;
    return fd;
}

std::string socketPath(const std::string &option) {
    const char *environment = getenv("WLHOST_SOCKET");
    if (!option.empty())
        return option;
    return environment && *environment ? environment : "/tmp/wlhost.sock";
}

ControlServer::ControlServer(const std::string &path, Handler handler)
    : path_(path), handler_(std::move(handler)), listener_(newSocket(SOCK_NONBLOCK)) {
    sockaddr_un address = addressOf(path);
    removeStale(path, address);
    // The mode is there from the first moment on: nobody else connects in between.
    mode_t mask = umask(0177);
    int rc = bind(listener_.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address);
    int reason = errno;
    umask(mask);
    if (rc != 0 || listen(listener_.get(), SOMAXCONN) != 0)
        throw Failure(kEnvironment, path, std::strerror(rc != 0 ? reason : errno), "choose a path with --socket");
}

ControlServer::~ControlServer() { unlink(path_.c_str()); }

void ControlServer::addTo(std::vector<pollfd> &fds) const {
    fds.push_back({listener_.get(), POLLIN, 0});
    for (const Connection &connection : connections_)
        fds.push_back({connection.fd.get(), static_cast<short>(connection.answered ? POLLOUT : POLLIN), 0});
}

int ControlServer::timeout() const {
    using namespace std::chrono;
    if (connections_.empty())
        return -1;
    auto first = std::min_element(connections_.begin(), connections_.end(),
                                  [](const auto &a, const auto &b) { return a.deadline < b.deadline; });
    return static_cast<int>(std::max<long>(duration_cast<milliseconds>(first->deadline - Clock::now()).count() + 1, 0));
}

void ControlServer::serve() {
    accept();
    auto through = [&](Connection &connection) { return !advance(connection) || Clock::now() >= connection.deadline; };
    connections_.erase(std::remove_if(connections_.begin(), connections_.end(), through), connections_.end());
}

void ControlServer::accept() {
    while (connections_.size() < kMostConnections) {
        Fd fd(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (fd.get() < 0)
            return;
        connections_.push_back({std::move(fd), Clock::now() + kPatience});
    }
}

bool ControlServer::advance(Connection &connection) {
    if (!connection.answered && !receive(connection))
        return false;
    return !connection.answered || send(connection);
}

bool ControlServer::receive(Connection &connection) {
    char buffer[4096];
    ssize_t length;
    while ((length = recv(connection.fd.get(), buffer, sizeof buffer, 0)) > 0) {
        connection.input.append(buffer, static_cast<size_t>(length));
        if (connection.input.size() > kLargestRequest)
            return false;
        if (size_t end = connection.input.find('\n'); end != std::string::npos) {
            connection.output = handler_(connection.input.substr(0, end)) + "\n";
            connection.answered = true;
            // Operations take their time; the answer still gets its chance.
            connection.deadline = Clock::now() + kPatience;
            return true;
        }
    }
    return length < 0 && wouldBlock();
}

bool ControlServer::send(Connection &connection) {
    while (!connection.output.empty()) {
        ssize_t sent = ::send(connection.fd.get(), connection.output.data(), connection.output.size(), MSG_NOSIGNAL);
        if (sent < 0)
            return wouldBlock();
        connection.output.erase(0, static_cast<size_t>(sent));
    }
    return false;
}

std::string callHost(const std::string &path, const std::string &request, int timeoutSeconds) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
    sockaddr_un address = addressOf(path);
    Fd fd = newSocket(0);
    if (!connected(fd.get(), address))
        throw Failure(kEnvironment, path, std::string("no host: ") + std::strerror(errno),
                      "start one with: wlhost run CONFIG");
    std::string line = request + "\n";
    for (size_t at = 0; at < line.size();) {
        waitFor(fd.get(), POLLOUT, deadline, path);
        ssize_t sent = ::send(fd.get(), line.data() + at, line.size() - at, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && !wouldBlock())
            throw Failure(kFailed, path, "the host closed the connection");
        at += sent > 0 ? static_cast<size_t>(sent) : 0;
    }
    std::string answer;
    char buffer[4096];
    for (;;) {
        waitFor(fd.get(), POLLIN, deadline, path);
        ssize_t length = recv(fd.get(), buffer, sizeof buffer, MSG_DONTWAIT);
        if (length < 0 && wouldBlock())
            continue;
        if (length <= 0)
            break;
        answer.append(buffer, static_cast<size_t>(length));
        if (answer.size() > kLargestAnswer)
            throw Failure(kFailed, path, "the answer is too long");
    }
    if (answer.empty() || answer.back() != '\n')
        throw Failure(kFailed, path, "the host closed the connection");
    return answer;
}

} // namespace wlhost
