/** @file
 * Entry point of the Wi-Fi driver adaptation module and the tables it exchanges with its host.
 *
 * What follows holds for every function of these headers; where one differs, its own text says so.
 *
 * Language: plain C11 and C++17. No function throws. The module starts no thread and installs no signal handler; it
 * acts only while the host calls it, on the calling thread.
 *
 * Results: 0 is success. WLBRCM_EINVAL (-14): an argument is missing, malformed or out of range, and nothing was
 * written. WLBRCM_EFAILED (-5): a command failed, a result file could not be read or a lookup found nothing. Where a
 * text says "0" alone, the steps inside report nothing to the caller.
 *
 * Arguments: what a pointer leads to belongs to the caller, is read or written during the call only and is not kept;
 * it may be freed as soon as the call returns. Texts end in a NUL, those of records inside their field. Flags are 0
 * and 1.
 *
 * Memory: what a function hands out comes from calloc() or malloc(); the caller owns it and releases it with free().
 * The module keeps no memory of the heap between calls.
 *
 * Time: what stands behind "Time:" tells how long a function may block. Commands are counted; each costs 1 to 2 ms on
 * a PC and some tens of ms on a gateway, and one that does not end is waited for without limit. Pauses are given in
 * seconds. A function without it runs no command and does not wait.
 *
 * One call at a time: result files in /tmp have fixed names, module-wide variables have no lock, and the store's reads
 * share one buffer. So no two functions may run at the same time, also not for two radios. qvbrcm_EvtReceive() counts:
 * for a station that joins it runs the queries of the station list. The exceptions:
 * - The functions of macfilter.h that take the lock may run beside each other, and beside any other as far as the
 *   platform's nvram functions may be called from several threads.
 * - qvbrcm_ChannelScan(), qvWlanChanScan(), qvbrcm_DisassociateSTA(), qvWlanGetTrafficInfo(), checkWlBand(),
 *   qvWlanWscPincheck(), qvWlanCheckChannelSideband(), getMaxRateSet(), formatSSID() and bcmevent_get_name() share
 *   nothing and may run beside any other.
 *
 * Names: an interface or bridge name that reaches a command is 1 to 15 characters of [A-Za-z0-9._-] and does not begin
 * with '-'; an address is six pairs of hexadecimal digits joined by colons. Any other is logged at level 4, gets no
 * command and becomes part of no nvram variable's name. Foreign bytes of a logged name or reply, line ends and
 * backslashes among them, are shown as \xNN.
 *
 * nvram: variables are written, never committed. The host commits when it wants them to outlive a restart.
 *
 * What the module asks of, and does to, the process that loads it:
 * - Rights: those of its commands (root on a gateway). They run in /bin/sh with the process's environment.
 * - SIGCHLD: commands are run with system() and popen(). A host that ignores SIGCHLD (SIG_IGN or SA_NOCLDWAIT), or
 *   reaps children that it did not start, takes away their exit status. The commands still run, but each counts as
 *   failed, without a message of its own; `WlCaps.dhd` then stays 0. wlModuleInit() logs once at level 4 that SIGCHLD
 *   is ignored.
 * - Other signals: a handler, also one without SA_RESTART, neither cuts a read short nor shortens a pause.
 * - Descriptors: the module's sockets and devices are close-on-exec. The daemons that it starts inherit every
 *   descriptor of the host that is not; the host opens its own with O_CLOEXEC or the like. They also inherit the
 *   signals that the calling thread blocks and that the process ignores: a daemon that inherits a blocked SIGTERM is
 *   not stopped by the next bring-up.
 * - Standard output: usage texts of setters that refuse a value; unknown authentication, encryption and bandwidth
 *   words; what qvWlanSetAutoChPolicy() does; listings, processes and board devices that cannot be opened or read; a
 *   name that does not begin with "wl" where a capability listing is asked for; an
 *   MCS out of range; a refused real-time priority. Not all of these texts end in a newline. Standard error: a WPS
 *   reply that cannot be received. Commands write to both as well.
 * - rand(): making a WPS PIN seeds it anew with the time (srand()).
 * - Scheduling: driver threads are moved to a CPU and given real-time priority; the host's own threads are left alone.
 */
#ifndef WLBRCM_MODULE_H
#define WLBRCM_MODULE_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

/** Marks what the library exports, and the arguments of a printf format at position `format_at`. */
#if defined(__GNUC__)
#define WLBRCM_API __attribute__((visibility("default")))
#define WLBRCM_PRINTF(format_at, args_at) __attribute__((format(printf, format_at, args_at)))
#else
#define WLBRCM_API
#define WLBRCM_PRINTF(format_at, args_at)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** Result codes shared by all functions. */
enum {
    WLBRCM_OK = 0,       /**< done */
    WLBRCM_EINVAL = -14, /**< missing, malformed or out of range; nothing was written */
    WLBRCM_EFAILED = -5  /**< a command, a result file or a lookup failed */
};

/** Levels passed to the host's log callback; no other level is used. */
enum {
    WLBRCM_LOG_ERR = 4,   /**< failures and refused input */
    WLBRCM_LOG_INFO = 8,  /**< notable decisions, such as the chosen 802.11 mode */
    WLBRCM_LOG_DEBUG = 64 /**< trace: operations entered, commands, nvram writes; shows passphrases, keys and PINs */
};

/** Version of the binary interface: the number in the library's soname. */
#define WLBRCM_ABI_VERSION 1

typedef struct WlIntf WlIntf;
typedef struct WlLanCfg WlLanCfg;
typedef struct WlStatusItem WlStatusItem;
typedef struct WlStaInfo WlStaInfo;
typedef struct WlIntfInfo WlIntfInfo;
typedef struct WlChanScanInfo WlChanScanInfo;
typedef struct WlScanAp WlScanAp;
typedef struct WlEvent WlEvent;

/** An operation slot that this module leaves empty; the host's table has an operation there. */
typedef void (*WlEmptySlot)(void);

/** The operations that the module registers under the name "BRCM".
 *
 * Allocated by wlModuleInit() and owned by the host once `registerModule` accepted it. Each slot holds the function
 * that is named beside it; arguments, results and times stand there.
 */
typedef struct WlModuleOps {
    char name[33];                                                           /**< "BRCM" */
    int (*initWlan)(WlIntf *intf, const WlLanCfg *lan);                      /**< qvbrcm_InitWlan() */
    int (*reloadWlan)(WlIntf *intf);                                         /**< qvbrcm_ReloadWlan() */
    int (*statusUpdate)(WlIntf *intf, WlStatusItem *items, int count);       /**< qvbrcm_StatusUpdate() */
    int (*setWlanMacAddr)(WlIntf *intf, const uint8_t mac[6]);               /**< qvbrcm_SetWlanMacAddr() */
    int (*updateLaninfo)(void *unused1, void *unused2, const WlLanCfg *lan); /**< qvbrcm_UpdateLaninfo() */
    int (*channelScan)(WlIntf *intf);                                        /**< qvbrcm_ChannelScan() */
    int (*getChanScanRpt)(WlIntf *intf, WlChanScanInfo **channels, int *channelCount, WlScanAp **aps,
                          int *apCount);                                              /**< qvbrcm_GetChanScanRpt() */
    WlEmptySlot empty8;                                                               /**< null */
    int (*wpsReload)(WlIntf *intf);                                                   /**< qvbrcm_WPSReload() */
    int (*wpsSwPushButton)(WlIntf *intf);                                             /**< qvbrcm_WPSSWPushButton() */
    int (*wpsHwPushButton)(WlIntf **intfs, int count, const char *uuid);              /**< qvbrcm_WPSHWPushButton() */
    int (*wpsStartStaPin)(WlIntf *intf, const char *pin);                             /**< qvbrcm_WPSStartStaPin() */
    int (*wpsCancel)(WlIntf *intf);                                                   /**< qvbrcm_WPSCancel() */
    int (*wpsUpdateConfg)(WlIntf *intf, uint8_t *changed);                            /**< qvbrcm_WPSUpdateConfg() */
    int (*stationFilter)(WlIntf *intf, const char *objPath);                          /**< qvbrcm_StationFilter() */
    int (*getAssocDevList)(WlIntf *intf, int bssIndex, WlStaInfo **list, int *count); /**< qvbrcm_GetAssocDevList() */
    int (*bsaMacFilter)(const char *ifname, int cmd, const uint8_t mac[6]);           /**< qvbrcm_BsaMacFilter() */
    WlEmptySlot empty18;                                                              /**< null */
    int (*disassociateSta)(const char *ifname, const char *mac);                      /**< qvbrcm_DisassociateSTA() */
    int (*getGenIntfInfo)(const char *ifname, int bssIndex, WlIntfInfo *info);        /**< qvbrcm_GetGenIntfInfo() */
    int (*getFatIntfInfo)(const char *ifname, int bssIndex, int *fat);                /**< qvbrcm_GetFatIntfInfo() */
    WlEmptySlot empty22;                                                              /**< null */
    int (*enablePresetSsid)(const char *ifname, int enable);                          /**< qvbrcm_EnablePresetSSID() */
    int (*enableFenraEvt)(int enable);                                                /**< qvbrcm_EnableFenraEvt() */
    WlEmptySlot empty25;                                                              /**< null */
} WlModuleOps;

/** The driver-event handler record: five words.
 *
 * Allocated by wlModuleInit() and owned by the host once `registerEvtHandler` accepted it. The host waits until `sock`
 * is readable and then calls `receive`, once for each datagram. wlModuleInit() has called `init` already.
 */
typedef struct WlEvtHandler {
    int (*init)(int *sock);                    /**< qvbrcm_EvtInit() */
    int (*receive)(int sock, WlEvent **event); /**< qvbrcm_EvtReceive() */
    uintptr_t hostWord1;                       /**< the host's; 0 at registration */
    intptr_t sock;                             /**< descriptor of the event socket, open for the life of the process */
    uintptr_t hostWord2;                       /**< the host's; 0 at registration */
} WlEvtHandler;

/** The host's log callback.
 *
 * Called on the thread that called the module, and from several threads at a time when the host calls from several. All
 * texts are valid during the call only. In the filter functions it runs under the MAC filter's lock: a callback that
 * calls a function of macfilter.h there never returns. It should call nothing else of the module either.
 *
 * @param level  one of WLBRCM_LOG_ERR, WLBRCM_LOG_INFO, WLBRCM_LOG_DEBUG.
 * @param module  always "BRCM".
 * @param function  name of the function that logs.
 * @param line  its source line.
 * @param format  printf format of the arguments that follow; most messages end in a newline, one begins with one.
 */
typedef void (*WlPrintFn)(int level, const char *module, const char *function, int line, const char *format, ...)
    WLBRCM_PRINTF(5, 6);

/** The host's callbacks. The module reads these four fields; a host may have more behind them.
 *
 * The registrations are called by wlModuleInit() alone: first the table, then the event handler, then each radio. They
 * must not call operations: the MAC filter is not set up yet, and a discovery command is still running.
 */
typedef struct WlModuleHostOps {
    /** Registers the operations table; called once. Must not be null.
     * @param ops  the table; the host's from the moment it accepts.
     * @param arg  the second argument of wlModuleInit().
     * @return 0 to accept; any other value ends the initialisation, and the module frees the table. */
    int (*registerModule)(WlModuleOps *ops, void *arg);
    /** Registers one radio; called once for each, in the order of /proc/net/dev. Null refuses them all.
     * @param intf  the record, of which `radio` and `bss` are zero; the host's from the moment it accepts.
     * @param module  "BRCM".
     * @return 0 to accept; any other value refuses the radio, and the module frees the record. */
    int (*registerIntf)(WlIntf *intf, const char *module);
    /** Registers the event handler; called at most once. May be null: then no event socket is opened.
     * @param module  "BRCM".
     * @param handler  the record; the host's from the moment it accepts.
     * @return 0 to accept; any other value refuses it; the module frees the record and closes the sockets. */
    int (*registerEvtHandler)(const char *module, WlEvtHandler *handler);
    /** Log callback. May be null: then nothing is logged. */
    WlPrintFn print;
} WlModuleHostOps;

#ifndef __cplusplus
#define WLBRCM_ASSERT_LAYOUT(condition, text) _Static_assert(condition, text)
#else
#define WLBRCM_ASSERT_LAYOUT(condition, text) static_assert(condition, text)
#endif

WLBRCM_ASSERT_LAYOUT(sizeof(WlEvtHandler) == 5 * sizeof(void *), "the event handler record is five words");
WLBRCM_ASSERT_LAYOUT(offsetof(WlEvtHandler, sock) == 3 * sizeof(void *), "the socket is the fourth word");
WLBRCM_ASSERT_LAYOUT(offsetof(WlModuleOps, initWlan) == (33 + sizeof(void *) - 1) / sizeof(void *) * sizeof(void *),
                     "the slots follow the name");
WLBRCM_ASSERT_LAYOUT(sizeof(WlModuleOps) == offsetof(WlModuleOps, initWlan) + 25 * sizeof(void *), "25 slots");
WLBRCM_ASSERT_LAYOUT(offsetof(WlModuleOps, empty25) == sizeof(WlModuleOps) - sizeof(void *), "slot 25 is the last");

/** Registers the module with its host and finds the radios. Call it once, before anything else.
 *
 * Registers the operations table, opens the driver-event socket and registers the event handler, then creates and
 * registers one WlIntf for every wlN interface of a known chip, and sets up the MAC filter pool. Each radio is taken up
 * and down once.
 *
 * A host without `registerEvtHandler`, an event socket that cannot be opened, or a system without radios still gives
 * success. An interface of another chip, or whose name is longer than 15 characters, is skipped with a level-4 message.
 *
 * A second call is no reset: radios that are in operation are down after it. It replaces the log callback, registers a
 * new table and new records of the same radios, goes on counting in `act_wl_cnt`, and opens the sockets again. The
 * earlier event socket, which is the host's, stays open but receives nothing any more; the earlier forwarding socket is
 * closed. The MAC filter's tables stay.
 *
 * Unloading the library (dlclose()) is allowed while no function of it runs. What it handed out stays and may be freed,
 * but its table and handler must not be called again. Both sockets stay open; the host may close `WlEvtHandler.sock`
 * and `fenra_rpe_sock` before. Daemons that were started go on running. The module then knows nothing: loaded again, it
 * begins with empty MAC filter tables, whatever the driver still has.
 *
 * Time: one command, and for each radio 8 (one less when its capability listing stands in /tmp already).
 *
 * @param hostOps  the host's callbacks; read during the call, of which only `print` is kept.
 * @param arg  passed unchanged to `registerModule`.
 * @return 0; -1 when the host refuses the operations table (nothing else is then done), when there is no memory for
 *   it, when `hostOps` or `registerModule` is null, or when the MAC filter pool cannot be set up (what was registered
 *   before stays registered).
 */
WLBRCM_API int wlModuleInit(WlModuleHostOps *hostOps, void *arg);

/** The host's log callback, or null. Set by wlModuleInit(). */
extern WLBRCM_API WlPrintFn brcm_print_fn;

/** Number of radio interfaces identified by wlModuleInit(), also those that the host refused. Starts at 0 and is only
 * counted up. With 2 or more, qvWlanReset() puts the driver threads of radios other than wl0 on CPU 1, all others on
 * CPU 0. */
extern WLBRCM_API int32_t act_wl_cnt;

#ifdef __cplusplus
}
#endif

#endif
