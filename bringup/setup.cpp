// The setup sequence: a radio's record through the setters, in the order that the platform needs.
#include <wlbrcm/bringup.h>

#include "bringup/params_record.h"
#include "module/filter_request.h"
#include "module/record.h"

using namespace wlbrcm;

namespace {

const char *bandText(int band) { return band == WLBRCM_BAND_5G ? "5G" : band == WLBRCM_BAND_2G ? "2.4G" : ""; }

Text<256> channelDescriptor(const WlRadioCfg *radio) {
    return Text<256>("%s,%hhu,%hhd,%d,%d,%d,%d,%d,%hhd", bandText(radio->band), radio->bandwidth, radio->sideband,
                     radio->autoChannel, radio->regMode, radio->dfsPreIsm, radio->dfsPostIsm, radio->tpcDb,
                     radio->wirelessMode);
}

void setRadioMode(ParamsRecord &params, WlRadioCfg *radio) {
    params.set(qvWlanSetCountryCode, fieldText(radio->countryCode));
    // Every radio is named 2.4 GHz here; the channel descriptor tells the band.
    params.aux(std::string_view("2.4G"));
    params.set(qvWlanSetWirelessMode, radio->wirelessMode);
    if (radio->autoChannel == 0 && radio->bandwidth == 40)
        qvWlanUpdateAutoChannel(radio);
}

void setChannel(ParamsRecord &params, const WlRadioCfg *radio) {
    params.index(0);
    params.aux(channelDescriptor(radio));
    params.set(qvWlanSetChannel, radio->channel);
    params.set(qvWlanAutoChannelSkip, fieldText(radio->acsSkipList));
}

void setRadioState(ParamsRecord &params, const WlRadioCfg *radio, const WlSsidCfg *bss, const WlCaps *caps) {
    params.set(qvWlanSetRadioOn, radio->radioOn);
    if (radio->autoChannel != 0) {
        params.aux(Text<64>("%u", radio->acsScanTimer));
        params.set(qvWlanSetAutoCh, 1);
    }
    if (caps->wme != 0) {
        params.set(qvWlanSetWmm, bss[0].wmm);
        params.set(qvWlanSetWmmNoack, 0);
    }
    if (caps->wmeApsd != 0)
        params.set(qvWlanSetWmmApsd, bss[0].wmmApsd);
}

void setRates(ParamsRecord &params, int upstream, int downstream) {
    params.set(qvWlanSetUpstreamRate, upstream);
    params.set(qvWlanSetDownstreamRate, downstream);
}

void setNetwork(ParamsRecord &params, const WlSsidCfg &entry, std::string_view radioName) {
    params.aux(radioName);
    params.set(qvWlanSetSSID, fieldText(entry.ssidName));
    params.set(qvWlanSetHideSSID, entry.hideSsid);
    params.set(qvWlanSetBssIsolation, entry.bssIsolation != 0 ? 1 : 0);
}

void setWepKey(ParamsRecord &params, const WlSsidCfg &entry) {
    const int number = entry.defaultKeyId;
    if (fieldText(entry.encryption) != "wep" || number < 1 || number > 4)
        return;
    params.set(qvWlanSetWepKey, fieldText(entry.wepKeys[number - 1]));
}

void setSecurity(ParamsRecord &params, const WlSsidCfg &entry) {
    const std::string_view encryption = fieldText(entry.encryption);
    const std::string_view passphrase = fieldText(entry.wpaPsk);
    params.set(qvWlanSetEncrypType, encryption);
    params.set(qvWlanSetAuthMode, fieldText(entry.authMode));
    params.set(qvWlanSetRekeyInterval, entry.rekeyInterval);
    params.set(qvWlanSetPreSharedKey, passphrase.empty() ? fieldText(entry.wpaPskFallback) : passphrase);
    params.set(qvWlanSetDefaultKeyID, entry.defaultKeyId);
    setWepKey(params, entry);
    params.set(qvWlanSetProtectMF, entry.protectMF);
}

void setMulticast(ParamsRecord &params, const WlSsidCfg &entry, const WlCaps *caps) {
    if (caps->wme != 0)
        params.set(qvWlanSetWmmAdvDisable, 1 - entry.wmm);
    if (caps->wmf != 0)
        params.set(qvWlanSetMulticastFwd, entry.multicastFwd);
}

// The prefix for one entry; without a usable name nothing may be set for it.
bool usePrefix(Here here, ParamsRecord &params, const WlSsidCfg &entry) {
    const InterfaceName name = usableName(here, fieldText(entry.ifName));
    if (name)
        params.prefix(name.c_str());
    return static_cast<bool>(name);
}

void clearRates(Here here, ParamsRecord &params, const WlSsidCfg &entry) {
    if (entry.enable == 0 && usePrefix(here, params, entry))
        setRates(params, 0, 0);
}

void setBss(Here here, ParamsRecord &params, const WlSsidCfg &entry, std::string_view radioName, const WlCaps *caps) {
    setNetwork(params, entry, radioName);
    setSecurity(params, entry);
    setRates(params, entry.upstreamRate, entry.downstreamRate);
    params.set(qvWlanSetPerBssMaxStaNum, entry.maxSta);
    WLBRCM_LOG_AT(here, LOG_DEBUG, "ifname = %s\n", params.arg()->prefix);
    requestMacFilter(here, entry);
    setMulticast(params, entry, caps);
}

// Sets every entry up; returns the station limit of the radio.
int setEveryBss(Here here, ParamsRecord &params, const WlRadioCfg *radio, WlSsidCfg *bss, const WlCaps *caps) {
    const FieldCopy radioName(radio->ifName);
    int stations = 0;
    for (const WlSsidCfg &entry : EntriesInUse(radio, bss)) {
        params.prefix(radioName.c_str());
        params.index(static_cast<int>(&entry - bss));
        params.set(qvWlanClearWepKey);
        if (entry.valid == 0 || entry.enable == 0) {
            clearRates(here, params, entry);
            continue;
        }
        if (!usePrefix(here, params, entry))
            continue;
        setBss(here, params, entry, radioName.c_str(), caps);
        if (entry.main != 0)
            stations = entry.maxSta;
    }
    return stations;
}

// The flow cache passes over the queues that limit a rate, so it is off for a BSS with a limit.
void setFlowCache(Here here, ParamsRecord &params, const WlRadioCfg *radio, WlSsidCfg *bss) {
    for (const WlSsidCfg &entry : EntriesInUse(radio, bss)) {
        if (!usePrefix(here, params, entry))
            continue;
        params.value(entry.upstreamRate == 0 ? 1 : 1 - entry.enable);
        qvWlanFlowCacheSetup(params.arg(), entry.enable);
    }
}

} // namespace

int qvbrcm_SetupWlan(WlRadioCfg *radio, WlSsidCfg *bss, WlCaps *caps) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    ParamsRecord params(fieldText(radio->ifName), radio->radioIndex - 1);
    setRadioMode(params, radio);
    setChannel(params, radio);
    qvbrcm_AdvanceSetupWlan(radio, bss, caps);
    setRadioState(params, radio, bss, caps);
    const int stations = setEveryBss(WLBRCM_HERE, params, radio, bss, caps);
    params.prefix(fieldText(radio->ifName));
    params.set(qvWlanSetGlobalMaxStaNum, stations);
    const int rc = qvWlanFinishSetup(radio, bss);
    if (rc != WLBRCM_OK) {
        WLBRCM_LOG(LOG_ERR, "Config WIFI fail!!.\n");
        return rc;
    }
    setFlowCache(WLBRCM_HERE, params, radio, bss);
    return WLBRCM_OK;
}
