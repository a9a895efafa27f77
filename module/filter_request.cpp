#include "module/filter_request.h"

#include "module/record.h"

namespace wlbrcm {

int setFilter(Here here, MacFilterRequest *request) {
    const int done = qvbrcm_MacFilter_set(request);
    if (done == 0)
        WLBRCM_LOG_AT(here, LOG_ERR, "fail to set to driver\n");
    qvbrcm_MacFilter_release_list(&request->mac_list);
    return done != 0 ? WLBRCM_OK : WLBRCM_EFAILED;
}

void requestMacFilter(Here here, const WlSsidCfg &bss) {
    MacFilterRequest request = {};
    copyText(request.data.intf_name, fieldText(bss.ifName));
    request.data.b_user_config = 1;
    const int cmd = qvbrcm_MacFilter_get_cmd(FieldCopy(bss.macFilterMode).c_str());
    if (cmd == WLBRCM_FILTER_INVALID) {
        WLBRCM_LOG_AT(here, LOG_ERR, "fail to get cmd\n");
        return;
    }
    request.data.cmd = static_cast<uint32_t>(cmd);
    if (cmd != WLBRCM_FILTER_OFF)
        request.mac_list = qvbrcm_MacFilter_mac_list_by_str(FieldCopy(bss.macFilterList).c_str());
    setFilter(here, &request);
}

} // namespace wlbrcm
