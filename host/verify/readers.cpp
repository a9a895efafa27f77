#include "host/verify/readers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <vector>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/word_lists.h"

namespace wlhost {
namespace {

// A whole number at the start of a text, and what follows it.
std::optional<int> leadingNumber(const std::string &text, std::string *rest) {
    int number = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc())
        return std::nullopt;
    *rest = std::string(static_cast<const char *>(end), text.data() + text.size());
    return number;
}

std::vector<std::string> wordsOf(std::string line) {
    std::replace(line.begin(), line.end(), '\t', ' ');
    return splitWords(line);
}

// The word behind another one, or empty.
std::string wordAfter(const std::vector<std::string> &words, const std::string &key) {
    auto found = std::find(words.begin(), words.end(), key);
    return found == words.end() || found + 1 == words.end() ? "" : found[1];
}

// "20Mbit" or "5000kbit" in kbit/s.
std::optional<long> readRate(const std::string &text) {
    constexpr struct {
        const char *name;
        double kbit;
    } kUnits[] = {{"bit", 0.001}, {"Kbit", 1}, {"kbit", 1}, {"Mbit", 1000}, {"mbit", 1000}, {"Gbit", 1000000}};
    char *end = nullptr;
    double number = std::strtod(text.c_str(), &end);
    for (const auto &unit : kUnits)
        if (end != text.c_str() && std::string(end) == unit.name && number >= 0 && number < 1e9)
            return std::lround(number * unit.kbit);
    return std::nullopt;
}

using Words = std::vector<std::string>;

bool has(const Words &words, const std::string &word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// The first line of which `wanted` says yes, as words.
Words findLine(const std::string &text, const std::function<bool(const Words &)> &wanted) {
    for (const std::string &line : splitWords(text, '\n'))
        if (Words words = wordsOf(line); wanted(words))
            return words;
    return {};
}

// The rate in a line that sets one: 0 when there is no such line.
std::optional<long> rateIn(const Words &line) { return line.empty() ? 0 : readRate(wordAfter(line, "rate")); }

std::optional<std::string> unescaped(const std::string &text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        auto byte = text.compare(i, 2, "\\x") == 0 ? fromHex(text.substr(i + 2, 2)) : std::nullopt;
        bool doubled = text.compare(i, 2, "\\\\") == 0;
        if (!doubled && (!byte || byte->size() != 1))
            return std::nullopt;
        bytes += doubled ? "\\" : *byte;
        i += doubled ? 1 : 3;
    }
    return bytes;
}

} // namespace

std::string Chanspec::text() const {
    std::string number = std::to_string(channel);
    return width == 20 ? number : side ? number + side : number + "/" + std::to_string(width);
}

bool Chanspec::sameAs(const Chanspec &other) const {
    return channel == other.channel && width == other.width && (!side || !other.side || side == other.side);
}

std::optional<Chanspec> readChanspec(const std::string &report) {
    constexpr struct {
        const char *suffix;
        int width;
        char side;
    } kSuffixes[] = {{"", 20, 0},    {"l", 40, 'l'}, {"u", 40, 'u'},  {"/20", 20, 0},
                     {"/40", 40, 0}, {"/80", 80, 0}, {"/160", 160, 0}};
    Words words = findLine(report, [](const Words &line) { return !line.empty(); });
    std::string suffix;
    int channel = words.empty() ? 0 : leadingNumber(words[0], &suffix).value_or(0);
    for (const auto &row : kSuffixes)
        if (suffix == row.suffix && channel >= 1 && channel <= 255)
            return Chanspec{channel, row.width, row.side};
    return std::nullopt;
}

std::optional<std::string> readCountry(const std::string &report) {
    size_t open = report.find('('), close = report.find(')', open);
    if (open == std::string::npos || close == std::string::npos || close == open + 1)
        return std::nullopt;
    return report.substr(open + 1, close - open - 1);
}

std::optional<std::string> readNetworkName(const std::string &report) {
    const std::string start = "SSID: \"";
    size_t from = report.find(start), to = report.rfind('"');
    if (from == std::string::npos || to < from + start.size())
        return std::nullopt;
    from += start.size();
    return unescaped(report.substr(from, to - from));
}

std::optional<int> firstNumber(const std::string &report) {
    std::string rest;
    return leadingNumber(report.substr(std::min(report.find_first_not_of(" \t\n"), report.size())), &rest);
}

std::optional<bool> readUp(const std::string &report) {
    bool up = report.compare(0, 2, "up") == 0;
    return up || report.compare(0, 4, "down") == 0 ? std::optional(up) : std::nullopt;
}

std::set<std::string> readStations(const std::string &report) {
    std::set<std::string> stations;
    for (const std::string &line : splitWords(report, '\n'))
        for (const std::string &word : wordsOf(line))
            if (auto mac = parseMac(word))
                stations.insert(formatMac(*mac));
    return stations;
}

std::optional<long> readShaper(const std::string &queues, const std::string &ifname) {
    return rateIn(
        findLine(queues, [&](const Words &line) { return wordAfter(line, "dev") == ifname && has(line, "tbf"); }));
}

bool hasIngress(const std::string &queues, const std::string &ifname) {
    return !findLine(queues, [&](const Words &line) {
                return wordAfter(line, "dev") == ifname && has(line, "ingress");
            }).empty();
}

std::optional<long> readPolicer(const std::string &filters) {
    return rateIn(findLine(filters, [](const Words &line) { return has(line, "police"); }));
}

bool skipsFlowCache(const std::string &rules, const std::string &ifname) {
    return !findLine(rules, [&](const Words &line) {
                return wordAfter(line, "-i") == ifname && wordAfter(line, "-j") == "SKIPLOG";
            }).empty();
}

} // namespace wlhost
