// The host's state: the configuration in force, the radios it brought up, and what was changed at run time.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "host/config/configuration.h"
#include "host/state/loaded_module.h"

namespace wlhost {

// LAN groups in the module's records, with the storage behind them.
class LanRecords {
  public:
    explicit LanRecords(const Config &config);
    LanRecords(const LanRecords &) = delete;
    LanRecords &operator=(const LanRecords &) = delete;

    const WlLanCfg *get() const { return &lan_; }
    json describe() const;
    // Whether the configuration asks for the same; the addresses that the system gave meanwhile do not count.
    bool sameAs(const LanRecords &other) const { return asked_ == other.asked_; }

  private:
    std::vector<std::vector<WlLanMember>> members_;
    std::vector<WlLanGroup> groups_;
    WlLanCfg lan_{};
    std::vector<std::string> asked_;
};

// The WPS session that this host started last. The daemon runs one at a time for all radios.
struct WpsSession {
    std::string radio;
    const char *method;
    std::chrono::steady_clock::time_point started;
    json before;            // progress code that the daemon had left from earlier ones
    bool ran = false;       // the daemon said that it runs
    bool cancelled = false; // by a command
};

class Host {
  public:
    // Checks the configuration against the radios that exist; throws a Failure when they cannot do it.
    Host(Module &module, Config config);

    Module &module() const { return module_; }
    const std::string &configFile() const { return config_.document.file; }

    // First configuration of every configured radio; what became of each.
    json bringUp();
    // Takes a configuration file over: radios whose settings changed are reloaded.
    // With `radio` only that one, changed or not; with `all` unchanged ones as well. `file`, unless it is empty,
    // becomes the one in force.
    json reload(const std::string &radio, const std::string &file, bool all);
    // Takes over the LAN groups of a file.
    json updateLan(const std::string &file);

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
    std::vector<WlIntf *> configuredRadios();
    Bss bss(const std::string &ifname);
    std::vector<Bss> allBss();

    // Keeps what the MAC filter or a WPS registration made of a record at run time, so that a reload of the same file
    // sees it as a change.
    void noteApplied(WlIntf *intf);

    std::map<std::string, std::set<std::string>> bans; // addresses denied at run time, by interface
    std::map<std::string, bool> presets;               // on-demand SSIDs that were switched, by interface
    std::optional<WpsSession> wps;
    uint64_t eventCount = 0; // events so far: the sequence number of the last one

  private:
    struct Planned {
        WlIntf *intf;
        RadioRecords records;
    };
    std::vector<Planned> bindAll(const Config &config) const;
    json apply(const Planned &planned, bool reloading);
    [[noreturn]] static void missingOperation(const char *name);

    Module &module_;
    Config config_;
    std::unique_ptr<LanRecords> lan_;
    std::map<WlIntf *, RadioRecords> applied_;
};

} // namespace wlhost
