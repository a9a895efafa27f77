// What the driver model needs of the machine it runs on, so that it also runs without one.
#pragma once

#include "platform/sim/common/sim_text.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace wlsim {

// Network interfaces. Other programs change them behind the driver's back, so every question is asked anew.
class Net {
  public:
    virtual ~Net() = default;
    // Creates an interface and its peer. Returns an error text, empty when done.
    virtual std::string create(const std::string &name, const std::string &peer, const Mac &mac) = 0;
    virtual void remove(const std::string &name) = 0;
    virtual bool exists(const std::string &name) const = 0;
    virtual bool up(const std::string &name) const = 0;
    virtual std::optional<Mac> mac(const std::string &name) const = 0;
    virtual bool setMac(const std::string &name, const Mac &mac) = 0;
    // The bridge it is a member of, or empty.
    virtual std::string bridge(const std::string &name) const = 0;
};

class Processes {
  public:
    virtual ~Processes() = default;
    virtual bool running(const std::string &name) const = 0;
};

// Takes event messages on their way to the module.
class EventSink {
  public:
    virtual ~EventSink() = default;
    virtual void send(const std::string &datagram) = 0;
};

class Clock {
  public:
    virtual ~Clock() = default;
    virtual int64_t nowMs() const = 0;
};

struct Ports {
    Net &net;
    Processes &processes;
    EventSink &events;
    Clock &clock;
};

// Interfaces that are a table in memory; new ones are down, as the kernel's are.
class MemoryNet : public Net {
  public:
    struct Interface {
        Mac mac;
        bool up = false;
        std::string bridge;
    };
    std::string create(const std::string &name, const std::string &peer, const Mac &mac) override;
    void remove(const std::string &name) override { interfaces.erase(name); }
    bool exists(const std::string &name) const override { return interfaces.count(name) != 0; }
    bool up(const std::string &name) const override;
    std::optional<Mac> mac(const std::string &name) const override;
    bool setMac(const std::string &name, const Mac &mac) override;
    std::string bridge(const std::string &name) const override;

    std::map<std::string, Interface> interfaces;
    // New interfaces come up by themselves.
    bool startUp = false;
};

// veth pairs of the kernel's, in this process's network namespace.
std::unique_ptr<Net> makeKernelNet();
// The processes of this pid namespace, by command name.
std::unique_ptr<Processes> makeKernelProcesses();
// UDP to the module's event port on the loopback interface.
std::unique_ptr<EventSink> makeEventSocket();
std::unique_ptr<Clock> makeMonotonicClock();

} // namespace wlsim
