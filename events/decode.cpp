#include "events/decode.h"

#include "module/names.h"
#include "module/text.h"

namespace wlbrcm {

namespace {

// Places in the message: Ethernet header, vendor header, then the event itself.
enum : size_t {
    kSubtypeAt = 22,
    kFlagsAt = 26,
    kTypeAt = 28,
    kStatusAt = 32,
    kReasonAt = 36,
    kAuthTypeAt = 40,
    kStationAt = 48,
    kIfnameAt = 54,
    kIfnameSize = 16
};

uint16_t bigEndian16(const uint8_t *bytes) { return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]); }

uint32_t bigEndian32(const uint8_t *bytes) {
    return static_cast<uint32_t>(bigEndian16(bytes)) << 16 | bigEndian16(bytes + 2);
}

struct TakenEvent {
    uint32_t type;
    int32_t code;
};
constexpr TakenEvent kTakenEvents[] = {{kEventAssocInd, WLBRCM_EVENT_ASSOCIATED},
                                       {kEventReassocInd, WLBRCM_EVENT_REASSOCIATED},
                                       {kEventDeauth, WLBRCM_EVENT_DEAUTHENTICATED},
                                       {kEventDeauthInd, WLBRCM_EVENT_DEAUTHENTICATED},
                                       {kEventPrune, WLBRCM_EVENT_PRUNED}};

// Passes over one number; false when there is none.
bool takeDigits(const char **text) {
    const char *start = *text;
    while (**text >= '0' && **text <= '9')
        ++*text;
    return *text != start;
}

} // namespace

DriverEvent decodeEvent(const EventMessage &message) {
    DriverEvent event = {};
    event.subtype = bigEndian16(message + kSubtypeAt);
    event.flags = bigEndian16(message + kFlagsAt);
    event.type = bigEndian32(message + kTypeAt);
    event.status = bigEndian32(message + kStatusAt);
    event.reason = bigEndian32(message + kReasonAt);
    event.authType = bigEndian32(message + kAuthTypeAt);
    memcpy(event.station, message + kStationAt, sizeof event.station);
    memcpy(event.ifname, message + kIfnameAt, kIfnameSize);
    return event;
}

uint32_t eventType(const void *message, size_t length) {
    if (length < kTypeAt + sizeof(uint32_t))
        return 0;
    return bigEndian32(static_cast<const uint8_t *>(message) + kTypeAt);
}

int32_t recordCode(const DriverEvent &event) {
    // Other reasons of a prune concern the driver alone.
    constexpr uint32_t kStationPruned = 1;
    if (event.type == kEventPrune && event.reason != kStationPruned)
        return 0;
    for (const TakenEvent &taken : kTakenEvents) {
        if (taken.type == event.type)
            return taken.code;
    }
    return 0;
}

bool isRadioInterface(const char *ifname) {
    const std::string_view name(ifname);
    if (!isInterfaceName(name) || !startsWith(name, "wl"))
        return false;
    const char *rest = ifname + 2;
    if (!takeDigits(&rest))
        return false;
    if (*rest == '.' && !takeDigits(&++rest))
        return false;
    return *rest == '\0';
}

void identify(const DriverEvent &event, int32_t code, WlEvent *record) {
    record->event = code;
    copyText(record->ifName, event.ifname);
    copyText(record->radioName, {event.ifname, strcspn(event.ifname, ".")});
    const uint8_t *mac = event.station;
    const Text<64> text("%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    memcpy(record->sta + offsetof(WlStaInfo, macAddr), text.c_str(), text.size() + 1);
}

} // namespace wlbrcm
