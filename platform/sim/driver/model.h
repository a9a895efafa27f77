// The state of the simulated driver: radios, their BSSs, stations and neighbours.
#pragma once

#include "platform/sim/common/sim_text.h"
#include "platform/sim/driver/sim_chanspec.h"

#include <cstdint>
#include <map>

namespace wlsim {

constexpr int kDefaultNoise = -90;

// The counters of a radio, as its report orders them, and what it measures of its channel.
constexpr char kCounterNames[] =
    "txframe txbyte txretrans txerror rxframe rxbyte rxerror rxcrc txnoassoc rxbadda txphyerr rxnobuf";
constexpr char kChanimNames[] = "tx inbss obss nocat nopkt doze goodtx badtx glitch badplcp";

// What a BSS demands of its stations. A non-empty `broken` refuses every station and says why.
struct Security {
    bool wep = false;
    // 802.11 shared-key authentication.
    bool sharedKey = false;
    bool wpaPsk = false, wpa2Psk = false, wpa = false, wpa2 = false;
    bool aes = false, tkip = false;
    // 0 off, 1 capable, 2 required.
    int mfp = 0;
    std::string key;
    std::string broken;

    bool rsn() const { return wpa2Psk || wpa2; }
    bool psk() const { return wpaPsk || wpa2Psk; }
    bool needsAuthenticator() const { return psk() || wpa || wpa2; }
    std::string text() const;
};

struct StationCounters {
    uint64_t txPackets = 0, txBytes = 0, rxPackets = 0, rxBytes = 0;
    uint32_t txFailures = 0, txRetries = 0, txExhausted = 0;
};

struct Station {
    Mac mac;
    // ac, n, a, g or b.
    std::string phy = "ac";
    int streams = 2;
    int rssi = -50;
    int width = 20;
    // In kbit/s.
    uint32_t txRate = 0, rxRate = 0;
    // Load that moves the counters.
    int trafficKbit = 0;
    int64_t joinedMs = 0, countedMs = 0;
    std::string security;
    StationCounters counters;
};

enum class MacMode { kOff = 0, kDeny = 1, kAllow = 2 };

struct Bss {
    int index = 0;
    std::string ifName;
    // Has an interface.
    bool exists = false;
    bool up = false;
    std::string ssid;
    Security security;
    MacMode macMode = MacMode::kOff;
    std::vector<Mac> macList;
    // Configuration error that keeps the BSS down.
    std::string refusal;
    int dtim = 1;
    std::map<std::string, long> settings;
    std::map<std::string, uint64_t> counters;
    std::vector<Station> stations;
};

struct Neighbour {
    Mac bssid;
    std::string ssid;
    Chanspec chanspec;
    int rssi = -70, noise = kDefaultNoise;
    std::string security = "open";
    bool wps = false, adhoc = false;
    int beaconPeriod = 100, dtim = 1, streams = 2;
    std::string phy = "n";
};

struct ChannelSwitch {
    std::string ifName;
    int mode = 0, count = 0;
    Chanspec target;
    int64_t dueMs = 0;
    bool done = false;
};

// How far wlconf has taken a radio.
enum class Stage { kDown, kConfigured, kSecured, kStarted };

struct Radio {
    std::string name;
    Band band = Band::kGhz5;
    // the chip
    long deviceId = 0x43c5, chip = 0x4366, coreRev = 65, phyType = 11, txChain = 15;
    Mac mac;
    std::string caps;
    bool dhd = false, wltest = false;
    int cpu = 0, noise = kDefaultNoise;
    long maxAssoc = 128;
    // the run-time state
    bool up = false;
    Stage stage = Stage::kDown;
    std::string country = "US";
    long countryRev = 0;
    std::optional<Chanspec> chanspec;
    bool autoChannel = false;
    int maxWidth = 80;
    bool n = true, vht = true;
    long gmode = 1;
    // Empty: left to the driver.
    std::string fixedRate;
    int beaconPeriod = 100;
    std::map<std::string, long> settings;
    std::map<std::string, uint64_t> counters, chanim;
    // One for each BSS the chip can carry; the first is the radio's own.
    std::vector<Bss> bss;
    std::vector<Neighbour> neighbours;
    // What the last scan saw.
    std::optional<std::vector<Neighbour>> scanned;
    std::vector<ChannelSwitch> switches;

    int streams() const { return __builtin_popcountl(static_cast<unsigned long>(txChain)); }
    bool acPhy() const { return phyType == 11; }
    const Country &locale() const { return *findCountry(country); }
};

struct Fault {
    std::string match, mode = "fail";
    // Below 0: for ever.
    int count = 1;
    int ms = 0;
    int hits = 0;
};

struct Bridge {
    std::string name;
    // With its prefix length; may be empty.
    std::string address;
    Words ports;
};

struct Model {
    std::vector<Radio> radios;
    std::vector<Bridge> bridges;
    // Names of the driver's kernel threads.
    Words threads;
    std::vector<Fault> faults;
    // Factory values.
    std::map<std::string, std::string> nvram;
};

} // namespace wlsim
