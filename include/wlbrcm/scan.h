/** @file
 * Channel survey: forced scans, scanned channels and neighbouring access points.
 */
#ifndef WLBRCM_SCAN_H
#define WLBRCM_SCAN_H

#include <wlbrcm/radio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One scanned channel: 24 bytes. */
struct WlChanScanInfo {
    uint16_t chanspec;  /**< the channel number */
    uint16_t channel;   /**< the channel number */
    uint32_t bandwidth; /**< 20 (MHz) */
    uint16_t band;      /**< 2 = 2.4 GHz, 5 = 5 GHz */
    uint8_t pad1[2];
    uint32_t sideband; /**< 0 */
    uint8_t valid;     /**< 1 when filled, 0 when the daemon's line was of another shape */
    uint8_t pad2[3];
    uint32_t bssNum; /**< BSSs that the daemon counts for the channel */
};

/** One neighbouring access point: 700 bytes. */
struct WlScanAp {
    char ifName[16];   /**< scanning interface */
    char ssid[101];    /**< raw bytes of the SSID, decoded by formatSSID() */
    char bssid[23];    /**< as reported */
    int32_t band;      /**< 2 = 2.4 GHz, 1 = 5 GHz, 0 unknown */
    int32_t bandwidth; /**< MHz */
    int32_t rssi;      /**< dBm */
    uint8_t wps;       /**< 1 when the AP advertises WPS */
    uint8_t pad1[3];
    int32_t channel;
    uint32_t beaconPeriod; /**< time units */
    uint32_t dtimPeriod;   /**< beacons */
    int16_t noise;         /**< dBm */
    uint16_t phyModes;     /**< bits: 0x1 802.11b, 0x2 g, 0x4 a, 0x8 n, 0x10 ac */
    uint16_t security;     /**< bits: 0x1 WPA, 0x2 WPA2 */
    uint16_t akm;          /**< 2 with PSK, 1 other, 0 not reported */
    uint16_t ciphers;      /**< bits: 0x1 TKIP, 0x2 CCMP */
    uint8_t pad2[2];
    int32_t mode;             /**< 1 infrastructure, 2 ad hoc, 0 unknown */
    char basicRates[257];     /**< Mbit/s, comma-separated */
    char supportedRates[259]; /**< Mbit/s, comma-separated, then the MCS rates; at most 255 characters */
};

WLBRCM_ASSERT_LAYOUT(sizeof(WlChanScanInfo) == 24 && offsetof(WlChanScanInfo, band) == 8 &&
                         offsetof(WlChanScanInfo, valid) == 16 && offsetof(WlChanScanInfo, bssNum) == 20,
                     "layout of WlChanScanInfo");
WLBRCM_ASSERT_LAYOUT(sizeof(WlScanAp) == 700 && offsetof(WlScanAp, ssid) == 16 && offsetof(WlScanAp, bssid) == 117 &&
                         offsetof(WlScanAp, band) == 140 && offsetof(WlScanAp, wps) == 152 &&
                         offsetof(WlScanAp, channel) == 156 && offsetof(WlScanAp, noise) == 168 &&
                         offsetof(WlScanAp, ciphers) == 176 && offsetof(WlScanAp, mode) == 180 &&
                         offsetof(WlScanAp, basicRates) == 184 && offsetof(WlScanAp, supportedRates) == 441,
                     "layout of WlScanAp");

/** Operation: has the channel selection daemon scan, and waits until it is done. @return 0; -5 when it did not
 * finish; -14 for a null argument. */
WLBRCM_API int qvbrcm_ChannelScan(WlIntf *intf);
/** Operation: the channels and access points of the last scan. A pair of outputs that is not complete (a null array or
 * count place) is skipped.
 * @param[out] channels,aps  zero-filled blocks that the caller frees.
 * @return 0; -5 when both pairs are incomplete; -14 when a report could not be made: outputs are untouched,
 * but the channel outputs null and 0 when only the access points failed. */
WLBRCM_API int qvbrcm_GetChanScanRpt(WlIntf *intf, WlChanScanInfo **channels, int *channelCount, WlScanAp **aps,
                                     int *apCount);
/** Forced scan of `prefix`. @return 0 or -5; -14 for a null argument or bad name. */
WLBRCM_API int qvWlanChanScan(WlanParamArg *arg);
/** Channel records of `prefix`: `value` points to an int, the radio's band; `aux` to the int that receives the count;
 * `result` to the array pointer (the caller frees it). @return 0 or -5; -14 for a null argument or bad name. */
WLBRCM_API int qvWlanDumpCSRes(WlanParamArg *arg);
/** Access points seen by `prefix`: `aux` points to the int that receives the count, `result` to the array pointer (the
 * caller frees it). @return 0; -5 when there is no report or no AP; -14 for a null argument or bad name. */
WLBRCM_API int qvWlanGetScanApResults(WlanParamArg *arg);
/** The same for a radio record. @return 0; -5 without results; -14 for a null argument. */
WLBRCM_API int qvbrcm_GetChanScanApRpt(WlIntf *intf, WlScanAp **aps, int *count);
/** Decodes the driver's "\xNN" escapes in place; a backslash of another kind is doubled, so give a buffer of twice the
 * text's length plus one, 255 bytes at most. @return `text`. */
WLBRCM_API char *formatSSID(char *text);

#ifdef __cplusplus
}
#endif

#endif
