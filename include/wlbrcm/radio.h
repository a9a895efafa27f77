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

enum {
    WLBRCM_MAX_BSS = 6,          /**< BSS entries of a radio record */
    WLBRCM_BAND_5G = 1,          /**< `WlRadioCfg.band` of a 5 GHz radio */
    WLBRCM_BAND_2G = 2,          /**< `WlRadioCfg.band` of a 2.4 GHz radio */
    WLBRCM_BANDCODE_5G = 11,     /**< `WlIntf.bandCode` of a 5 GHz radio */
    WLBRCM_BANDCODE_2G = 4,      /**< `WlIntf.bandCode` of a 2.4 GHz radio */
    WLBRCM_STATE_SETTING_UP = 5, /**< `WlIntf.state` while a bring-up operation runs */
    WLBRCM_STATE_READY = 8,      /**< `WlIntf.state` after it; 0 after discovery */
    WLBRCM_PRESET_NONE = 0,
    WLBRCM_PRESET_ON_DEMAND = 1, /**< configured, but down until qvbrcm_EnablePresetSSID() */
    WLBRCM_PRESET_ANNOUNCER = 2  /**< announces channel switches before a reload */
};

/** Configuration of one radio, filled by the host. Bytes named `host...` are the host's own and never read. */
typedef struct WlRadioCfg {
    uint8_t hostHead[32];
    int8_t radioIndex;   /**< number of the radio as the host counts, from 1 */
    uint8_t radioOn;     /**< flag */
    uint8_t autoChannel; /**< flag: automatic channel selection; qvWlanUpdateAutoChannel() may set it */
    uint8_t frameBurst;  /**< flag */
    uint8_t atfEnable;   /**< flag: airtime fairness; used with `caps.atf` */
    uint8_t txbfMu;      /**< flag: multi-user beamforming; used with `caps.muMimo` */
    int8_t apCoex;       /**< 0 or 1: 20/40 MHz coexistence */
    int8_t bgProtection; /**< 0, 1 automatic, 2 off */
    int8_t htProtect;    /**< 0 or 1 */
    int8_t txPreamble;   /**< 0 long, 1 automatic */
    int8_t sideband;     /**< control sideband at 40 MHz: 1 upper, -1 lower */
    int8_t rifsAdv;      /**< RIFS advertisement: -1 automatic, 0 off */
    int8_t wirelessMode; /**< 802.11 mode number 0..9, see qvWlanSetWirelessMode() */
    uint8_t bandwidth;   /**< channel width in MHz: 20, 40 or 80 */
    uint8_t txPower;     /**< transmit power in percent, 1..100 */
    uint8_t txbfBfr;     /**< transmit beamformer setting */
    uint8_t txbfBfe;     /**< transmit beamformee setting */
    uint8_t hostByte1[1];
    uint16_t channel;       /**< control channel number */
    uint32_t acsScanTimer;  /**< channel re-scan timer of the channel selection daemon, in seconds */
    int32_t acsPolicyIndex; /**< policy number of the channel selection daemon */
    int32_t beaconPeriod;   /**< beacon interval in time units (1024 microseconds, IEEE 802.11) */
    int32_t dtimPeriod;     /**< DTIM period in beacons */
    int32_t rtsThreshold;   /**< bytes, 1..2347 */
    int32_t fragThreshold;  /**< bytes, 256..2346 */
    uint16_t bssCount;      /**< entries of `WlIntf.bss` in use, at most 6 */
    uint8_t hostByte2[2];
    int32_t rxChainPwrsaveParams[3]; /**< enable, quiet time in seconds, packets per second */
    int32_t radioPwrsaveParams[4];   /**< enable, quiet time in seconds, packets per second, level */
    int32_t band;                    /**< 1 = 5 GHz, 2 = 2.4 GHz */
    int32_t rate;                    /**< fixed legacy rate in the driver's unit; needs a fixed `mcs` */
    int32_t mcs;                     /**< fixed MCS index, -1 automatic */
    int32_t multicastRate;           /**< multicast rate, 0 automatic */
    int32_t regMode;                 /**< regulatory mode: 1 = 802.11h, 2 = 802.11d, other = off */
    int32_t dfsPreIsm;               /**< DFS in-service monitoring before use, seconds; -1 the driver's */
    int32_t dfsPostIsm;              /**< DFS in-service monitoring after use, seconds; -1 the driver's */
    int32_t tpcDb;                   /**< TPC reduction in dB */
    int32_t lazyWds;                 /**< flag: accept any WDS peer; the peer list is then given empty */
    int32_t interferenceMode;        /**< interference mitigation, -1..4 */
    char acsSkipList[101];           /**< channels that automatic selection must skip */
    char wdsMode[12];                /**< mode word, such as "ap" or "wds" */
    char wdsMacList[80];             /**< WDS peers, blank-separated */
    char phyType[5];                 /**< PHY letter as qvWlanGetPhyType() gives it */
    char countryCode[11];            /**< country, a slash, revision: "DE/3" */
    char ifName[32];                 /**< interface name and nvram prefix of the radio, such as "wl0" */
    uint8_t baseMac[6];              /**< address from which the BSS addresses are derived */
    uint8_t hostByte3[1];
    int32_t gpioOverlays; /**< board word read by qvWlanGetGPIOverlays() */
} WlRadioCfg;

/** Configuration of one BSS (SSID), filled by the host. */
typedef struct WlSsidCfg {
    uint8_t valid;        /**< flag: the entry is configured */
    uint8_t main;         /**< flag: this entry's `maxSta` limits the whole radio */
    char objPath[36];     /**< host's object path; qvbrcm_StationFilter() finds the entry by it */
    uint8_t enable;       /**< flag: the BSS is on */
    char ifName[65];      /**< interface name and nvram prefix: the radio's name for entry 0, "wl0.1" and so on */
    char ssidName[33];    /**< network name, up to 32 bytes without NUL */
    uint8_t hideSsid;     /**< flag: leave the SSID out of beacons */
    uint8_t bssIsolation; /**< flag: stations of the BSS do not reach each other */
    uint8_t multicastFwd; /**< flag: wireless multicast forwarding; used with `caps.wmf` */
    uint8_t wmm;          /**< flag; entry 0 also decides for the radio */
    uint8_t wmmApsd;      /**< flag; entry 0 decides for the radio */
    uint8_t hostByte1[2];
    int32_t maxSta;           /**< most stations associated at a time */
    char macText[18];         /**< written by qvWlanNvramInit(): upper-case hexadecimal pairs joined by colons */
    char bridge[32];          /**< bridge the interface joins; empty for none */
    uint8_t preauth;          /**< flag: WPA2 pre-authentication */
    char authMode[16];        /**< "open", "shared", "wepauto", "wpa2", "wpa2psk", "wpapskmix" */
    char encryption[16];      /**< "none", "wep", "aes", "tkipaes" */
    uint8_t defaultKeyId;     /**< number of the default WEP key, 1..4 */
    char wepKeys[4][32];      /**< WEP keys 1 to 4 */
    char wpaPskFallback[65];  /**< WPA passphrase used when `wpaPsk` is empty */
    char wpaPsk[67];          /**< WPA passphrase; a WPS registration stores its result here */
    int32_t rekeyInterval;    /**< group key lifetime in seconds, 0 none */
    int32_t netReauth;        /**< RADIUS re-authentication interval in seconds */
    char radiusIpaddr[48];    /**< RADIUS server address */
    int32_t radiusPort;       /**< RADIUS server port */
    char radiusKey[256];      /**< RADIUS shared secret */
    char macFilterMode[10];   /**< "DENY", "ALLOW", anything else for no filter */
    char macFilterList[2048]; /**< station addresses, blank-separated */
    uint8_t wpsEnable;        /**< flag */
    uint8_t wpsConfigured;    /**< flag: the network counts as configured */
    uint8_t wpsVersion2;      /**< flag; entry 0 decides */
    uint8_t wpsPbcEnable;     /**< flag: push button allowed */
    uint8_t wpsStaPinEnable;  /**< flag: station PIN allowed */
    uint8_t wpsApPinEnable;   /**< flag: AP PIN allowed */
    uint32_t wpsConfigMethod; /**< configuration methods, bit mask of Wi-Fi Protected Setup */
    char wpsDevicePin[9];     /**< the device's own PIN, 8 digits; entry 0 decides */
    char wpsUuid[40];         /**< UUID of the SSID */
    uint8_t hostByte2[3];
    int32_t upstreamRate;   /**< limit of traffic from the stations in kbit/s, 0 none */
    int32_t downstreamRate; /**< limit of traffic to the stations in kbit/s, 0 none */
    int32_t protectMF;      /**< management frame protection: 0 off, 1 optional, 2 required */
    uint8_t presetRole;     /**< one of WLBRCM_PRESET_* */
    uint8_t hostTail[3];
} WlSsidCfg;

/** Capabilities of one radio, filled by wlModuleInit(). Flags are 0 or 1. */
typedef struct WlCaps {
    uint8_t wme;            /**< WMM */
    uint8_t wmeApsd;        /**< WMM power save */
    uint8_t mbss;           /**< several BSSs */
    uint8_t ampdu;          /**< A-MPDU */
    uint8_t amsduTx;        /**< A-MSDU transmit */
    uint8_t wmf;            /**< wireless multicast forwarding */
    uint8_t radioPwrsave;   /**< radio power save */
    uint8_t rxchainPwrsave; /**< receive-chain power save */
    uint8_t wds;            /**< WDS */
    uint8_t wpsCapable;     /**< WPS is handled for this radio; always 1 after discovery */
    uint8_t txbf;           /**< transmit beamforming */
    uint8_t atf;            /**< airtime fairness (5 GHz radios) */
    uint8_t muMimo;         /**< multi-user MIMO */
    uint8_t dhd;            /**< the interface answers to dhdctl */
    uint8_t hostByte1[2];
    int32_t maxBss;       /**< BSSs the radio carries: 1, 4 or 6 */
    char vifNames[6][31]; /**< "wl0.1" .. for 1 .. maxBss - 1, the others empty */
    uint8_t hostTail[2];
} WlCaps;

/** One radio, shared by the module and its host.
 *
 * Created zero-filled by wlModuleInit(), owned by the host once accepted. The host fills `radio` and `bss` before a
 * bring-up operation. Of these the module writes only `macText`, `enable` of a preset SSID, `autoChannel`,
 * `gpioOverlays`, and what a WPS registration agreed on.
 */
struct WlIntf {
    char intfName[16];  /**< interface name found by discovery */
    int32_t state;      /**< 0, WLBRCM_STATE_SETTING_UP or WLBRCM_STATE_READY */
    int32_t bandCode;   /**< WLBRCM_BANDCODE_5G or WLBRCM_BANDCODE_2G */
    uint8_t macAddr[6]; /**< hardware address; zeros when the interface has none */
    uint8_t hostByte1[2];
    WlRadioCfg radio;
    WlSsidCfg bss[WLBRCM_MAX_BSS];
    WlCaps caps;
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
 * Setters read it and write nothing through it. Where a getter keeps an int behind `value` or `aux`, the pointer is
 * cast.
 */
typedef struct WlanParamArg {
    char *prefix;  /**< nvram prefix, which is also the interface name: "wl0", "wl0.1" */
    char *value;   /**< the value as text: a decimal number, a word or free text */
    char *aux;     /**< auxiliary text; its meaning belongs to the function */
    void *result;  /**< output of getters */
    int32_t index; /**< BSS index within the radio; the radio's number from 0 for radio-wide settings */
} WlanParamArg;

/** Makes sure that the driver's capability listing stands in /tmp/<ifname>_cap, which is kept as a cache.
 * @param ifname  interface name; begins with "wl".
 * @param[out] path  receives the file name; at least 64 bytes.
 * @return 0, also when the driver's command failed; -14 for a null argument; -5 for a name that does not begin with
 *   "wl" or is no interface name.
 */
WLBRCM_API int qvWlanDumpWlCap(const char *ifname, char *path);

/** Band of a radio by its chip: 1 (5 GHz, device 0x43c5), 2 (2.4 GHz, device 0x43bb), 0 for any other chip or name. */
WLBRCM_API int qvWlanGetBandType(const char *ifname);

/** PHY letter of a radio: "a", "b", "g", "n" or "v"; "b" when the driver gives none; null for a null name or one that
 * does not begin with "wl". The text is static. */
WLBRCM_API const char *qvWlanGetPhyType(const char *ifname);

/** 1 when the radio can beamform: core revision 40 or later and two or more transmit chains; else 0. */
WLBRCM_API int checkWlanTxBFCap(const char *ifname);

/** BSSs by the capability listing: 4 when it names mbss4 or mbss16, else 1. WlCaps.maxBss counts differently. */
WLBRCM_API int qvWlanGetMaxMbss(const char *ifname);

/** Whether the driver lists WMM.
 * @param arg  `value` is the interface name, `result` a text buffer of at least 2 bytes that receives "1" or "0".
 * @return 0; -5 when the capability listing cannot be read (`result` is "0"); -14 for a null argument, value or result.
 */
WLBRCM_API int qvWlanGetWmmSupport(WlanParamArg *arg);

/** Asks the chip-information device for the STBC word. @return its answer, or -1 when unknown. */
WLBRCM_API int qvWlanReadChipInfoStbc(void);

/** Stores the board's GPIO overlay word in `radio->gpioOverlays`; leaves it when the board device is missing. */
WLBRCM_API void qvWlanGetGPIOverlays(WlRadioCfg *radio);

#ifdef __cplusplus
}
#endif

#endif
