// Neighbouring access points: the driver's report as records for the host.
#include <wlbrcm/scan.h>

#include "module/command.h"
#include "module/numbers.h"
#include "scan/readers.h"

using namespace wlbrcm;

namespace {

// How many access points the report holds at most; 0 when that cannot be told.
int countAccessPoints(const ResultPath &path) {
    const Command command("cat %s | grep -c ^SSID", path);
    CommandOutput counter(command.text.c_str());
    char line[255];
    return counter.next(line) ? decimalNumber(line) : 0;
}

bool isComplete(const WlanParamArg *arg) {
    return arg != nullptr && arg->prefix != nullptr && arg->aux != nullptr && arg->result != nullptr;
}

} // namespace

int qvWlanGetScanApResults(WlanParamArg *arg) {
    if (!isComplete(arg))
        return WLBRCM_EINVAL;
    const InterfaceName ifname(WLBRCM_HERE, arg->prefix);
    if (!ifname)
        return WLBRCM_EINVAL;
    const ResultPath path("/tmp/%sscanresults", ifname.c_str());
    runCommand(WLBRCM_HERE, "wlctl -i %s scanresults > %s", ifname, path);
    ResultFile report(path);
    const int capacity = report ? countAccessPoints(path) : 0;
    if (capacity <= 0)
        return WLBRCM_EFAILED;
    auto *aps = static_cast<WlScanAp *>(calloc(static_cast<size_t>(capacity), sizeof(WlScanAp)));
    if (aps == nullptr)
        return WLBRCM_EFAILED;
    ApReader reader(ifname.c_str(), aps, capacity);
    for (char line[254]; report.next(line);)
        reader.readLine(line);
    const int count = reader.finish();
    memcpy(arg->aux, &count, sizeof count);
    *static_cast<WlScanAp **>(arg->result) = aps;
    return WLBRCM_OK;
}

int qvbrcm_GetChanScanApRpt(WlIntf *intf, WlScanAp **aps, int *count) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    if (intf == nullptr)
        return WLBRCM_EINVAL;
    int found = 0;
    WlScanAp *list = nullptr;
    WlanParamArg arg = {intf->radio.ifName, nullptr, reinterpret_cast<char *>(&found), &list,
                        intf->radio.radioIndex - 1};
    if (qvWlanGetScanApResults(&arg) != WLBRCM_OK) {
        WLBRCM_LOG(LOG_ERR, "WDS scan fail on %s......\n", intf->radio.ifName);
        return WLBRCM_EFAILED;
    }
    if (aps == nullptr || count == nullptr) {
        free(list);
        return WLBRCM_EINVAL;
    }
    *aps = list;
    *count = found;
    return WLBRCM_OK;
}
