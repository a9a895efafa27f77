// The way from the configuration in force to another: the steps, found beforehand, then taken or planned.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/state/change.h"
#include "host/state/lan_records.h"

namespace wlhost {

class Host;

class Transition {
  public:
    struct Scope {
        std::string radio = {}; // only this one, changed or not
        bool all = false;       // unchanged ones as well
    };
    // Finds the steps. Throws what the radios cannot do, and status 3 when `scope` names none of the configured radios.
    Transition(Host &host, Config config, const Scope &scope);

    struct Step {
        WlIntf *intf;
        Change change;
        RadioRecords records;
        bool adopt = false;          // as wanted already: only the module learns of it
        bool asked = true;           // within the scope
        json off = json::array();    // interfaces that leave the air with it
        json undone = json::array(); // settings of the run time that end with it
        json drops = json::array();  // stations that lose the network
        int result = 0;
        std::string failure = {}; // why it was not taken to its end, when it is not the module's result that tells
        int64_t ms = 0;
    };
    std::vector<Step> &steps() { return steps_; }
    // Radios of the configuration that do not exist.
    const std::vector<std::string> &missing() const { return missing_; }

    // Takes the steps, the LAN groups first. `begins` is told before each, with null for the LAN groups.
    void perform(const std::function<void(const Step *)> &begins = {});
    // Takes only the steps of these radios, which are as wanted already: where effects are held back, so that the
    // module learns of them and nothing else does.
    void adopt(const std::set<std::string> &radios);
    // What was done, and what differs from what was asked.
    json outcome();

  private:
    void bind(const Scope &scope);
    void bindAbandoned();
    void weigh(Step &step, const Scope &scope);
    void foresee(Step &step);
    void markMembers();
    void findMissingDaemons();
    void perform(Step &step);
    int bringUp(Step &step);
    void settle(const Step &step);

    Host &host_;
    Config config_;
    std::unique_ptr<LanRecords> lan_;
    bool lanChanges_ = false;
    bool undoesLan_ = false; // groups that a command had set
    std::vector<Step> steps_;
    std::vector<std::string> missing_;              // radios
    std::vector<std::vector<std::string>> daemons_; // that do not run and should, as commands
};

} // namespace wlhost
