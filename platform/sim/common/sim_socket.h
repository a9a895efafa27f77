// How the simulator's programs talk to each other: a command line goes to a socket, an answer comes back.
#pragma once

#include "platform/sim/common/sim_text.h"

#include <functional>
#include <map>
#include <sys/socket.h>

namespace wlsim {

// Exit status of a request that nobody answered.
constexpr int kNoDriver = 7;

// Where acsd listens.
constexpr char kAcsSocket[] = "/var/run/acsd.sock";

// Where the driver listens: WLSIM_SOCKET, or /var/sim/driver.sock.
std::string driverSocket();

// Whether somebody accepts requests there.
bool accepts(const std::string &path);

struct Reply {
    int status = 0;
    std::string out, err;
    // The client waits so long before it shows the answer.
    int delayMs = 0;
};

Reply done(std::string out = "");
Reply refuse(const std::string &why, int status = 1);

// Runs one command line at the other end: the tool and its arguments, such as {"wlctl", "-i", "wl0", "chanspec"}.
// `output` may be null; a null `errors` sends the error text to standard error. Returns the command's exit status, or
// kNoDriver.
int request(const Words &words, std::string *output, std::string *errors = nullptr,
            const std::string &path = driverSocket());

// What main() returns of a command whose output is shown as it is.
int requestAndShow(const Words &words);

// The answering end. Several clients may be connected; one command runs at a time.
class Server {
  public:
    explicit Server(std::function<Reply(const Words &)> answer) : answer_(std::move(answer)) {}

    // Opens the socket. Returns an error text, empty when it accepts.
    std::string listen(const std::string &path);
    // Answers until `stopFd` becomes readable (-1: never), and calls `tick` at least once in `tickMs` when that is not
    // -1.
    void serve(int stopFd, int tickMs = -1, const std::function<void()> &tick = {});

  private:
    struct Connection {
        std::string in, out;
    };
    void accept();
    bool receive(int fd, Connection &connection);
    bool flush(int fd, Connection &connection);
    void handle(int fd, short events);

    std::function<Reply(const Words &)> answer_;
    int listener_ = -1;
    std::string path_;
    std::map<int, Connection> connections_;
};

// UDP ports of the loopback interface.
constexpr uint16_t kEventPort = 44032, kAgentPort = 13727, kWpsPort = 40500;

// A UDP socket; `attach` is bind or connect. Returns -1 with errno when that fails.
int loopbackSocket(uint16_t port, int (*attach)(int, const sockaddr *, socklen_t));

} // namespace wlsim
