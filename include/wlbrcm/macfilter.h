/** @file
 * MAC filters: the user's filter and the run-time deny list of each BSS, merged into the driver's one list.
 *
 * Addresses are elements of a fixed pool of 512. Every element is in the pool, in one request list, or in the module's
 * table of at most 16 interfaces. These functions take one process-wide lock and may be called from several threads;
 * request lists belong to the one caller that built them. Results are 1 for success and 0 for failure unless said
 * otherwise.
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
    uint8_t mac[6];
    struct MacFilterEntry *prev;
    struct MacFilterEntry *next;
} MacFilterEntry;

/** A request, built zero-filled on the caller's stack. */
typedef struct MacFilterRequest {
    struct {
        char intf_name[65];    /**< BSS interface */
        uint8_t b_user_config; /**< 1 the user's filter, 0 the run-time deny list */
        uint32_t cmd;          /**< WLBRCM_FILTER_OFF, _DENY or _ALLOW */
    } data;
    MacFilterEntry *mac_list; /**< owned by the request until qvbrcm_MacFilter_set() takes it over */
} MacFilterRequest;

/** Sets up pool and lock; called by wlModuleInit(). @return 1, also when already done; 0 without a lock. */
WLBRCM_API int qvbrcm_MacFilter_init(void);
/** Takes an element from the pool; its address is not set. @return the element, or null when the pool is empty. */
WLBRCM_API MacFilterEntry *qvbrcm_MacFilter_get_free_mac(void);
/** Takes an element for an address. @return the element, or null. */
WLBRCM_API MacFilterEntry *qvbrcm_MacFilter_get_mac(const uint8_t mac[6]);
/** Gives a list back to the pool and sets its head to null. Null does nothing. */
WLBRCM_API void qvbrcm_MacFilter_release_list(MacFilterEntry **list);
/** Puts an element at the head of a request's list. */
WLBRCM_API int qvbrcm_MacFilter_add_mac_to_request(MacFilterRequest *request, MacFilterEntry *mac);
/** Command of a mode text: "DENY", "ALLOW", any other; WLBRCM_FILTER_INVALID for null. */
WLBRCM_API int qvbrcm_MacFilter_get_cmd(const char *method);
/** Puts the address in `str`, six hexadecimal fields joined by colons, at the head of a list. */
WLBRCM_API int qvbrcm_MacFilter_parse_str_to_mac_list(const char *str, MacFilterEntry **mac_list);
/** List of the addresses of a blank-separated text, last one first. @return its head; null for an empty or null text,
 * or when an address is malformed or the pool is empty (nothing is then taken). */
WLBRCM_API MacFilterEntry *qvbrcm_MacFilter_mac_list_by_str(const char *text);
/** Takes a request over and brings the merged filter to the driver. On success, and whenever the failure is the
 * table's or the driver's, the request's list is taken over or given back to the pool. */
WLBRCM_API int qvbrcm_MacFilter_set(MacFilterRequest *request);

/** Operation: applies the user's filter of every BSS whose object path is `objPath`. Failures are logged.
 * @return 0; -14 for a null argument. */
WLBRCM_API int qvbrcm_StationFilter(WlIntf *intf, const char *objPath);
/** Operation: denies one station (`cmd` 1), admits it again (2), or clears all denials (0, `mac` not used).
 * @return 0; -17 for another command; 2 when the pool is empty or the address is null; -5 when it could not be
 *   installed; -14 for a null name. */
WLBRCM_API int qvbrcm_BsaMacFilter(const char *ifname, int cmd, const uint8_t mac[6]);

/** Installs a filter in driver and nvram: `cmd` "DENY", "ALLOW" or any other for none, `list` blank-separated.
 * @return 0; -5 for a null name or command; -14 when a name or list is refused. */
WLBRCM_API int qvWifiStaFilter(const char *ifname, const char *cmd, const char *list);
/** Filter mode of `prefix`; `value` points to an int 0..2 (not a text). @return 0; -14. */
WLBRCM_API int qvWlanSetMacAuthMode(WlanParamArg *arg);
/** Filter list of `prefix`: `value`, addresses each followed by a blank. @return 0; -14. */
WLBRCM_API int qvWlanSetMacAuthList(WlanParamArg *arg);
/** Empties the filter list of `prefix`. @return 0; -14. */
WLBRCM_API int qvWlanClearMacAuthList(WlanParamArg *arg);
/** Reads the driver's list of `prefix`; nothing is handed back. @return 0; -14. */
WLBRCM_API int qvWlanGetMacAuthList(WlanParamArg *arg);

#ifdef __cplusplus
}
#endif

#endif
