/** @file
 * Wi-Fi Protected Setup: configuration in nvram, PINs, sessions, and the control protocol of the WPS daemon.
 */
#ifndef WLBRCM_WPS_H
#define WLBRCM_WPS_H

#include <wlbrcm/radio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Value of nvram wps_mf_url when the device names a manufacturer (DEV_MANUFACTURER). */
#define WLBRCM_MANUFACTURER_URL "http://www.manufacturer.example/"
/** Value of nvram wps_mf_url otherwise. */
#define WLBRCM_CHIP_MAKER_URL "http://www.broadcom.com/"
/** Device PIN when the record holds no valid one. */
#define WLBRCM_DEFAULT_DEVICE_PIN "31415927"
/** The PIN that Wi-Fi Protected Setup reserves for push-button configuration. */
#define WLBRCM_PBC_PIN "00000000"

/** @name Configuration
 * @{ */
/** Writes the WPS configuration of a radio to nvram and resets the daemon's working variables. @return 0; -14 for a
 * null argument. */
WLBRCM_API int qvWlanWscInit(WlRadioCfg *radio, WlSsidCfg *bss);
/** Stops the WPS daemon and starts it again when WPS is on for any radio. Null does nothing. Time: two commands; three
 * and 1 s when it starts. */
WLBRCM_API void qvWlanWscRestart(WlRadioCfg *radio, WlSsidCfg *bss);
/** Operation: qvWlanWscInit(), a restart of eapd, qvWlanWscRestart(). A session that runs is lost. Time: two commands
 * more than qvWlanWscRestart(), and its 1 s. @return 0, also for a radio that is not `wpsCapable`; -14 for a null
 * record. */
WLBRCM_API int qvbrcm_WPSReload(WlIntf *intf);
/** Checks a WPS PIN: any 4 characters, or 8 with a valid checksum (Wi-Fi Protected Setup). @return 0 valid, -1 not (or
 * null). */
WLBRCM_API int qvWlanWscPincheck(const char *pin);
/** The device's PIN: the one in the boot loader's data when valid, else a random one, for which the process's rand() is
 * seeded with the time.
 * @param[out] out  at least 11 bytes; receives 8 digits and a NUL.
 * @return 0; -14 for null. */
WLBRCM_API int qvWlanWscPinGen(char *out);
/** Writes wps_config_method: push button and display (0x88), with WPS version 2 their virtual forms (0x2288; bits of
 * Wi-Fi Protected Setup). @return the result of nvram_set(). */
WLBRCM_API int set_wps_config_method_default(void);
/** @} */

/** @name Setters and getters
 *
 * They return 0; -14 for a null argument or a member that they need, and for a value out of range. A getter whose
 * variable is not set gives 0 and leaves its output.
 * @{ */
/** Does nothing; null gives 0 too. */
WLBRCM_API int qvWlanSetWpsConfMode(WlanParamArg *arg);
/** Method of a session. `value` "pin" or "pbc". Variable _wps_config_method: "sta-pin" when wps_sta_pin holds a PIN,
 * else "ap-pin"; or "pbc". */
WLBRCM_API int qvWlanSetWpsMethod(WlanParamArg *arg);
/** PIN of a station. `value` the PIN, unchecked. Variable wps_sta_pin. */
WLBRCM_API int qvWlanSetWpsPinCode(WlanParamArg *arg);
/** Whether the network counts as configured. `value` 0 or 1 on `prefix`, key wps_config_state; `aux` the radio's number
 * from 0, of which 0 also writes wl_wps_config_state and lan_wps_oob. */
WLBRCM_API int qvWlanSetWpsConfStatus(WlanParamArg *arg);
/** The device's own PIN. `value` the PIN, unchecked; written only when it differs. Variable wps_device_pin. */
WLBRCM_API int qvWlanSetWpsVendorPinCode(WlanParamArg *arg);
/** Kind of push button. `value` text, unchecked. Variable wps_pbc_type. */
WLBRCM_API int qvWlanSetWpsPBCType(WlanParamArg *arg);
/** A PIN of qvWlanWscPinGen() into the text buffer `aux`, at least 9 bytes. nvram is not touched. */
WLBRCM_API int qvWlanGenWpsVendorPinCode(WlanParamArg *arg);
/** wps_device_pin into the text buffer `result`, at least 32 bytes, of which 31 characters are used at most. */
WLBRCM_API int qvWlanGetWpsVendorPinCode(WlanParamArg *arg);
/** wps_uuid into the text buffer `result`, which must have room for the whole stored text. */
WLBRCM_API int qvWlanGetWPSUuid(WlanParamArg *arg);
/** wps_proc_status into the int `result`: the daemon's progress, see "WPSStatus" of qvbrcm_StatusUpdate(). A null
 * `result` gives 0. */
WLBRCM_API int qvWlanGetWPSProcStatus(WlanParamArg *arg);
/** @} */

/** @name Sessions
 *
 * A session runs in the daemon; these only send it a command and do not tell whether it was heard. How it goes on
 * stands in the status item "WPSStatus"; after it succeeded call qvbrcm_WPSUpdateConfg().
 *
 * A UUID, a PIN and the text of nvram wps_autho_sta_mac that contain a blank or a control character are refused, since
 * they would add words to the command. Results: 0 once the command was sent, also when the send failed; -14 for a null
 * argument and for such a text.
 * @{ */
/** Operation: hardware button. Starts a session on the last 5 GHz radio that allows it, else on the first that does. A
 * radio allows it when `radioOn`, `caps.wpsCapable`, and `wpsEnable` and `wpsPbcEnable` of entry 0 are set. Time: 1 s.
 * @param intfs  the radios; null pointers among them are skipped.
 * @param count  their number.
 * @param uuid  UUID of the session, not empty.
 * @return 0; -5 when no radio allows it; -14, also for a missing UUID or a name that is no interface name. */
WLBRCM_API int qvbrcm_WPSHWPushButton(WlIntf **intfs, int count, const char *uuid);
/** Operation: push button on one radio. Time: 1 s. @return 0, also, with nothing sent, for a radio without WPS; -14. */
WLBRCM_API int qvbrcm_WPSSWPushButton(WlIntf *intf);
/** Operation: registers the station with this PIN. Time: 1 s. @return as above; -14 also for a missing or wrong PIN. */
WLBRCM_API int qvbrcm_WPSStartStaPin(WlIntf *intf, const char *pin);
/** Operation: stops a running session. Time: 1 to 3 s when the daemon runs none, else 4 to 8 s; nothing on a radio
 * without WPS. @return 0; -14 for a null argument. */
WLBRCM_API int qvbrcm_WPSCancel(WlIntf *intf);
/** Sends a start command. Time: 1 s.
 * @param ifname  the radio's interface.
 * @param mode  "client-pbc-hw" (`arg` UUID), "client-pbc" or "client-pin" (`arg` PIN).
 * @param arg  as `mode` says; else not read and may be null.
 * @return 0 once sent; -5 for an unknown mode; -14, also for a wrong PIN, a bad name or a command longer than 255
 *   characters. */
WLBRCM_API int qvWlanActionWpsCmd(const char *ifname, const char *mode, const char *arg);
/** Stops the daemon's session, if it runs one. Time: as qvbrcm_WPSCancel(). */
WLBRCM_API void qvWlanStopWps(void);
/** @} */

/** @name Control protocol: UDP to 127.0.0.1:40500
 *
 * The socket of a query is bound to the loopback interface and takes answers of the daemon's address and port alone.
 * The variables are the daemon's last reply; they start at 0 or empty.
 * @{ */
extern WLBRCM_API int32_t wps_config_command; /**< 0 none, 1 a session runs, 2 stops */
extern WLBRCM_API int32_t wps_action;         /**< the daemon's action code; 3 starts, 0 stops */
extern WLBRCM_API int32_t wps_method;         /**< 1 PIN, 2 push button; 0 not reported */
extern WLBRCM_API char wps_uuid[36]; /**< last UUID reported; kept when a reply has none; longer ones are cut */
extern WLBRCM_API char wps_autho_sta_mac[18]; /**< address of the authorised station; empty when not reported */
/** Sends one command. Time: 1 s; none when it cannot be sent.
 * @return 0 when all of it went out, whether or not a daemon listens; -1 otherwise, and for null. */
WLBRCM_API int set_wps_env(const char *command);
/** Asks for the daemon's state and takes it over. Time: 1 s, and up to 2 s more until the reply comes.
 * @return -1 without a socket; else 0, also when no reply came (the variables then keep their values). */
WLBRCM_API int get_wps_env(void);
/** Takes a reply apart, in place, into the five variables: words "key=value", each separated by one blank, at most 31.
 * All but wps_uuid are 0 or empty when the reply lacks them. @return 0; -14 for null. */
WLBRCM_API int parse_wps_env(char *reply);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
