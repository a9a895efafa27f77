// The host's state: the configuration in force, the radios it brought up, and what was changed at run time.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "host/config/configuration.h"
#include "host/state/lan_records.h"
#include "host/state/loaded_module.h"
#include "host/state/station_history.h"
#include "host/state/transition.h"
#include "host/verify/platform.h"

namespace wlhost {

class Host;
struct Finding;

// The WPS session that this host started last. The daemon runs one at a time for all radios.
struct WpsSession {
    std::string radio;
    const char *method;
    std::chrono::steady_clock::time_point started;
    json before;            // progress code that the daemon had left from earlier ones
    bool ran = false;       // the daemon said that it runs
    bool cancelled = false; // by a command
    json told = {};         // state and result that followers of the events know
};

// How the host finds out whether what it asked for is so; see verify/verification.h.
// `intf` is null for what concerns no radio; a patient look waits a moment for what may still come.
using Verifier = std::function<std::vector<Finding>(Host &, WlIntf *intf, unsigned subjects,
                                                    const std::string &interface, bool patient)>;

class Host {
  public:
    // Checks the configuration against the radios that exist; throws a Failure when they cannot do it. Radios that are
    // missing are left out.
    Host(Module &module, Config config, Verifier verifier = {});
    ~Host();

    Module &module() const { return module_; }
    const Config &config() const { return config_; }
    const std::string &configFile() const { return config_.document.file; }
    const LanRecords &lan() const { return *lan_; }

    // First configuration of the radios that are configured and there.
    json bringUp();
    // Has only the module learn of radios that are as wanted already; where effects are held back.
    void adopt(const std::set<std::string> &radios);
    struct ReloadRequest {
        std::string radio = {};           // only this one, changed or not
        std::string file = {};            // unless empty, becomes the one in force
        bool all = false;                 // unchanged radios as well
        std::chrono::seconds rollback{0}; // back to the configuration before, unless confirmed by then; 0 for never
    };
    // Takes a configuration file over. Each radio gets the lightest operation that does it; one that is not as it
    // should be counts as changed. What was done to each radio and what differs afterwards.
    json reload(const ReloadRequest &request);
    // What is not as it was asked for in the outcome of a start or a reload, a line each; empty when all is well.
    static std::string complaints(const json &outcome);
    // Takes over the LAN groups of a file.
    json updateLan(const std::string &file);
    // What bringUp() or reload() would do. Changes nothing, but what this process holds: for a process of its own.
    json planBringUp(bool fresh);
    json planReload(const ReloadRequest &request);

    // Keeps the configuration that a reload with `rollback` brought. Throws when none waits for it.
    json confirm();
    // When the configuration before comes back, unless confirmed.
    std::optional<std::chrono::steady_clock::time_point> rollbackTime() const;
    // Brings it back; what became of the radios. Only where one waits.
    json rollBack();

    // What differs from what was asked: of one radio, or with null of what concerns no radio.
    std::vector<Finding> differences(WlIntf *intf, unsigned subjects, const std::string &interface = {},
                                     bool patient = true);
    bool verifies() const { return static_cast<bool>(verifier_); }
    // Throws when anything differs.
    void demandVerified(WlIntf *intf, unsigned subjects, const std::string &interface = {});

    // One operation of the module's table. Throws when the module does not offer it.
    template <typename Slot> Slot operation(Slot slot, const char *name) const {
        if (!slot)
            missingOperation(name);
        return slot;
    }
    // Throws when an operation did not return 0.
    static void check(int rc, const std::string &where, const char *operation);

    // One BSS of a configured radio.
    struct Bss {
        WlIntf *intf;
        size_t index;
        WlSsidCfg &record() const { return intf->bss[index]; }
        // N of wlX.N, 0 for the radio's own interface: what the module calls the BSS index.
        int number() const { return interfaceNumber(record().ifName); }
    };
    // A radio that is configured. Throws status 3, naming those that are.
    WlIntf *radio(const std::string &name);
    // Those that are there.
    std::vector<WlIntf *> configuredRadios();
    // Those that were taken off the air since the file no longer has them.
    std::vector<WlIntf *> abandonedRadios() const;
    Bss bss(const std::string &ifname);
    std::vector<Bss> allBss();
    static std::vector<Bss> bssOf(WlIntf *intf);
    // Addresses of a BSS's stations, as the driver tells them.
    std::vector<std::string> stationsOn(const Bss &bss);
    json stationRows(WlIntf &intf);

    // Keeps what the MAC filter or a WPS registration made of a record at run time, so that a reload of the same file
    // sees it as a change.
    void noteApplied(WlIntf *intf);
    bool isSwitchedOn(const WlSsidCfg &bss) const;

    // Tells everyone who follows the events: of the drivers, or what the host did. Adds sequence and time; `radio`,
    // `interface` and `mac` are null where the event has none.
    void tell(json event);
    std::function<void(const json &event)> onEvent; // whoever passes them on; may be empty

    std::function<void(const std::string &step)> onStep; // what is begun, for who watches it start; may be empty

    std::map<std::string, std::set<std::string>> bans; // addresses denied at run time, by interface
    std::map<std::string, bool> presets;               // on-demand SSIDs that were switched, by interface
    std::optional<WpsSession> wps;
    StationHistory history;
    const Platform *platform = &devicePlatform(); // what is asked how things really are
    uint64_t eventCount = 0;                      // events so far: the sequence number of the last one

  private:
    friend class Transition;
    // What a radio was given, and what has become of it at run time.
    struct Applied {
        RadioRecords given, now;
        bool off = false; // left the file
    };
    struct Rollback {
        Config config;
        std::chrono::steady_clock::time_point due;
    };
    Config configOf(const ReloadRequest &request) const;
    [[noreturn]] static void missingOperation(const char *name);

    Module &module_;
    Config config_;
    std::unique_ptr<LanRecords> lan_;
    bool lanByCommand_ = false; // the groups in force are not those of the file
    std::map<WlIntf *, Applied> applied_;
    std::optional<Rollback> rollback_;
    Verifier verifier_;
};

} // namespace wlhost
