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
/** Writes the WPS configuration of a radio to nvram. @return 0. */
WLBRCM_API int qvWlanWscInit(WlRadioCfg *radio, WlSsidCfg *bss);
/** Stops the WPS daemon and starts it again, after 1 second, when WPS is on for any radio. */
WLBRCM_API void qvWlanWscRestart(WlRadioCfg *radio, WlSsidCfg *bss);
/** Operation: qvWlanWscInit(), a restart of eapd, qvWlanWscRestart(). @return 0, also for a radio without WPS; -14 for
 * a null record. */
WLBRCM_API int qvbrcm_WPSReload(WlIntf *intf);
/** Checks a WPS PIN: any 4 characters, or 8 digits with a valid checksum. @return 0 valid, -1 not (or null). */
WLBRCM_API int qvWlanWscPincheck(const char *pin);
/** The device's PIN: the one in the boot loader's data when valid, else a random one.
 * @param[out] out  at least 11 bytes; receives 8 digits.
 * @return 0; -14 for null. */
WLBRCM_API int qvWlanWscPinGen(char *out);
/** Writes wps_config_method by the WPS version. @return the result of nvram_set(). */
WLBRCM_API int set_wps_config_method_default(void);
/** @} */

/** @name Setters and getters: 0; -14 for a null argument, or a null member that they read or a value out of range.
 * @{ */
WLBRCM_API int qvWlanSetWpsConfMode(WlanParamArg *arg);      /**< does nothing; null gives 0 too */
WLBRCM_API int qvWlanSetWpsMethod(WlanParamArg *arg);        /**< `value` "pin" or "pbc" */
WLBRCM_API int qvWlanSetWpsPinCode(WlanParamArg *arg);       /**< `value`: wps_sta_pin */
WLBRCM_API int qvWlanSetWpsConfStatus(WlanParamArg *arg);    /**< `value` 0 or 1 on `prefix`; `aux` radio number */
WLBRCM_API int qvWlanSetWpsVendorPinCode(WlanParamArg *arg); /**< `value`: wps_device_pin */
WLBRCM_API int qvWlanSetWpsPBCType(WlanParamArg *arg);       /**< `value`: wps_pbc_type */
WLBRCM_API int qvWlanGenWpsVendorPinCode(WlanParamArg *arg); /**< a PIN into `aux`, at least 9 bytes */
WLBRCM_API int qvWlanGetWpsVendorPinCode(WlanParamArg *arg); /**< wps_device_pin into `result`, at least 32 bytes */
WLBRCM_API int qvWlanGetWPSUuid(WlanParamArg *arg);          /**< wps_uuid into `result`, room for the stored text */
WLBRCM_API int qvWlanGetWPSProcStatus(WlanParamArg *arg);    /**< wps_proc_status into the int `result`, when set */
/** @} */

/** @name Sessions
 * @{ */
/** Operation: hardware button. Starts a session on the last 5 GHz radio that allows it, else on the first that does.
 * @return 0; -5 when no radio allows it; -14 for a null argument or missing UUID. */
WLBRCM_API int qvbrcm_WPSHWPushButton(WlIntf **intfs, int count, const char *uuid);
/** Operation: push button on one radio. @return 0, also for a radio without WPS; -14 for a null argument. */
WLBRCM_API int qvbrcm_WPSSWPushButton(WlIntf *intf);
/** Operation: registers the station with this PIN. @return as above; -14 for a missing or wrong PIN. */
WLBRCM_API int qvbrcm_WPSStartStaPin(WlIntf *intf, const char *pin);
/** Operation: stops a running session; takes 4 to 8 seconds. @return 0; -14 for a null argument. */
WLBRCM_API int qvbrcm_WPSCancel(WlIntf *intf);
/** Sends a start command. @param mode  "client-pbc-hw" (`arg` UUID), "client-pbc" or "client-pin" (`arg` PIN).
 * @return 0 once sent; -5 unknown mode; -14 missing argument, wrong PIN, or a command longer than 255 characters. */
WLBRCM_API int qvWlanActionWpsCmd(const char *ifname, const char *mode, const char *arg);
/** Stops the daemon's session, if it runs one. */
WLBRCM_API void qvWlanStopWps(void);
/** @} */

/** @name Control protocol: UDP to 127.0.0.1:40500
 * @{ */
extern WLBRCM_API int32_t wps_config_command; /**< 0 none, 1 a session runs, 2 stops */
extern WLBRCM_API int32_t wps_action;         /**< the daemon's action code */
extern WLBRCM_API int32_t wps_method;         /**< 1 PIN, 2 push button */
extern WLBRCM_API char wps_uuid[36];          /**< last UUID reported; kept when a reply has none */
extern WLBRCM_API char wps_autho_sta_mac[18]; /**< authorised station */
/** Sends one command and waits 1 second. @return 0 when all of it went out, -1 otherwise. */
WLBRCM_API int set_wps_env(const char *command);
/** Asks for the daemon's state and takes it over; waits 1 to 3 seconds.
 * @return -1 without a socket; else 0, also when no reply came (the variables then keep their values). */
WLBRCM_API int get_wps_env(void);
/** Takes a reply apart, in place, into the five variables. @return 0; -14 for null. */
WLBRCM_API int parse_wps_env(char *reply);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
