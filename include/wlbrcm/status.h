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
    const char *name;   /**< by the host: key, a name of qvbrcm_StatusUpdate(); null skips the item */
    uintptr_t hostWord; /**< the host's; neither read nor written */
    void *value;        /**< by the module when the item is served, else left as it was: a block that the host frees, or
                         * null without memory. An earlier value is overwritten, not freed */
};

/** Decoded current channel of an interface, filled by the module. */
typedef struct WlChannelInfo {
    uint16_t chanspec;  /**< the driver's 16-bit channel word */
    uint16_t channel;   /**< control channel number */
    uint32_t bandwidth; /**< MHz: 20, 40, 80; any other width counts as 20 */
    uint16_t band;      /**< 2 = 2.4 GHz, 5 = 5 GHz */
    uint8_t pad[2];     /**< not written */
    uint32_t sideband;  /**< control channel in the wide one: 0 at 20 MHz; 1 lower, 2 upper of 40 MHz; 3 to 6 from the
                         * lowest of 80 MHz on */
} WlChannelInfo;

/** Traffic counters of an interface since the driver started, filled by the module. They wrap at 32 bits; one that the
 * driver does not report is 0. */
typedef struct WlTrafficCounters {
    uint32_t txbyte;    /**< bytes sent */
    uint32_t rxbyte;    /**< bytes received */
    uint32_t txframe;   /**< frames sent */
    uint32_t txerror;   /**< frames that could not be sent */
    uint32_t txnoassoc; /**< frames not sent because the station is not associated */
    uint32_t rxframe;   /**< frames received */
    uint32_t rxerror;   /**< frames received with an error */
    uint32_t rxbadda;   /**< frames received with an unexpected destination address */
} WlTrafficCounters;

/** One associated station: 128 bytes, filled by the module. What the driver does not report is 0 in the records of the
 * station list and of events. Counters run since the station joined. */
struct WlStaInfo {
    char ifName[16];           /**< BSS interface */
    char macAddr[20];          /**< address: upper-case hexadecimal pairs joined by colons */
    uint32_t phyMode;          /**< 1 802.11b, 2 g, 4 a, 8 n, 16 ac; 0 not known */
    uint32_t bandwidth;        /**< MHz: 20, 40, 80, 160; 0 not known */
    uint16_t authenticated;    /**< flag; 0 also when not known */
    uint8_t pad1[2];           /**< not written */
    uint32_t txRate;           /**< rate of the last packet to the station, kbit/s; 0 not known */
    uint32_t rxRate;           /**< rate of the last packet from the station, kbit/s; 0 not known */
    int32_t rssi;              /**< signal in dBm, negative; 0 not known */
    int32_t snr;               /**< `rssi` - `noise` in dB; without meaning when one of them is 0 */
    int32_t noise;             /**< noise floor of the radio in dBm, negative; 0 not known */
    uint32_t reserved;         /**< 0 */
    uint32_t txPkts;           /**< packets to the station */
    uint8_t pad2[4];           /**< not written */
    uint64_t txBytes;          /**< bytes to the station */
    uint32_t rxPkts;           /**< data packets from the station */
    uint8_t pad3[4];           /**< not written */
    uint64_t rxBytes;          /**< data bytes from the station */
    uint32_t txFailures;       /**< packets to the station that failed */
    uint32_t txRetries;        /**< packets to the station that were sent again */
    uint32_t txRetryExhausted; /**< packets to the station given up after the last retry */
    uint8_t pad4[8];           /**< not written */
    uint32_t lastTxRate;       /**< a second copy of `txRate` */
};

/** Capability elements of a beacon (IEEE 802.11), in part the host's. The host clears it; what the beacon lacks is left
 * as it was. Element bodies are raw bytes; a length tells how many the beacon has, the field has as many as its size.
 */
struct WlIntfInfo {
    uint8_t hostHead[153]; /**< the host's */
    uint8_t ieFlags; /**< bit 0x2 HT Capabilities seen, bit 0x4 a VHT element seen; other bits stay as they were */
    uint8_t pad1[2]; /**< not written */
    uint32_t capabilities; /**< Capability Information of the beacon, 16 bits */
    uint8_t pad2[4];       /**< not written */
    uint8_t htCapId;       /**< element ID as reported: 45, HT Capabilities */
    uint8_t htCapLen;      /**< its length in bytes as reported */
    uint8_t htCap[26];     /**< its body */
    uint8_t htInfoId;      /**< element ID: 61, HT Operation */
    uint8_t htInfoLen;     /**< its length in bytes */
    uint8_t htInfo[22];    /**< its body */
    uint8_t vhtCapId;      /**< element ID: 191, VHT Capabilities */
    uint8_t vhtCapLen;     /**< its length in bytes */
    uint8_t vhtCap[12];    /**< its body */
    uint8_t vhtOpId;       /**< element ID: 192, VHT Operation */
    uint8_t vhtOpLen;      /**< its length in bytes */
    uint8_t vhtOp[5];      /**< its body */
    uint8_t hostTail[3];   /**< the host's */
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
 * Names, the values that they get, and in brackets the commands that they cost:
 * - "20M_Channel", "40M_UpperChannel", "40M_LowerChannel", "80M_Channel": text, channel numbers joined by commas [2]
 * - "MaxBitRate": int32_t, Mbit/s [1]
 * - "RadioStatus": text, "Up" or "Down" [1]
 * - "CurChannel": int32_t, control channel number [1]
 * - "CurRate": text, "866 Mbps" [2 or 3]
 * - "WPSStatus": int32_t, the WPS daemon's progress 0..10, of which 1 is running, 2 succeeded, 3 failed, 4 timed out; 0
 *   when the daemon has set none, 3 for any other number [0]
 * - "CurBandwidth": int32_t, MHz [1]
 * - "CurChanspec", "SideBand": int32_t, the field of WlChannelInfo [1]
 * - "Noise": int32_t, dBm [1]
 * - any name containing "TrafficInfo": WlTrafficCounters of the interface named before the first "_"; without one the
 *   item is left alone [1]
 * - any name containing "DataTransmitRates": text, "Done" or "Fail"; the lists then stand in
 *   /tmp/<radio>DataTxRates.txt [0 or 1]
 *
 * Items of other names and items whose value could not be read are left as they were; "MaxBitRate" and "CurChannel"
 * then hold 0. Items of a channel list set the driver's country to `countryCode`. Read of `intf->radio` are `ifName`,
 * `radioIndex`, `band`, `wirelessMode`, `bandwidth`, `phyType` and `countryCode`.
 *
 * Time: those commands for each item.
 *
 * @param items  the items; their names may be freed when the call returns.
 * @param count  number of items, at least 1.
 * @return 0, whatever single items met; -14 for a null argument or a count below 1.
 */
WLBRCM_API int qvbrcm_StatusUpdate(WlIntf *intf, WlStatusItem *items, int count);

/** Highest PHY rate. Time: one command.
 * @param arg  `prefix` interface, `value` PHY letter.
 * @return Mbit/s for the letters "n" and "v"; else, and on any failure, 0. */
WLBRCM_API int qvWlanGetMaxBitRate(WlanParamArg *arg);
/** Transmit rate that the radio can reach on its current channel, as text, "%u Mbps" or "%u kbps". An 802.11n or
 * 802.11ac mode whose rate is fixed, or of which nothing can be read, gives "0 kbps". Time: two or three commands.
 * @param arg  `prefix` interface, `value` "band mode" with "2.4GHz" or "5GHz" and the number of
 *   qvWlanSetWirelessMode(), `result` text buffer of 32 bytes.
 * @return 0; -14 for a null argument or a bad name. */
WLBRCM_API int qvWlanRateUpdate(WlanParamArg *arg);
/** Writes the basic and supported rates in Mbit/s into /tmp/<prefix>DataTxRates.txt, lines "<list>:BasR" and
 * "<list>:SupR", numbers joined by commas, either list possibly empty. The file stays. Time: one command, or none.
 * @param arg  `prefix` interface.
 * @param wirelessMode  number of qvWlanSetWirelessMode().
 * @param bandwidth  MHz.
 * @param band  WLBRCM_BAND_5G or WLBRCM_BAND_2G.
 * @return 0; -5 when a file could not be read or written; -14 for a null argument or a bad name. */
WLBRCM_API int qvWlanGetDataTxRates(WlanParamArg *arg, int wirelessMode, int bandwidth, int band);

/** Operation: lists the stations associated with one BSS, or with every enabled BSS of the radio.
 *
 * A station that leaves meanwhile is listed with what could still be read. Time: one command for each BSS, one more,
 * and two or three for each station.
 *
 * @param bssIndex  entry of `intf->bss`; negative for all. A BSS that is not enabled has no stations.
 * @param[out] list  one zero-filled block the caller releases with free(); null when there is no station.
 * @param[out] count  records in *list. Meaningful only when *list is not null.
 * @return 0, also when the driver cannot be asked; -5 when bssIndex is not below bssCount (outputs untouched); -14 for
 * a null argument. */
WLBRCM_API int qvbrcm_GetAssocDevList(WlIntf *intf, int bssIndex, WlStaInfo **list, int *count);
/** Fills a station record from the driver's reports, but for `macAddr`, `snr` and `noise`. Fields that the reports lack
 * are left as they were. Time: two or three commands.
 * @param ifname  BSS interface.
 * @param mac  address as text; may stand in the record itself.
 * @param[in,out] sta  the record.
 * @return 0, also when the driver gave no report; -1 for a null argument; -14 for a bad name or address. */
WLBRCM_API int get_sta_info(const char *ifname, const char *mac, WlStaInfo *sta);
/** get_sta_info() without packet and byte counters. */
WLBRCM_API int get_sta_basic_info(const char *ifname, const char *mac, WlStaInfo *sta);
/** get_sta_info() for mode 'd', get_sta_basic_info() for any other mode. */
WLBRCM_API int do_get_sta_info(const char *ifname, const char *mac, WlStaInfo *sta, char mode);
/** Band of an interface by the driver; the part of the name behind a "." does not count. Time: one command.
 * @return WLBRCM_BAND_2G, WLBRCM_BAND_5G, or -1 when it is not known, and for a bad name. */
WLBRCM_API int checkWlBand(const char *ifname);
/** Largest number in a rate-set text, truncated to a whole one; -1 when it has none or is null. */
WLBRCM_API int getMaxRateSet(const char *text);

/** Operation: capability word and HT and VHT elements of an interface's beacon. Time: one command.
 * @param ifname  the radio's interface.
 * @param bssIndex  0 for the radio's interface, n for its n-th virtual one, "<ifname>.<n>".
 * @param[in,out] info  what the beacon lacks is left as it was; clear it before.
 * @return 0. A null argument, a bad name and a negative index are logged at level 4, and nothing is run. */
WLBRCM_API int qvbrcm_GetGenIntfInfo(const char *ifname, int bssIndex, WlIntfInfo *info);
/** Operation: free share of the current channel's air time, in percent. Time: one command.
 * @param ifname,bssIndex  as for qvbrcm_GetGenIntfInfo().
 * @param[out] fat  100 minus the sum of the six busy percentages of the driver's channel statistics: 100 is an idle
 *   channel, 0 a full one, and a negative number a sum above 100. Written only when there are statistics; set it to a
 *   number out of range before.
 * @return 0. A null argument, a bad name and a negative index are logged at level 4, and nothing is run. */
WLBRCM_API int qvbrcm_GetFatIntfInfo(const char *ifname, int bssIndex, int *fat);

/** @name Radio getters
 *
 * `prefix` (or `ifname`) is the interface, `result` the output. They return 0; -14 for a null argument or a bad name;
 * -5 when nothing could be read. Time: one command each.
 * @{ */
/** Whether the interface is up. `result` int: 1 up, 0 down (also 0 on -5). */
WLBRCM_API int qvWlanGetRadioStatus(WlanParamArg *arg);
/** Noise floor. `result` int: dBm, negative (0 on -5). */
WLBRCM_API int qvWlanGetNoise(WlanParamArg *arg);
/** Traffic counters. `counters` is untouched on -5, which only a command that cannot be started gives. */
WLBRCM_API int qvWlanGetTrafficInfo(const char *ifname, WlTrafficCounters *counters);
/** Current channel. `prefix` begins with "wl"; `result` WlChannelInfo, untouched on -5. */
WLBRCM_API int qvWlanGetCurrentChannelInfo(WlanParamArg *arg);
/** Current control channel; `result` is not used. @return its number, or -1 on any failure. */
WLBRCM_API int qvWlanGetCurrentCh(WlanParamArg *arg);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
