#include "platform/sim/driver/join.h"

#include <algorithm>

namespace wlsim {
namespace {

struct Refusal {
    std::string reason;
    // 0: the driver says nothing.
    unsigned pruneReason = 0;
};

constexpr unsigned kPruneSecurity = 1, kPruneMacDenied = 3, kPruneLimit = 4, kReasonBadKey = 15;

bool answers(Driver &driver, const JoinRequest &request, const Radio &radio, const Bss &bss) {
    return driver.onAir(radio, bss) && bss.ssid == *request.ssid && (!request.band || *request.band == radio.band);
}

// The BSS the station means, on the air or not.
std::optional<Target> findNetwork(Driver &driver, const JoinRequest &request) {
    if (!request.ifName.empty()) {
        return driver.find(request.ifName);
    }
    for (Radio &radio : driver.model.radios) {
        for (Bss &bss : radio.bss) {
            if (answers(driver, request, radio, bss)) {
                return Target{radio, bss};
            }
        }
    }
    return std::nullopt;
}

std::string airTrouble(Driver &driver, const JoinRequest &request, const Target &target) {
    const char *why = !target.radio.up                          ? "the radio is down"
                      : !target.bss.up                          ? "not started"
                      : !driver.ports.net.up(target.bss.ifName) ? "its interface is down"
                                                                : nullptr;
    if (why) {
        return std::string("BSS is down: ") + why;
    }
    if (request.channel && *request.channel != target.radio.chanspec->control) {
        return format("no such network on channel %d: it is on %s", *request.channel,
                      target.radio.chanspec->text().c_str());
    }
    return request.ssid && *request.ssid != target.bss.ssid ? "no such network" : "";
}

bool filtered(const Bss &bss, const Mac &mac) {
    bool listed = std::find(bss.macList.begin(), bss.macList.end(), mac) != bss.macList.end();
    return (bss.macMode == MacMode::kDeny && listed) || (bss.macMode == MacMode::kAllow && !listed);
}

bool full(const Radio &radio, Bss &bss, const Mac &mac) {
    auto others = [&](const Bss &one) {
        return std::count_if(one.stations.begin(), one.stations.end(), [&](auto &sta) { return sta.mac != mac; });
    };
    long all = 0;
    for (const Bss &one : radio.bss) {
        all += others(one);
    }
    auto configured = radio.settings.find("maxassoc");
    long limit = configured == radio.settings.end() ? radio.maxAssoc : std::min(configured->second, radio.maxAssoc);
    long bssLimit = bss.settings["bss_maxassoc"];
    return all >= limit || (bssLimit > 0 && others(bss) >= bssLimit);
}

// What a station of each PHY speaks in a band, the best first.
constexpr struct {
    const char *phy, *ghz2, *ghz5;
} kStationModes[] = {
    {"ac", "n g b", "ac n a"}, {"n", "n g b", "n a"}, {"g", "g b", ""}, {"a", "", "a"}, {"b", "b", ""}};

Words radioModes(const Radio &radio) {
    Words modes;
    if (radio.vht && radio.band == Band::kGhz5) {
        modes.push_back("ac");
    }
    if (radio.n) {
        modes.push_back("n");
    }
    if (radio.band == Band::kGhz5) {
        modes.push_back("a");
        return modes;
    }
    constexpr long kOnlyB = 0, kOnlyG = 2, kPerformance = 4;
    if (radio.gmode != kOnlyB) {
        modes.push_back("g");
    }
    if (radio.gmode != kOnlyG && radio.gmode != kPerformance) {
        modes.push_back("b");
    }
    return modes;
}

// The best mode that station and radio share, or empty.
std::string commonMode(const Radio &radio, const std::string &phy) {
    Words offered = radioModes(radio);
    for (const auto &row : kStationModes) {
        if (phy != row.phy) {
            continue;
        }
        for (const std::string &mode : splitWords(radio.band == Band::kGhz5 ? row.ghz5 : row.ghz2)) {
            if (contains(offered, mode)) {
                return mode;
            }
        }
    }
    return "";
}

bool nRequired(const Radio &radio) {
    auto required = radio.settings.find("nreqd");
    return required != radio.settings.end() && required->second != 0;
}

Refusal decide(Driver &driver, const JoinRequest &request, const Target &target) {
    const Bss &bss = target.bss;
    const Mac &mac = request.station.mac;
    std::string mode = commonMode(target.radio, request.station.phy);
    if (mode.empty()) {
        return {"no common 802.11 mode: the station is " + request.station.phy + ", the radio speaks " +
                joinWords(radioModes(target.radio)) + (target.radio.band == Band::kGhz5 ? " at 5 GHz" : " at 2.4 GHz")};
    }
    if (filtered(bss, mac)) {
        return {"denied by the MAC filter", kPruneMacDenied};
    }
    if (full(target.radio, target.bss, mac)) {
        return {"station limit reached", kPruneLimit};
    }
    if (nRequired(target.radio) && mode != "ac" && mode != "n") {
        return {"802.11n required"};
    }
    std::string mismatch = securityMismatch(bss.security, request.credentials);
    if (!mismatch.empty()) {
        return {"security mismatch: " + mismatch, kPruneSecurity};
    }
    std::string trouble = bss.security.needsAuthenticator() ? driver.authenticatorTrouble(bss.ifName) : "";
    if (!trouble.empty()) {
        return {"authenticator not running: " + trouble};
    }
    return {keyFits(bss.security, request.credentials) ? "" : "wrong passphrase"};
}

// Highest rate of a PHY, width and number of streams, in kbit/s.
uint32_t bestRate(const std::string &phy, int width, int streams) {
    constexpr struct {
        const char *phy;
        int width;
        uint32_t perStream;
    } kRates[] = {{"ac", 80, 433333}, {"ac", 40, 200000}, {"ac", 20, 86700},
                  {"n", 80, 150000},  {"n", 40, 150000},  {"n", 20, 72200}};
    for (const auto &row : kRates) {
        if (phy == row.phy && width == row.width) {
            return row.perStream * static_cast<uint32_t>(streams);
        }
    }
    return phy == "b" ? 11000 : 54000;
}

Station admitted(Driver &driver, const JoinRequest &request, const Radio &radio) {
    Station station = request.station;
    station.phy = commonMode(radio, station.phy);
    station.streams = std::min(station.streams, radio.streams());
    bool wide = station.phy == "ac" || station.phy == "n";
    station.width = wide ? std::min(radio.chanspec->width, station.phy == "n" ? 40 : 80) : 20;
    station.txRate = station.rxRate = bestRate(station.phy, station.width, station.streams);
    station.security = request.credentials.security;
    station.joinedMs = station.countedMs = driver.ports.clock.nowMs();
    return station;
}

// The steps a station takes on the air; the driver tells each one.
void announce(Driver &driver, const std::string &ifName, const Mac &mac, bool again) {
    driver.emit({kEventAuthInd, ifName, mac, 0, 0});
    driver.emit({again ? kEventReassocInd : kEventAssocInd, ifName, mac, 0, 0});
}

void tellRefusal(Driver &driver, const std::string &ifName, const Mac &mac, const Refusal &refusal) {
    if (refusal.pruneReason != 0) {
        driver.emit({kEventPrune, ifName, mac, refusal.pruneReason, 0});
    } else if (refusal.reason == "wrong passphrase") {
        announce(driver, ifName, mac, false);
        driver.emit({kEventDeauthInd, ifName, mac, kReasonBadKey, 0});
    }
}

} // namespace

std::string leave(Driver &driver, const Mac &mac) {
    for (Radio &radio : driver.model.radios) {
        for (Bss &bss : radio.bss) {
            if (driver.dropStation(bss, mac, kEventDisassocInd, 8)) {
                return bss.ifName;
            }
        }
    }
    return "";
}

JoinResult join(Driver &driver, const JoinRequest &request) {
    auto target = findNetwork(driver, request);
    if (!target) {
        return {"", "no such network"};
    }
    Bss &bss = target->bss;
    std::string trouble = airTrouble(driver, request, *target);
    if (!trouble.empty()) {
        return {"", trouble};
    }
    const Mac &mac = request.station.mac;
    Refusal refusal = decide(driver, request, *target);
    if (!refusal.reason.empty()) {
        tellRefusal(driver, bss.ifName, mac, refusal);
        return {"", refusal.reason};
    }
    auto same = [&](const Station &one) { return one.mac == mac; };
    auto here = std::find_if(bss.stations.begin(), bss.stations.end(), same);
    bool again = here != bss.stations.end();
    if (again) {
        bss.stations.erase(here);
    } else {
        leave(driver, mac);
    }
    bss.stations.push_back(admitted(driver, request, target->radio));
    announce(driver, bss.ifName, mac, again);
    return {bss.ifName, ""};
}

} // namespace wlsim
