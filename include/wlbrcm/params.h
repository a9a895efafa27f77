/** @file
 * Parameter setters: one function per configuration parameter of a radio or BSS.
 *
 * All of them take one WlanParamArg and return 0, or -14 when the argument, its `prefix` or a `value` they need is
 * null, the value is out of range or no known word, or a text is too long for nvram; nothing is then written. They
 * write nvram variables named by `prefix`, an underscore and a key; those take effect when the radio is configured
 * again (bringup.h). Setters marked "at once" run a driver or shell command instead. Results of writes and commands are
 * not checked. Numbers are read like atoi(): text that is no number counts as 0.
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
extern WLBRCM_API int brcm_gmode;   /**< 0 B only, 4 G only, 1 any other; starts at 0 */
extern WLBRCM_API int brcm_nmode;   /**< 802.11n: -1 on, 0 off; starts at -1 */
extern WLBRCM_API int brcm_vhtmode; /**< 802.11ac: -1 on, 0 off; starts at -1 */
extern WLBRCM_API int brcm_nreqd;   /**< 1 when stations must support 802.11n; starts at 0 */
extern WLBRCM_API int nonly5G;      /**< 1 after mode 3 with `aux` "5G"; starts at 0 */
extern WLBRCM_API int brcm_bw;      /**< width in MHz last applied by qvWlanSetChannel(); starts at 20 */
extern WLBRCM_API int mcs_index;    /**< fixed MCS index, -1 automatic; starts at -1 */
extern WLBRCM_API int wepkeyid[4];  /**< default WEP key number 1..4 of BSS 0..3; each starts at 1 */
/** @} */

/** @name Basic parameters
 * @{ */
/** `value` 0 G, 1 B, 2 B/G, 3 N, 4 B/G/N, 5 A, 6 A/N, 7 AC, 8 N/AC, 9 A/N/AC; `aux` the band, "5G" or other. Sets the
 * radio-mode state and writes nothing; `prefix` is not read. An unknown mode still clears brcm_nreqd and nonly5G. */
WLBRCM_API int qvWlanSetWirelessMode(WlanParamArg *arg);
/** `value` SSID of up to 32 bytes (a longer one is refused before anything is written), `aux` the radio's interface,
 * `index` the BSS. Key ssid; sets the driver's SSID at once. */
WLBRCM_API int qvWlanSetSSID(WlanParamArg *arg);
/** `value` 0 or 1. Key radio. */
WLBRCM_API int qvWlanSetRadioOn(WlanParamArg *arg);
/** `value` country, optionally a slash and a revision ("DE/3"). Keys country_code and country_rev ("0" if none). */
WLBRCM_API int qvWlanSetCountryCode(WlanParamArg *arg);
/** `value` most stations of the radio. Key maxassoc. */
WLBRCM_API int qvWlanSetGlobalMaxStaNum(WlanParamArg *arg);
/** `value` most stations of the BSS, stored unconverted. Key bss_maxassoc. */
WLBRCM_API int qvWlanSetPerBssMaxStaNum(WlanParamArg *arg);
/** `value` 0 or 1. Key closed. */
WLBRCM_API int qvWlanSetHideSSID(WlanParamArg *arg);
/** `value` 0 or 1. Key ap_isolate. */
WLBRCM_API int qvWlanSetBssIsolation(WlanParamArg *arg);
/** `value` a number. Key wmf_bss_enable. */
WLBRCM_API int qvWlanSetMulticastFwd(WlanParamArg *arg);
/** `value` MCS index or -1; stored in mcs_index for qvWlanSetRate(). Writes nothing; `prefix` is not read. */
WLBRCM_API int qvWlanSetMCS(WlanParamArg *arg);
/** Copies key hwaddr into the text buffer `result` (at least 18 bytes; longer values are cut), empty when unset. */
WLBRCM_API int qvWlanGetApMAC(WlanParamArg *arg);
/** @} */

/** @name Setters that do nothing: any argument, also null, gives 0
 * @{ */
WLBRCM_API int qvWlanSetMBSS(WlanParamArg *arg);
WLBRCM_API int qvWlanSetDisableOLBC(WlanParamArg *arg);
WLBRCM_API int qvWlanSetTxAntenna(WlanParamArg *arg);
WLBRCM_API int qvWlanClearWepKey(WlanParamArg *arg);
WLBRCM_API int qvWlanSetHTBw(WlanParamArg *arg);
WLBRCM_API int qvWlanSetHTExtCha(WlanParamArg *arg);
WLBRCM_API int qvWlanSetBoardClkState(WlanParamArg *arg);
WLBRCM_API int qvWlanSetInterference(WlanParamArg *arg);
WLBRCM_API int qvWlanSetMimoTxbw(WlanParamArg *arg);
WLBRCM_API int qvWlanSetSsStf(WlanParamArg *arg);
/** @} */

/** @name Security of a BSS
 * @{ */
/** `value` "wpa2psk", "wpa2", "wpapskmix", "open", "shared" or "wepauto". Keys akm, auth_mode, auth. An unknown word
 * prints the possible ones on stdout. */
WLBRCM_API int qvWlanSetAuthMode(WlanParamArg *arg);
/** `value` "none", "wep", "aes" or "tkipaes". Key crypto, which is unset first in every case. */
WLBRCM_API int qvWlanSetEncrypType(WlanParamArg *arg);
/** `value` 1..4, `index` the BSS, 0..3 (any other index is refused with -14). Key key; kept in wepkeyid. */
WLBRCM_API int qvWlanSetDefaultKeyID(WlanParamArg *arg);
/** `value` key text, `index` as for qvWlanSetDefaultKeyID(), whose key number decides: keys key1 to key4. */
WLBRCM_API int qvWlanSetWepKey(WlanParamArg *arg);
/** `value` passphrase or key. Key wpa_psk; a trailing blank is kept. */
WLBRCM_API int qvWlanSetPreSharedKey(WlanParamArg *arg);
/** `value` seconds. Key wpa_gtk_rekey. */
WLBRCM_API int qvWlanSetRekeyInterval(WlanParamArg *arg);
/** `value` 0 off, 1 optional, 2 required (IEEE 802.11w). Key mfp. */
WLBRCM_API int qvWlanSetProtectMF(WlanParamArg *arg);
/** @} */

/** @name Channel and regulatory
 * @{ */
enum {
    /** Room that the channel lists need: they stop appending whole channel numbers there. */
    WLBRCM_CHANNEL_LIST_SIZE = 1025
};

/** `value` channel, `index` 0 (any other does nothing), `aux` the descriptor
 * "band,bandwidth,sideband,auto,regulatory mode,DFS pre-ISM,DFS post-ISM,TPC dB,wireless mode", fields missing from the
 * end on (or all, when the band is empty) keep ",20,-1,0,0,-1,-1,0,-1". Keys nband, those of qvWlanSetupRegulatory(),
 * bw_cap, vht_features (2.4 GHz), nmode, vhtmode, channel, chanspec; the driver's "nreqd" at once. */
WLBRCM_API int qvWlanSetChannel(WlanParamArg *arg);
/** Regulatory keys of a radio: dfs_preism, dfs_postism, tpc_db and reg_mode "h" for mode 1; reg_mode "d" for 2, "off"
 * for any other. `band` is not used. @return 0, or -14 for a null prefix. */
WLBRCM_API int qvWlanSetupRegulatory(const char *prefix, int band, int regMode, int dfsPreIsm, int dfsPostIsm,
                                     int tpcDb);
/** Channels that the driver allows in a country.
 * @param arg  `value` "band,bandwidth,sideband": "5GHz" or "2.4GHz"; 10, 20, 40 or 80; "upper", "lower" or any other
 *   word for both. `aux` the country. `result` a text buffer of WLBRCM_CHANNEL_LIST_SIZE bytes that receives decimal
 *   channel numbers joined by commas; empty when there is no listing.
 */
WLBRCM_API int qvWlanChannelList(WlanParamArg *arg);
/** Channels of the driver's current listing, up to the first word that is no number. `result` as for
 * qvWlanChannelList(). @return 0; -5 when the listing cannot be read (`result` untouched). */
WLBRCM_API int qvWlanGetValidChannel(WlanParamArg *arg);
/** 1 when `channel` stands in the comma-separated `list` (at most 255 characters of it are read), else 0. */
WLBRCM_API int qvWlanCheckChannelSideband(int channel, const char *list);
/** Sets `radio->autoChannel` when the fixed 40 MHz channel is not in the driver's list for its band and sideband. */
WLBRCM_API void qvWlanUpdateAutoChannel(WlRadioCfg *radio);
/** Unsets the variable acs_mode. The argument is not used and may be null; always 0. */
WLBRCM_API int qvWlanSetAutoCh(WlanParamArg *arg);
/** `value` policy number, not negative. Tells the channel selection daemon at once, in the background. */
WLBRCM_API int qvWlanSetAutoChPolicy(WlanParamArg *arg);
/** `value` channels to skip, at most 100 characters. Key acs_autoch_skip. */
WLBRCM_API int qvWlanAutoChannelSkip(WlanParamArg *arg);
/** `aux` (not `value`) a bandwidth capability. Key bw_cap. */
WLBRCM_API int qvWlanSetPerBandBw(WlanParamArg *arg);
/** @} */

/** @name Advanced radio parameters
 * @{ */
WLBRCM_API int qvWlanSetRate(WlanParamArg *arg);          /**< any number. Keys rate, nmcsidx; uses mcs_index. */
WLBRCM_API int qvWlanSetMulticastRate(WlanParamArg *arg); /**< any number, 0 automatic. Key mrate. */
WLBRCM_API int qvWlanSetBeaconPeriod(WlanParamArg *arg);  /**< 20..1024. Keys bcn, bcn_rotate. */
WLBRCM_API int qvWlanSetDtimPeriod(WlanParamArg *arg);    /**< any number. Key dtim. */
WLBRCM_API int qvWlanSetTxPower(WlanParamArg *arg);       /**< 1..100 percent, at once. */
WLBRCM_API int qvWlanSetBGProtection(WlanParamArg *arg);  /**< 0..2. Keys gmode (brcm_gmode), gmode_protection. */
WLBRCM_API int qvWlanSetTxPreamble(WlanParamArg *arg);    /**< 0 long, 1 automatic. Key plcphdr. */
WLBRCM_API int qvWlanSetRTSThreshold(WlanParamArg *arg);  /**< 1..2347. Key rts. */
WLBRCM_API int qvWlanSetFragThreshold(WlanParamArg *arg); /**< 256..2346. Key frag. */
WLBRCM_API int qvWlanSetFrameBurst(WlanParamArg *arg);    /**< 0, 1. Key frameburst. */
WLBRCM_API int qvWlanSetAmpdu(WlanParamArg *arg);         /**< -1 automatic, 0, 1. Key ampdu. */
WLBRCM_API int qvWlanSetAmsdu(WlanParamArg *arg);         /**< -1 automatic, 0, 1. Key amsdu. */
WLBRCM_API int qvWlanSetRifsAdv(WlanParamArg *arg);       /**< -1 automatic, 0. Key rifs_advert. */
WLBRCM_API int qvWlanSetHTProtect(WlanParamArg *arg);     /**< 0, 1. Keys gmode_protection, nmode_protection. */
/** `value` 0, 1; `aux` "band code,bandwidth". Key obss_coex: the value at 2.4 GHz and 40 MHz, else 0. */
WLBRCM_API int qvWlanSetApCoex(WlanParamArg *arg);
WLBRCM_API int qvWlanSetStbcTx(WlanParamArg *arg); /**< -1 automatic, 1 on, other off. Key stbc_tx. */
/** `value` any number, `index` the radio's number from 0. Key stbc_rx: 0 on the first radio of a chip without STBC. */
WLBRCM_API int qvWlanSetStbcRx(WlanParamArg *arg);
WLBRCM_API int qvWlanSetWmm(WlanParamArg *arg);           /**< -1 automatic, 0, 1. Key wme. */
WLBRCM_API int qvWlanSetWmmAdvDisable(WlanParamArg *arg); /**< 0, 1 (per BSS). Key wme_bss_disable. */
WLBRCM_API int qvWlanSetWmmNoack(WlanParamArg *arg);      /**< 0, 1. Key wme_no_ack. */
WLBRCM_API int qvWlanSetWmmApsd(WlanParamArg *arg);       /**< 0, 1. Key wme_apsd. */
WLBRCM_API int qvWlanSetWdsMacList(WlanParamArg *arg);    /**< text. Key wds. */
WLBRCM_API int qvWlanSetWlMode(WlanParamArg *arg);        /**< text. Key mode. */
WLBRCM_API int qvWlanSetLazyWds(WlanParamArg *arg);       /**< any number. Key lazywds. */
/** `value` "enable quiet-time pps"; a missing number is 0, further ones are ignored. Four rxchain_pwrsave keys. */
WLBRCM_API int qvWlanSetRxChainPwSave(WlanParamArg *arg);
/** `value` "enable quiet-time pps level"; missing and further numbers as above. Five radio_pwrsave keys. */
WLBRCM_API int qvWlanSetRadioPwSave(WlanParamArg *arg);
WLBRCM_API int qvWlanSetAntennaDiv(WlanParamArg *arg);       /**< any number. Key antdiv. */
WLBRCM_API int qvWlanSetTxBF_BFR(WlanParamArg *arg);         /**< 0, 1. Key txbf_bfr_cap. */
WLBRCM_API int qvWlanSetTxBF_BFE(WlanParamArg *arg);         /**< 0, 1. Key txbf_bfe_cap. */
WLBRCM_API int qvWlanSetInterferenceMode(WlanParamArg *arg); /**< -1..4, at once. */
WLBRCM_API int qvWlanSetATF(WlanParamArg *arg);              /**< text: exactly "1" is on. Key atf. */
WLBRCM_API int qvWlanSetProbRespSW(WlanParamArg *arg);       /**< 0..2. Key probresp_sw. */
/** @} */

/** @name Traffic shaping, at once
 * @{ */
/** Limit of the traffic from the stations of a BSS: `value` kbit/s; below 1 removes it. */
WLBRCM_API int qvWlanSetUpstreamRate(WlanParamArg *arg);
/** Limit of the traffic to the stations of a BSS: `value` kbit/s; below 1 removes it. */
WLBRCM_API int qvWlanSetDownstreamRate(WlanParamArg *arg);
/** Packet flow cache of a BSS: `value` 1 uses it, 0 skips it.
 * @param enabled  whether the BSS is on; if not, only an earlier exclusion rule is removed. */
WLBRCM_API int qvWlanFlowCacheSetup(WlanParamArg *arg, int enabled);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
