// What the platform's tools print, read. Each gives nothing when the text is not what it should be.
#pragma once

#include <optional>
#include <set>
#include <string>

namespace wlhost {

// A channel as the driver names it: "36/80", "6l", "11".
struct Chanspec {
    int channel = 0, width = 20;
    char side = 0; // 'l' or 'u' of 40 MHz, when it is told

    std::string text() const;
    bool sameAs(const Chanspec &other) const;
};
std::optional<Chanspec> readChanspec(const std::string &report);

// "DE/3" of "DE (DE/3) GERMANY".
std::optional<std::string> readCountry(const std::string &report);
// The bytes of `Current SSID: "caf\xe9"`.
std::optional<std::string> readNetworkName(const std::string &report);
// The first number.
std::optional<int> firstNumber(const std::string &report);
// "up" or "down".
std::optional<bool> readUp(const std::string &report);
// Addresses of lines such as "mac 02:00:00:00:00:01", in lower case.
std::set<std::string> readStations(const std::string &report);

// The rate in kbit/s of the queue that limits what an interface sends, 0 without one; from the queues of all.
std::optional<long> readShaper(const std::string &queues, const std::string &ifname);
bool hasIngress(const std::string &queues, const std::string &ifname);
// The rate in kbit/s above which the filters of an interface drop what it receives, 0 without one.
std::optional<long> readPolicer(const std::string &filters);
// Whether a chain's listing has the rule that keeps an interface off the flow cache.
bool skipsFlowCache(const std::string &rules, const std::string &ifname);

} // namespace wlhost
