// The state of the simulated driver: radios, their BSSs, stations and neighbours.
#pragma once

#include "channels.h"
#include "text.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace wlsim {

constexpr int kDefaultNoise = -90;

/** What a BSS demands of its stations. A non-empty `broken` refuses every station and says why. */
struct Security {
    bool wep = false;
    bool sharedKey = false; ///< 802.11 shared-key authentication
    bool wpaPsk = false, wpa2Psk = false, wpa = false, wpa2 = false;
    bool aes = false, tkip = false;
    int mfp = 0; ///< 0 off, 1 capable, 2 required
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
    std::string phy = "ac"; ///< ac, n, a, g or b
    int streams = 2;
    int rssi = -50;
    int width = 20;
    uint32_t txRate = 0, rxRate = 0; ///< kbit/s
    int trafficKbit = 0;             ///< load that moves the counters
    int64_t joinedMs = 0, countedMs = 0;
    std::string security;
    StationCounters counters;
};

enum class MacMode { off = 0, deny = 1, allow = 2 };

struct Bss {
    int index = 0;
    std::string ifName;
    bool exists = false; ///< has an interface
    bool up = false;
    std::string ssid;
    Security security;
    MacMode macMode = MacMode::off;
    std::vector<Mac> macList;
    std::string refusal; ///< configuration error that keeps the BSS down
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

/** How far wlconf has taken a radio. */
enum class Stage { down, configured, secured, started };

struct Radio {
    std::string name;
    Band band = Band::ghz5;
    // the chip
    long deviceId = 0x43c5, chip = 0x4366, coreRev = 65, phyType = 11, txChain = 15;
    Mac mac;
    std::string caps;
    bool dhd = false, wltest = false;
    int cpu = 0, noise = kDefaultNoise;
    long maxAssoc = 128;
    // the run-time state
    bool up = false;
    Stage stage = Stage::down;
    std::string country = "US";
    long countryRev = 0;
    std::optional<Chanspec> chanspec;
    bool autoChannel = false;
    int maxWidth = 80;
    bool n = true, vht = true;
    long gmode = 1;
    std::string fixedRate; ///< empty: left to the driver
    int beaconPeriod = 100;
    std::map<std::string, long> settings;
    std::map<std::string, uint64_t> counters, chanim;
    std::vector<Bss> bss; ///< one for each BSS the chip can carry; the first is the radio's own
    std::vector<Neighbour> neighbours;
    std::optional<std::vector<Neighbour>> scanned; ///< what the last scan saw
    std::vector<ChannelSwitch> switches;

    int streams() const { return __builtin_popcountl(static_cast<unsigned long>(txChain)); }
    bool acPhy() const { return phyType == 11; }
    const Country &locale() const { return *findCountry(country); }
};

struct Fault {
    std::string match, mode = "fail";
    int count = 1; ///< below 0: for ever
    int ms = 0;
    int hits = 0;
};

struct Model {
    std::vector<Radio> radios;
    std::vector<Fault> faults;
    std::map<std::string, std::string> nvram; ///< factory values
};

/** Number of BSSs that the capability words promise. */
size_t bssCapacity(const std::string &caps);

/** The veth peer of an interface: air0.1 for wl0.1. No name with "wl" in it, or it would pass for a radio. */
std::string peerName(const std::string &ifName);

} // namespace wlsim
