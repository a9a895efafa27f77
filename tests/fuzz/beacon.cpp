#include "tests/fuzz/target.h"

#include <algorithm>

namespace {

constexpr uint8_t kFlags = 0x6;

WlIntfInfo read(const std::string &report, uint8_t fill) {
    const fuzz::Gateway gateway{{"wlctl -i wl0 beacon_info", report}};
    WlIntfInfo info;
    memset(&info, fill, sizeof info);
    HOLDS(qvbrcm_GetGenIntfInfo("wl0", 0, &info) == 0);
    return info;
}

// The fields that are written, an element's only when the report names it. All others are the host's.
struct Part {
    const char *mark;
    size_t begin, end;
};
constexpr Part kParts[] = {
    {"", offsetof(WlIntfInfo, capabilities), offsetof(WlIntfInfo, pad2)},
    {"HT Capabilities", offsetof(WlIntfInfo, htCapId), offsetof(WlIntfInfo, htInfoId)},
    {"HT Information", offsetof(WlIntfInfo, htInfoId), offsetof(WlIntfInfo, vhtCapId)},
    {"Tag:191", offsetof(WlIntfInfo, vhtCapId), offsetof(WlIntfInfo, vhtOpId)},
    {"Tag:192", offsetof(WlIntfInfo, vhtOpId), offsetof(WlIntfInfo, hostTail)},
};

} // namespace

FUZZ_TARGET(beacon) {
    // Bytes of bit patterns that have nothing in common: what is written is the same, the rest is as it was.
    constexpr uint8_t kOne = 0xa1, kOther = 0x58;
    const WlIntfInfo one = read(input, kOne), other = read(input, kOther);
    const auto *bytes = reinterpret_cast<const uint8_t *>(&one),
               *otherBytes = reinterpret_cast<const uint8_t *>(&other);
    std::vector<bool> written(sizeof one, false);
    for (const Part &part : kParts) {
        const bool named = input.find(part.mark) != std::string::npos;
        std::fill(written.begin() + part.begin, written.begin() + part.end, named);
    }
    for (size_t at = 0; at < sizeof one; ++at) {
        const bool kept = bytes[at] == kOne && otherBytes[at] == kOther;
        if (at == offsetof(WlIntfInfo, ieFlags))
            HOLDS((bytes[at] & ~kFlags) == kOne && (bytes[at] & kFlags) == (otherBytes[at] & kFlags));
        else
            HOLDS(kept || (written[at] && bytes[at] == otherBytes[at]));
    }
    HOLDS(one.capabilities <= UINT16_MAX || one.capabilities == kOne * 0x01010101U);
}
