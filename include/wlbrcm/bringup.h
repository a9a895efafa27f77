/** @file
 * Radio bring-up: from a filled radio record to a running radio, in steps that are also exported one by one.
 *
 * Functions that take `radio`, `bss` and `caps` are given the parts of one WlIntf; `bss` has six entries. None may be
 * null. Commands that fail are not reported and do not stop a step; neither does a name that is no interface name.
 *
 * A daemon that is started is waited for until it has put itself into the background. The daemons, nas, eapd, acsd,
 * lld2d and wps_monitor, serve all radios: a bring-up of one radio stops and restarts them for all.
 */
#ifndef WLBRCM_BRINGUP_H
#define WLBRCM_BRINGUP_H

#include <wlbrcm/lan.h>
#include <wlbrcm/radio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Operation: first configuration of a radio. Sets `state` to 5 while it works and 8 when done.
 *
 * Time: about 25 commands, two more at a fixed 40 MHz channel, and 13 to 18 for each SSID in use; 1 s when WPS is on
 * for any radio.
 *
 * @param intf  the radio; of its fields those that WlIntf names are written.
 * @param lan  the LAN groups, of which the module keeps nothing; without groups the LAN variables stay as they are.
 * @return 0, whatever the steps met; -14 for a null argument.
 */
WLBRCM_API int qvbrcm_InitWlan(WlIntf *intf, const WlLanCfg *lan);

/** Operation: applies a changed configuration; qvbrcm_InitWlan() without the LAN step. A 5 GHz radio with a fixed
 * channel first announces the switch (qvbrcm_ChannelSwitchAnnounce()). Stations lose the network meanwhile.
 *
 * Time: as qvbrcm_InitWlan(), and one command and 3 s when a switch is announced.
 *
 * @return 0, whatever the steps met; -14 for a null argument. */
WLBRCM_API int qvbrcm_ReloadWlan(WlIntf *intf);

/** Has the first of the six entries whose `presetRole` is 2 announce a switch to the configured channel and bandwidth
 * and waits; does nothing without such an entry, or when its name is no interface name. Time: one command and 3 s. */
WLBRCM_API void qvbrcm_ChannelSwitchAnnounce(WlRadioCfg *radio, WlSsidCfg *bss);

/** Operation: takes what a finished WPS session left in nvram over into BSS entry 0, then reloads the radio when
 * something changed, or else only restarts WPS.
 *
 * Taken over are SSID, key management, cipher and passphrase, with `wpsConfigured` set to 1, on a radio with WPS.
 * Values are cut to their fields; a variable that is set but empty counts as unset, but for the key management, where
 * empty means an open network.
 *
 * Time: as qvbrcm_ReloadWlan() or qvbrcm_WPSReload().
 *
 * @param[out] changed  1 when something changed and the radio was reloaded, else 0.
 * @return result of the reload or WPS restart; -14 for a null argument. */
WLBRCM_API int qvbrcm_WPSUpdateConfg(WlIntf *intf, uint8_t *changed);

/** Operation: sets the address of the radio's interface and `intf->macAddr`; does nothing when the record has that
 * address. The addresses of the BSSs come from `baseMac` and not from here. Time: one command.
 * @param mac  6 bytes, the first one first.
 * @return 0, also when the interface refuses; -5 for a null argument or an `intfName` that is no interface name. */
WLBRCM_API int qvbrcm_SetWlanMacAddr(WlIntf *intf, const uint8_t mac[6]);

/** Operation: switches a preset SSID on or off, at once and in the radio's vifs list. Time: two commands.
 * @param ifname  its BSS interface.
 * @param enable  non-zero switches on.
 * @return 0, also when a command fails; -14 for a null name or one that is no interface name. */
WLBRCM_API int qvbrcm_EnablePresetSSID(const char *ifname, int enable);

/** Adds a BSS interface to (`enable` non-zero), or removes it from, the virtual-interface list of its radio (nvram
 * <radio>_vifs). Names are found as whole words; a list that would exceed 63 characters is left as it is, with a
 * level-4 message. @return 0; -14 for a null name or one that is no interface name. */
WLBRCM_API int qvbrcm_SetVifsForPresetIntf(int enable, const char *ifname);

/** Sets `enable` of the first entry in use with preset role 1 on a 5 GHz radio, so that the next steps configure it. */
WLBRCM_API void qvbrcm_ForceConfigurePresetSSID(WlRadioCfg *radio, WlSsidCfg *bss);

/** Applies a radio's whole record through the setters of params.h, then qvWlanFinishSetup() and the flow cache. Time:
 * most of qvbrcm_InitWlan(). @return 0, or the result of qvWlanFinishSetup(). */
WLBRCM_API int qvbrcm_SetupWlan(WlRadioCfg *radio, WlSsidCfg *bss, WlCaps *caps);

/** The radio-wide settings that qvbrcm_SetupWlan() applies in its middle; `bss` is not used. Time: two commands.
 * @return 0. */
WLBRCM_API int qvbrcm_AdvanceSetupWlan(WlRadioCfg *radio, WlSsidCfg *bss, WlCaps *caps);

/** Nvram defaults: the next three in order. @return 0. */
WLBRCM_API int qvWlanInit(WlRadioCfg *radio, WlSsidCfg *bss, WlCaps *caps);
/** Composes the radio's ASPM command and does not run it: whether ASPM is to be switched off is the platform's
 * choice. @return 0; -14 when the radio's name is no interface name. */
WLBRCM_API int qvWlanSetASPM(WlRadioCfg *radio, WlCaps *caps);
/** Place for chip-specific variables; there are none. @return 0. */
WLBRCM_API int qvWlanChipVarInit(WlRadioCfg *radio, WlSsidCfg *bss);
/** Per-BSS base variables, BSS addresses, the radio's vifs and bw_cap.
 *
 * Entry 0 gets `baseMac`. Entry n gets it with another first byte, which marks it as locally administered, and n added
 * to the last byte within its block of 4 addresses (8 with more than 4 entries). They go into nvram and `macText`. A
 * name that does not fit into the 255 characters of vifs is left out whole, with a level-4 message.
 * @return 0. */
WLBRCM_API int qvWlanNvramInit(WlRadioCfg *radio, WlSsidCfg *bss);

/** Stops a radio: places the driver's threads on their CPU, stops watchdog and daemons, takes the radio down and the
 * interfaces out of their bridges. `caps` is not used. Time: 8 commands, and two for each SSID in use. @return 0. */
WLBRCM_API int qvWlanReset(WlRadioCfg *radio, WlSsidCfg *bss, WlCaps *caps);

/** @name wlconf on one interface; null or a name that is no interface name does nothing
 * @{ */
/** Takes the radio down. Time: one command. */
WLBRCM_API void qvWlConfDown(const char *ifname);
/** Takes the nvram configuration into the driver. Time: one command. */
WLBRCM_API void qvWlConfUp(const char *ifname);
/** Takes the security settings into the driver. Time: one command. */
WLBRCM_API void qvWlConfSecurity(const char *ifname);
/** Starts the radio. Time: one command. */
WLBRCM_API void qvWlConfStart(const char *ifname);
/** @} */

/** Process id of the first process in /proc whose command name is exactly `name`; -1 when there is none, and for a null
 * name. */
WLBRCM_API int prctl_getPidByName(const char *name);

/** Has the platform take the configuration up: wlconf, addresses, bridges, daemons, interfaces, priorities, acsd.
 *
 * With `radioOn` 0 only bridges and daemons. The radio's own interface comes up here as well unless the entry that
 * follows the last one in use exists and is enabled. Time: about 13 commands, and four for each SSID in use.
 * @return 0. */
WLBRCM_API int qvWlanFinishSetup(WlRadioCfg *radio, WlSsidCfg *bss);
/** Writes the variables of the channel selection daemon and starts it. A name that does not fit into the 255 characters
 * of acs_ifnames is left out whole, with a level-4 message. `bss` is not used. Time: one command. */
WLBRCM_API void qvWlanStartAcsd(WlRadioCfg *radio, WlSsidCfg *bss);
/** Gives the driver threads of a radio round-robin real-time priority 5; a refusal is printed on standard output. Time:
 * one command, or none. @return 0; -14 for a null name. */
WLBRCM_API int qvWlanSetPriority(const char *ifname);
/** Kernel worker of the CPU that the driver names for an interface. Time: one command.
 * @return its process id; -1 when it is not known, and for a name that does not begin with "wl" or is no interface
 *   name. */
WLBRCM_API int get_event_pid(const char *ifname);
/** Sets the address `macText` of every enabled entry on its interface. Time: two commands for each. @return 0. */
WLBRCM_API int qvWlanSetIfaceMAC(WlRadioCfg *radio, WlSsidCfg *bss);

#ifdef __cplusplus
}
#endif

#endif
