// Messages as the driver's event daemon sends them.
#ifndef WLBRCM_TESTS_EVENTS_MESSAGE_H
#define WLBRCM_TESTS_EVENTS_MESSAGE_H

#include <cstdint>
#include <string>

inline std::string bigEndian(uint32_t value, int bytes) {
    std::string text;
    while (bytes-- > 0)
        text.push_back(static_cast<char>(value >> (8 * bytes)));
    return text;
}

constexpr char kStation[] = "00:1A:2B:3C:4D:EF";

// An event of station kStation. The fields that nobody reads are filled too, so that a misplaced read shows.
inline std::string eventMessage(uint32_t type, const std::string &ifname = "wl0.1", uint32_t reason = 0,
                                uint16_t subtype = 1) {
    std::string name = ifname.substr(0, 16);
    name.resize(16);
    return std::string(22, '\x77') + bigEndian(subtype, 2) + bigEndian(0x7777, 2) + bigEndian(0x1234, 2) +
           bigEndian(type, 4) + bigEndian(0x51, 4) + bigEndian(reason, 4) + bigEndian(0x61, 4) +
           bigEndian(0x77777777, 4) + std::string("\x00\x1a\x2b\x3c\x4d\xef", 6) + name + "payload";
}

#endif
