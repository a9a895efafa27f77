/** @file
 * The radio record that the module and its host share, the argument record of the setters and getters, and the probes
 * that ask a driver or the board what a radio can do.
 */
#ifndef WLBRCM_RADIO_H
#define WLBRCM_RADIO_H

#include <wlbrcm/module.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Numbers of the radio record. */
enum {
    WLBRCM_MAX_BSS = 6,          /**< BSS entries of a radio record */
    WLBRCM_BAND_5G = 1,          /**< `WlRadioCfg.band` of a 5 GHz radio */
    WLBRCM_BAND_2G = 2,          /**< `WlRadioCfg.band` of a 2.4 GHz radio */
    WLBRCM_BANDCODE_5G = 11,     /**< `WlIntf.bandCode` of a 5 GHz radio */
    WLBRCM_BANDCODE_2G = 4,      /**< `WlIntf.bandCode` of a 2.4 GHz radio */
    WLBRCM_STATE_SETTING_UP = 5, /**< `WlIntf.state` while a bring-up operation runs */
    WLBRCM_STATE_READY = 8,      /**< `WlIntf.state` after it; 0 after discovery */
    WLBRCM_PRESET_NONE = 0,      /**< an SSID like any other */
    WLBRCM_PRESET_ON_DEMAND = 1, /**< configured, but down until qvbrcm_EnablePresetSSID() */
    WLBRCM_PRESET_ANNOUNCER = 2  /**< announces channel switches before a reload */
};

/** Configuration of one radio.
 *
 * Zero-filled at registration. The host fills every field before a bring-up operation, except where a field says
 * otherwise; no field has a default. Each value is checked by its setter (params.h): one that is refused leaves what
 * nvram or the driver had, and the bring-up goes on. 0 is a value like any other unless the field says what it means.
 * Fields named `host...` are the host's own and neither read nor written.
 */
typedef struct WlRadioCfg {
    uint8_t hostHead[32]; /**< the host's */
    int8_t radioIndex;    /**< number of the radio as the host counts, from 1 */
    uint8_t radioOn;      /**< flag; 0 leaves the radio configured and down */
    uint8_t autoChannel;  /**< flag: automatic channel selection; qvWlanUpdateAutoChannel() may set it to 1 */
    uint8_t frameBurst;   /**< flag: frame bursting */
    uint8_t atfEnable;    /**< flag: airtime fairness; counts as 0 without `caps.atf` */
    uint8_t txbfMu;       /**< flag: multi-user beamforming, with `caps.muMimo`; see `txbfBfr` */
    int8_t apCoex;        /**< flag: 20/40 MHz coexistence; counts as 0 except at 2.4 GHz and 40 MHz */
    int8_t bgProtection;  /**< 0 or 1 automatic, 2 off; `htProtect` overrides its protection word */
    int8_t htProtect;     /**< 0 or 1; both switch protection to automatic, or off without 802.11n */
    int8_t txPreamble;    /**< 0 long, 1 automatic */
    int8_t sideband; /**< position of the control channel at 40 MHz: 1 upper, -1 lower; 0 acts as lower, unchecked */
    int8_t rifsAdv;  /**< RIFS advertisement: -1 automatic, 0 off */
    int8_t wirelessMode; /**< 802.11 mode number 0..9, see qvWlanSetWirelessMode(); 0 is "G only" */
    uint8_t bandwidth;   /**< channel width in MHz: 20, 40 or 80; any other counts as 20 */
    uint8_t txPower;     /**< transmit power in percent, 1..100; 0 is refused: the driver keeps its power */
    uint8_t txbfBfr;     /**< transmit beamformer, 0 or 1, with `caps.txbf`; 1 beside `txbfMu` and `caps.muMimo` becomes
                          * 2, which the setter refuses, so that the variable stays as it was */
    uint8_t txbfBfe;     /**< transmit beamformee, 0 or 1; as `txbfBfr` */
    uint8_t hostByte1[1];            /**< the host's */
    uint16_t channel;                /**< control channel number; not used with `autoChannel` */
    uint32_t acsScanTimer;           /**< re-scan timer of the channel selection daemon, seconds */
    int32_t acsPolicyIndex;          /**< policy number of the channel selection daemon */
    int32_t beaconPeriod;            /**< beacon interval, 20..1024 time units (1024 microseconds, IEEE 802.11) */
    int32_t dtimPeriod;              /**< DTIM period in beacons */
    int32_t rtsThreshold;            /**< bytes, 1..2347 */
    int32_t fragThreshold;           /**< bytes, 256..2346 */
    uint16_t bssCount;               /**< entries of `WlIntf.bss` in use, from the first; more than 6 counts as 6 */
    uint8_t hostByte2[2];            /**< the host's */
    int32_t rxChainPwrsaveParams[3]; /**< enable, quiet time in seconds, packets/s; with `caps.rxchainPwrsave` */
    int32_t radioPwrsaveParams[4];   /**< enable, quiet time in seconds, packets/s, level; with `caps.radioPwrsave` */
    int32_t band;                    /**< WLBRCM_BAND_5G or WLBRCM_BAND_2G */
    int32_t rate;                    /**< fixed legacy rate in the driver's unit; counts as 0 when `mcs` is -1 */
    int32_t mcs;                     /**< fixed MCS index (IEEE 802.11); -1 automatic */
    int32_t multicastRate;           /**< multicast rate in the driver's unit; 0 automatic */
    int32_t regMode;                 /**< regulatory mode: 1 802.11h, 2 802.11d, any other off */
    int32_t dfsPreIsm;        /**< monitoring before a radar channel is used, seconds; -1 the driver's; `regMode` 1 */
    int32_t dfsPostIsm;       /**< monitoring after it was left, seconds; -1 the driver's; `regMode` 1 */
    int32_t tpcDb;            /**< transmit power reduction in dB; `regMode` 1 */
    int32_t lazyWds;          /**< flag: accept any WDS peer; `wdsMacList` then counts as empty; with `caps.wds` */
    int32_t interferenceMode; /**< interference mitigation, the driver's number -1..4 */
    char acsSkipList[101];    /**< channels that automatic selection skips, as the daemon reads them; empty none */
    char wdsMode[12];         /**< with `caps.wds`: the radio's mode word, "ap" or "wds"; empty removes the mode */
    char wdsMacList[80];      /**< with `caps.wds`: addresses of WDS peers, blank-separated; empty none */
    char phyType[5];          /**< PHY letter of qvWlanGetPhyType(); empty gives a "MaxBitRate" of 0 */
    char countryCode[11];     /**< country, a slash, revision: "DE/3"; revision 0 when there is no slash */
    char ifName[32];          /**< `WlIntf.intfName`; interface name and nvram prefix of the radio */
    uint8_t baseMac[6];       /**< address of entry 0, from which the others are derived: qvWlanNvramInit() */
    uint8_t hostByte3[1];     /**< the host's */
    int32_t gpioOverlays;     /**< written by qvWlanGetGPIOverlays() alone; never read */
} WlRadioCfg;

/** Configuration of one BSS (SSID).
 *
 * Filled by the host before a bring-up operation, under the rules of WlRadioCfg. Entry 0 is the radio's own network.
 */
typedef struct WlSsidCfg {
    uint8_t valid;    /**< flag: network, security, filter and limits of the entry are applied (with `enable`) */
    uint8_t main;     /**< flag: this entry's `maxSta` limits the whole radio; without one the limit written is 0 */
    char objPath[36]; /**< host's object path, by which qvbrcm_StationFilter() finds the entry */
    uint8_t enable;  /**< flag: the BSS has an address, a bridge and goes up; a bring-up sets it for the first on-demand
                        preset at 5 GHz */
    char ifName[65]; /**< interface name and nvram prefix: the radio's for entry 0, "wl0.1" and so on; empty for none */
    char ssidName[33];    /**< network name, 1 to 32 bytes without NUL (IEEE 802.11), in no character set; replaced by
                           * qvbrcm_WPSUpdateConfg() */
    uint8_t hideSsid;     /**< flag: leave the SSID out of beacons */
    uint8_t bssIsolation; /**< flag: stations of the BSS do not reach each other; any non-zero is 1 */
    uint8_t multicastFwd; /**< flag: wireless multicast forwarding; with `caps.wmf` */
    uint8_t wmm;          /**< flag: WMM of the BSS; that of entry 0 also decides for the radio; with `caps.wme` */
    uint8_t wmmApsd;      /**< flag: WMM power save; entry 0 decides for the radio; with `caps.wmeApsd` */
    uint8_t hostByte1[2]; /**< the host's */
    int32_t maxSta;       /**< most stations associated at a time */
    char macText[18];     /**< written by qvWlanNvramInit(): upper-case hexadecimal pairs joined by colons */
    char bridge[32];      /**< bridge that the interface joins; empty for none */
    uint8_t preauth;      /**< flag: WPA2 pre-authentication */
    char authMode[16];    /**< word of qvWlanSetAuthMode(); replaced by qvbrcm_WPSUpdateConfg() */
    char encryption[16];  /**< word of qvWlanSetEncrypType(); replaced by qvbrcm_WPSUpdateConfg() */
    uint8_t defaultKeyId; /**< number of the WEP key in use, 1..4; 0 is refused: no WEP key is written */
    char wepKeys[4][32]; /**< WEP keys 1 to 4 as the platform takes them; with `encryption` "wep" that of `defaultKeyId`
                            is written */
    char wpaPskFallback[65];  /**< WPA passphrase used when `wpaPsk` is empty; both empty for none */
    char wpaPsk[67];          /**< WPA passphrase of 8 to 63 characters, or 64 hexadecimal digits; not checked; replaced
                               * by qvbrcm_WPSUpdateConfg() */
    int32_t rekeyInterval;    /**< lifetime of the group key in seconds; 0 none */
    int32_t netReauth;        /**< RADIUS re-authentication interval in seconds */
    char radiusIpaddr[48];    /**< RADIUS server address; empty for none */
    int32_t radiusPort;       /**< UDP port of the RADIUS server */
    char radiusKey[256];      /**< RADIUS shared secret; empty for none */
    char macFilterMode[10];   /**< "DENY", "ALLOW", anything else for no filter; see macfilter.h */
    char macFilterList[2048]; /**< station addresses, blank-separated; one malformed address counts as an empty list */
    uint8_t wpsEnable;        /**< flag: WPS; only entries whose `ifName` has no "." have it */
    uint8_t wpsConfigured;    /**< flag: the network counts as configured; set by qvbrcm_WPSUpdateConfg() */
    uint8_t wpsVersion2;      /**< flag: WPS version 2; entry 0 decides */
    uint8_t wpsPbcEnable;     /**< flag: push button allowed */
    uint8_t wpsStaPinEnable;  /**< flag: station PIN allowed */
    uint8_t wpsApPinEnable;   /**< flag: AP PIN allowed */
    uint32_t
        wpsConfigMethod; /**< configuration methods, bit mask of Wi-Fi Protected Setup; 0x80 push button, 0x8 display */
    char wpsDevicePin[9]; /**< the device's own PIN, 8 digits; entry 0 decides; an invalid or empty one counts as
                           * WLBRCM_DEFAULT_DEVICE_PIN */
    char wpsUuid[40];     /**< UUID of the SSID; empty removes the variable */
    uint8_t hostByte2[3]; /**< the host's */
    int32_t
        upstreamRate; /**< limit of traffic from the stations in kbit/s; 0 none, and only then the flow cache is used */
    int32_t downstreamRate; /**< limit of traffic to the stations in kbit/s; 0 none */
    int32_t protectMF;      /**< management frame protection (IEEE 802.11w): 0 off, 1 optional, 2 required */
    uint8_t presetRole;     /**< one of WLBRCM_PRESET_* */
    uint8_t hostTail[3];    /**< the host's */
} WlSsidCfg;

/** Capabilities of one radio, filled by wlModuleInit() from the driver's answers. Flags are 0 when the driver said
 * nothing. The host only reads them; one that clears a flag keeps the setting that needs it from being applied. */
typedef struct WlCaps {
    uint8_t wme;            /**< flag: WMM */
    uint8_t wmeApsd;        /**< flag: WMM power save; as `wme` */
    uint8_t mbss;           /**< flag: several BSSs */
    uint8_t ampdu;          /**< flag: A-MPDU aggregation */
    uint8_t amsduTx;        /**< flag: A-MSDU transmission */
    uint8_t wmf;            /**< flag: wireless multicast forwarding; always 1 at 5 GHz */
    uint8_t radioPwrsave;   /**< flag: radio power save */
    uint8_t rxchainPwrsave; /**< flag: receive-chain power save */
    uint8_t wds;            /**< flag: WDS */
    uint8_t wpsCapable;     /**< flag: WPS is handled for this radio; always 1 */
    uint8_t txbf;           /**< flag: transmit beamforming, checkWlanTxBFCap() */
    uint8_t atf;            /**< flag: airtime fairness; 1 at 5 GHz, else 0 */
    uint8_t muMimo;         /**< flag: multi-user MIMO */
    uint8_t dhd;            /**< flag: the interface answers to dhdctl */
    uint8_t hostByte1[2];   /**< the host's */
    int32_t maxBss;         /**< BSSs that the radio carries: 1, 4 or 6 */
    char vifNames[6][31]; /**< names of the interfaces behind the radio's own: "wl0.1" up to `maxBss` - 1, then empty */
    uint8_t hostTail[2];  /**< the host's */
} WlCaps;

/** One radio, shared by the module and its host.
 *
 * Created zero-filled by wlModuleInit(), owned by the host once accepted. The host fills `radio` and `bss` before a
 * bring-up operation. Of these the module writes only `macText`, `enable` of a preset SSID, `autoChannel`,
 * `gpioOverlays`, and what a WPS registration agreed on. Operations take the record that was registered or any other of
 * this layout.
 */
struct WlIntf {
    char intfName[16];    /**< by discovery: interface name, "wl0" */
    int32_t state;        /**< by the module: 0, WLBRCM_STATE_SETTING_UP or WLBRCM_STATE_READY; never read */
    int32_t bandCode;     /**< by discovery: WLBRCM_BANDCODE_5G or WLBRCM_BANDCODE_2G */
    uint8_t macAddr[6];   /**< by discovery and qvbrcm_SetWlanMacAddr(): hardware address; zeros when unknown */
    uint8_t hostByte1[2]; /**< the host's */
    WlRadioCfg radio;     /**< by the host */
    WlSsidCfg bss[WLBRCM_MAX_BSS]; /**< by the host: `radio.bssCount` entries */
    WlCaps caps;                   /**< by discovery */
};

WLBRCM_ASSERT_LAYOUT(sizeof(WlRadioCfg) == 400 && offsetof(WlRadioCfg, channel) == 50 &&
                         offsetof(WlRadioCfg, bssCount) == 76 && offsetof(WlRadioCfg, band) == 108 &&
                         offsetof(WlRadioCfg, acsSkipList) == 148 && offsetof(WlRadioCfg, ifName) == 357 &&
                         offsetof(WlRadioCfg, gpioOverlays) == 396,
                     "layout of WlRadioCfg");
WLBRCM_ASSERT_LAYOUT(sizeof(WlSsidCfg) == 2944 && offsetof(WlSsidCfg, ifName) == 39 &&
                         offsetof(WlSsidCfg, maxSta) == 144 && offsetof(WlSsidCfg, wpaPsk) == 425 &&
                         offsetof(WlSsidCfg, radiusKey) == 552 && offsetof(WlSsidCfg, wpsEnable) == 2866 &&
                         offsetof(WlSsidCfg, upstreamRate) == 2928 && offsetof(WlSsidCfg, presetRole) == 2940,
                     "layout of WlSsidCfg");
WLBRCM_ASSERT_LAYOUT(sizeof(WlCaps) == 208 && offsetof(WlCaps, maxBss) == 16 && offsetof(WlCaps, vifNames) == 20,
                     "layout of WlCaps");
WLBRCM_ASSERT_LAYOUT(sizeof(WlIntf) == 18304 && offsetof(WlIntf, radio) == 32 && offsetof(WlIntf, bss) == 432 &&
                         offsetof(WlIntf, caps) == 18096,
                     "layout of WlIntf");

/** Argument of every setter and of most getters; the caller owns it and all it points to.
 *
 * Members that a function does not name are not read and may be null. Setters write nothing through it. Where a getter
 * keeps an int behind `value` or `aux`, the pointer is cast.
 */
typedef struct WlanParamArg {
    char *prefix;  /**< nvram prefix, which is also the interface name: "wl0", "wl0.1" */
    char *value;   /**< the value as text: a decimal number, a word or free text */
    char *aux;     /**< auxiliary text; its meaning belongs to the function */
    void *result;  /**< output of getters, of the type and size that the function names */
    int32_t index; /**< BSS index within the radio, from 0; the radio's number from 0 for radio-wide settings */
} WlanParamArg;

/** Makes sure that the driver's capability listing stands in /tmp/<ifname>_cap.
 *
 * The file is kept and not asked for again, except when it is empty or not of the process's own user.
 * Time: one command, or none.
 *
 * @param ifname  interface name; begins with "wl".
 * @param[out] path  receives the file name; at least 64 bytes.
 * @return 0, also when the driver's command failed; -14 for a null argument; -5 for a name that does not begin with
 *   "wl" or is no interface name.
 */
WLBRCM_API int qvWlanDumpWlCap(const char *ifname, char *path);

/** Band of a radio by its chip. Time: one command.
 * @return 1 (5 GHz, device 0x43c5), 2 (2.4 GHz, device 0x43bb), or 0 for any other chip, and for a name that is null,
 *   does not begin with "wl" or is no interface name. */
WLBRCM_API int qvWlanGetBandType(const char *ifname);

/** PHY letter of a radio. Time: one command.
 * @return "a", "b", "g", "n" or "v"; "b" when the driver gives none; null for a name that is null, does not begin with
 *   "wl" or is no interface name. The text is static. */
WLBRCM_API const char *qvWlanGetPhyType(const char *ifname);

/** Whether a radio can beamform. Time: two commands.
 * @return 1 with core revision 40 or later and two or more transmit chains; else 0, also for a bad name. */
WLBRCM_API int checkWlanTxBFCap(const char *ifname);

/** BSSs by the capability listing; WlCaps.maxBss counts differently. Time: as qvWlanDumpWlCap().
 * @return 4 when the listing names mbss4 or mbss16, else 1, also for a bad name. */
WLBRCM_API int qvWlanGetMaxMbss(const char *ifname);

/** Whether the driver lists WMM. Time: as qvWlanDumpWlCap().
 * @param arg  `value` is the interface name, `result` a text buffer of at least 2 bytes that receives "1" or "0".
 * @return 0; -5 when the capability listing cannot be read (`result` is "0"); -14 for a null argument, value or result.
 */
WLBRCM_API int qvWlanGetWmmSupport(WlanParamArg *arg);

/** Asks the chip-information device for the STBC word.
 * @return its answer, 0 for a chip without STBC; -1 when unknown. */
WLBRCM_API int qvWlanReadChipInfoStbc(void);

/** Stores the board's GPIO overlay word in `radio->gpioOverlays`, 0 when the board does not answer; leaves it when the
 * board device is missing. Null does nothing. */
WLBRCM_API void qvWlanGetGPIOverlays(WlRadioCfg *radio);

#ifdef __cplusplus
}
#endif

#endif
