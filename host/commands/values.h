// Values of a result of which not all may be known.
#pragma once

#include <cstdint>
#include <string>

#include "host/base/json.h"

namespace wlhost {

// Null for the 0 that a failed read gives, where no real value is 0.
inline json unlessZero(const json &value) { return value == 0 ? json() : value; }
inline json orNull(const char *text) { return text && *text ? json(text) : json(); }

struct BitName {
    uint32_t bit;
    const char *name;
};

template <size_t Size> json bitNames(uint32_t word, const BitName (&bits)[Size]) {
    json names = json::array();
    for (const BitName &row : bits)
        if (word & row.bit)
            names.push_back(row.name);
    return names;
}

// Of stations and scan reports.
constexpr BitName kPhyModes[] = {{0x1, "b"}, {0x2, "g"}, {0x4, "a"}, {0x8, "n"}, {0x10, "ac"}};

} // namespace wlhost
