// The WPS daemon: the control protocol on UDP 127.0.0.1:40500 ("GET", "SET key=value ...") and, for the simulation's
// enrollees, "ENROL ifname= mac= method=pbc|pin [pin=] [seconds=]" on the same port.
#include "platform/sim/common/sim_log.h"
#include "platform/sim/common/sim_socket.h"
#include "platform/sim/daemons/daemon.h"
#include "platform/sim/daemons/wps_session.h"
#include "platform/sim/nvram/nvram_store.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <random>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace wlsim {
namespace {

constexpr const char *kPidFile = "/tmp/wps_monitor.pid";

void store(const std::string &key, const std::string &value) {
    int result = value.empty() ? nvram_unset(key.c_str()) : nvram_set(key.c_str(), value.c_str());
    if (result != 0)
        logLine("wps", key + ": the store refused the value");
}

bool beaconing(const std::string &ifname) {
    std::string output;
    std::string errors;
    return request({"wlctl", "-i", ifname, "isup"}, &output, &errors) == 0 && output.substr(0, 1) == "1";
}

std::string randomHex(int bytes) {
    std::random_device source;
    std::string text;
    for (int i = 0; i < bytes; ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", source() & 0xff);
        text += pair;
    }
    return text;
}

class WpsMonitor {
  public:
    void openSocket() {
        socket_ = loopbackSocket(kWpsPort, bind);
        if (socket_ < 0)
            throw std::runtime_error("port " + std::to_string(kWpsPort) + ": " + std::strerror(errno));
    }

    [[noreturn]] void serve() {
        WpsRegistrar registrar({[](const std::string &key) { return stored(key); }, store, beaconing, randomHex});
        for (;;) {
            pollfd waiting{socket_, POLLIN, 0};
            if (poll(&waiting, 1, 250) > 0)
                receive(registrar);
            registrar.tick(time(nullptr));
        }
    }

  private:
    void receive(WpsRegistrar &registrar) {
        char buffer[2048];
        sockaddr_in peer{};
        socklen_t length = sizeof peer;
        ssize_t got = recvfrom(socket_, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr *>(&peer), &length);
        if (got <= 0)
            return;
        std::string text(buffer, strnlen(buffer, static_cast<std::size_t>(got)));
        auto reply = [this, peer](const std::string &answer) {
            sendto(socket_, answer.c_str(), answer.size() + 1, 0, reinterpret_cast<const sockaddr *>(&peer),
                   sizeof peer);
        };
        std::string verb = text.substr(0, text.find(' '));
        Fields fields = readFields(text.substr(verb.size()));
        if (text == "GET")
            reply(registrar.state());
        else if (verb == "SET")
            set(registrar, fields);
        else if (verb == "ENROL")
            enrol(registrar, fields, reply);
        else
            logLine("wps", format("ignored: %zd bytes that are no command", got));
    }

    static void set(WpsRegistrar &registrar, const Fields &fields) {
        std::string why;
        if (!registrar.command(fields, time(nullptr), &why))
            logLine("wps", "refused: " + why);
    }

    static void enrol(WpsRegistrar &registrar, Fields &fields, std::function<void(const std::string &)> reply) {
        time_t now = time(nullptr);
        int seconds = std::atoi(fields["seconds"].c_str());
        Enrollee enrollee{
            fields["ifname"], fields["mac"], fields["method"] == "pin", fields["pin"], seconds > 0 ? now + seconds : 0,
            std::move(reply)};
        registrar.enrol(std::move(enrollee), now);
    }

    int socket_ = -1;
};

} // namespace
} // namespace wlsim

int main(int argc, char **argv) {
    wlsim::plainArguments(argc, argv, 0, "wps_monitor");
    wlsim::WpsMonitor monitor;
    wlsim::DaemonTask task;
    task.name = "wps_monitor";
    task.prepare = [&] { monitor.openSocket(); };
    task.serve = [&] { monitor.serve(); };
    task.pidFile = wlsim::kPidFile;
    return wlsim::startDaemon(task);
}
