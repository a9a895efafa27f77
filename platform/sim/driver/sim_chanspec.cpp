#include "platform/sim/driver/sim_chanspec.h"

#include "platform/sim/common/sim_text.h"

#include <algorithm>

namespace wlsim {
namespace {

enum RangeBit : unsigned { kLow = 1, kLowRadar = 2, kMid = 4, kMid144 = 8, kHigh = 16, kHigh165 = 32 };

// Channels four apart; wide channels are formed from the first one on.
constexpr struct {
    int first, last;
    unsigned bit;
    // Where the wide-channel raster of this range starts.
    int block;
} kRanges[] = {
    {36, 48, kLow, 36},       {52, 64, kLowRadar, 36}, {100, 140, kMid, 100},
    {144, 144, kMid144, 100}, {149, 161, kHigh, 149},  {165, 165, kHigh165, 165},
};

constexpr unsigned kEurope = kLow | kLowRadar | kMid;
constexpr unsigned kAmerica = kLow | kLowRadar | kMid | kMid144 | kHigh | kHigh165;
constexpr unsigned kNoMid = kLow | kLowRadar | kHigh | kHigh165;

constexpr Country kCountries[] = {
    {"AT", "AUSTRIA", 13, kEurope},    {"AU", "AUSTRALIA", 13, kAmerica},     {"BE", "BELGIUM", 13, kEurope},
    {"BR", "BRAZIL", 13, kAmerica},    {"CA", "CANADA", 11, kAmerica},        {"CH", "SWITZERLAND", 13, kEurope},
    {"CN", "CHINA", 13, kNoMid},       {"CZ", "CZECH REPUBLIC", 13, kEurope}, {"DE", "GERMANY", 13, kEurope},
    {"DK", "DENMARK", 13, kEurope},    {"ES", "SPAIN", 13, kEurope},          {"EU", "EUROPEAN UNION", 13, kEurope},
    {"FI", "FINLAND", 13, kEurope},    {"FR", "FRANCE", 13, kEurope},         {"GB", "UNITED KINGDOM", 13, kEurope},
    {"GR", "GREECE", 13, kEurope},     {"IE", "IRELAND", 13, kEurope},        {"IN", "INDIA", 13, kNoMid},
    {"IT", "ITALY", 13, kEurope},      {"JP", "JAPAN", 13, kEurope},          {"KR", "KOREA", 13, kAmerica},
    {"LU", "LUXEMBOURG", 13, kEurope}, {"MX", "MEXICO", 11, kNoMid},          {"NL", "NETHERLANDS", 13, kEurope},
    {"NO", "NORWAY", 13, kEurope},     {"NZ", "NEW ZEALAND", 13, kAmerica},   {"PL", "POLAND", 13, kEurope},
    {"PT", "PORTUGAL", 13, kEurope},   {"SE", "SWEDEN", 13, kEurope},         {"SG", "SINGAPORE", 13, kAmerica},
    {"TR", "TURKEY", 13, kEurope},     {"TW", "TAIWAN", 11, kAmerica},        {"US", "UNITED STATES", 11, kAmerica},
};

struct Slot {
    unsigned bit;
    int block;
};

std::optional<Slot> slot5g(int channel) {
    for (const auto &range : kRanges) {
        if (channel >= range.first && channel <= range.last && (channel - range.first) % 4 == 0) {
            return Slot{range.bit, range.block};
        }
    }
    return std::nullopt;
}

Chanspec plain(Band band, int channel) {
    unsigned bits = (band == Band::kGhz5 ? 0xc000u : 0u) | 0x1000u | static_cast<unsigned>(channel);
    return {band, channel, 20, static_cast<uint16_t>(bits), {channel}};
}

// A wide channel of `count` 20 MHz channels on the 5 GHz raster; nothing when the range ends before it does.
std::optional<Chanspec> wide5g(int control, int count) {
    auto slot = slot5g(control);
    if (!slot) {
        return std::nullopt;
    }
    int position = (control - slot->block) / 4 % count;
    int first = control - 4 * position;
    std::vector<int> members;
    for (int i = 0; i < count; i++) {
        auto member = slot5g(first + 4 * i);
        if (!member || member->block != slot->block) {
            return std::nullopt;
        }
        members.push_back(first + 4 * i);
    }
    unsigned width = count == 2 ? 0x1800u : 0x2000u;
    unsigned centre = static_cast<unsigned>(first + 2 * (count - 1));
    unsigned bits = 0xc000u | width | static_cast<unsigned>(position) << 8 | centre;
    return Chanspec{Band::kGhz5, control, 20 * count, static_cast<uint16_t>(bits), members};
}

std::optional<Chanspec> wide2g(int control, bool upper) {
    int other = upper ? control - 4 : control + 4;
    if (other < 1 || other > 13) {
        return std::nullopt;
    }
    unsigned centre = static_cast<unsigned>((control + other) / 2);
    unsigned bits = 0x1800u | (upper ? 0x100u : 0u) | centre;
    return Chanspec{Band::kGhz2, control, 40, static_cast<uint16_t>(bits), {control, other}};
}

std::optional<Chanspec> make2g(int channel, const std::string &suffix) {
    if (channel < 1 || channel > 13) {
        return std::nullopt;
    }
    if (suffix.empty() || suffix == "/20") {
        return plain(Band::kGhz2, channel);
    }
    if (suffix == "/40") {
        auto lower = wide2g(channel, false);
        return lower ? lower : wide2g(channel, true);
    }
    return suffix == "l" || suffix == "u" ? wide2g(channel, suffix == "u") : std::nullopt;
}

std::optional<Chanspec> make5g(int channel, const std::string &suffix) {
    if (suffix == "/80") {
        return wide5g(channel, 4);
    }
    if (suffix.empty() || suffix == "/20") {
        return slot5g(channel) ? std::optional<Chanspec>(plain(Band::kGhz5, channel)) : std::nullopt;
    }
    auto pair = suffix == "/40" || suffix == "l" || suffix == "u" ? wide5g(channel, 2) : std::nullopt;
    bool sideFits = pair && (suffix == "/40" || pair->upper() == (suffix == "u"));
    return sideFits ? pair : std::nullopt;
}

} // namespace

std::string Chanspec::text() const {
    const char *suffix = width == 80 ? "/80" : width == 20 ? "" : upper() ? "u" : "l";
    return std::to_string(control) + suffix;
}

std::string Chanspec::report() const { return text() + format(" (0x%04x)", value); }

std::string Chanspec::longReport() const {
    return format("%s channel %d %dMHz (0x%04x)", band == Band::kGhz2 ? "2.4GHz" : "5GHz", centre(), width, value);
}

std::optional<Chanspec> parseChanspec(Band band, const std::string &text) {
    size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0 || digits > 3) {
        return std::nullopt;
    }
    int channel = std::stoi(text.substr(0, digits));
    std::string suffix = text.substr(digits);
    return band == Band::kGhz2 ? make2g(channel, suffix) : make5g(channel, suffix);
}

const Country *findCountry(const std::string &code) {
    for (const Country &country : kCountries) {
        if (code == country.code) {
            return &country;
        }
    }
    return nullptr;
}

bool isAllowed(const Country &country, const Chanspec &chanspec) {
    return std::all_of(chanspec.members.begin(), chanspec.members.end(), [&](int channel) {
        if (chanspec.band == Band::kGhz2) {
            return channel <= country.last2g;
        }
        auto slot = slot5g(channel);
        return slot && (slot->bit & country.ranges5g) != 0;
    });
}

std::vector<Chanspec> allowedChanspecs(const Country &country, Band band, int width) {
    Words suffixes = width == 40 ? Words{"l", "u"} : Words{"/" + std::to_string(width)};
    std::vector<Chanspec> list;
    for (int channel = 1; channel <= 165; channel++) {
        for (const std::string &suffix : suffixes) {
            auto chanspec = parseChanspec(band, std::to_string(channel) + suffix);
            if (chanspec && isAllowed(country, *chanspec)) {
                list.push_back(*chanspec);
            }
        }
    }
    return list;
}

} // namespace wlsim
