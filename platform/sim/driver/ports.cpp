#include "platform/sim/driver/ports.h"

#include "platform/sim/common/sim_socket.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fstream>
#include <net/if.h>
#include <net/if_arp.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace wlsim {

std::string MemoryNet::create(const std::string &name, const std::string &, const Mac &mac) {
    return interfaces.emplace(name, Interface{mac, startUp, ""}).second ? "" : name + " exists";
}

bool MemoryNet::up(const std::string &name) const {
    auto found = interfaces.find(name);
    return found != interfaces.end() && found->second.up;
}

std::optional<Mac> MemoryNet::mac(const std::string &name) const {
    auto found = interfaces.find(name);
    return found == interfaces.end() ? std::nullopt : std::optional<Mac>(found->second.mac);
}

bool MemoryNet::setMac(const std::string &name, const Mac &mac) {
    auto found = interfaces.find(name);
    if (found != interfaces.end()) {
        found->second.mac = mac;
    }
    return found != interfaces.end();
}

std::string MemoryNet::bridge(const std::string &name) const {
    auto found = interfaces.find(name);
    return found == interfaces.end() ? "" : found->second.bridge;
}

namespace {

// Runs `ip` and waits for it. Returns its exit status, or -1.
int runIp(Words words) {
    words.insert(words.begin(), "ip");
    std::vector<char *> argv;
    for (std::string &word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    for (const char *path : {"/usr/sbin/ip", "/sbin/ip", "/usr/bin/ip", "/bin/ip"}) {
        pid_t pid = 0;
        int status = 0;
        if (access(path, X_OK) == 0 && posix_spawn(&pid, path, nullptr, nullptr, argv.data(), environ) == 0) {
            return waitpid(pid, &status, 0) == pid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
    }
    return -1;
}

class KernelNet : public Net {
  public:
    KernelNet() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}
    ~KernelNet() override { close(socket_); }

    std::string create(const std::string &name, const std::string &peer, const Mac &mac) override {
        bool made = runIp({"link", "add", name, "address", mac.text(), "type", "veth", "peer", "name", peer}) == 0;
        // A pair has carrier only while both ends are up; the air is always there.
        return made && runIp({"link", "set", peer, "up"}) == 0 ? "" : "cannot create interface " + name;
    }
    void remove(const std::string &name) override {
        if (exists(name)) {
            runIp({"link", "del", name});
        }
    }
    bool exists(const std::string &name) const override { return if_nametoindex(name.c_str()) != 0; }
    bool up(const std::string &name) const override {
        auto answer = ask(name, SIOCGIFFLAGS);
        return answer && (answer->ifr_flags & IFF_UP) != 0;
    }
    std::optional<Mac> mac(const std::string &name) const override {
        auto answer = ask(name, SIOCGIFHWADDR);
        if (!answer) {
            return std::nullopt;
        }
        Mac mac;
        memcpy(mac.bytes.data(), answer->ifr_hwaddr.sa_data, mac.bytes.size());
        return mac;
    }
    bool setMac(const std::string &name, const Mac &mac) override {
        ifreq request = named(name);
        request.ifr_hwaddr.sa_family = ARPHRD_ETHER;
        memcpy(request.ifr_hwaddr.sa_data, mac.bytes.data(), mac.bytes.size());
        return ioctl(socket_, SIOCSIFHWADDR, &request) == 0;
    }
    std::string bridge(const std::string &name) const override {
        char target[512];
        ssize_t length = readlink(("/sys/class/net/" + name + "/master").c_str(), target, sizeof target);
        std::string path(target, length > 0 ? static_cast<size_t>(length) : 0);
        return path.substr(path.rfind('/') + 1);
    }

  private:
    static ifreq named(const std::string &name) {
        ifreq request{};
        name.copy(request.ifr_name, sizeof request.ifr_name - 1);
        return request;
    }
    std::optional<ifreq> ask(const std::string &name, unsigned long what) const {
        ifreq request = named(name);
        return ioctl(socket_, what, &request) == 0 ? std::optional<ifreq>(request) : std::nullopt;
    }
    int socket_;
};

class KernelProcesses : public Processes {
  public:
    bool running(const std::string &name) const override {
        DIR *directory = opendir("/proc");
        bool found = false;
        while (dirent *entry = directory && !found ? readdir(directory) : nullptr) {
            found = isLive(entry->d_name, name);
        }
        if (directory) {
            closedir(directory);
        }
        return found;
    }

  private:
    // A process that was killed and not yet collected serves nobody.
    static bool isLive(const std::string &pid, const std::string &name) {
        if (pid.find_first_not_of("0123456789") != std::string::npos) {
            return false;
        }
        std::string line;
        std::getline(std::ifstream("/proc/" + pid + "/stat"), line);
        size_t open = line.find('('), close = line.rfind(')');
        return open != std::string::npos && close != std::string::npos && close + 2 < line.size() &&
               line.substr(open + 1, close - open - 1) == name && line[close + 2] != 'Z';
    }
};

class EventSocket : public EventSink {
  public:
    ~EventSocket() override { close(socket_); }
    // Nobody listening is no failure of the driver's.
    void send(const std::string &datagram) override {
        // A refusal of the one before is told once instead of sending.
        for (int tries = 0; tries < 2 && ::send(socket_, datagram.data(), datagram.size(), MSG_DONTWAIT) < 0;) {
            tries++;
        }
    }

  private:
    int socket_ = loopbackSocket(kEventPort, connect);
};

class MonotonicClock : public Clock {
  public:
    int64_t nowMs() const override {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return now.tv_sec * 1000 + now.tv_nsec / 1000000;
    }
};

} // namespace

std::unique_ptr<Net> makeKernelNet() { return std::make_unique<KernelNet>(); }
std::unique_ptr<Processes> makeKernelProcesses() { return std::make_unique<KernelProcesses>(); }
std::unique_ptr<EventSink> makeEventSocket() { return std::make_unique<EventSocket>(); }
std::unique_ptr<Clock> makeMonotonicClock() { return std::make_unique<MonotonicClock>(); }

} // namespace wlsim
