#include "acs.h"

#include "daemon.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <sstream>

namespace wlsim {
namespace {

// An AP on 2.4 GHz is heard by its neighbours up to four channels away.
constexpr int kOverlap24 = 5;
constexpr int kFirst5GHz = 36;
constexpr int kUpper5GHz = 149;

struct Sighting {
    Neighbour ap;
    bool ht = false;
    bool vht = false;
    bool fast = false; // rates above 11 Mbit/s
};

ApMode modeOf(const Sighting &seen) {
    bool upper = seen.ap.channel >= kFirst5GHz;
    if (seen.vht && upper)
        return ApMode::ac;
    if (seen.ht || seen.vht)
        return ApMode::n;
    if (upper)
        return ApMode::a;
    return seen.fast ? ApMode::g : ApMode::b;
}

bool contains(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }

void take(Sighting &seen, const std::string &key, const std::string &value) {
    if (key == "Channel") {
        seen.ap.channel = std::atoi(value.c_str());
    } else if (contains(key, "Chanspec")) {
        // "5GHz channel 42 80MHz (0xe02a)": the width is the number before the last "MHz".
        std::size_t end = value.rfind("MHz");
        std::size_t start = end == std::string::npos ? end : value.rfind(' ', end);
        if (start != std::string::npos)
            seen.ap.width = std::atoi(value.c_str() + start);
    } else if (contains(key, "VHT Capable")) {
        seen.vht = true;
    } else if (contains(key, "HT Capable")) {
        seen.ht = true;
    } else if (contains(key, "Supported Rates")) {
        seen.fast = contains(value, " 54") || contains(value, " 24");
    }
}

void finish(Sighting &seen, std::vector<Neighbour> &list) {
    if (seen.ap.channel > 0) {
        seen.ap.mode = modeOf(seen);
        list.push_back(seen.ap);
    }
    seen = {};
}

struct Range {
    int first, last;
};

/** The 20 MHz channels that a 5 GHz radio covers: wide channels are aligned blocks of neighbouring ones. */
Range covered(int channel, int width) {
    int base = channel >= kUpper5GHz ? kUpper5GHz : kFirst5GHz;
    int size = 4 * std::max(width / 20, 1);
    int first = base + (channel - base) / size * size;
    return {first, first + size - 4};
}

int shared(int channel, int width, const Neighbour &other) {
    if (channel < kFirst5GHz)
        return std::max(kOverlap24 - std::abs(channel - other.channel), 0);
    Range ours = covered(channel, width);
    Range theirs = covered(other.channel, other.width);
    return ours.first <= theirs.last && theirs.first <= ours.last ? 1 : 0;
}

using Counts = std::array<int, 12>;

/** Column of an AP, counted from the one behind the channel number. */
std::size_t column(const Neighbour &ap) {
    switch (ap.mode) {
    case ApMode::a:
        return 0;
    case ApMode::b:
        return 1;
    case ApMode::g:
        return 2;
    case ApMode::n:
        return ap.width > 20 ? 4 : 3;
    case ApMode::ac:
        break;
    }
    return ap.width >= 160 ? 9 : ap.width >= 80 ? 8 : ap.width >= 40 ? 7 : 6;
}

/** The columns that are no AP modes: how many others overlap the channel from below, at all, and from above. */
Counts countsOf(int channel, const std::vector<Neighbour> &neighbours) {
    Counts counts{};
    for (const Neighbour &ap : neighbours) {
        if (ap.channel == channel) {
            ++counts[column(ap)];
        } else if (shared(channel, 20, ap) > 0) {
            ++counts[5];
            ++counts[ap.channel < channel ? 10 : 11];
        }
    }
    return counts;
}

} // namespace

std::vector<Neighbour> readScanReport(const std::string &report) {
    std::vector<Neighbour> list;
    Sighting seen;
    for (const std::string &piece : words(report, "\t\n")) {
        std::size_t colon = piece.find(':');
        std::string key = piece.substr(0, colon);
        std::string value = colon == std::string::npos ? "" : piece.substr(colon + 1);
        if (key == "SSID")
            finish(seen, list);
        else
            take(seen, key, value);
    }
    finish(seen, list);
    return list;
}

std::vector<int> readChannels(const std::string &listing) {
    std::vector<int> channels;
    for (const std::string &word : words(listing, " ,\t\n")) {
        int channel = std::atoi(word.c_str());
        if (channel > 0)
            channels.push_back(channel);
    }
    return channels;
}

std::vector<std::string> readChanspecs(const std::string &listing) {
    std::vector<std::string> chanspecs;
    for (const std::string &line : words(listing, "\n")) {
        auto parts = words(line);
        if (!parts.empty() && std::atoi(parts[0].c_str()) > 0)
            chanspecs.push_back(parts[0]);
    }
    return chanspecs;
}

std::string bssTable(const std::vector<int> &channels, const std::vector<Neighbour> &neighbours) {
    std::ostringstream table;
    table << "channel a b g n20 n40 overlap ac20 ac40 ac80 ac160 below above\n";
    for (int channel : channels) {
        table << channel;
        for (int count : countsOf(channel, neighbours))
            table << ' ' << count;
        table << '\n';
    }
    return table.str();
}

int interference(const std::string &chanspec, int width, const std::vector<Neighbour> &neighbours) {
    int channel = std::atoi(chanspec.c_str());
    int sum = 0;
    for (const Neighbour &ap : neighbours)
        sum += shared(channel, width, ap);
    return sum;
}

std::string quietest(const std::vector<std::string> &candidates, int width, const std::vector<int> &skip,
                     const std::vector<Neighbour> &neighbours, const std::string &current) {
    std::string best;
    int least = INT_MAX;
    for (const std::string &candidate : candidates) {
        if (std::find(skip.begin(), skip.end(), std::atoi(candidate.c_str())) != skip.end())
            continue;
        int found = interference(candidate, width, neighbours);
        if (found < least || (found == least && candidate == current)) {
            best = candidate;
            least = found;
        }
    }
    return best;
}

} // namespace wlsim
