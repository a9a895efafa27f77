// Rates, protection, thresholds, aggregation and the other advanced parameters of a radio.
#include "params/setting.h"

using namespace wlbrcm;

namespace {

// "<enable> <quiet time> <packets per second> <level>"; the first key is not in the list and always 1.
constexpr const char *kPowerSaveKeys[] = {"stas_assoc_check", "enable", "quiet_time", "pps", "level"};
constexpr size_t kPowerSaveKeyCount = sizeof kPowerSaveKeys / sizeof *kPowerSaveKeys;

// Writes the first `count` power-save keys of `group`. Missing numbers are 0, further ones are ignored.
int setPowerSave(Here here, const WlanParamArg *arg, const char *group, size_t count) {
    const InterfaceName name = interfaceOf(here, arg, kValue);
    if (!name)
        return WLBRCM_EINVAL;
    int numbers[kPowerSaveKeyCount] = {1};
    Words words(arg->value);
    std::string_view word;
    for (size_t i = 1; i < count && words.next(&word); ++i)
        numbers[i] = decimal(word.data());
    int written = WLBRCM_OK;
    for (size_t i = 0; i < count; ++i) {
        const Text<64> key("%s_%s", group, kPowerSaveKeys[i]);
        written = writeInt(here, name, key.c_str(), numbers[i]);
    }
    return written;
}

bool isWord(std::string_view word, std::string_view wanted) { return word == wanted; }

// Two 20 MHz networks beside a 40 MHz one are a matter of the 2.4 GHz band only.
bool needsCoexistence(const char *bandAndWidth) {
    int band = WLBRCM_BAND_2G;
    int bandwidth = 20;
    Words words(bandAndWidth, ',');
    for (std::string_view word; words.next(&word);) {
        if (isWord(word, "1") || isWord(word, "2"))
            band = decimal(word.data());
        else if (isWord(word, "20") || isWord(word, "40"))
            bandwidth = decimal(word.data());
    }
    return band == WLBRCM_BAND_2G && bandwidth == 40;
}

} // namespace

// A legacy rate counts only beside a fixed MCS index, and that index only with 802.11n. MCS 32 exists at 40 MHz alone
// and is left to the driver.
int qvWlanSetRate(WlanParamArg *arg) {
    constexpr int k40MhzOnlyMcs = 32;
    constexpr IntParam kParam{"rate"};
    int rate;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, kParam, &rate);
    if (!name)
        return WLBRCM_EINVAL;
    if (mcs_index == -1)
        rate = 0;
    const int written = writeInt(WLBRCM_HERE, name, kParam.key, rate);
    if (brcm_nmode == 0)
        return written;
    if (mcs_index == k40MhzOnlyMcs) {
        if (brcm_bw == 20)
            mcs_index = -1;
        return written;
    }
    return mcs_index >= 0 ? writeInt(WLBRCM_HERE, name, "nmcsidx", mcs_index) : written;
}

int qvWlanSetMulticastRate(WlanParamArg *arg) {
    constexpr IntParam kParam{"mrate"};
    int rate;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, kParam, &rate);
    if (!name)
        return WLBRCM_EINVAL;
    return rate == 0 ? writeText(WLBRCM_HERE, name, kParam.key, "-1") : setInt(WLBRCM_HERE, arg, kParam);
}

// Every accepted period also has the beacons of the BSSs take turns.
int qvWlanSetBeaconPeriod(WlanParamArg *arg) {
    constexpr IntParam kParam{"bcn", 20, 1024, "20 ~ 1024 (unit is in milli-seconds)\n"};
    int period;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, kParam, &period);
    if (!name)
        return WLBRCM_EINVAL;
    writeInt(WLBRCM_HERE, name, kParam.key, period);
    return writeText(WLBRCM_HERE, name, "bcn_rotate", "1");
}

int qvWlanSetDtimPeriod(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"dtim"}); }

int qvWlanSetTxPower(WlanParamArg *arg) {
    int percent;
    const InterfaceName name =
        readNumber(WLBRCM_HERE, arg, {"pwr_percent", 1, 100, "1~100 (power output percentage)\n"}, &percent);
    if (!name)
        return WLBRCM_EINVAL;
    return runDriver(WLBRCM_HERE, name, DriverArgs("pwr_percent %d", percent));
}

// What is written as gmode comes from the wireless mode; the value decides about protection alone.
int qvWlanSetBGProtection(WlanParamArg *arg) {
    static constexpr const char *kProtection[] = {"auto", "auto", "off"};
    constexpr WordParam kParam{{"gmode_protection", 0, 2}, kProtection};
    int number;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, kParam.number, &number);
    if (!name)
        return WLBRCM_EINVAL;
    writeInt(WLBRCM_HERE, name, "gmode", brcm_gmode);
    return setWord(WLBRCM_HERE, arg, kParam);
}

int qvWlanSetTxPreamble(WlanParamArg *arg) {
    static constexpr const char *kPreambles[] = {"long", "auto"};
    return setWord(WLBRCM_HERE, arg, {{"plcphdr", 0, 1, "0 : Long Preamble\n1 : Auto\n"}, kPreambles});
}

int qvWlanSetRTSThreshold(WlanParamArg *arg) {
    return setInt(WLBRCM_HERE, arg, {"rts", 1, 2347, "RTSThreshold : 1~2347\n"});
}

int qvWlanSetFragThreshold(WlanParamArg *arg) {
    return setInt(WLBRCM_HERE, arg, {"frag", 256, 2346, "FragThreshold : 256~2346\n"});
}

int qvWlanSetFrameBurst(WlanParamArg *arg) {
    return setWord(WLBRCM_HERE, arg, {{"frameburst", 0, 1, "FrameBurst : 0~1\n"}, kOffOn});
}

int qvWlanSetAmpdu(WlanParamArg *arg) { return setWord(WLBRCM_HERE, arg, {{"ampdu", -1, 1}, kAutoOffOn}); }

int qvWlanSetAmsdu(WlanParamArg *arg) { return setWord(WLBRCM_HERE, arg, {{"amsdu", -1, 1}, kAutoOffOn}); }

int qvWlanSetRifsAdv(WlanParamArg *arg) {
    return setWord(
        WLBRCM_HERE, arg,
        {{"rifs_advert", -1, 0, "set the rifs mode advertisement status. value: <-1/0> (Auto/Off)"}, kAutoOffOn});
}

// Runs after qvWlanSetBGProtection(), whose protection it overrides by the wireless mode, whatever its own value is.
int qvWlanSetHTProtect(WlanParamArg *arg) {
    int number;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, {"nmode_protection", 0, 1}, &number);
    if (!name)
        return WLBRCM_EINVAL;
    writeText(WLBRCM_HERE, name, "gmode_protection", brcm_nmode == 0 ? "off" : "auto");
    return writeText(WLBRCM_HERE, name, "nmode_protection", "auto");
}

int qvWlanSetApCoex(WlanParamArg *arg) {
    constexpr IntParam kParam{"obss_coex", 0, 1};
    int number;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, kParam, &number);
    if (!name || arg->aux == nullptr)
        return WLBRCM_EINVAL;
    return writeInt(WLBRCM_HERE, name, kParam.key, needsCoexistence(arg->aux) ? number : 0);
}

int qvWlanSetStbcTx(WlanParamArg *arg) {
    constexpr IntParam kParam{"stbc_tx"};
    int number;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, kParam, &number);
    if (!name)
        return WLBRCM_EINVAL;
    return writeText(WLBRCM_HERE, name, kParam.key, number == -1 ? "auto" : number == 1 ? "on" : "off");
}

int qvWlanSetStbcRx(WlanParamArg *arg) {
    constexpr IntParam kParam{"stbc_rx"};
    int number;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, kParam, &number);
    if (!name)
        return WLBRCM_EINVAL;
    // The board's answer concerns the chip of the first radio.
    const bool without = qvWlanReadChipInfoStbc() == 0 && arg->index == 0;
    return writeInt(WLBRCM_HERE, name, kParam.key, without ? 0 : number);
}

int qvWlanSetWmm(WlanParamArg *arg) { return setWord(WLBRCM_HERE, arg, {{"wme", -1, 1}, kAutoOffOn}); }

int qvWlanSetWmmAdvDisable(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"wme_bss_disable", 0, 1}); }

int qvWlanSetWmmNoack(WlanParamArg *arg) { return setWord(WLBRCM_HERE, arg, {{"wme_no_ack", 0, 1}, kOffOn}); }

int qvWlanSetWmmApsd(WlanParamArg *arg) { return setWord(WLBRCM_HERE, arg, {{"wme_apsd", 0, 1}, kOffOn}); }

int qvWlanSetWdsMacList(WlanParamArg *arg) { return setText(WLBRCM_HERE, arg, "wds"); }

int qvWlanSetWlMode(WlanParamArg *arg) { return setText(WLBRCM_HERE, arg, "mode"); }

int qvWlanSetLazyWds(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"lazywds"}); }

int qvWlanSetRxChainPwSave(WlanParamArg *arg) {
    return setPowerSave(WLBRCM_HERE, arg, "rxchain_pwrsave", kPowerSaveKeyCount - 1);
}

int qvWlanSetRadioPwSave(WlanParamArg *arg) {
    return setPowerSave(WLBRCM_HERE, arg, "radio_pwrsave", kPowerSaveKeyCount);
}

int qvWlanSetAntennaDiv(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"antdiv"}); }

int qvWlanSetTxBF_BFR(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"txbf_bfr_cap", 0, 1}); }

int qvWlanSetTxBF_BFE(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"txbf_bfe_cap", 0, 1}); }

int qvWlanSetInterferenceMode(WlanParamArg *arg) {
    WLBRCM_LOG(LOG_DEBUG, "enter\n");
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!name)
        return WLBRCM_EINVAL;
    const int mode = decimal(arg->value);
    if (mode < -1 || mode > 4) {
        WLBRCM_LOG(LOG_ERR, "Invalid argument. value need in -1 to 4, but config value is (%d).\n", mode);
        return WLBRCM_EINVAL;
    }
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("wlctl -i %s interference_override %d"), name, mode);
    return WLBRCM_OK;
}

int qvWlanSetATF(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue);
    return name ? writeInt(WLBRCM_HERE, name, "atf", strcmp(arg->value, "1") == 0 ? 1 : 0) : WLBRCM_EINVAL;
}

int qvWlanSetProbRespSW(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"probresp_sw", 0, 2}); }
