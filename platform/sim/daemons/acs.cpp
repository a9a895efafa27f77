#include "platform/sim/daemons/acs.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>

namespace wlsim {
namespace {

// An AP on 2.4 GHz is heard by its neighbours up to four channels away.
constexpr int kOverlap24 = 5;

bool has(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }

std::optional<Chanspec> readChanspec(const std::string &text) {
    constexpr int kLast24 = 14;
    return parseChanspec(std::atoi(text.c_str()) > kLast24 ? Band::kGhz5 : Band::kGhz2, text);
}

// One "key: value" of an access point whose channel is known; the PHY gets better as the report goes on.
void take(Neighbour &ap, const std::string &key, const std::string &value) {
    bool upper = ap.chanspec.band == Band::kGhz5;
    if (has(key, "VHT Capable")) {
        ap.phy = upper ? "ac" : "n";
    } else if (has(key, "HT Capable")) {
        ap.phy = "n";
    } else if (has(key, "Supported Rates")) {
        ap.phy = upper ? "a" : has(value, " 54") || has(value, " 24") ? "g" : "b";
    }
}

int shared(const Chanspec &ours, const Chanspec &theirs) {
    if (ours.band == Band::kGhz2)
        return std::max(kOverlap24 - std::abs(ours.control - theirs.control), 0);
    return std::any_of(ours.members.begin(), ours.members.end(), [&](int channel) {
        return std::find(theirs.members.begin(), theirs.members.end(), channel) != theirs.members.end();
    });
}

// What a radio there would share the air with; lower is better.
int interference(const Chanspec &chanspec, const std::vector<Neighbour> &neighbours) {
    int sum = 0;
    for (const Neighbour &ap : neighbours)
        sum += shared(chanspec, ap.chanspec);
    return sum;
}

using Counts = std::array<int, 12>;

// Column of an AP, counted from the one behind the channel number.
size_t column(const Neighbour &ap) {
    int width = ap.chanspec.width;
    if (ap.phy == "ac")
        return width >= 80 ? 8 : width >= 40 ? 7 : 6;
    if (ap.phy == "n")
        return width > 20 ? 4 : 3;
    return ap.phy == "a" ? 0 : ap.phy == "b" ? 1 : 2;
}

// The columns that are no AP modes: how many others overlap the channel from below, at all, and from above.
Counts countsOf(int channel, const std::vector<Neighbour> &neighbours) {
    Counts counts{};
    auto own = readChanspec(std::to_string(channel));
    for (const Neighbour &ap : neighbours) {
        if (ap.chanspec.control == channel) {
            ++counts[column(ap)];
        } else if (own && shared(*own, ap.chanspec) > 0) {
            ++counts[5];
            ++counts[ap.chanspec.control < channel ? 10 : 11];
        }
    }
    return counts;
}

} // namespace

std::vector<Neighbour> readScanReport(const std::string &report) {
    std::vector<Neighbour> list;
    bool known = false;
    for (const std::string &piece : splitWords(report, "\t\n")) {
        size_t colon = std::min(piece.find(": "), piece.size());
        std::string key = piece.substr(0, colon), value = colon < piece.size() ? piece.substr(colon + 2) : "";
        if (key == "SSID") {
            known = false;
        } else if (key == "Channel") {
            auto chanspec = readChanspec(value);
            known = chanspec.has_value();
            if (known) {
                list.emplace_back();
                list.back().chanspec = *chanspec;
            }
        } else if (known) {
            take(list.back(), piece, value);
        }
    }
    return list;
}

std::vector<int> readChannels(const std::string &listing) {
    std::vector<int> channels;
    for (const std::string &word : splitWords(listing, " ,\t\n")) {
        int channel = std::atoi(word.c_str());
        if (channel > 0)
            channels.push_back(channel);
    }
    return channels;
}

std::vector<Chanspec> readChanspecs(const std::string &listing) {
    std::vector<Chanspec> chanspecs;
    for (const std::string &line : splitWords(listing, "\n")) {
        auto chanspec = readChanspec(line.substr(0, line.find(' ')));
        if (chanspec)
            chanspecs.push_back(*chanspec);
    }
    return chanspecs;
}

std::string bssTable(const std::vector<int> &channels, const std::vector<Neighbour> &neighbours) {
    std::string table = "channel a b g n20 n40 overlap ac20 ac40 ac80 ac160 below above\n";
    for (int channel : channels) {
        table += std::to_string(channel);
        for (int count : countsOf(channel, neighbours))
            table += " " + std::to_string(count);
        table += "\n";
    }
    return table;
}

std::optional<Chanspec> quietest(const std::vector<Chanspec> &candidates, const std::vector<int> &skip,
                                 const std::vector<Neighbour> &neighbours, const std::string &current) {
    std::optional<Chanspec> best;
    int least = INT_MAX;
    for (const Chanspec &candidate : candidates) {
        if (std::find(skip.begin(), skip.end(), candidate.control) != skip.end())
            continue;
        int found = interference(candidate, neighbours);
        if (found < least || (found == least && candidate.text() == current)) {
            best = candidate;
            least = found;
        }
    }
    return best;
}

} // namespace wlsim
