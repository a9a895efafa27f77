// The control socket: one JSON request and one JSON answer a connection, each ended by a line feed. A subscriber's
// connection stays open behind its answer, for one more line an event.
#pragma once

#include <poll.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "host/base/fd.h"
#include "host/base/json.h"

namespace wlhost {

// Path by option, else by environment, else the default.
std::string socketPath(const std::string &option);

// The host's end. Never blocks: a client that is slow, silent or gone costs nothing but its own connection. When too
// many wait, the oldest silent one goes first.
class ControlServer {
  public:
    struct Reply {
        std::string line;
        bool subscribed;   // the connection stays open for what is published
        std::string topic; // about this
        json subscription; // as it asked for it
        Reply(std::string answer, bool stays = false, std::string about = "events", json asked = {})
            : line(std::move(answer)), subscribed(stays), topic(std::move(about)), subscription(std::move(asked)) {}
    };
    using Handler = std::function<Reply(const std::string &request)>;

    // Throws a Failure with status 7 when the socket cannot be had, also when another host serves it.
    ControlServer(const std::string &path, Handler handler);
    ~ControlServer();
    ControlServer(const ControlServer &) = delete;
    ControlServer &operator=(const ControlServer &) = delete;

    // Adds what it waits for.
    void addTo(std::vector<pollfd> &fds) const;
    // Accepts, reads, answers; drops connections that are through or too old.
    void serve();
    bool hasSubscribers(const std::string &topic = "events") const;
    using Wanted = std::function<bool(const json &subscription)>;
    // Sends a line to every subscriber of the topic whose subscription wants it, as far as it takes it; serve() sends
    // the rest. One that reads too slowly misses lines, and is told how many as soon as it has read what was queued.
    // May be called from within the handler.
    void publish(const std::string &line, const std::string &topic = "events", const Wanted &wanted = {});
    // Who sent the request that is being handled, as the kernel says.
    uid_t askingUser() const { return askingUser_; }
    // Milliseconds until the oldest connection is dropped; -1 without connections.
    int timeout() const;

  private:
    using Clock = std::chrono::steady_clock;
    struct Connection {
        Fd fd;
        Clock::time_point deadline;
        std::string input = {}, output = {}, topic = {};
        bool answered = false, subscribed = false;
        json subscription = {};
        uint64_t missed = 0;
    };

    void accept();
    void dropOldest();
    size_t subscribers() const;
    Reply refusal() const;
    // False when the connection is through.
    bool advance(Connection &connection);
    bool receive(Connection &connection);
    static short interestOf(const Connection &connection);
    static bool isOpen(const Connection &connection);
    static bool send(Connection &connection);

    std::string path_;
    Handler handler_;
    uid_t askingUser_ = 0;
    Fd listener_;
    size_t places_; // of each kind: who waits, who follows
    std::vector<Connection> connections_;
};

// A client's end: one request, and the lines that come back. Throws status 7 without a host.
class ControlClient {
  public:
    ControlClient(const std::string &path, const std::string &request, int timeoutSeconds);

    // The next line, without its line feed. Throws status 5 when none comes in time.
    // A negative timeout waits for ever. `tick` may be empty; it is called once a second with the seconds waited.
    std::string nextLine(int timeoutSeconds, const std::function<void(int)> &tick = {});

  private:
    std::string path_, input_;
    Fd fd_;
};

// Sends a request and returns the answer.
std::string callHost(const std::string &path, const std::string &request, int timeoutSeconds,
                     const std::function<void(int)> &tick = {});

} // namespace wlhost
