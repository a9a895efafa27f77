#include "platform/sim/driver/event_message.h"

namespace wlsim {
namespace {

void put(std::string &out, uint32_t value, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
        out += static_cast<char>(value >> shift & 0xff);
    }
}

void putMac(std::string &out, const Mac &mac) { out.append(mac.bytes.begin(), mac.bytes.end()); }

} // namespace

std::string eventMessage(const Event &event) {
    constexpr uint32_t kEtherType = 0x886c, kVendorSubtype = 0x8001, kUserEvent = 1, kVersion = 2, kLength = 58;
    std::string out;
    putMac(out, event.station);
    putMac(out, event.station);
    put(out, kEtherType, 2);
    put(out, kVendorSubtype, 2);
    put(out, kLength, 2);
    put(out, 0, 1);
    put(out, 0x001018, 3);
    put(out, kUserEvent, 2);
    put(out, kVersion, 2);
    put(out, 0, 2); // flags
    put(out, event.number, 4);
    put(out, event.status, 4);
    put(out, event.reason, 4);
    put(out, 0, 4); // authentication type
    put(out, 0, 4); // no data follows
    putMac(out, event.station);
    std::string name = event.ifName.substr(0, 15);
    name.resize(16);
    return out + name + std::string(2, '\0');
}

} // namespace wlsim
