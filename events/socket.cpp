// The event socket: its set-up, and one event received at a time.
#include <wlbrcm/events.h>

#include <cerrno>
#include <cstdlib>
#include <sys/socket.h>
#include <unistd.h>

#include "events/decode.h"
#include "module/log.h"
#include "module/loopback.h"
#include "module/numbers.h"
#include "module/nvram.h"

using namespace wlbrcm;

namespace {

constexpr uint16_t kEventPort = 44032;
constexpr uint16_t kForwardingPort = 13728;
// Room for a burst of events while the host is busy with a command.
constexpr int kEventBuffer = 360448;
constexpr int kDefaultBuffer = 0;

// EvtReceive: the datagram is gone, and there is no record for the host.
constexpr int kNoRecord = 1;

bool setOption(int sock, int option, int value) {
    return setsockopt(sock, SOL_SOCKET, option, &value, sizeof value) == 0;
}

bool prepare(Here here, int sock, uint16_t port, int buffer) {
    if (!setOption(sock, SO_REUSEADDR, 1)) {
        WLBRCM_LOG_AT(here, LOG_ERR, "Unable to setsockopt to loopback socket %d.\n", sock);
        return false;
    }
    if (buffer != kDefaultBuffer && !setOption(sock, SO_RCVBUF, buffer)) {
        WLBRCM_LOG_AT(here, LOG_ERR, "Unable to setsockopt %d buffer size %d.\n", sock, buffer);
        return false;
    }
    const sockaddr_in address = loopback(port);
    if (bind(sock, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        WLBRCM_LOG_AT(here, LOG_ERR, "Unable to bind to loopback socket %d.\n", sock);
        return false;
    }
    return true;
}

// Returns the socket or -1. It is not for the commands that the module runs, so it is closed when they start.
int openLoopback(Here here, uint16_t port, int buffer) {
    const int sock = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (sock < 0)
        WLBRCM_LOG_AT(here, LOG_ERR, "Unable to create socket.\n");
    else if (prepare(here, sock, port, buffer))
        return sock;
    WLBRCM_LOG_AT(here, LOG_ERR, "Failure. Close socket.\n");
    if (sock >= 0)
        close(sock);
    return -1;
}

void logEvent(Here here, const DriverEvent &event) {
    const uint8_t *mac = event.station;
    WLBRCM_LOG_AT(here, LOG_DEBUG,
                  "ifname=%s, event_type=%s(%u), usr_subtype=%x, flags=%x, status=%x, reason=%x, auth_type=%x, "
                  "STA ADDR: [%02x-%02x-%02x-%02x-%02x-%02x]\n",
                  Shown(event.ifname).c_str(), bcmevent_get_name(event.type), event.type, event.subtype, event.flags,
                  event.status, event.reason, event.authType, mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
}

bool joins(int32_t code) { return code == WLBRCM_EVENT_ASSOCIATED || code == WLBRCM_EVENT_REASSOCIATED; }

// Completes the record of a station that joined with what the driver knows of it.
void describeStation(Here here, const DriverEvent &event, WlEvent *record) {
    // The whole name: the record may hold it cut, and that could be the name of another interface.
    if (!isRadioInterface(event.ifname)) {
        WLBRCM_LOG_AT(here, LOG_ERR, "no station query for interface name \"%s\".\n", Shown(event.ifname).c_str());
        return;
    }
    // The block is not aligned for the record, and it keeps its address when the query fails.
    WlStaInfo station;
    memcpy(&station, record->sta, sizeof station);
    get_sta_info(record->ifName, reinterpret_cast<const char *>(record->sta) + offsetof(WlStaInfo, macAddr), &station);
    int noise = 0;
    WlanParamArg arg = {};
    arg.prefix = record->ifName;
    arg.result = &noise;
    qvWlanGetNoise(&arg);
    station.noise = noise;
    station.snr = signalToNoise(station.rssi, noise);
    memcpy(record->sta, &station, sizeof station);
}

} // namespace

int qvbrcm_EvtInit(int *sock) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    if (sock == nullptr) {
        WLBRCM_LOG(LOG_ERR, "Invalid input arguments.\n");
        return WLBRCM_EINVAL;
    }
    writeInt(WLBRCM_HERE, Key("mevent_enable"), 1);
    const int events = openLoopback(WLBRCM_HERE, kEventPort, kEventBuffer);
    if (events < 0)
        return WLBRCM_EFAILED;
    WLBRCM_LOG(LOG_DEBUG, "Opened loopback socket %d.\n", events);
    *sock = events;
    const int forwarding = openLoopback(WLBRCM_HERE, kForwardingPort, kDefaultBuffer);
    if (fenra_rpe_sock > 0) // the one of an earlier call
        close(fenra_rpe_sock);
    fenra_rpe_sock = forwarding;
    if (fenra_rpe_sock < 0)
        return WLBRCM_EFAILED;
    WLBRCM_LOG(LOG_DEBUG, "Opened loopback socket %d for Fenra RPE.\n", fenra_rpe_sock);
    return WLBRCM_OK;
}

int qvbrcm_EvtReceive(int sock, WlEvent **record) {
    if (record != nullptr)
        *record = nullptr;
    EventMessage message = {};
    ssize_t received;
    do {
        received = recv(sock, message, sizeof message, 0);
    } while (received < 0 && errno == EINTR);
    if (received <= 0) {
        WLBRCM_LOG(LOG_ERR, "Recv bytes Failure...\n");
        return WLBRCM_EFAILED;
    }
    const DriverEvent event = decodeEvent(message);
    if (event.subtype != kDriverSubtype) {
        WLBRCM_LOG(LOG_DEBUG, "Not BCM Event received. Ignore \n");
        return kNoRecord;
    }
    // The agent gets the whole buffer, whatever the length of the datagram. 0 is no socket of ours.
    if (enable_fenra_evt != 0 && fenra_rpe_sock != 0)
        send_bcmevt_to_Fenra_RPE(fenra_rpe_sock, message, sizeof message);
    // Every passing phone causes these.
    if (event.type == kEventProbeRequest)
        return kNoRecord;
    logEvent(WLBRCM_HERE, event);
    const int32_t code = recordCode(event);
    if (record == nullptr || code == 0)
        return kNoRecord;
    auto *made = static_cast<WlEvent *>(calloc(1, sizeof(WlEvent)));
    if (made == nullptr) {
        WLBRCM_LOG(LOG_ERR, "Alloc memory (%u bytes) fail.\n", static_cast<unsigned>(sizeof(WlEvent)));
        return kNoRecord;
    }
    identify(event, code, made);
    if (joins(code))
        describeStation(WLBRCM_HERE, event, made);
    *record = made;
    return WLBRCM_OK;
}
