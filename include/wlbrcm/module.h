/** @file
 * Entry point of the Wi-Fi driver adaptation module and the tables it exchanges with its host.
 *
 * Conventions of every header of this library:
 * - Plain C11 and C++17. No function throws, none starts a thread, and all of them run on the calling thread.
 * - Result 0 is success. WLBRCM_EINVAL (-14): an argument is missing or out of range and nothing was written.
 *   WLBRCM_EFAILED (-5): a command failed, a result file could not be read or a lookup found nothing. Functions that
 *   differ say so.
 * - Texts are NUL-terminated and stay owned by whoever passed them. A text field of a record is always terminated
 *   inside the field.
 * - Memory that a function hands out was allocated with calloc() or malloc() and is released by the caller with free().
 * - Several operations share result files in /tmp, so a host runs one operation at a time. Only the MAC filter
 *   functions (macfilter.h) take a lock of their own.
 * - Interface names that reach a command are 1 to 15 characters of [A-Za-z0-9._-] and do not begin with '-'. Any other
 *   name is logged at level 4 and gets no command.
 */
#ifndef WLBRCM_MODULE_H
#define WLBRCM_MODULE_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

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
enum { WLBRCM_OK = 0, WLBRCM_EINVAL = -14, WLBRCM_EFAILED = -5 };

/** Levels passed to the host's log callback; no other level is used. */
enum {
    WLBRCM_LOG_ERR = 4,   /**< failures and refused input */
    WLBRCM_LOG_INFO = 8,  /**< notable decisions, such as the chosen 802.11 mode */
    WLBRCM_LOG_DEBUG = 64 /**< trace: operations entered, every command, every nvram write */
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
 * Allocated zero-filled by wlModuleInit() and owned by the host once `registerModule` accepted it. Each operation is
 * documented under its own name in the header of its subject.
 */
typedef struct WlModuleOps {
    char name[33]; /**< "BRCM" */
    int (*initWlan)(WlIntf *intf, const WlLanCfg *lan);
    int (*reloadWlan)(WlIntf *intf);
    int (*statusUpdate)(WlIntf *intf, WlStatusItem *items, int count);
    int (*setWlanMacAddr)(WlIntf *intf, const uint8_t mac[6]);
    int (*updateLaninfo)(void *unused1, void *unused2, const WlLanCfg *lan);
    int (*channelScan)(WlIntf *intf);
    int (*getChanScanRpt)(WlIntf *intf, WlChanScanInfo **channels, int *channelCount, WlScanAp **aps, int *apCount);
    WlEmptySlot empty8;
    int (*wpsReload)(WlIntf *intf);
    int (*wpsSwPushButton)(WlIntf *intf);
    int (*wpsHwPushButton)(WlIntf **intfs, int count, const char *uuid);
    int (*wpsStartStaPin)(WlIntf *intf, const char *pin);
    int (*wpsCancel)(WlIntf *intf);
    int (*wpsUpdateConfg)(WlIntf *intf, uint8_t *changed);
    int (*stationFilter)(WlIntf *intf, const char *objPath);
    int (*getAssocDevList)(WlIntf *intf, int bssIndex, WlStaInfo **list, int *count);
    int (*bsaMacFilter)(const char *ifname, int cmd, const uint8_t mac[6]);
    WlEmptySlot empty18;
    int (*disassociateSta)(const char *ifname, const char *mac);
    int (*getGenIntfInfo)(const char *ifname, int bssIndex, WlIntfInfo *info);
    int (*getFatIntfInfo)(const char *ifname, int bssIndex, int *fat);
    WlEmptySlot empty22;
    int (*enablePresetSsid)(const char *ifname, int enable);
    int (*enableFenraEvt)(int enable);
    WlEmptySlot empty25;
} WlModuleOps;

/** The driver-event handler record: five words.
 *
 * Allocated zero-filled by wlModuleInit() and owned by the host once `registerEvtHandler` accepted it. The host waits
 * until `sock` is readable and then calls `receive`. The two host words are the host's own; the module leaves them
 * zero.
 */
typedef struct WlEvtHandler {
    int (*init)(int *sock);                    /**< qvbrcm_EvtInit() */
    int (*receive)(int sock, WlEvent **event); /**< qvbrcm_EvtReceive() */
    uintptr_t hostWord1;
    intptr_t sock; /**< the event socket, open for the life of the process */
    uintptr_t hostWord2;
} WlEvtHandler;

/** The host's log callback.
 * @param level  one of WLBRCM_LOG_ERR, WLBRCM_LOG_INFO, WLBRCM_LOG_DEBUG.
 * @param module  always "BRCM".
 * @param function  name of the function that logs.
 * @param line  its source line.
 * @param format  printf format of the arguments that follow; most messages end in a newline.
 */
typedef void (*WlPrintFn)(int level, const char *module, const char *function, int line, const char *format, ...)
    WLBRCM_PRINTF(5, 6);

/** The host's callbacks. The module reads these four fields; a host may have more behind them. */
typedef struct WlModuleHostOps {
    /** Registers the operations table; `arg` is the second argument of wlModuleInit(). @return 0 to accept. */
    int (*registerModule)(WlModuleOps *ops, void *arg);
    /** Registers one radio; `module` is "BRCM". @return 0 to accept and own the record, else the module frees it. */
    int (*registerIntf)(WlIntf *intf, const char *module);
    /** Registers the event handler; may be null. @return 0 to accept and own it, else the module frees it. */
    int (*registerEvtHandler)(const char *module, WlEvtHandler *handler);
    /** Log callback; may be null, then nothing is logged. */
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

/** Registers the module with its host and finds the radios.
 *
 * Registers the operations table, opens the driver-event socket and registers the event handler, then creates and
 * registers one zero-filled WlIntf for every wlN interface of a known chip, and sets up the MAC filter pool. Call it
 * once, before anything else; after it the module acts only when it is called.
 *
 * A host without `registerEvtHandler`, an event socket that cannot be opened, or a system without radios still gives
 * success. An interface whose name is longer than 15 characters is skipped with a level-4 message.
 *
 * @param hostOps  the host's callbacks; read during the call, only `print` is kept.
 * @param arg  passed unchanged to `registerModule`.
 * @return 0; -1 when the host refuses the operations table (nothing else is then done), when there is no memory for
 *   it, when `hostOps` or `registerModule` is null, or when the MAC filter pool cannot be set up (what was registered
 *   before stays registered).
 */
WLBRCM_API int wlModuleInit(WlModuleHostOps *hostOps, void *arg);

/** The host's log callback, or null. Set by wlModuleInit(). */
extern WLBRCM_API WlPrintFn brcm_print_fn;

/** Number of radio interfaces identified by wlModuleInit(), also those that the host refused. */
extern WLBRCM_API int32_t act_wl_cnt;

#ifdef __cplusplus
}
#endif

#endif
