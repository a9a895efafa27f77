// The radio-wide advanced settings. Several setters read what earlier ones left in the radio-mode state, and later
// writes of one variable replace earlier ones, so the order of the lines matters.
#include <wlbrcm/bringup.h>

#include "bringup/entries.h"
#include "bringup/params_record.h"

using namespace wlbrcm;

namespace {

void setProtection(ParamsRecord &params, const WlRadioCfg *radio) {
    params.set(qvWlanSetBGProtection, radio->bgProtection);
    params.set(qvWlanSetHTProtect, radio->htProtect);
    params.set(qvWlanSetRifsAdv, radio->rifsAdv);
    params.aux(Text<64>("%d,%hhd", radio->band, radio->bandwidth));
    params.set(qvWlanSetApCoex, radio->apCoex);
}

void setAggregation(ParamsRecord &params, const WlCaps *caps) {
    params.set(qvWlanSetStbcTx, -1);
    params.set(qvWlanSetStbcRx, 1);
    params.set(qvWlanSetWmm, 0);
    if (caps->ampdu != 0)
        params.set(qvWlanSetAmpdu, -1);
    if (caps->amsduTx != 0)
        params.set(qvWlanSetAmsdu, -1);
}

// A radio that accepts any peer has no list of peers.
void setWds(ParamsRecord &params, const WlRadioCfg *radio) {
    params.set(qvWlanSetLazyWds, radio->lazyWds);
    params.set(qvWlanSetWlMode, fieldText(radio->wdsMode));
    params.set(qvWlanSetWdsMacList, radio->lazyWds == 0 ? fieldText(radio->wdsMacList) : std::string_view());
}

void setRatesAndTiming(ParamsRecord &params, const WlRadioCfg *radio) {
    params.set(qvWlanSetTxPreamble, radio->txPreamble);
    params.set(qvWlanSetMCS, radio->mcs);
    params.set(qvWlanSetRate, radio->rate);
    params.set(qvWlanSetMulticastRate, radio->multicastRate);
    params.set(qvWlanSetRTSThreshold, radio->rtsThreshold);
    params.set(qvWlanSetFragThreshold, radio->fragThreshold);
    params.set(qvWlanSetDtimPeriod, radio->dtimPeriod);
    params.set(qvWlanSetBeaconPeriod, radio->beaconPeriod);
    params.set(qvWlanSetFrameBurst, radio->frameBurst);
    params.set(qvWlanSetTxPower, radio->txPower);
    params.set(qvWlanSetInterferenceMode, radio->interferenceMode);
}

void setPowerSave(ParamsRecord &params, const WlRadioCfg *radio, const WlCaps *caps) {
    const int32_t *rx = radio->rxChainPwrsaveParams;
    const int32_t *whole = radio->radioPwrsaveParams;
    if (caps->rxchainPwrsave != 0)
        params.set(qvWlanSetRxChainPwSave, Text<64>("%d %d %d", rx[0], rx[1], rx[2]).view());
    if (caps->radioPwrsave != 0)
        params.set(qvWlanSetRadioPwSave, Text<64>("%d %d %d %d", whole[0], whole[1], whole[2], whole[3]).view());
}

// 2 stands for beamforming to several stations at a time.
int beamforming(const WlRadioCfg *radio, const WlCaps *caps, uint8_t setting) {
    return caps->muMimo != 0 && radio->txbfMu != 0 && setting != 0 ? 2 : setting;
}

} // namespace

int qvbrcm_AdvanceSetupWlan(WlRadioCfg *radio, WlSsidCfg *, WlCaps *caps) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    ParamsRecord params(fieldText(radio->ifName), radio->radioIndex - 1);
    setProtection(params, radio);
    setAggregation(params, caps);
    if (caps->wds != 0)
        setWds(params, radio);
    setRatesAndTiming(params, radio);
    params.set(qvWlanSetATF, caps->atf != 0 ? radio->atfEnable : 0);
    setPowerSave(params, radio, caps);
    if (caps->txbf != 0) {
        params.set(qvWlanSetTxBF_BFR, beamforming(radio, caps, radio->txbfBfr));
        params.set(qvWlanSetTxBF_BFE, beamforming(radio, caps, radio->txbfBfe));
    }
    params.set(qvWlanSetAntennaDiv, -1);
    return WLBRCM_OK;
}
