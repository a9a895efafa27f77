// Every function of the host's that takes a pointer refuses a missing one, and does nothing.
#include "tests/unit/fake_platform.h"

namespace {

// What the calls need beside the missing part.
WlIntf intf;
WlLanCfg lan;
WlStatusItem item;
WlStaInfo sta;
WlStaInfo *stations;
WlScanAp *aps;
WlTrafficCounters counters;
uint8_t mac[6];
uint8_t changed;
int count;
char path[64];

// An argument record; a part may be missing, and the name be none.
WlanParamArg *with(const char *value, const char *aux, void *result, const char *name = "wl0") {
    static WlanParamArg arg;
    arg = {const_cast<char *>(name), const_cast<char *>(value), const_cast<char *>(aux), result, 0};
    return &arg;
}

struct Call {
    const char *text;
    int result;
    int (*make)();
};
#define CALL(result, call)                                                                                             \
    {                                                                                                                  \
#call, result, [] { return static_cast<int>(call); }                                                           \
    }

const Call kCalls[] = {
    CALL(-1, wlModuleInit(nullptr, nullptr)),
    CALL(-14, qvbrcm_InitWlan(nullptr, &lan)),
    CALL(-14, qvbrcm_InitWlan(&intf, nullptr)),
    CALL(-14, qvbrcm_ReloadWlan(nullptr)),
    CALL(-14, qvbrcm_WPSUpdateConfg(nullptr, &changed)),
    CALL(-14, qvbrcm_WPSUpdateConfg(&intf, nullptr)),
    CALL(-14, qvbrcm_UpdateLaninfo(nullptr, nullptr, nullptr)),
    CALL(-5, qvbrcm_SetWlanMacAddr(nullptr, mac)),
    CALL(-5, qvbrcm_SetWlanMacAddr(&intf, nullptr)),
    CALL(-14, qvbrcm_EnablePresetSSID(nullptr, 1)),
    CALL(-14, qvbrcm_SetVifsForPresetIntf(0, nullptr)),
    CALL(-14, qvWlanSetPriority(nullptr)),
    CALL(-1, get_event_pid(nullptr)),
    CALL(-14, qvWlanSetupRegulatory(nullptr, 1, 1, 0, 0, 0)),
    CALL(0, qvWlanCheckChannelSideband(1, nullptr)),
    CALL(-14, qvbrcm_StatusUpdate(nullptr, &item, 1)),
    CALL(-14, qvbrcm_StatusUpdate(&intf, nullptr, 1)),
    CALL(-14, qvbrcm_StatusUpdate(&intf, &item, 0)),
    CALL(-14, qvbrcm_StatusUpdate(&intf, &item, -1)),
    CALL(-14, qvbrcm_GetAssocDevList(nullptr, 0, &stations, &count)),
    CALL(-14, qvbrcm_GetAssocDevList(&intf, 0, nullptr, &count)),
    CALL(-14, qvbrcm_GetAssocDevList(&intf, 0, &stations, nullptr)),
    CALL(-5, qvbrcm_GetAssocDevList(&intf, 0, &stations, &count)), // no entry is in use
    CALL(-1, get_sta_info(nullptr, "00:11:22:AA:BB:CC", &sta)),
    CALL(-1, get_sta_info("wl0", nullptr, &sta)),
    CALL(-1, get_sta_basic_info("wl0", "00:11:22:AA:BB:CC", nullptr)),
    CALL(-14, qvWlanGetTrafficInfo(nullptr, &counters)),
    CALL(-14, qvWlanGetTrafficInfo("wl0", nullptr)),
    CALL(0, qvWlanGetMaxBitRate(nullptr)),
    CALL(-14, qvWlanGetDataTxRates(nullptr, 1, 20, 2)),
    CALL(-1, qvWlanGetCurrentCh(nullptr)),
    CALL(-14, qvbrcm_ChannelScan(nullptr)),
    CALL(-14, qvWlanChanScan(nullptr)),
    CALL(-14, qvbrcm_GetChanScanRpt(nullptr, nullptr, nullptr, &aps, &count)),
    CALL(-14, qvbrcm_GetChanScanApRpt(nullptr, &aps, &count)),
    CALL(0, formatSSID(nullptr) != nullptr),
    CALL(-14, qvWlanSetMCS(nullptr)),
    CALL(-14, qvWlanSetWirelessMode(nullptr)),
    CALL(-14, qvWlanGetApMAC(with(nullptr, nullptr, nullptr))),
    CALL(-14, qvWlanChannelList(with("5GHz,20", nullptr, path))),
    CALL(-14, qvWlanChannelList(with("5GHz,20", "DE", nullptr))),
    CALL(-14, qvWlanGetValidChannel(with(nullptr, nullptr, nullptr))),
    CALL(-14, qvWlanGetCurrentChannelInfo(with(nullptr, nullptr, nullptr))),
    CALL(-14, qvWlanGetNoise(with(nullptr, nullptr, nullptr))),
    CALL(-14, qvWlanGetRadioStatus(with(nullptr, nullptr, nullptr))),
    CALL(-14, qvWlanRateUpdate(with(nullptr, nullptr, path))),
    CALL(-14, qvWlanRateUpdate(with("5GHz 8", nullptr, nullptr))),
    CALL(-14, qvWlanGetScanApResults(with(nullptr, nullptr, &aps))),
    CALL(-14, qvWlanGetScanApResults(with(nullptr, path, nullptr))),
    CALL(-14, qvWlanDumpCSRes(with(nullptr, path, &aps))),
    CALL(-14, qvWlanDumpCSRes(with(path, nullptr, &aps))),
    CALL(-14, qvWlanDumpCSRes(with(path, path, nullptr))),
    CALL(-14, qvWlanDumpCSRes(with(path, path, &aps, "wl0;x"))),
    CALL(0, checkWlanTxBFCap(nullptr)),
    CALL(-14, qvWlanWscInit(nullptr, intf.bss)),
    CALL(-14, qvWlanWscInit(&intf.radio, nullptr)),
    CALL(-14, qvbrcm_WPSReload(nullptr)),
    CALL(-14, qvbrcm_WPSSWPushButton(nullptr)),
    CALL(-14, qvbrcm_WPSHWPushButton(nullptr, 1, "u")),
    CALL(-14, qvbrcm_WPSStartStaPin(nullptr, "1234")),
    CALL(-14, qvbrcm_WPSCancel(nullptr)),
    CALL(-14, qvWlanActionWpsCmd(nullptr, "client-pbc", nullptr)),
    CALL(-14, qvWlanActionWpsCmd("wl0", nullptr, nullptr)),
    CALL(-14, parse_wps_env(nullptr)),
    CALL(-1, set_wps_env(nullptr)),
    CALL(-1, qvWlanWscPincheck(nullptr)),
    CALL(-14, qvWlanWscPinGen(nullptr)),
    CALL(0, qvWlanGetBandType(nullptr)),
    CALL(0, qvWlanGetPhyType(nullptr) != nullptr),
    CALL(-14, qvWlanDumpWlCap("wl0", nullptr)),
    CALL(-14, qvWlanDumpWlCap(nullptr, path)),
    CALL(-14, qvbrcm_StationFilter(nullptr, "")),
    CALL(-14, qvbrcm_StationFilter(&intf, nullptr)),
    CALL(-14, qvbrcm_BsaMacFilter(nullptr, 0, mac)),
    CALL(-5, qvWifiStaFilter(nullptr, "DENY", "")),
    CALL(-5, qvWifiStaFilter("wl0", nullptr, "")),
    CALL(-14, qvWifiStaFilter("wl0", "DENY", nullptr)),
    CALL(-14, qvbrcm_EvtInit(nullptr)),
    CALL(-14, send_bcmevt_to_Fenra_RPE(0, nullptr, 32)),
    CALL(-14, qvbrcm_DisassociateSTA(nullptr, "00:11:22:AA:BB:CC")),
    CALL(-14, qvbrcm_DisassociateSTA("wl0", nullptr)),
};

} // namespace

TEST_F(PlatformTest, MissingArgumentsAreRefused) {
    for (const Call &call : kCalls)
        EXPECT_EQ(call.result, call.make()) << call.text;
    EXPECT_EQ(-14, qvbrcm_SetVifsForPresetIntf(0, ".1")); // no radio in it
    EXPECT_EQ(Lines{}, platform.journal);
    EXPECT_EQ(0, intf.state);
}
