/** @file
 * Channel survey: forced scans, scanned channels and neighbouring access points.
 */
#ifndef WLBRCM_SCAN_H
#define WLBRCM_SCAN_H

#include <wlbrcm/radio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One scanned channel: 24 bytes, filled by the module. */
struct WlChanScanInfo {
    uint16_t chanspec;  /**< the channel number again; the daemon gives no channel word */
    uint16_t channel;   /**< the channel number; 0 when not `valid` */
    uint32_t bandwidth; /**< 20 (MHz) */
    uint16_t band;      /**< 2 = 2.4 GHz, 5 = 5 GHz */
    uint8_t pad1[2];    /**< 0 */
    uint32_t sideband;  /**< 0 */
    uint8_t valid;      /**< flag; 0: the daemon's line was of another shape and the whole record is 0 */
    uint8_t pad2[3];    /**< 0 */
    uint32_t bssNum;    /**< BSSs that the daemon counts for the channel */
};

/** One neighbouring access point: 700 bytes, filled by the module. Numbers that the driver does not report are 0, texts
 * empty. */
struct WlScanAp {
    char ifName[16];   /**< scanning interface */
    char ssid[101];    /**< SSID: its bytes as formatSSID() gives them, 100 at most; empty when hidden */
    char bssid[23];    /**< address as reported: pairs of hexadecimal digits joined by colons; a newline may follow */
    int32_t band;      /**< WLBRCM_BAND_2G, WLBRCM_BAND_5G; 0 not known */
    int32_t bandwidth; /**< MHz; 20 when not reported */
    int32_t rssi;      /**< signal in dBm, negative */
    uint8_t wps;       /**< flag: it advertises Wi-Fi Protected Setup */
    uint8_t pad1[3];   /**< 0 */
    int32_t channel;   /**< channel number: the centre of a wide channel as the driver prints it */
    uint32_t beaconPeriod;    /**< beacon interval in time units (1024 microseconds) */
    uint32_t dtimPeriod;      /**< DTIM period in beacons */
    int16_t noise;            /**< noise floor in dBm, negative */
    uint16_t phyModes;        /**< bits: 0x1 802.11b, 0x2 g, 0x4 a, 0x8 n, 0x10 ac; never 0 */
    uint16_t security;        /**< bits: 0x1 WPA, 0x2 WPA2; 0 open or WEP */
    uint16_t akm;             /**< key management: 2 pre-shared key, 1 other, 0 not reported */
    uint16_t ciphers;         /**< pairwise ciphers, bits: 0x1 TKIP, 0x2 CCMP */
    uint8_t pad2[2];          /**< 0 */
    int32_t mode;             /**< 1 infrastructure, 2 ad hoc; 0 not known */
    char basicRates[257];     /**< Mbit/s joined by commas, at most 255 characters */
    char supportedRates[259]; /**< Mbit/s joined by commas, then the MCS rates; at most 255 characters; of MCS rates
                               * that do not fit the lowest are left out */
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

/** Operation: has the channel selection daemon scan, and waits until it is done.
 *
 * Time: as long as the daemon scans, without a limit of the module's: seconds, and more with radar channels. It may run
 * in a thread of its own, but not beside qvbrcm_GetChanScanRpt() of the same radio; a bring-up meanwhile ends the
 * daemon and with it the scan.
 *
 * @param intf  the radio; `radio.ifName` is read.
 * @return 0; -5 when the daemon did not confirm the scan or the name is no interface name; -14 for a null argument. */
WLBRCM_API int qvbrcm_ChannelScan(WlIntf *intf);
/** Operation: the channels and access points of the last scan; scans nothing itself. Time: three commands.
 *
 * Each pair of an array and its count is optional: one that is not complete is skipped.
 * @param[out] channels,aps  blocks that the caller frees with free().
 * @param[out] channelCount,apCount  records in them. No channel, or no access point, counts as a failed report.
 * @return 0; -5 when both pairs are incomplete; -14 for a null record, and when a report could not be made: outputs are
 *   untouched, but the channel outputs null and 0 when only the access points failed. */
WLBRCM_API int qvbrcm_GetChanScanRpt(WlIntf *intf, WlChanScanInfo **channels, int *channelCount, WlScanAp **aps,
                                     int *apCount);
/** Forced scan of `prefix`. Time: as qvbrcm_ChannelScan(). @return 0; -5 when it was not confirmed; -14 for a null
 * argument or a bad name. */
WLBRCM_API int qvWlanChanScan(WlanParamArg *arg);
/** Channel records of `prefix`. Time: one command.
 * @param arg  `value` points to an int, the radio's band; `aux` to the int that receives the count; `result` to the
 *   array pointer (the caller frees the array).
 * @return 0; -5 without a channel in the daemon's report; -14 for a null argument or a bad name. */
WLBRCM_API int qvWlanDumpCSRes(WlanParamArg *arg);
/** Access points seen by `prefix`. Time: two commands.
 * @param arg  `aux` points to the int that receives the count, `result` to the array pointer (the caller frees the
 *   array).
 * @return 0; -5 when there is no report or no access point; -14 for a null argument or a bad name. */
WLBRCM_API int qvWlanGetScanApResults(WlanParamArg *arg);
/** The same for a radio record. @return 0; -5 without results; -14 for a null argument. */
WLBRCM_API int qvbrcm_GetChanScanApRpt(WlIntf *intf, WlScanAp **aps, int *count);
/** Decodes the driver's "\xNN" escapes in place; a backslash of another kind is doubled. An escape of a NUL ends the
 * text for its reader.
 * @param text  a buffer of twice the text's length plus one, of which 255 bytes at most are needed; null gives null.
 * @return `text`, at most 254 characters. */
WLBRCM_API char *formatSSID(char *text);

#ifdef __cplusplus
}
#endif

#endif
