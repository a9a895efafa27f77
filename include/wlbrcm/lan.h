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

/** One member interface of a LAN group; an empty name is a slot without interface. */
typedef struct WlLanMember {
    char ifName[65];
} WlLanMember;

/** One LAN group. Owned by the host. */
typedef struct WlLanGroup {
    char name[32];       /**< bridge interface name */
    int32_t memberCount; /**< records behind `members` */
    char hwaddr[18];     /**< MAC address of the bridge as text */
    WlLanMember *members;
} WlLanGroup;

/** The host's LAN configuration. Owned by the host. */
struct WlLanCfg {
    int32_t count; /**< records behind `groups` */
    WlLanGroup *groups;
};

/** One LAN group, flattened for nvram. */
typedef struct WlLanInfo {
    char name[32];     /**< bridge interface name */
    char ifnames[256]; /**< member names separated by single blanks */
    char hwaddr[18];   /**< MAC address text */
} WlLanInfo;

WLBRCM_ASSERT_LAYOUT(sizeof(WlLanInfo) == 306 && offsetof(WlLanInfo, ifnames) == 32 &&
                         offsetof(WlLanInfo, hwaddr) == 288,
                     "layout of WlLanInfo");

/** Flattens the host's LAN groups.
 *
 * Members that do not fit into the 255 characters of `ifnames` are left out whole, from the first that does not fit on.
 * @param lan  must not be null.
 * @param[out] out  one zero-filled block of *count records that the caller frees; untouched when there is nothing to
 *   build, so set it to null before.
 * @param[out] count  the configuration's count.
 */
WLBRCM_API void qvbrcm_InitLanInfo(const WlLanCfg *lan, WlLanInfo **out, int *count);

/** Rewrites the nvram variables lan_ifname, lan_ifnames, lan_hwaddr (lan1_... and so on for further groups), after
 * removing those of groups 0 to 9 and their WPS registrar variables. */
WLBRCM_API void qvWlanLanVarInit(WlLanInfo *list, int count);

/** qvWlanLanVarInit(), then the WPS registrar variables of each group, then restarts eapd, and wps_monitor when a radio
 * of a group has WPS enabled. */
WLBRCM_API void qvWlanLanVarUpdate(WlLanInfo *list, int count);

/** Operation: the host's LAN groups changed.
 * @param unused1, unused2  not read.
 * @param lan  the new configuration.
 * @return 0; -5 when there is no group or no memory (nothing is then written); -14 for a null `lan`.
 */
WLBRCM_API int qvbrcm_UpdateLaninfo(void *unused1, void *unused2, const WlLanCfg *lan);

#ifdef __cplusplus
}
#endif

#endif
