/** @file
 * LAN groups: the bridges of the gateway and their members, as the host gives them and as the platform's daemons read
 * them from nvram.
 */
#ifndef WLBRCM_LAN_H
#define WLBRCM_LAN_H

#include <wlbrcm/module.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One member interface of a LAN group. */
typedef struct WlLanMember {
    char ifName[65]; /**< interface name; empty for a slot without interface */
} WlLanMember;

/** One LAN group, filled by the host. */
typedef struct WlLanGroup {
    char name[32];       /**< bridge interface name; empty removes the variable */
    int32_t memberCount; /**< records behind `members`; 0 or less for none */
    char hwaddr[18];     /**< MAC address of the bridge: pairs of hexadecimal digits joined by colons; empty for none */
    WlLanMember *members; /**< the members; may be null for none */
} WlLanGroup;

/** The host's LAN configuration: one block of groups, with a block of members behind each.
 *
 * Owned by the host. Every function that takes it copies what it needs; all of it may be freed when the call returns.
 */
struct WlLanCfg {
    int32_t count;      /**< records behind `groups`, at most 10: later calls remove no more; 0 or less for none */
    WlLanGroup *groups; /**< the groups; may be null for none. The first is the gateway's main LAN */
};

/** One LAN group, flattened for nvram by qvbrcm_InitLanInfo(). */
typedef struct WlLanInfo {
    char name[32];     /**< bridge interface name; empty removes the variable */
    char ifnames[256]; /**< member names separated by single blanks; empty removes the variable */
    char hwaddr[18];   /**< MAC address text; empty removes the variable */
} WlLanInfo;

WLBRCM_ASSERT_LAYOUT(sizeof(WlLanInfo) == 306 && offsetof(WlLanInfo, ifnames) == 32 &&
                         offsetof(WlLanInfo, hwaddr) == 288,
                     "layout of WlLanInfo");

/** Flattens the host's LAN groups.
 *
 * Members that do not fit into the 255 characters of `ifnames` are left out whole, from the first that does not fit on.
 * @param lan  must not be null.
 * @param[out] out  one zero-filled block of *count records that the caller frees; untouched when there is nothing to
 *   build or no memory (each with a level-4 message), so set it to null before.
 * @param[out] count  the configuration's count, also then.
 */
WLBRCM_API void qvbrcm_InitLanInfo(const WlLanCfg *lan, WlLanInfo **out, int *count);

/** Rewrites the nvram variables lan_ifname, lan_ifnames, lan_hwaddr (lan1_... and so on for further groups), after
 * removing those of groups 0 to 9 and their WPS registrar variables. For members that contain "eth" or "usb" their
 * own name is written and their address removed. */
WLBRCM_API void qvWlanLanVarInit(WlLanInfo *list, int count);

/** qvWlanLanVarInit(), then the WPS registrar variables of each group, then restarts eapd, and wps_monitor when a radio
 * of a group has WPS enabled. Time: two commands, five with WPS. */
WLBRCM_API void qvWlanLanVarUpdate(WlLanInfo *list, int count);

/** Operation: the host's LAN groups changed; qvWlanLanVarUpdate() of them. Bridges themselves are the host's to change.
 * Time: two commands, five with WPS.
 * @param unused1,unused2  not read.
 * @param lan  the new configuration.
 * @return 0; -5 when there is no group or no memory (nothing is then written); -14 for a null `lan`.
 */
WLBRCM_API int qvbrcm_UpdateLaninfo(void *unused1, void *unused2, const WlLanCfg *lan);

#ifdef __cplusplus
}
#endif

#endif
