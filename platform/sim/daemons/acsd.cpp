/** @file
 * The channel selection daemon: scans for the radios that nvram's acs_ifnames lists, moves those in automatic mode to
 * the quietest channel, and answers acs_cli.
 */
#include "acs.h"
#include "client.h"
#include "daemon.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace wlsim {
namespace {

struct Radio {
    std::string name;
    int policy = 0;
    bool scanned = false;
    std::vector<Neighbour> neighbours;
    time_t nextScan = 0; // 0: never by itself
};

std::string setting(const Radio &radio, const char *key) { return variable(radio.name + "_" + key); }
int number(const Radio &radio, const char *key) { return std::atoi(setting(radio, key).c_str()); }

/** One driver command on the radio. @return what it printed; throws what it complained about. */
std::string driver(const Radio &radio, std::vector<std::string> command) {
    std::vector<std::string> line{"wlctl", "-i", radio.name};
    line.insert(line.end(), command.begin(), command.end());
    std::string output;
    std::string errors;
    if (request(line, &output, &errors) != 0)
        throw std::runtime_error(command.front() + " failed: " + errors);
    return output;
}

/** Channel 0 in the configuration leaves the choice to this daemon. */
bool automatic(const Radio &radio) { return setting(radio, "channel") == "0"; }

/** The width that the configuration allows the radio, narrowed as its modes ask. */
int width(const Radio &radio) {
    int capability = number(radio, "bw_cap");
    int mhz = capability >= 7 ? 80 : capability >= 3 ? 40 : 20;
    if (setting(radio, "nmode") == "0")
        return 20;
    return setting(radio, "vhtmode") == "0" && mhz > 40 ? 40 : mhz;
}

void scan(Radio &radio) {
    driver(radio, {"scan"});
    radio.neighbours = readScanReport(driver(radio, {"scanresults"}));
    radio.scanned = true;
}

/** @return the chanspec that the radio was moved to, empty when it stays. */
std::string choose(Radio &radio) {
    if (!automatic(radio))
        return {};
    const char *band = setting(radio, "nband") == "2" ? "2" : "5";
    int mhz = width(radio);
    auto candidates = readChanspecs(driver(radio, {"chanspecs", "-b", band, "-w", std::to_string(mhz)}));
    auto now = readChanspecs(driver(radio, {"chanspec"}));
    std::string current = now.empty() ? "" : now.front();
    std::string best =
        quietest(candidates, mhz, readChannels(setting(radio, "acs_autoch_skip")), radio.neighbours, current);
    if (best.empty() || best == current)
        return {};
    driver(radio, {"chanspec", best});
    return best;
}

/** A client's connection; a client that went away is its own loss. */
class Answer {
  public:
    explicit Answer(int fd) : m_fd(fd) {}
    void text(const std::string &text) const {
        if (send(m_fd, text.data(), text.size(), MSG_NOSIGNAL) < 0)
            std::printf("client: %s\n", std::strerror(errno));
    }
    void end(int status) const { text(std::string(1, '\0') + std::to_string(status)); }

  private:
    int m_fd;
};

void forceScan(Radio &radio, const std::string &, const Answer &answer) {
    answer.text("Channel scan on " + radio.name + " requested\n");
    scan(radio);
    answer.text("Scan complete: " + std::to_string(radio.neighbours.size()) + " BSS found\n");
    std::string chosen = choose(radio);
    if (!chosen.empty())
        answer.text("Radio moved to " + chosen + "\n");
    answer.text("Request finished\n");
}

void dump(Radio &radio, const std::string &what, const Answer &answer) {
    if (what != "bss")
        throw std::runtime_error("cannot dump \"" + what + "\"");
    std::vector<int> channels;
    if (radio.scanned)
        channels = readChannels(driver(radio, {"channels"}));
    answer.text(bssTable(channels, radio.neighbours));
}

void setPolicy(Radio &radio, const std::string &value, const Answer &) {
    char *end = nullptr;
    long policy = std::strtol(value.c_str(), &end, 10);
    if (value.empty() || *end || policy < 0 || policy > INT_MAX)
        throw std::runtime_error("\"" + value + "\" is no policy");
    radio.policy = static_cast<int>(policy);
    std::printf("%s: policy %d\n", radio.name.c_str(), radio.policy);
}

struct Request {
    const char *word;
    void (*run)(Radio &, const std::string &argument, const Answer &);
};
constexpr Request kRequests[] = {{"csscan_force", forceScan}, {"dump", dump}, {"acs_policy", setPolicy}};

class Acsd {
  public:
    void listenForClients() {
        m_listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strcpy(address.sun_path, kAcsSocket);
        unlink(kAcsSocket); // left by a daemon that was killed; the lock says that none runs
        if (m_listener < 0 || bind(m_listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
            listen(m_listener, 8) != 0)
            throw std::runtime_error(std::string(kAcsSocket) + ": " + std::strerror(errno));
    }

    [[noreturn]] void serve() {
        for (const std::string &name : words(variable("acs_ifnames")))
            m_radios[name].name = name;
        for (auto &[name, radio] : m_radios) {
            radio.policy = number(radio, "acs_pol_idx");
            survey(radio);
        }
        for (;;) {
            pollfd waiting{m_listener, POLLIN, 0};
            if (poll(&waiting, 1, 1000) > 0)
                serveClient();
            for (auto &[name, radio] : m_radios) {
                if (radio.nextScan && time(nullptr) >= radio.nextScan)
                    survey(radio);
            }
        }
    }

  private:
    /** Scan and choice on the daemon's own account; again after the time that the configuration sets. */
    static void survey(Radio &radio) {
        int period = number(radio, "acs_cs_scan_timer");
        radio.nextScan = period > 0 && automatic(radio) ? time(nullptr) + period : 0;
        try {
            scan(radio);
            std::string chosen = choose(radio);
            if (!chosen.empty())
                std::printf("%s: moved to %s\n", radio.name.c_str(), chosen.c_str());
        } catch (const std::exception &error) {
            std::printf("%s: %s\n", radio.name.c_str(), error.what());
        }
    }

    void serveClient() {
        int client = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            return;
        timeval patience{2, 0};
        setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        setsockopt(client, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
        char line[256] = "";
        Answer answer(client);
        if (recv(client, line, sizeof line - 1, 0) > 0) {
            try {
                perform(words(line, " \n"), answer);
                answer.end(0);
            } catch (const std::exception &error) {
                answer.text(std::string("Request failed: ") + error.what() + "\n");
                answer.end(1);
            }
        }
        close(client);
    }

    void perform(const std::vector<std::string> &request, const Answer &answer) {
        if (request.size() < 2)
            throw std::runtime_error("malformed request");
        auto radio = m_radios.find(request[0]);
        if (radio == m_radios.end())
            throw std::runtime_error(request[0] + " is not in acs_ifnames");
        for (const Request &known : kRequests) {
            if (request[1] == known.word)
                return known.run(radio->second, request.size() > 2 ? request[2] : "", answer);
        }
        throw std::runtime_error("unknown request " + request[1]);
    }

    int m_listener = -1;
    std::map<std::string, Radio> m_radios;
};

} // namespace
} // namespace wlsim

int main(int argc, char **argv) {
    wlsim::plainArguments(argc, argv, 0, "acsd");
    wlsim::Acsd acsd;
    wlsim::DaemonTask task;
    task.name = "acsd";
    task.prepare = [&] { acsd.listenForClients(); };
    task.serve = [&] { acsd.serve(); };
    return wlsim::startDaemon(task);
}
