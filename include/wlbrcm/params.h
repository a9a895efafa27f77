/** @file
 * Parameter setters: one function per configuration parameter of a radio or BSS.
 *
 * All of them take one WlanParamArg and return 0, or -14 when the argument, its `prefix` or a `value` they need is
 * null, `prefix` is no interface name, the value is out of range or no known word, or a text is too long for nvram
 * (2047 characters); nothing is then written, and some print the possible values on standard output. They write nvram
 * variables named by `prefix`, an underscore and a key; those take effect when the radio is configured again
 * (bringup.h). Setters marked "at once" run a driver or shell command instead. Results of writes and commands are not
 * checked. Numbers are read like atoi(): text that is no number counts as 0. An empty text removes
 * the variable, and one trailing blank is cut off except in SSIDs and passphrases.
 *
 * The setup sequence qvbrcm_SetupWlan() calls the setters of one radio in an order that matters: the radio-mode state
 * below has one copy for all radios, so finish one radio before setting the wireless mode of the next.
 */
#ifndef WLBRCM_PARAMS_H
#define WLBRCM_PARAMS_H

#include <wlbrcm/radio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Radio-mode state, shared by all radios
 * @{ */
extern WLBRCM_API int brcm_gmode;   /**< 802.11g: 0 B only, 4 G only, 1 any other; starts at 0 */
extern WLBRCM_API int brcm_nmode;   /**< 802.11n: -1 on, 0 off; starts at -1 */
extern WLBRCM_API int brcm_vhtmode; /**< 802.11ac: -1 on, 0 off; starts at -1 */
extern WLBRCM_API int brcm_nreqd;   /**< flag: stations must support 802.11n; starts at 0 */
extern WLBRCM_API int nonly5G;      /**< flag: mode 3 was set with `aux` "5G"; starts at 0 */
extern WLBRCM_API int brcm_bw;      /**< width in MHz last applied by qvWlanSetChannel(); starts at 20 */
extern WLBRCM_API int mcs_index;    /**< fixed MCS index, -1 automatic; starts at -1 */
extern WLBRCM_API int wepkeyid[4];  /**< default WEP key number 1..4 of BSS 0..3; each starts at 1 */
/** @} */

/** @name Basic parameters
 * @{ */
/** 802.11 mode of the radio. `value` 0 G, 1 B, 2 B/G, 3 N, 4 B/G/N, 5 A, 6 A/N, 7 AC, 8 N/AC, 9 A/N/AC; `aux` the
 * band, "5G" or other, may be null. Sets the radio-mode state and writes nothing; `prefix` is not read. Modes 0, 1, 2
 * and 4 leave brcm_vhtmode as it was. An unknown mode still clears brcm_nreqd and nonly5G. */
WLBRCM_API int qvWlanSetWirelessMode(WlanParamArg *arg);
/** Network name. `value` SSID of up to 32 bytes (a longer one is refused before anything is written), `aux` the
 * radio's interface (-14 when it is none), `index` the BSS. Key ssid; sets the driver's SSID at once. Time: one
 * command. */
WLBRCM_API int qvWlanSetSSID(WlanParamArg *arg);
/** Radio on or off. `value` 0 or 1. Key radio. */
WLBRCM_API int qvWlanSetRadioOn(WlanParamArg *arg);
/** Country. `value` its code of up to 31 characters, optionally a slash and a revision ("DE/3"). Keys country_code and
 * country_rev ("0" if none). */
WLBRCM_API int qvWlanSetCountryCode(WlanParamArg *arg);
/** Station limit of the radio. `value` any number. Key maxassoc. */
WLBRCM_API int qvWlanSetGlobalMaxStaNum(WlanParamArg *arg);
/** Station limit of the BSS. `value` a number, stored unconverted. Key bss_maxassoc. */
WLBRCM_API int qvWlanSetPerBssMaxStaNum(WlanParamArg *arg);
/** SSID left out of beacons. `value` 0 or 1. Key closed. */
WLBRCM_API int qvWlanSetHideSSID(WlanParamArg *arg);
/** Stations of the BSS kept apart. `value` 0 or 1. Key ap_isolate. */
WLBRCM_API int qvWlanSetBssIsolation(WlanParamArg *arg);
/** Wireless multicast forwarding of the BSS. `value` any number, 0 off. Key wmf_bss_enable. */
WLBRCM_API int qvWlanSetMulticastFwd(WlanParamArg *arg);
/** Fixed MCS index for qvWlanSetRate(). `value` the index or -1; stored in mcs_index. Writes nothing; `prefix` is not
 * read. */
WLBRCM_API int qvWlanSetMCS(WlanParamArg *arg);
/** Address of the BSS in nvram. Copies key hwaddr into the text buffer `result` (at least 18 bytes; longer values are
 * cut), empty when unset. */
WLBRCM_API int qvWlanGetApMAC(WlanParamArg *arg);
/** @} */

/** @name Setters that do nothing: any argument, also null, gives 0
 *
 * This platform has no such setting; they are there for callers that set every parameter.
 * @{ */
/** Several BSSs. */
WLBRCM_API int qvWlanSetMBSS(WlanParamArg *arg);
/** Detection of overlapping legacy networks. */
WLBRCM_API int qvWlanSetDisableOLBC(WlanParamArg *arg);
/** Transmit antenna. */
WLBRCM_API int qvWlanSetTxAntenna(WlanParamArg *arg);
/** Removal of the WEP keys. */
WLBRCM_API int qvWlanClearWepKey(WlanParamArg *arg);
/** 802.11n bandwidth; qvWlanSetChannel() sets it. */
WLBRCM_API int qvWlanSetHTBw(WlanParamArg *arg);
/** 802.11n extension channel; qvWlanSetChannel() sets it. */
WLBRCM_API int qvWlanSetHTExtCha(WlanParamArg *arg);
/** Board clock. */
WLBRCM_API int qvWlanSetBoardClkState(WlanParamArg *arg);
/** Interference mitigation; qvWlanSetInterferenceMode() sets it. */
WLBRCM_API int qvWlanSetInterference(WlanParamArg *arg);
/** MIMO transmit bandwidth. */
WLBRCM_API int qvWlanSetMimoTxbw(WlanParamArg *arg);
/** Single-stream transmit mode. */
WLBRCM_API int qvWlanSetSsStf(WlanParamArg *arg);
/** @} */

/** @name Security of a BSS
 * @{ */
/** Authentication. `value` "wpa2psk", "wpa2", "wpapskmix", "open", "shared" or "wepauto". Keys akm, auth_mode, auth;
 * "shared" and "wepauto" leave akm and auth_mode as they were. An unknown word prints the possible ones. */
WLBRCM_API int qvWlanSetAuthMode(WlanParamArg *arg);
/** Cipher. `value` "none", "wep", "aes" or "tkipaes". Key crypto, which is unset first in every case, also when an
 * unknown word is refused (it prints the possible ones). */
WLBRCM_API int qvWlanSetEncrypType(WlanParamArg *arg);
/** Number of the WEP key in use. `value` 1..4, `index` the BSS, 0..3 (any other index is refused with -14). Key key;
 * kept in wepkeyid. */
WLBRCM_API int qvWlanSetDefaultKeyID(WlanParamArg *arg);
/** WEP key. `value` key text, `index` as for qvWlanSetDefaultKeyID(), whose key number decides: keys key1 to key4. */
WLBRCM_API int qvWlanSetWepKey(WlanParamArg *arg);
/** WPA passphrase or key. `value` the text, not checked; a trailing blank is kept. Key wpa_psk. */
WLBRCM_API int qvWlanSetPreSharedKey(WlanParamArg *arg);
/** Lifetime of the group key. `value` seconds, any number, 0 none. Key wpa_gtk_rekey. */
WLBRCM_API int qvWlanSetRekeyInterval(WlanParamArg *arg);
/** Management frame protection (IEEE 802.11w). `value` 0 off, 1 optional, 2 required. Key mfp. */
WLBRCM_API int qvWlanSetProtectMF(WlanParamArg *arg);
/** @} */

/** @name Channel and regulatory
 * @{ */
/** Sizes of buffers. */
enum {
    WLBRCM_CHANNEL_LIST_SIZE = 1025 /**< bytes that the channel lists need; they stop at whole channel numbers there */
};

/** Channel and width of the radio. `value` control channel, `index` 0 (any other does nothing and gives 0), `aux` the
 * descriptor "band,bandwidth,sideband,auto,regulatory mode,DFS pre-ISM,DFS post-ISM,TPC dB,wireless mode" with the
 * units of WlRadioCfg and the band as "2.4G" or "5G". Fields missing from the end on (or all, when the band is empty)
 * count as
 * ",20,-1,0,0,-1,-1,0,-1". With "auto" 1 `value` may be null and the channel is 0. The width is 20 MHz without 802.11n,
 * and 40 MHz instead of 80 with nonly5G. Keys nband, those of qvWlanSetupRegulatory(), bw_cap, vht_features (2.4 GHz),
 * nmode, vhtmode, channel, chanspec; the driver's "nreqd" at once. Time: one command. */
WLBRCM_API int qvWlanSetChannel(WlanParamArg *arg);
/** Regulatory keys of a radio: dfs_preism, dfs_postism, tpc_db and reg_mode "h" for mode 1; reg_mode "d" for 2, "off"
 * for any other.
 * @param prefix  nvram prefix.
 * @param band  not used.
 * @param regMode  1 802.11h, 2 802.11d, any other none.
 * @param dfsPreIsm,dfsPostIsm  monitoring before and after use of a radar channel, seconds; -1 the driver's.
 * @param tpcDb  transmit power reduction in dB.
 * @return 0; -14 for a prefix that is no interface name. */
WLBRCM_API int qvWlanSetupRegulatory(const char *prefix, int band, int regMode, int dfsPreIsm, int dfsPostIsm,
                                     int tpcDb);
/** Channels that the driver allows in a country. Sets the driver's country to it first. Time: two commands.
 * @param arg  `prefix` the radio; `value` "band,bandwidth,sideband": "5GHz" or "2.4GHz"; 10, 20, 40 or 80 MHz; "upper",
 *   "lower" or any other word for both. `aux` the country; one with other characters than letters, digits and "/#._-",
 *   one that begins with none of the former, or holds "..", is not set, with a level-4 message. `result` a text buffer
 * of WLBRCM_CHANNEL_LIST_SIZE bytes that receives decimal channel numbers joined by commas; empty when there is no
 * listing.
 * @return 0, also without a listing; -14 for a null member or a bad name (`result` is then untouched).
 */
WLBRCM_API int qvWlanChannelList(WlanParamArg *arg);
/** Channels of the driver's current listing of `prefix`, up to the first word that is no number. `result` as for
 * qvWlanChannelList(). Time: one command. @return 0; -5 when the listing cannot be read (`result` untouched); -14. */
WLBRCM_API int qvWlanGetValidChannel(WlanParamArg *arg);
/** Whether a channel stands in a comma-separated list, of which at most 255 characters are read.
 * @return 1 when it does; else 0, also for a null list. */
WLBRCM_API int qvWlanCheckChannelSideband(int channel, const char *list);
/** Sets `radio->autoChannel` when the fixed 40 MHz channel is not in the driver's list for its band, country and
 * sideband. Does nothing for a null record or a sideband that is neither 1 nor -1. Time: two commands. */
WLBRCM_API void qvWlanUpdateAutoChannel(WlRadioCfg *radio);
/** Automatic channel selection: unsets the variable acs_mode. The argument is not used and may be null; always 0. */
WLBRCM_API int qvWlanSetAutoCh(WlanParamArg *arg);
/** Policy of the channel selection daemon. `value` number, not negative. Tells the daemon at once, in the background,
 * and prints what it does on standard output. Time: one command. */
WLBRCM_API int qvWlanSetAutoChPolicy(WlanParamArg *arg);
/** Channels that automatic selection skips. `value` the list, of which 100 characters count. Key acs_autoch_skip. */
WLBRCM_API int qvWlanAutoChannelSkip(WlanParamArg *arg);
/** Bandwidth capability. `aux` (not `value`): bits 0x1 20 MHz, 0x2 40, 0x4 80, as a decimal number, unchecked. Key
 * bw_cap. */
WLBRCM_API int qvWlanSetPerBandBw(WlanParamArg *arg);
/** @} */

/** @name Advanced radio parameters
 *
 * Ranges are inclusive; "any number" is stored as it is.
 * @{ */
/** Fixed legacy rate. `value` any number, in the driver's unit; 0 without a fixed mcs_index. Keys rate and, with
 * 802.11n and an mcs_index other than 32, nmcsidx. mcs_index 32 becomes -1 at 20 MHz. */
WLBRCM_API int qvWlanSetRate(WlanParamArg *arg);
/** Multicast rate. `value` any number, in the driver's unit; 0 automatic. Key mrate. */
WLBRCM_API int qvWlanSetMulticastRate(WlanParamArg *arg);
/** Beacon interval. `value` 20..1024 time units (1024 microseconds). Keys bcn, bcn_rotate. */
WLBRCM_API int qvWlanSetBeaconPeriod(WlanParamArg *arg);
/** DTIM period. `value` beacons, any number. Key dtim. */
WLBRCM_API int qvWlanSetDtimPeriod(WlanParamArg *arg);
/** Transmit power. `value` 1..100 percent; at once. Time: one command. */
WLBRCM_API int qvWlanSetTxPower(WlanParamArg *arg);
/** Protection of 802.11g. `value` 0 and 1 automatic, 2 off. Keys gmode (brcm_gmode), gmode_protection. */
WLBRCM_API int qvWlanSetBGProtection(WlanParamArg *arg);
/** Preamble. `value` 0 long, 1 automatic. Key plcphdr. */
WLBRCM_API int qvWlanSetTxPreamble(WlanParamArg *arg);
/** RTS threshold. `value` 1..2347 bytes. Key rts. */
WLBRCM_API int qvWlanSetRTSThreshold(WlanParamArg *arg);
/** Fragmentation threshold. `value` 256..2346 bytes. Key frag. */
WLBRCM_API int qvWlanSetFragThreshold(WlanParamArg *arg);
/** Frame bursting. `value` 0 or 1. Key frameburst. */
WLBRCM_API int qvWlanSetFrameBurst(WlanParamArg *arg);
/** A-MPDU aggregation. `value` -1 automatic, 0 off, 1 on. Key ampdu. */
WLBRCM_API int qvWlanSetAmpdu(WlanParamArg *arg);
/** A-MSDU aggregation. `value` -1 automatic, 0 off, 1 on. Key amsdu. */
WLBRCM_API int qvWlanSetAmsdu(WlanParamArg *arg);
/** RIFS advertisement. `value` -1 automatic, 0 off. Key rifs_advert. */
WLBRCM_API int qvWlanSetRifsAdv(WlanParamArg *arg);
/** Protection of 802.11n. `value` 0 or 1, without further effect. Keys nmode_protection "auto", and gmode_protection
 * "auto" with 802.11n, else "off". */
WLBRCM_API int qvWlanSetHTProtect(WlanParamArg *arg);
/** 20/40 MHz coexistence. `value` 0 or 1; `aux` "band,bandwidth" with the band of WlRadioCfg and MHz, by default 2.4
 * GHz and 20. Key obss_coex: the value at 2.4 GHz and 40 MHz, else 0. */
WLBRCM_API int qvWlanSetApCoex(WlanParamArg *arg);
/** STBC on transmission. `value` -1 automatic, 1 on, any other off. Key stbc_tx. */
WLBRCM_API int qvWlanSetStbcTx(WlanParamArg *arg);
/** STBC on reception. `value` any number, `index` the radio's number from 0. Key stbc_rx: 0 on the first radio
 * when qvWlanReadChipInfoStbc() gives 0, else the value. */
WLBRCM_API int qvWlanSetStbcRx(WlanParamArg *arg);
/** WMM of the radio. `value` -1 automatic, 0 off, 1 on. Key wme. */
WLBRCM_API int qvWlanSetWmm(WlanParamArg *arg);
/** WMM of the BSS switched off. `value` 1 off, 0 on. Key wme_bss_disable. */
WLBRCM_API int qvWlanSetWmmAdvDisable(WlanParamArg *arg);
/** WMM without acknowledgements. `value` 0 or 1. Key wme_no_ack. */
WLBRCM_API int qvWlanSetWmmNoack(WlanParamArg *arg);
/** WMM power save. `value` 0 or 1. Key wme_apsd. */
WLBRCM_API int qvWlanSetWmmApsd(WlanParamArg *arg);
/** WDS peers. `value` blank-separated addresses, unchecked; empty none. Key wds. */
WLBRCM_API int qvWlanSetWdsMacList(WlanParamArg *arg);
/** Mode of the radio. `value` a word such as "ap" or "wds", unchecked. Key mode. */
WLBRCM_API int qvWlanSetWlMode(WlanParamArg *arg);
/** Any WDS peer accepted. `value` any number, 0 off. Key lazywds. */
WLBRCM_API int qvWlanSetLazyWds(WlanParamArg *arg);
/** Receive-chain power save. `value` "enable quiet-time pps", in seconds and packets per second; a missing number is 0,
 * further ones are ignored. Four rxchain_pwrsave keys. */
WLBRCM_API int qvWlanSetRxChainPwSave(WlanParamArg *arg);
/** Radio power save. `value` "enable quiet-time pps level"; as above. Five radio_pwrsave keys. */
WLBRCM_API int qvWlanSetRadioPwSave(WlanParamArg *arg);
/** Antenna diversity. `value` any number; -1 the driver's choice. Key antdiv. */
WLBRCM_API int qvWlanSetAntennaDiv(WlanParamArg *arg);
/** Transmit beamformer. `value` 0 or 1. Key txbf_bfr_cap. */
WLBRCM_API int qvWlanSetTxBF_BFR(WlanParamArg *arg);
/** Transmit beamformee. `value` 0 or 1. Key txbf_bfe_cap. */
WLBRCM_API int qvWlanSetTxBF_BFE(WlanParamArg *arg);
/** Interference mitigation. `value` -1..4, the driver's numbers; at once. Time: one command. */
WLBRCM_API int qvWlanSetInterferenceMode(WlanParamArg *arg);
/** Airtime fairness. `value` text: exactly "1" is on, any other off. Key atf. */
WLBRCM_API int qvWlanSetATF(WlanParamArg *arg);
/** Probe responses by software. `value` 0..2, the driver's numbers. Key probresp_sw. */
WLBRCM_API int qvWlanSetProbRespSW(WlanParamArg *arg);
/** @} */

/** @name Traffic shaping, at once
 * @{ */
/** Limit of the traffic from the stations of a BSS: `value` kbit/s; below 1 removes it. Time: one to three commands. */
WLBRCM_API int qvWlanSetUpstreamRate(WlanParamArg *arg);
/** Limit of the traffic to the stations of a BSS: `value` kbit/s; below 1 removes it. Time: one or two commands. */
WLBRCM_API int qvWlanSetDownstreamRate(WlanParamArg *arg);
/** Packet flow cache of a BSS: `value` non-zero uses it, 0 skips it. Time: one to three commands.
 * @param arg  `prefix` the BSS interface.
 * @param enabled  whether the BSS is on; if not, only an earlier exclusion rule is removed. */
WLBRCM_API int qvWlanFlowCacheSetup(WlanParamArg *arg, int enabled);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
