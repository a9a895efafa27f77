/** @file
 * MAC filters: the user's filter and the run-time deny list of each BSS, merged into the driver's one list.
 *
 * Addresses are elements of a fixed pool of 512. Every element is in the pool, in one request list, or in the module's
 * table of at most 16 interfaces, which keep their places for the life of the process. The driver's list holds 85
 * addresses.
 *
 * The driver gets, for a user's filter of
 * - DENY: the user's addresses and the run-time denials, all denied;
 * - ALLOW: the user's addresses without the run-time denials, all others denied;
 * - none: the run-time denials, denied.
 * When that list is empty, the driver has no filter and admits every station. So an ALLOW filter whose list is empty,
 * or counts as empty because one address in it is malformed or the pool is used up, admits every station. A host that
 * wants nobody admitted gives a list with an address that no station has.
 *
 * Functions that touch the pool or the table (not add_mac_to_request and get_cmd, which touch neither) take one
 * process-wide lock and may be called from several threads; it is held while the driver's commands run, and the log
 * callback is called under it. qvWifiStaFilter() and the four functions behind it take no lock. Request lists belong to
 * the one caller that built them. Functions named qvbrcm_MacFilter_... that return an int give 1 for success and 0 for
 * failure, with a level-4 message, unless said otherwise; before wlModuleInit() there is no pool to take from.
 */
#ifndef WLBRCM_MACFILTER_H
#define WLBRCM_MACFILTER_H

#include <wlbrcm/radio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Commands of a request: what they mean for the user's filter, and for the run-time deny list. */
enum {
    WLBRCM_FILTER_OFF = 0,    /**< no filter; clear the deny list */
    WLBRCM_FILTER_DENY = 1,   /**< deny the listed; add them to the deny list */
    WLBRCM_FILTER_ALLOW = 2,  /**< admit only the listed; remove them from the deny list */
    WLBRCM_FILTER_INVALID = 3 /**< qvbrcm_MacFilter_get_cmd() of a null text; refused */
};

/** One address of a list, an element of the pool. */
typedef struct MacFilterEntry {
    uint8_t mac[6];              /**< the address, its first byte first; by the caller or a parsing function */
    struct MacFilterEntry *prev; /**< by the module: the element before; null at the head */
    struct MacFilterEntry *next; /**< by the module: the element behind; null at the end */
} MacFilterEntry;

/** A request, built zero-filled on the caller's stack. */
typedef struct MacFilterRequest {
    struct {
        char intf_name[65];    /**< BSS interface */
        uint8_t b_user_config; /**< 1 the user's filter, 0 the run-time deny list */
        uint32_t cmd;          /**< WLBRCM_FILTER_OFF, _DENY or _ALLOW */
    } data;                    /**< what the request asks for, by the caller */
    MacFilterEntry *mac_list; /**< its addresses, null for none; owned by the request until qvbrcm_MacFilter_set() takes
                               * it over */
} MacFilterRequest;

/** Sets up pool and lock; called by wlModuleInit(). @return 1, also when already done; 0 without a lock. */
WLBRCM_API int qvbrcm_MacFilter_init(void);
/** Takes an element from the pool; its address is not set. @return the element, or null when the pool is empty. */
WLBRCM_API MacFilterEntry *qvbrcm_MacFilter_get_free_mac(void);
/** Takes an element for an address. @return the element, or null when the pool is empty or `mac` is null. */
WLBRCM_API MacFilterEntry *qvbrcm_MacFilter_get_mac(const uint8_t mac[6]);
/** Gives a list back to the pool and sets its head to null. Null does nothing. */
WLBRCM_API void qvbrcm_MacFilter_release_list(MacFilterEntry **list);
/** Puts an element at the head of a request's list. @return 1; 0 for a null argument. */
WLBRCM_API int qvbrcm_MacFilter_add_mac_to_request(MacFilterRequest *request, MacFilterEntry *mac);
/** Command of a mode text. @return WLBRCM_FILTER_DENY for "DENY", WLBRCM_FILTER_ALLOW for "ALLOW", WLBRCM_FILTER_OFF
 * for any other, WLBRCM_FILTER_INVALID for null. */
WLBRCM_API int qvbrcm_MacFilter_get_cmd(const char *method);
/** Puts the address in `str`, six hexadecimal fields of one or more digits joined by colons, at the head of a list;
 * what follows the sixth is ignored. @return 1; 0 for a null argument, a malformed address or an empty pool. */
WLBRCM_API int qvbrcm_MacFilter_parse_str_to_mac_list(const char *str, MacFilterEntry **mac_list);
/** List of the addresses of a blank-separated text, last one first. @return its head, which the caller hands on in a
 * request or releases; null for an empty or null text, or when an address is malformed or longer than 32 characters or
 * the pool is empty (nothing is then taken). */
WLBRCM_API MacFilterEntry *qvbrcm_MacFilter_mac_list_by_str(const char *text);
/** Takes a request over and brings the merged filter to the driver. Time: two or three commands, and the wait for
 * another thread's.
 * @return 1; 0 when the driver's filter was left as it was: for a null request or a `cmd` above 2 (the list stays the
 *   caller's), without a place in the table, and for more than 85 addresses (the list is taken over or back in the
 * pool; the table keeps what was asked for). */
WLBRCM_API int qvbrcm_MacFilter_set(MacFilterRequest *request);

/** Operation: applies the user's filter, `macFilterMode` and `macFilterList`, of every BSS in use whose object path is
 * `objPath`. Time: two or three commands for each.
 * @param objPath  compared exactly; may be freed when the call returns.
 * @return 0, also when nothing matched or a filter could not be set (logged at level 4); -14 for a null argument. */
WLBRCM_API int qvbrcm_StationFilter(WlIntf *intf, const char *objPath);
/** Operation: denies one station at run time (`cmd` 1), admits it again (2), or clears all denials (0). The denials
 * last until they are cleared or the process ends. Time: two or three commands, and the wait for another thread's.
 * @param ifname  BSS interface.
 * @param mac  the station, 6 bytes; not read for 0.
 * @return 0; -17 for another command; 2 when the pool is empty or the address is null; -5 when it could not be
 *   installed, also for a bad name; -14 for a null name. */
WLBRCM_API int qvbrcm_BsaMacFilter(const char *ifname, int cmd, const uint8_t mac[6]);

/** Installs a filter in driver and nvram (keys macmode, maclist), past the table. Time: two or three commands.
 * @param ifname  BSS interface.
 * @param cmd  "DENY", "ALLOW" or any other for none.
 * @param list  blank-separated addresses, at most 1535 characters; not read for none.
 * @return 0, also when a command fails; -5 for a null name or command; -14 when a name or list is refused, or a list
 *   that is read is null (nothing is then changed). */
WLBRCM_API int qvWifiStaFilter(const char *ifname, const char *cmd, const char *list);
/** Filter mode of `prefix` in driver and nvram; `value` points to an int 0..2 (not a text). Time: one command. @return
 * 0; -14 for a null argument, another mode or a bad name. */
WLBRCM_API int qvWlanSetMacAuthMode(WlanParamArg *arg);
/** Filter list of `prefix` in driver and nvram: `value`, blank-separated addresses, at most 1535 characters. Time: one
 * command. @return 0; -14 for a null argument, a bad name or list. */
WLBRCM_API int qvWlanSetMacAuthList(WlanParamArg *arg);
/** Empties the filter list of `prefix` in driver and nvram. Time: one command. @return 0; -14 for a null argument or a
 * bad name. */
WLBRCM_API int qvWlanClearMacAuthList(WlanParamArg *arg);
/** Reads the driver's list of `prefix`; nothing is handed back. Time: one command. @return 0; -14 for a null argument
 * or a bad name. */
WLBRCM_API int qvWlanGetMacAuthList(WlanParamArg *arg);

#ifdef __cplusplus
}
#endif

#endif
