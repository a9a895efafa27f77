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
    HOLDS(one.capabilities <= UINT16_MAX || one.capabilities == kOne * 0x01010101U);
}
