/** @file
 * Driver events: the event socket, event records for the host, and forwarding to the steering agent.
 */
#ifndef WLBRCM_EVENTS_H
#define WLBRCM_EVENTS_H

#include <wlbrcm/status.h>

#ifdef __cplusplus
extern "C" {
#endif

/** `WlEvent.event` */
enum {
    WLBRCM_EVENT_ASSOCIATED = 1,
    WLBRCM_EVENT_DEAUTHENTICATED = 2,
    WLBRCM_EVENT_REASSOCIATED = 3,
    WLBRCM_EVENT_PRUNED = 6 /**< the driver dropped the station, reason 1 */
};

/** One station event: 292 bytes, released by the host with free(). */
struct WlEvent {
    char radioName[16]; /**< `ifName` up to its first "." */
    char ifName[16];    /**< BSS interface of the event */
    int32_t event;      /**< WLBRCM_EVENT_* */
    uint8_t sta[256];   /**< a WlStaInfo in the first 128 bytes; copy it out, the bytes are not aligned for it */
};

WLBRCM_ASSERT_LAYOUT(sizeof(WlEvent) == 292 && offsetof(WlEvent, event) == 32 && offsetof(WlEvent, sta) == 36,
                     "layout of WlEvent");

/** Opens the event socket (UDP 127.0.0.1:44032) and the forwarding socket (127.0.0.1:13728).
 * @param[out] sock  the event socket; stays open for the life of the process.
 * @return 0; -14 for null; -5 when a socket cannot be set up. */
WLBRCM_API int qvbrcm_EvtInit(int *sock);
/** Reads one event; call it when the socket is readable.
 * @param[out] event  receives a record that the caller frees, or null; may be null, then no record is made.
 * @return 0 with a record; 1 when the datagram gave none; -5 when nothing could be read. */
WLBRCM_API int qvbrcm_EvtReceive(int sock, WlEvent **event);
/** Name of a driver event number, "Unknown Event" for others. Static. */
WLBRCM_API const char *bcmevent_get_name(uint32_t event);

extern WLBRCM_API uint8_t enable_fenra_evt; /**< non-zero: events are forwarded; starts at 0 */
extern WLBRCM_API int fenra_rpe_sock;       /**< forwarding socket; 0 before set-up, -1 when that failed */

/** Operation: switches forwarding by the low 8 bits of `enable`. @return 0. */
WLBRCM_API int qvbrcm_EnableFenraEvt(int enable);
/** Sends one event message to the steering agent (127.0.0.1:13727). @return 0 after an attempt; -5 for a negative
 * socket; -14 for a null message or a negative length. */
WLBRCM_API int send_bcmevt_to_Fenra_RPE(int sock, const void *message, int length);
/** Operation: deauthenticates a station. @return 0; -14 for a bad name or address. */
WLBRCM_API int qvbrcm_DisassociateSTA(const char *ifname, const char *mac);

#ifdef __cplusplus
}
#endif

#endif
