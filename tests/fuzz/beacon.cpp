#include "target.h"

namespace {

constexpr uint8_t kFlags = 0x6;

WlIntfInfo read(const std::string &report, uint8_t fill) {
    FakePlatform platform;
    platform.answer("wlctl -i wl0 beacon_info", report);
    WlIntfInfo info;
    memset(&info, fill, sizeof info);
    HOLDS(qvbrcm_GetGenIntfInfo("wl0", 0, &info) == 0);
    HOLDS(platform.leftFiles().empty());
    return info;
}

// An element's fields are written only when the report names it.
struct Element {
    const char *mark;
    size_t begin, end;
};
constexpr Element kElements[] = {
    {"HT Capabilities", offsetof(WlIntfInfo, htCapId), offsetof(WlIntfInfo, htInfoId)},
    {"HT Information", offsetof(WlIntfInfo, htInfoId), offsetof(WlIntfInfo, vhtCapId)},
    {"Tag:191", offsetof(WlIntfInfo, vhtCapId), offsetof(WlIntfInfo, vhtOpId)},
    {"Tag:192", offsetof(WlIntfInfo, vhtOpId), offsetof(WlIntfInfo, hostTail)},
};

bool isHosts(size_t at) {
    return at < offsetof(WlIntfInfo, ieFlags) || at >= offsetof(WlIntfInfo, hostTail) ||
           (at > offsetof(WlIntfInfo, ieFlags) && at < offsetof(WlIntfInfo, capabilities)) ||
           (at >= offsetof(WlIntfInfo, pad2) && at < offsetof(WlIntfInfo, htCapId));
}

} // namespace

FUZZ_TARGET(beacon) {
    // Bytes of bit patterns that have nothing in common: what is written is the same, the rest is as it was.
    constexpr uint8_t kOne = 0xa1, kOther = 0x58;
    const WlIntfInfo one = read(input, kOne), other = read(input, kOther);
    const auto *bytes = reinterpret_cast<const uint8_t *>(&one),
               *otherBytes = reinterpret_cast<const uint8_t *>(&other);
    for (size_t at = 0; at < sizeof one; ++at) {
        const bool kept = bytes[at] == kOne && otherBytes[at] == kOther;
        if (at == offsetof(WlIntfInfo, ieFlags))
            HOLDS((bytes[at] & ~kFlags) == kOne && (bytes[at] & kFlags) == (otherBytes[at] & kFlags));
        else
            HOLDS(kept || (!isHosts(at) && bytes[at] == otherBytes[at]));
    }
    for (const Element &element : kElements) {
        const bool named = input.find(element.mark) != std::string::npos;
        for (size_t at = element.begin; !named && at < element.end; ++at)
            HOLDS(bytes[at] == kOne);
    }
    HOLDS(one.capabilities <= UINT16_MAX || one.capabilities == kOne * 0x01010101U);
}
