// The simulated driver: one model, driven by command lines.
#pragma once

#include "platform/sim/common/sim_socket.h"
#include "platform/sim/driver/model.h"
#include "platform/sim/driver/ports.h"

namespace wlsim {

// An interface name resolved: the radio and the BSS behind it.
struct Target {
    Radio &radio;
    Bss &bss;
};

// Driver event numbers used here.
constexpr unsigned kEventAuthInd = 4, kEventDeauthInd = 6, kEventAssocInd = 8, kEventReassocInd = 10,
                   kEventDisassocInd = 12, kEventPrune = 23, kEventScanComplete = 26, kEventCsaComplete = 80;

struct Event {
    unsigned number = 0;
    std::string ifName;
    Mac station;
    unsigned reason = 0, status = 0;
};

class Driver {
  public:
    Driver(Model initial, Ports machine);

    // Creates the radios' interfaces. Returns an error text, empty when done.
    std::string start();
    void stop();
    // Back to the scenario, as after a power cycle.
    std::string reboot();

    // Runs one command line; the first word is the tool.
    Reply run(const Words &words);

    std::optional<Target> find(const std::string &ifName);
    Radio *findRadio(const std::string &name);
    std::string interfaceNames() const;

    // Gives a BSS its interface if it has none yet. Returns an error text, empty when done.
    std::string createInterface(const Radio &radio, Bss &bss);

    // Announcing, and its interface up.
    bool onAir(const Radio &radio, const Bss &bss) const;
    void dropStations(Bss &bss, unsigned event, unsigned reason);
    bool dropStation(Bss &bss, const Mac &mac, unsigned event, unsigned reason);
    Mac address(const Radio &radio, const Bss &bss) const;
    // Why no station that needs keys can be served on this interface; empty when it can.
    std::string authenticatorTrouble(const std::string &ifName) const;
    // Sends the event, `count` times.
    void emit(const Event &event, long count = 1);

    Model model;
    Ports ports;

  private:
    void catchUp();
    void countTraffic(Radio &radio, Bss &bss);
    void finishSwitches(Radio &radio);
    Reply dispatch(const Words &words);
    Reply spoiltDispatch(const Words &words);
    Reply faultOf(const Words &words);

    bool eventsPass() const;

    Model initial_;
    // Found out once a command: a flood of events is one command.
    std::optional<bool> eventsPass_;
};

// The tools, by their first word.
Reply runDriverCommand(Driver &driver, const Words &words);
Reply runWlconf(Driver &driver, const Words &words);
Reply runControl(Driver &driver, const Words &words);

// What the tools can be told to do: the commands of wlctl and wl, or of dhdctl; the verbs of wlconf.
Words driverCommandNames(bool dhd);
Words wlconfVerbs();

} // namespace wlsim
