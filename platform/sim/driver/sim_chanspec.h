// Channel specifications of the driver and which of them a country allows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace wlsim {

enum class Band { kGhz2 = 2, kGhz5 = 5 };

// One chanspec. `value` is the driver's 16 bits: band, width, sideband, centre channel.
struct Chanspec {
    Band band = Band::kGhz5;
    int control = 0;
    int width = 20;
    uint16_t value = 0;
    // The 20 MHz channels it covers.
    std::vector<int> members;

    int centre() const { return value & 0xff; }
    bool upper() const { return width == 40 && (value & 0x0700) != 0; }
    // "36", "36l", "36/80".
    std::string text() const;
    // The text with the 16 bits behind it, as the driver reports it: "36/80 (0xe02a)".
    std::string report() const;
    // "5GHz channel 42 80MHz (0xe02a)".
    std::string longReport() const;
};

// `36`, `36l`, `40u`, `36/80`, `36/40`; nothing when the band has no such channel.
std::optional<Chanspec> parseChanspec(Band band, const std::string &text);

// A country as the driver knows it, or null for an unknown code.
struct Country {
    const char *code;
    const char *name;
    // Channels 1 to this one.
    int last2g;
    // Bits of the 5 GHz ranges.
    unsigned ranges5g;
};
const Country *findCountry(const std::string &code);

bool isAllowed(const Country &country, const Chanspec &chanspec);
std::vector<Chanspec> allowedChanspecs(const Country &country, Band band, int width);

} // namespace wlsim
