// The driver's event message, decoded without any I/O.
#ifndef WLBRCM_EVENTS_DECODE_H
#define WLBRCM_EVENTS_DECODE_H

#include <wlbrcm/events.h>

namespace wlbrcm {

// A message as received, followed by zeros: what a short datagram lacks reads as zero.
constexpr size_t kEventMessageSize = 4096;
using EventMessage = uint8_t[kEventMessageSize];

// Numbers of the driver's published event format.
enum : uint32_t {
    kEventDeauth = 5,
    kEventDeauthInd = 6,
    kEventAssocInd = 8,
    kEventReassocInd = 10,
    kEventPrune = 23,
    kEventProbeRequest = 137
};

// `subtype` of every event of the driver; other subtypes are other protocols on the same link.
constexpr uint16_t kDriverSubtype = 1;

// The fields that are read. Whatever arrived, the interface name is terminated.
struct DriverEvent {
    uint16_t subtype;
    uint16_t flags;
    uint32_t type;
    uint32_t status;
    uint32_t reason;
    uint32_t authType;
    uint8_t station[6];
    char ifname[17];
};

DriverEvent decodeEvent(const EventMessage &message);

// The event number of a message of any length, 0 when it is too short to hold one.
uint32_t eventType(const void *message, size_t length);

// WLBRCM_EVENT_* of an event that the host takes, else 0.
int32_t recordCode(const DriverEvent &event);

// The interfaces that are asked for a station: wlN and wlN.M.
bool isRadioInterface(const char *ifname);

// Fills a zero-filled record with what the message itself says: event, names and station address.
void identify(const DriverEvent &event, int32_t code, WlEvent *record);

} // namespace wlbrcm

#endif
