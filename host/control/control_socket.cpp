#include "host/control/control_socket.h"

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "host/base/failure.h"
#include "host/control/runtime_folder.h"

namespace wlhost {
namespace {

constexpr size_t kLargestRequest = 64UL * 1024;
constexpr size_t kLargestAnswer = 64UL * 1024 * 1024;
// Who waits for an answer and who follows the events do not take each other's places, nor the descriptors that the
// module needs for its work.
constexpr size_t kMostPlaces = 192;
constexpr size_t kKeptDescriptors = 64;
constexpr std::chrono::seconds kPatience{10};
// What a subscriber may leave unread beyond the kernel's buffer.
constexpr size_t kLargestBacklog = 64UL * 1024;

sockaddr_un addressOf(const std::string &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path)
        throw Failure(Status::kEnvironment, path, "is no path for a socket", "1 to 107 characters");
    path.copy(address.sun_path, path.size());
    return address;
}

bool connected(int fd, const sockaddr_un &address) {
    return connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

Fd newSocket(int flags) {
    Fd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
    if (fd.get() < 0)
        throw Failure(Status::kEnvironment, "socket", std::strerror(errno));
    return fd;
}

// Removes what a host that ended without cleaning up left behind: only a socket, and only when nobody serves it.
void removeStale(const std::string &path, const sockaddr_un &address) {
    struct stat entry;
    if (lstat(path.c_str(), &entry) != 0 || !S_ISSOCK(entry.st_mode))
        return;
    if (connected(newSocket(SOCK_NONBLOCK).get(), address) || errno == EAGAIN)
        throw Failure(Status::kEnvironment, path, "is served by another host",
                      "end that one, or choose a path with --socket");
    if (errno == ECONNREFUSED)
        unlink(path.c_str());
}

// Nobody, when the kernel does not say.
uid_t userOf(int fd) {
    ucred peer{};
    socklen_t length = sizeof peer;
    return getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 ? peer.uid : static_cast<uid_t>(-1);
}

size_t placesFor(size_t descriptors) {
    return std::clamp<size_t>(descriptors < kKeptDescriptors ? 0 : (descriptors - kKeptDescriptors) / 2, 4,
                              kMostPlaces);
}

size_t mostDescriptors() {
    rlimit limit{};
    return getrlimit(RLIMIT_NOFILE, &limit) == 0 ? static_cast<size_t>(limit.rlim_cur) : kKeptDescriptors;
}

bool wouldBlock() { return errno == EAGAIN || errno == EINTR; }

// False when nothing came until the deadline.
bool waitFor(int fd, short events, std::chrono::steady_clock::time_point deadline) {
    using namespace std::chrono;
    pollfd entry{fd, events, 0};
    int rc;
    do {
        auto left = duration_cast<milliseconds>(deadline - steady_clock::now()).count();
        rc = poll(&entry, 1, static_cast<int>(std::max<long>(left, 0)));
    } while (rc < 0 && errno == EINTR);
    return rc > 0;
}

[[noreturn]] void giveUp(const std::string &path) {
    throw Failure(Status::kTimeout, path, "the host does not answer", "it may be busy; wait longer with --timeout");
}

} // namespace

std::string socketPath(const std::string &option) {
    const char *environment = getenv("WLHOST_SOCKET");
    if (!option.empty())
        return option;
    return environment && *environment ? environment : runtimeFolder() + "/wlhost.sock";
}

ControlServer::ControlServer(const std::string &path, Handler handler)
    : path_(path),
      handler_(std::move(handler)),
      listener_(newSocket(SOCK_NONBLOCK)),
      places_(placesFor(mostDescriptors())) {
    sockaddr_un address = addressOf(path);
    secureRuntimeFolder(path);
    removeStale(path, address);
    // The mode is there from the first moment on: nobody else connects in between.
    mode_t mask = umask(0177);
    int rc = bind(listener_.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address);
    int reason = errno;
    umask(mask);
    if (rc != 0 || listen(listener_.get(), SOMAXCONN) != 0)
        throw systemFailure(Status::kEnvironment, path, rc != 0 ? reason : errno, "choose a path with --socket",
                            path.substr(0, path.rfind('/') + 1));
}

ControlServer::~ControlServer() {
    unlink(path_.c_str());
    for (Connection &connection : connections_)
        send(connection); // the last words, as far as they are taken at once
}

// A subscriber is also watched for its end.
short ControlServer::interestOf(const Connection &connection) {
    bool reads = !connection.answered || connection.subscribed;
    return static_cast<short>((reads ? POLLIN : 0) | (connection.output.empty() ? 0 : POLLOUT));
}

void ControlServer::addTo(std::vector<pollfd> &fds) const {
    fds.push_back({listener_.get(), POLLIN, 0});
    for (const Connection &connection : connections_)
        fds.push_back({connection.fd.get(), interestOf(connection), 0});
}

int ControlServer::timeout() const {
    using namespace std::chrono;
    auto first = std::min_element(connections_.begin(), connections_.end(),
                                  [](const auto &a, const auto &b) { return a.deadline < b.deadline; });
    if (first == connections_.end() || first->deadline == Clock::time_point::max())
        return -1;
    return static_cast<int>(std::max<long>(duration_cast<milliseconds>(first->deadline - Clock::now()).count() + 1, 0));
}

void ControlServer::serve() {
    // A round accepts fewer than may wait: each gets its request read before a newer one takes its place.
    accept();
    auto through = [&](Connection &connection) { return !advance(connection) || Clock::now() >= connection.deadline; };
    connections_.erase(std::remove_if(connections_.begin(), connections_.end(), through), connections_.end());
}

void ControlServer::accept() {
    for (size_t i = 0; i < places_ / 2; ++i) {
        Fd fd(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (fd.get() >= 0) {
            connections_.push_back({std::move(fd), Clock::now() + kPatience});
            if (connections_.size() - subscribers() > places_)
                dropOldest();
        } else if ((errno != EMFILE && errno != ENFILE) || connections_.empty()) {
            return;
        } else {
            dropOldest();
        }
    }
}

// The oldest that is silent, else the oldest that does not take its answer, else the oldest subscriber.
void ControlServer::dropOldest() {
    auto rank = [](const Connection &one) { return one.subscribed ? 2 : one.answered ? 1 : 0; };
    auto oldest = std::min_element(connections_.begin(), connections_.end(),
                                   [&](const auto &a, const auto &b) { return rank(a) < rank(b); });
    connections_.erase(oldest);
}

bool ControlServer::advance(Connection &connection) {
    if (!connection.answered && !receive(connection))
        return false;
    if (connection.subscribed && !isOpen(connection))
        return false;
    return !connection.answered || send(connection);
}

bool ControlServer::isOpen(const Connection &connection) {
    char ignored[512];
    ssize_t length;
    do
        length = recv(connection.fd.get(), ignored, sizeof ignored, 0);
    while (length > 0);
    return length < 0 && wouldBlock();
}

bool ControlServer::receive(Connection &connection) {
    char buffer[4096];
    ssize_t length;
    while ((length = recv(connection.fd.get(), buffer, sizeof buffer, 0)) > 0) {
        connection.input.append(buffer, static_cast<size_t>(length));
        if (connection.input.size() > kLargestRequest)
            return false;
        if (size_t end = connection.input.find('\n'); end != std::string::npos) {
            askingUser_ = userOf(connection.fd.get());
            Reply reply = handler_(connection.input.substr(0, end));
            if (reply.subscribed && subscribers() >= places_)
                reply = refusal();
            connection.output = reply.line + "\n";
            connection.answered = true;
            connection.subscribed = reply.subscribed;
            connection.topic = reply.topic;
            connection.subscription = std::move(reply.subscription);
            // Operations take their time; the answer still gets its chance.
            connection.deadline = reply.subscribed ? Clock::time_point::max() : Clock::now() + kPatience;
            return true;
        }
    }
    return length < 0 && wouldBlock();
}

bool ControlServer::send(Connection &connection) {
    while (!connection.output.empty() || connection.missed > 0) {
        if (connection.output.empty()) {
            connection.output = json{{"event", "dropped"}, {"count", connection.missed}}.dump() + "\n";
            connection.missed = 0;
        }
        ssize_t sent = ::send(connection.fd.get(), connection.output.data(), connection.output.size(), MSG_NOSIGNAL);
        if (sent < 0)
            return wouldBlock();
        connection.output.erase(0, static_cast<size_t>(sent));
    }
    return connection.subscribed;
}

ControlServer::Reply ControlServer::refusal() const {
    Failure failure(Status::kEnvironment, "events", std::to_string(places_) + " clients follow them already",
                    "end one of those");
    return dumped({{"status", failure.status}, {"error", errorOf(failure)}});
}

size_t ControlServer::subscribers() const {
    return static_cast<size_t>(
        std::count_if(connections_.begin(), connections_.end(), [](const auto &one) { return one.subscribed; }));
}

bool ControlServer::hasSubscribers(const std::string &topic) const {
    return std::any_of(connections_.begin(), connections_.end(),
                       [&](const auto &one) { return one.subscribed && one.topic == topic; });
}

void ControlServer::publish(const std::string &line, const std::string &topic, const Wanted &wanted) {
    for (Connection &connection : connections_) {
        if (!connection.subscribed || connection.topic != topic || (wanted && !wanted(connection.subscription)))
            continue;
        // From the first one that is missed on, until all that was queued is read: the gap is one, and has its place.
        if (connection.missed > 0 || connection.output.size() + line.size() > kLargestBacklog)
            ++connection.missed;
        else
            connection.output += line + "\n";
        if (!send(connection))
            connection.deadline = {}; // serve() may be going over the connections
    }
}

ControlClient::ControlClient(const std::string &path, const std::string &request, int timeoutSeconds)
    : path_(path), fd_(newSocket(0)) {
    secureRuntimeFolder(path);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
    if (!connected(fd_.get(), addressOf(path))) {
        if (errno == EACCES || errno == EPERM)
            throw systemFailure(Status::kEnvironment, path, errno, "name another host's socket with --socket", path);
        throw Failure(Status::kEnvironment, path, std::string("no host: ") + std::strerror(errno),
                      "start one with: wlhost run CONFIG");
    }
    std::string line = request + "\n";
    for (size_t at = 0; at < line.size();) {
        if (!waitFor(fd_.get(), POLLOUT, deadline))
            giveUp(path);
        ssize_t sent = ::send(fd_.get(), line.data() + at, line.size() - at, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && !wouldBlock())
            throw Failure(Status::kFailed, path, "the host closed the connection");
        at += sent > 0 ? static_cast<size_t>(sent) : 0;
    }
}

std::string ControlClient::nextLine(int timeoutSeconds, const std::function<void(int)> &tick) {
    auto next = std::chrono::steady_clock::now();
    size_t searched = 0;
    for (int waited = 0;;) {
        if (size_t end = input_.find('\n', searched); end != std::string::npos) {
            std::string line = input_.substr(0, end);
            input_.erase(0, end + 1);
            return line;
        }
        searched = input_.size();
        if (searched > kLargestAnswer)
            throw Failure(Status::kFailed, path_, "the answer is too long");
        if (!waitFor(fd_.get(), POLLIN, next)) {
            if (timeoutSeconds >= 0 && waited >= timeoutSeconds)
                giveUp(path_);
            if (tick)
                tick(waited);
            ++waited;
            next += std::chrono::seconds(1);
            continue;
        }
        char buffer[16384];
        ssize_t length = recv(fd_.get(), buffer, sizeof buffer, MSG_DONTWAIT);
        if (length == 0 || (length < 0 && !wouldBlock()))
            throw Failure(Status::kFailed, path_, "the host closed the connection");
        input_.append(buffer, length > 0 ? static_cast<size_t>(length) : 0);
    }
}

std::string callHost(const std::string &path, const std::string &request, int timeoutSeconds,
                     const std::function<void(int)> &tick) {
    return ControlClient(path, request, timeoutSeconds).nextLine(timeoutSeconds, tick);
}

} // namespace wlhost
