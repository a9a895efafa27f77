// Names of the driver's events, for the log.
#include <wlbrcm/events.h>

#include <iterator>

namespace {

struct EventName {
    uint32_t event;
    const char *name;
};
// As the driver's own table has them: not quite in the order of the numbers, and 124 twice.
constexpr EventName kEventNames[] = {
    {0, "WLC_E_SET_SSID"},
    {1, "WLC_E_JOIN"},
    {2, "WLC_E_START"},
    {3, "WLC_E_AUTH"},
    {4, "WLC_E_AUTH_IND"},
    {5, "WLC_E_DEAUTH"},
    {6, "WLC_E_DEAUTH_IND"},
    {7, "WLC_E_ASSOC"},
    {8, "WLC_E_ASSOC_IND"},
    {9, "WLC_E_REASSOC"},
    {10, "WLC_E_REASSOC_IND"},
    {11, "WLC_E_DISASSOC"},
    {12, "WLC_E_DISASSOC_IND"},
    {13, "WLC_E_QUIET_START"},
    {14, "WLC_E_QUIET_END"},
    {15, "WLC_E_BEACON_RX"},
    {16, "WLC_E_LINK"},
    {17, "WLC_E_MIC_ERROR"},
    {18, "WLC_E_NDIS_LINK"},
    {19, "WLC_E_ROAM"},
    {20, "WLC_E_TXFAIL"},
    {21, "WLC_E_PMKID_CACHE"},
    {22, "WLC_E_RETROGRADE_TSF"},
    {23, "WLC_E_PRUNE"},
    {24, "WLC_E_AUTOAUTH"},
    {25, "WLC_E_EAPOL_MSG"},
    {26, "WLC_E_SCAN_COMPLETE"},
    {27, "WLC_E_ADDTS_IND"},
    {28, "WLC_E_DELTS_IND"},
    {29, "WLC_E_BCNSENT_IND"},
    {30, "WLC_E_BCNRX_MSG"},
    {31, "WLC_E_BCNLOST_MSG"},
    {32, "WLC_E_ROAM_PREP"},
    {33, "WLC_E_PFN_NET_FOUND"},
    {34, "WLC_E_PFN_NET_LOST"},
    {40, "WLC_E_RADIO"},
    {41, "WLC_E_PSM_WATCHDOG"},
    {44, "WLC_E_PROBREQ_MSG"},
    {45, "WLC_E_SCAN_CONFIRM_IND"},
    {46, "WLC_E_PSK_SUP"},
    {47, "WLC_E_COUNTRY_CODE_CHANGED"},
    {48, "WLC_E_EXCEEDED_MEDIUM_TIME"},
    {49, "WLC_E_ICV_ERROR"},
    {50, "WLC_E_UNICAST_DECODE_ERROR"},
    {51, "WLC_E_MULTICAST_DECODE_ERROR"},
    {52, "WLC_E_TRACE"},
    {54, "WLC_E_IF"},
    {56, "WLC_E_RSSI"},
    {57, "WLC_E_PFN_BEST_BATCHING"},
    {58, "WLC_E_EXTLOG_MSG"},
    {69, "WLC_E_ESCAN_RESULT"},
    {70, "WLC_E_ACTION_FRAME_OFF_CHAN_COMPLETE"},
    {76, "WLC_E_WAKE_EVENT"},
    {73, "WLC_E_DCS_REQUEST"},
    {77, "WLC_E_RM_COMPLETE"},
    {79, "WLC_E_OVERLAY_REQ"},
    {80, "WLC_E_CSA_COMPLETE_IND"},
    {81, "WLC_E_EXCESS_PM_WAKE_EVENT"},
    {82, "WLC_E_PFN_SCAN_NONE"},
    {83, "WLC_E_PFN_SCAN_ALLGONE"},
    {87, "WLC_E_ASSOC_REQ_IE"},
    {88, "WLC_E_ASSOC_RESP_IE"},
    {101, "WLC_E_BEACON_FRAME_RX"},
    {94, "WLC_E_NATIVE"},
    {102, "WLC_E_SERVICE_FOUND"},
    {103, "WLC_E_GAS_FRAGMENT_RX"},
    {104, "WLC_E_GAS_COMPLETE"},
    {105, "WLC_E_P2PO_ADD_DEVICE"},
    {106, "WLC_E_P2PO_DEL_DEVICE"},
    {124, "WLC_E_CCA_CHAN_QUAL"},
    {125, "WLC_E_BSSID"},
    {108, "WLC_E_TXFAIL_THRESH"},
    {110, "WLC_E_AIBSS_TXFAIL"},
    {124, "WLC_E_CCA_CHAN_QUAL"},
    {136, "WLC_E_AUTHORIZED"},
    {137, "WLC_E_PROBREQ_MSG_RX"},
    {139, "WLC_E_PRE_ASSOC_RSEP_IND"},
};
static_assert(std::size(kEventNames) == 77);

constexpr bool numbersAreUnique() {
    constexpr uint32_t kTwice = 124;
    for (size_t i = 0; i < std::size(kEventNames); ++i) {
        for (size_t k = i + 1; k < std::size(kEventNames); ++k) {
            if (kEventNames[i].event == kEventNames[k].event && kEventNames[i].event != kTwice)
                return false;
        }
    }
    return true;
}
static_assert(numbersAreUnique());

} // namespace

const char *bcmevent_get_name(uint32_t event) {
    for (const EventName &each : kEventNames) {
        if (each.event == event)
            return each.name;
    }
    return "Unknown Event";
}
