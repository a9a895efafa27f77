// The simulated driver: one model, driven by command lines.
#pragma once

#include "model.h"
#include "ports.h"

#include <string>
#include <vector>

namespace wlsim {

struct Reply {
    int status = 0;
    std::string out, err;
    int delayMs = 0; ///< the client waits so long before it shows the answer
};

Reply done(std::string out = "");
Reply refuse(const std::string &why, int status = 1);

/** An interface name resolved: the radio and the BSS behind it. */
struct Target {
    Radio &radio;
    Bss &bss;
};

/** Driver event numbers used here. */
enum EventNumber : unsigned {
    kEventAuthInd = 4,
    kEventDeauthInd = 6,
    kEventAssocInd = 8,
    kEventReassocInd = 10,
    kEventDisassocInd = 12,
    kEventPrune = 23,
    kEventScanComplete = 26,
    kEventCsaComplete = 80,
};

struct Event {
    unsigned number = 0;
    std::string ifName;
    Mac station;
    unsigned reason = 0, status = 0;
};

class Driver {
  public:
    Driver(Model initial, Ports machine);

    /** Creates the radios' interfaces. @return an error text, empty when done. */
    std::string start();
    void stop();
    /** Back to the scenario, as after a power cycle. */
    std::string reboot();

    /** Runs one command line; the first word is the tool. */
    Reply run(const std::vector<std::string> &words);

    std::optional<Target> find(const std::string &ifName);
    Radio *findRadio(const std::string &name);
    std::string interfaceNames() const;

    /** Gives a BSS its interface if it has none yet. @return an error text, empty when done. */
    std::string createInterface(const Radio &radio, Bss &bss);

    /** Announcing, and its interface up. */
    bool onAir(const Radio &radio, const Bss &bss) const;
    void dropStations(Bss &bss, EventNumber event, unsigned reason);
    bool dropStation(Bss &bss, const Mac &mac, EventNumber event, unsigned reason);
    Mac address(const Radio &radio, const Bss &bss) const;
    /** Why no station that needs keys can be served on this interface; empty when it can. */
    std::string authenticatorTrouble(const std::string &ifName) const;
    void emit(const Event &event);

    Model model;
    Ports ports;

  private:
    void catchUp();
    void countTraffic(Radio &radio, Bss &bss);
    void finishSwitches(Radio &radio);
    Reply dispatch(const std::vector<std::string> &words);

    bool eventsPass() const;

    Model initial_;
    std::optional<bool> eventsPass_; ///< found out once a command: a flood of events is one command
};

/** A variable of the configuration store, empty when it is not set. */
std::string stored(const std::string &prefix, const std::string &key);

// The tools, by their first word.
Reply runDriverCommand(Driver &driver, const std::vector<std::string> &words);
Reply runWlconf(Driver &driver, const std::vector<std::string> &words);
Reply runControl(Driver &driver, const std::vector<std::string> &words);

} // namespace wlsim
