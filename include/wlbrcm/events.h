/** @file
 * Driver events: the event socket, event records for the host, and forwarding to the steering agent.
 */
#ifndef WLBRCM_EVENTS_H
#define WLBRCM_EVENTS_H

#include <wlbrcm/status.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Values of `WlEvent.event`. */
enum {
    WLBRCM_EVENT_ASSOCIATED = 1,      /**< a station joined */
    WLBRCM_EVENT_DEAUTHENTICATED = 2, /**< a station left, or was sent away */
    WLBRCM_EVENT_REASSOCIATED = 3,    /**< a station came back from another access point */
    WLBRCM_EVENT_PRUNED = 6           /**< the driver dropped the station, reason 1 */
};

/** One station event: 292 bytes, filled by the module, released by the host with free().
 *
 * Names and address are what the datagram says, which may come from any local process: a host that uses them compares
 * them with its own. */
struct WlEvent {
    char radioName[16]; /**< `ifName` up to its first "." */
    char ifName[16];    /**< BSS interface of the event; a longer name is cut */
    int32_t event;      /**< WLBRCM_EVENT_* */
    uint8_t sta[256];   /**< a WlStaInfo in the first 128 bytes, then 0; copy it out, the bytes are not aligned for it.
                         * Its `macAddr` is set in every event. The rest is filled for a station that joined or came
                         * back, when `ifName` is a wlN or wlN.M; else it is 0. A station whose query fails has
                         * `rssi` 0 */
};

WLBRCM_ASSERT_LAYOUT(sizeof(WlEvent) == 292 && offsetof(WlEvent, event) == 32 && offsetof(WlEvent, sta) == 36,
                     "layout of WlEvent");

/** Opens the event socket (UDP 127.0.0.1:44032, a receive buffer of 352 KiB) and the forwarding socket
 * (127.0.0.1:13728), and sets nvram mevent_enable to 1. wlModuleInit() calls it; a host need not. Called again it opens
 * both anew: the new ones receive; the earlier forwarding socket is closed, the earlier event socket is the caller's.
 * @param[out] sock  the event socket; stays open for the life of the process, as nothing in the module closes it.
 * @return 0; -14 for null; -5 when a socket cannot be set up. When that is the forwarding socket, *sock is set and
 * stays open all the same. */
WLBRCM_API int qvbrcm_EvtInit(int *sock);
/** Reads one datagram; call it when the socket is readable, and not beside another call (see module.h).
 *
 * Time: none for most events; three or four commands for a station that joined or came back, whose data it asks for. On
 * a socket that is not readable it blocks until a datagram comes, or gives -5 when the host made it non-blocking.
 *
 * @param sock  the event socket.
 * @param[out] event  receives a record that the caller frees, or null; may be null, then no record is made.
 * @return 0 with a record; 1 when the datagram gave none (another event or protocol, or no memory); -5 when nothing
 * could be read, also for an empty datagram. */
WLBRCM_API int qvbrcm_EvtReceive(int sock, WlEvent **event);
/** Name of a driver event number, "Unknown Event" for others. Static. */
WLBRCM_API const char *bcmevent_get_name(uint32_t event);

extern WLBRCM_API uint8_t enable_fenra_evt; /**< flag: events are forwarded; starts at 0 */
extern WLBRCM_API int fenra_rpe_sock;       /**< forwarding socket; 0 before set-up, -1 when that failed */

/** Operation: switches the forwarding of every driver event to the steering agent on (non-zero) or off, by the low 8
 * bits of `enable`. @return 0. */
WLBRCM_API int qvbrcm_EnableFenraEvt(int enable);
/** Sends one event message to the steering agent (127.0.0.1:13727).
 * @param sock  fenra_rpe_sock.
 * @param message,length  the message and its bytes.
 * @return 0 after an attempt, also when it failed; -5 for a negative socket; -14 for a null message or a negative
 * length.
 */
WLBRCM_API int send_bcmevt_to_Fenra_RPE(int sock, const void *message, int length);
/** Operation: deauthenticates a station, which may join again. Time: one command.
 * @param ifname  BSS interface, wlN or wlN.M.
 * @param mac  the station's address as text.
 * @return 0, also when there is no such station; -14 for a null or bad name or address. */
WLBRCM_API int qvbrcm_DisassociateSTA(const char *ifname, const char *mac);

#ifdef __cplusplus
}
#endif

#endif
