// The driver's socket.
#pragma once

#include "driver.h"

#include <map>

namespace wlsim {

class Server {
  public:
    explicit Server(Driver &driver) : driver_(driver) {}
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /** Opens the socket. @return an error text, empty when it accepts. */
    std::string listen(const std::string &path);
    /** Answers until a descriptor becomes readable. */
    void serve(int stopFd);

  private:
    struct Connection {
        std::string in, out;
    };
    void accept();
    bool receive(int fd, Connection &connection);
    bool flush(int fd, Connection &connection);
    void handle(int fd, short events);

    Driver &driver_;
    int listener_ = -1;
    std::string path_;
    std::map<int, Connection> connections_;
};

} // namespace wlsim
