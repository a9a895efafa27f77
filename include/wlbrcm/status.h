/** @file
 * State and statistics of a radio: status items, rates, associated stations, interface information.
 */
#ifndef WLBRCM_STATUS_H
#define WLBRCM_STATUS_H

#include <wlbrcm/radio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One item of a status request: three words. */
struct WlStatusItem {
    const char *name;   /**< key, set by the host; null skips the item */
    uintptr_t hostWord; /**< the host's; neither read nor written */
    void *value;        /**< set when the item is served: a text, an int32_t or a WlTrafficCounters to free() */
};

/** Decoded current channel of an interface. */
typedef struct WlChannelInfo {
    uint16_t chanspec;  /**< the driver's 16-bit channel word */
    uint16_t channel;   /**< control channel number */
    uint32_t bandwidth; /**< MHz: 20, 40, 80 */
    uint16_t band;      /**< 2 = 2.4 GHz, 5 = 5 GHz */
    uint8_t pad[2];
    uint32_t sideband; /**< 0 at 20 MHz; 1 lower, 2 upper of 40 MHz; 3 to 6 from the lowest of 80 MHz on */
} WlChannelInfo;

/** Traffic counters of an interface, in frames or bytes since the driver started. */
typedef struct WlTrafficCounters {
    uint32_t txbyte;
    uint32_t rxbyte;
    uint32_t txframe;
    uint32_t txerror;
    uint32_t txnoassoc;
    uint32_t rxframe;
    uint32_t rxerror;
    uint32_t rxbadda;
} WlTrafficCounters;

/** One associated station: 128 bytes. */
struct WlStaInfo {
    char ifName[16];        /**< BSS interface */
    char macAddr[20];       /**< upper-case hexadecimal pairs joined by colons */
    uint32_t phyMode;       /**< 1 802.11b, 2 g, 4 a, 8 n, 16 ac, 0 not decided */
    uint32_t bandwidth;     /**< MHz: 20, 40, 80, 160; 0 not decided */
    uint16_t authenticated; /**< 1 when the station is authenticated */
    uint8_t pad1[2];
    uint32_t txRate;   /**< rate of the last packet to the station, kbit/s */
    uint32_t rxRate;   /**< rate of the last packet from the station, kbit/s */
    int32_t rssi;      /**< dBm; 0 when the driver gave none */
    int32_t snr;       /**< dB: rssi - noise */
    int32_t noise;     /**< dBm */
    uint32_t reserved; /**< 0 */
    uint32_t txPkts;
    uint8_t pad2[4];
    uint64_t txBytes;
    uint32_t rxPkts;
    uint8_t pad3[4];
    uint64_t rxBytes;
    uint32_t txFailures;
    uint32_t txRetries;
    uint32_t txRetryExhausted;
    uint8_t pad4[8];
    uint32_t lastTxRate; /**< a second copy of `txRate` */
};

/** Capability elements of a beacon, in part the host's. */
struct WlIntfInfo {
    uint8_t hostHead[153];
    uint8_t ieFlags; /**< bit 0x2: HT Capabilities seen; bit 0x4: a VHT element seen */
    uint8_t pad1[2];
    uint32_t capabilities; /**< capability word of the beacon */
    uint8_t pad2[4];
    uint8_t htCapId; /**< element ID 45 (IEEE 802.11 HT Capabilities) */
    uint8_t htCapLen;
    uint8_t htCap[26];
    uint8_t htInfoId; /**< element ID 61 (HT Operation) */
    uint8_t htInfoLen;
    uint8_t htInfo[22];
    uint8_t vhtCapId; /**< element ID 191 (VHT Capabilities) */
    uint8_t vhtCapLen;
    uint8_t vhtCap[12];
    uint8_t vhtOpId; /**< element ID 192 (VHT Operation) */
    uint8_t vhtOpLen;
    uint8_t vhtOp[5];
    uint8_t hostTail[3];
};

WLBRCM_ASSERT_LAYOUT(sizeof(WlStatusItem) == 3 * sizeof(void *), "a status item is three words");
WLBRCM_ASSERT_LAYOUT(sizeof(WlChannelInfo) == 16 && offsetof(WlChannelInfo, bandwidth) == 4 &&
                         offsetof(WlChannelInfo, band) == 8 && offsetof(WlChannelInfo, sideband) == 12,
                     "layout of WlChannelInfo");
WLBRCM_ASSERT_LAYOUT(sizeof(WlTrafficCounters) == 32 && offsetof(WlTrafficCounters, rxbadda) == 28,
                     "layout of WlTrafficCounters");
WLBRCM_ASSERT_LAYOUT(sizeof(WlStaInfo) == 128 && offsetof(WlStaInfo, phyMode) == 36 &&
                         offsetof(WlStaInfo, authenticated) == 44 && offsetof(WlStaInfo, txRate) == 48 &&
                         offsetof(WlStaInfo, rssi) == 56 && offsetof(WlStaInfo, noise) == 64 &&
                         offsetof(WlStaInfo, txPkts) == 72 && offsetof(WlStaInfo, txBytes) == 80 &&
                         offsetof(WlStaInfo, rxBytes) == 96 && offsetof(WlStaInfo, txRetryExhausted) == 112 &&
                         offsetof(WlStaInfo, lastTxRate) == 124,
                     "layout of WlStaInfo");
WLBRCM_ASSERT_LAYOUT(sizeof(WlIntfInfo) == 240 && offsetof(WlIntfInfo, ieFlags) == 153 &&
                         offsetof(WlIntfInfo, capabilities) == 156 && offsetof(WlIntfInfo, htCapId) == 164 &&
                         offsetof(WlIntfInfo, htInfo) == 194 && offsetof(WlIntfInfo, vhtCap) == 218 &&
                         offsetof(WlIntfInfo, vhtOp) == 232,
                     "layout of WlIntfInfo");

/** Operation: fills each item whose name is known with a freshly allocated value that the host frees.
 *
 * Texts: "20M_Channel", "40M_UpperChannel", "40M_LowerChannel", "80M_Channel" (channel lists), "RadioStatus" ("Up" or
 * "Down"), "CurRate" ("866 Mbps"), any name containing "DataTransmitRates" ("Done" or "Fail"; the lists stand in
 * /tmp/<radio>DataTxRates.txt). int32_t: "MaxBitRate" (Mbit/s), "CurChannel", "WPSStatus" (0..10; 0 when the daemon has
 * set none), "CurBandwidth" (MHz), "CurChanspec", "SideBand", "Noise" (dBm). WlTrafficCounters: a name containing
 * "TrafficInfo", asked for the interface named before its first "_"; without one the item is left alone.
 *
 * Items of other names and items whose value could not be read are left as they were; "MaxBitRate" and "CurChannel"
 * then hold 0.
 * @param count  number of items, at least 1.
 * @return 0, whatever single items met; -14 for a null argument or a count below 1.
 */
WLBRCM_API int qvbrcm_StatusUpdate(WlIntf *intf, WlStatusItem *items, int count);

/** Highest PHY rate in Mbit/s, or 0. @param arg  `prefix` interface, `value` PHY letter. */
WLBRCM_API int qvWlanGetMaxBitRate(WlanParamArg *arg);
/** Current transmit rate as text, "%u Mbps" or "%u kbps".
 * @param arg  `prefix` interface, `value` "band mode" with "2.4GHz" or "5GHz", `result` text buffer of 32 bytes.
 * @return 0; -14 for a null argument. */
WLBRCM_API int qvWlanRateUpdate(WlanParamArg *arg);
/** Writes the basic and supported rates in Mbit/s into /tmp/<prefix>DataTxRates.txt, lines "<list>:BasR" and
 * "<list>:SupR". @return 0; -5 when a file could not be read or written; -14 for a null argument. */
WLBRCM_API int qvWlanGetDataTxRates(WlanParamArg *arg, int wirelessMode, int bandwidth, int band);

/** Operation: lists the stations associated with one BSS, or with every enabled BSS of the radio.
 * @param bssIndex  entry of `intf->bss`; negative for all.
 * @param[out] list  one zero-filled block the caller releases with free(); null when there is no station.
 * @param[out] count  records in *list. Meaningful only when *list is not null.
 * @return 0; -5 when bssIndex is not below bssCount (outputs untouched); -14 for a null argument. */
WLBRCM_API int qvbrcm_GetAssocDevList(WlIntf *intf, int bssIndex, WlStaInfo **list, int *count);
/** Fills a station record from the driver's reports: all of it. Fields that the reports lack are left as they were.
 * @param mac  address as text.
 * @return 0, also when the driver gave no report; -1 for a null argument; -14 for a bad name or address. */
WLBRCM_API int get_sta_info(const char *ifname, const char *mac, WlStaInfo *sta);
/** get_sta_info() without the traffic counters. */
WLBRCM_API int get_sta_basic_info(const char *ifname, const char *mac, WlStaInfo *sta);
/** get_sta_info() for mode 'd', get_sta_basic_info() for any other mode. */
WLBRCM_API int do_get_sta_info(const char *ifname, const char *mac, WlStaInfo *sta, char mode);
/** Band of an interface by the driver: 2, 1 (5 GHz), or -1. */
WLBRCM_API int checkWlBand(const char *ifname);
/** Largest number in a rate-set text, truncated to a whole one; -1 when it has none or is null. */
WLBRCM_API int getMaxRateSet(const char *text);

/** Operation: capability word and HT and VHT elements of an interface's beacon.
 * @param bssIndex  0 for the radio's interface, n for its n-th virtual one.
 * @param[in,out] info  what the beacon lacks is left as it was; clear it before.
 * @return 0, also when nothing could be read; -14 for a null argument or a bad name. */
WLBRCM_API int qvbrcm_GetGenIntfInfo(const char *ifname, int bssIndex, WlIntfInfo *info);
/** Operation: channel load: 100 minus the sum of six percentages of the driver's channel statistics.
 * @param[out] fat  written only when there are statistics.
 * @return 0, also when nothing could be read; -14 for a null argument or a bad name. */
WLBRCM_API int qvbrcm_GetFatIntfInfo(const char *ifname, int bssIndex, int *fat);

/** @name Radio getters: `prefix` is the interface, `result` the output. 0, -14, or -5 when nothing could be read.
 * @{ */
WLBRCM_API int qvWlanGetRadioStatus(WlanParamArg *arg); /**< `result` int: 1 up, 0 down (also 0 on -5) */
WLBRCM_API int qvWlanGetNoise(WlanParamArg *arg);       /**< `result` int: noise floor in dBm (0 on -5) */
WLBRCM_API int qvWlanGetTrafficInfo(const char *ifname, WlTrafficCounters *counters); /**< untouched on -5 */
WLBRCM_API int qvWlanGetCurrentChannelInfo(WlanParamArg *arg); /**< `result` WlChannelInfo, untouched on -5 */
WLBRCM_API int qvWlanGetCurrentCh(WlanParamArg *arg);          /**< @return the control channel, or -1 */
/** @} */

#ifdef __cplusplus
}
#endif

#endif
