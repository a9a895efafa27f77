// Basic parameters of a radio and of a BSS, and the radio-mode state.
#include "params/setting.h"

using namespace wlbrcm;

int brcm_gmode = 0;
int brcm_nmode = -1;
int brcm_vhtmode = -1;
int brcm_nreqd = 0;
int nonly5G = 0;
int brcm_bw = 20;
int mcs_index = -1;
int wepkeyid[4] = {1, 1, 1, 1};

namespace {

// 802.11ac stays as the mode before left it.
constexpr int kKeep = 1;

struct WirelessMode {
    const char *name;
    int gmode, nmode, vhtmode, nreqd;
};
// By mode number.
constexpr WirelessMode kWirelessModes[] = {
    {"G only", 4, 0, kKeep, 0},     {"B only", 0, 0, kKeep, 0},       {"B/G mixed", 1, 0, kKeep, 0},
    {"N only", 1, -1, 0, 1},        {"B/G/N mixed", 1, -1, kKeep, 0}, {"A only", 1, 0, 0, 0},
    {"A/N mixed", 1, -1, 0, 0},     {"AC only", 1, -1, -1, 0},        {"N/AC mixed", 1, -1, -1, 1},
    {"A/N/AC mixed", 1, -1, -1, 0},
};
constexpr int kWirelessModeCount = sizeof kWirelessModes / sizeof *kWirelessModes;
constexpr int kNOnly = 3;
static_assert(kWirelessModeCount == 10 && kWirelessModes[kNOnly].nreqd == 1);

constexpr size_t kLongestSsid = 32;
constexpr size_t kLongestCountry = 31;
constexpr size_t kMacTextSize = 18;

// The driver tool splits its line at blanks and reads quotes; each byte is quoted for itself, so that none has a
// meaning there.
using QuotedSsid = Text<256>;
static_assert(sizeof(QuotedSsid) > 3 * kLongestSsid);

QuotedSsid quoteSsid(std::string_view ssid) {
    QuotedSsid quoted;
    for (const char c : ssid)
        quoted.append(c == '\'' ? "\"%c\"" : "'%c'", c);
    return quoted;
}

} // namespace

int qvWlanSetWirelessMode(WlanParamArg *arg) {
    if (!hasParts(arg, kValue))
        return WLBRCM_EINVAL;
    // Also for an unknown mode: neither may outlive the mode that set it.
    brcm_nreqd = 0;
    nonly5G = 0;
    const int number = decimal(arg->value);
    if (number < 0 || number >= kWirelessModeCount) {
        WLBRCM_LOG(LOG_ERR, "Error 802.11 mode\n");
        return WLBRCM_EINVAL;
    }
    const WirelessMode &mode = kWirelessModes[number];
    nonly5G = number == kNOnly && arg->aux != nullptr && strcmp(arg->aux, "5G") == 0 ? 1 : 0;
    WLBRCM_LOG(LOG_INFO, "802.11 %s%s\n", mode.name, nonly5G != 0 ? " (5G)" : "");
    brcm_gmode = mode.gmode;
    brcm_nmode = mode.nmode;
    if (mode.vhtmode != kKeep)
        brcm_vhtmode = mode.vhtmode;
    brcm_nreqd = mode.nreqd;
    return WLBRCM_OK;
}

int qvWlanSetSSID(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!name)
        return WLBRCM_EINVAL;
    const std::string_view ssid = arg->value;
    if (ssid.size() > kLongestSsid) {
        WLBRCM_LOG(LOG_ERR, "SSID of %d bytes is too long.\n", static_cast<int>(ssid.size()));
        return WLBRCM_EINVAL;
    }
    const InterfaceName radio(WLBRCM_HERE, arg->aux);
    if (!radio)
        return WLBRCM_EINVAL;
    const int written = writeText(WLBRCM_HERE, name, "ssid", ssid);
    if (written != WLBRCM_OK)
        return written;
    return runDriver(WLBRCM_HERE, radio, DriverArgs("ssid -C %d %s", arg->index, quoteSsid(ssid).c_str()));
}

int qvWlanSetRadioOn(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"radio", 0, 1}); }

int qvWlanSetCountryCode(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!name)
        return WLBRCM_EINVAL;
    const size_t length = strcspn(arg->value, "/");
    const std::string_view revision = arg->value[length] == '/' ? arg->value + length + 1 : "";
    if (!valueFits(WLBRCM_HERE, "country_rev", revision))
        return WLBRCM_EINVAL;
    writeText(WLBRCM_HERE, name, "country_code", {arg->value, length < kLongestCountry ? length : kLongestCountry});
    return writeText(WLBRCM_HERE, name, "country_rev", !revision.empty() ? revision : "0");
}

int qvWlanSetGlobalMaxStaNum(WlanParamArg *arg) {
    constexpr IntParam kParam{"maxassoc"};
    int number;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, kParam, &number);
    return name ? writeText(WLBRCM_HERE, name, kParam.key, Text<64>("%d", number).view()) : WLBRCM_EINVAL;
}

int qvWlanSetPerBssMaxStaNum(WlanParamArg *arg) { return setText(WLBRCM_HERE, arg, "bss_maxassoc"); }

int qvWlanSetHideSSID(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"closed", 0, 1}); }

int qvWlanSetBssIsolation(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"ap_isolate", 0, 1}); }

int qvWlanSetMulticastFwd(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"wmf_bss_enable"}); }

int qvWlanSetMCS(WlanParamArg *arg) {
    if (!hasParts(arg, kValue))
        return WLBRCM_EINVAL;
    mcs_index = decimal(arg->value);
    return WLBRCM_OK;
}

int qvWlanGetApMAC(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kResult);
    if (!name)
        return WLBRCM_EINVAL;
    copyText(static_cast<char *>(arg->result), kMacTextSize, nvramText(keyOf(name, "hwaddr").c_str()));
    return WLBRCM_OK;
}

// Settings that this platform does not have, kept for callers that set every parameter.

int qvWlanSetMBSS(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanSetDisableOLBC(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanSetTxAntenna(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanClearWepKey(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanSetHTBw(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanSetHTExtCha(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanSetBoardClkState(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanSetInterference(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanSetMimoTxbw(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanSetSsStf(WlanParamArg *) { return WLBRCM_OK; }
