// Channel, bandwidth and regulatory variables of a radio.
#include "module/channel.h"
#include "params/setting.h"

using namespace wlbrcm;

namespace {

struct ChannelDescriptor {
    int band = -1;
    int bandwidth = 20;
    int8_t sideband = -1;
    int automatic = 0;
    int regMode = 0;
    int dfsPreIsm = -1;
    int dfsPostIsm = -1;
    int tpcDb = 0;
    int8_t wirelessMode = -1;
};

int bandCode(std::string_view band) { return band == "2.4G" ? WLBRCM_BAND_2G : band == "5G" ? WLBRCM_BAND_5G : -1; }

ChannelDescriptor readDescriptor(const char *text) {
    ChannelDescriptor to;
    std::string_view band;
    if (!splitFirstField(text, &band, &text))
        return to;
    to.band = bandCode(band);
    [[maybe_unused]] const int fields =
        sscanf(text, "%d,%hhd,%d,%d,%d,%d,%d,%hhd", &to.bandwidth, &to.sideband, &to.automatic, &to.regMode,
               &to.dfsPreIsm, &to.dfsPostIsm, &to.tpcDb, &to.wirelessMode);
    return to;
}

// 2.4 GHz radios have 802.11ac rates only in the modes N only and B/G/N mixed.
int vhtFeatures(int wirelessMode) { return wirelessMode == 3 || wirelessMode == 4 ? 3 : -1; }

int effectiveBandwidth(int requested) {
    if (brcm_nmode == 0)
        return 20;
    return nonly5G == 1 && requested == 80 ? 40 : requested;
}

Text<64> chanspecText(int channel, int bandwidth, int sideband) {
    if (bandwidth == 80)
        return Text<64>("%d/80", channel);
    const char *suffix = bandwidth != 40 ? "" : sideband == 1 ? "u" : "l";
    return Text<64>("%d%s", channel, suffix);
}

} // namespace

int qvWlanSetChannel(WlanParamArg *arg) {
    if (arg == nullptr)
        return WLBRCM_EINVAL;
    if (arg->index != 0)
        return WLBRCM_OK;
    if (arg->aux == nullptr)
        return WLBRCM_EINVAL;
    const ChannelDescriptor wanted = readDescriptor(arg->aux);
    if (wanted.automatic == 0 && arg->value == nullptr)
        return WLBRCM_EINVAL;
    const InterfaceName radio(WLBRCM_HERE, arg->prefix);
    if (!radio)
        return WLBRCM_EINVAL;

    writeInt(WLBRCM_HERE, radio, "nband", wanted.band);
    qvWlanSetupRegulatory(radio.c_str(), wanted.band, wanted.regMode, wanted.dfsPreIsm, wanted.dfsPostIsm,
                          wanted.tpcDb);
    // The radio keeps the capability asked for, also when the mode narrows the channel.
    writeInt(WLBRCM_HERE, radio, "bw_cap", bandwidthCapability(wanted.bandwidth));
    if (wanted.band == WLBRCM_BAND_2G)
        writeInt(WLBRCM_HERE, radio, "vht_features", vhtFeatures(wanted.wirelessMode));
    writeInt(WLBRCM_HERE, radio, "nmode", brcm_nmode != 0 ? -1 : 0);
    const int bandwidth = effectiveBandwidth(wanted.bandwidth);
    writeInt(WLBRCM_HERE, radio, "vhtmode", brcm_vhtmode != 0 ? -1 : 0);
    brcm_bw = bandwidth;
    runDriver(WLBRCM_HERE, radio, DriverArgs("nreqd %d", brcm_nreqd));

    const int channel = wanted.automatic != 0 ? 0 : decimal(arg->value);
    writeInt(WLBRCM_HERE, radio, "channel", channel);
    if (wanted.automatic != 0)
        return writeInt(WLBRCM_HERE, radio, "chanspec", 0);
    return writeText(WLBRCM_HERE, radio, "chanspec", chanspecText(channel, bandwidth, wanted.sideband).view());
}

int qvWlanSetupRegulatory(const char *prefix, int /*band*/, int regMode, int dfsPreIsm, int dfsPostIsm, int tpcDb) {
    constexpr int k80211h = 1;
    constexpr int k80211d = 2;
    const InterfaceName radio(WLBRCM_HERE, prefix);
    if (!radio)
        return WLBRCM_EINVAL;
    if (regMode == k80211h) {
        writeInt(WLBRCM_HERE, radio, "dfs_preism", dfsPreIsm);
        writeInt(WLBRCM_HERE, radio, "dfs_postism", dfsPostIsm);
        writeInt(WLBRCM_HERE, radio, "tpc_db", tpcDb);
    }
    return writeText(WLBRCM_HERE, radio, "reg_mode", regMode == k80211h ? "h" : regMode == k80211d ? "d" : "off");
}

// The channel itself was left to automatic selection by qvWlanSetChannel().
int qvWlanSetAutoCh(WlanParamArg *) { return writeText(WLBRCM_HERE, Key("acs_mode"), ""); }

int qvWlanSetAutoChPolicy(WlanParamArg *arg) {
    if (!hasParts(arg, kValue))
        return WLBRCM_EINVAL;
    const int policy = decimal(arg->value);
    printf("%s: %d\n", __func__, policy);
    if (policy < 0)
        return WLBRCM_EINVAL;
    const InterfaceName radio = interfaceOf(WLBRCM_HERE, arg);
    if (!radio)
        return WLBRCM_EINVAL;
    const CheckedText<256> command(WLBRCM_COMMAND("acs_cli -i %s acs_policy %d &"), radio, policy);
    printf("%s: %s\n", __func__, command.c_str());
    // In the background: the daemon may be busy with a scan.
    __qvWlanSystemEx(__func__, __LINE__, command.c_str());
    return WLBRCM_OK;
}

int qvWlanAutoChannelSkip(WlanParamArg *arg) {
    constexpr size_t kLongestSkipList = 100;
    const InterfaceName radio = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!radio)
        return WLBRCM_EINVAL;
    return writeText(WLBRCM_HERE, radio, "acs_autoch_skip", {arg->value, strnlen(arg->value, kLongestSkipList)});
}

int qvWlanSetPerBandBw(WlanParamArg *arg) {
    const InterfaceName radio = interfaceOf(WLBRCM_HERE, arg, kAux);
    return radio ? writeText(WLBRCM_HERE, radio, "bw_cap", arg->aux) : WLBRCM_EINVAL;
}
