// Neighbouring access points: the driver's report as records for the host.
#include <wlbrcm/scan.h>

#include "module/argument.h"
#include "module/command.h"
#include "module/numbers.h"
#include "module/record.h"
#include "scan/readers.h"

using namespace wlbrcm;

namespace {

// How many access points the report holds at most; 0 when that cannot be told.
int countAccessPoints(const ResultPath &path) {
    CommandOutput counter(WLBRCM_COMMAND("cat %s | grep -c ^SSID"), path);
    char line[255];
    return counter.next(line) ? decimalNumber(line) : 0;
}

} // namespace

int qvWlanGetScanApResults(WlanParamArg *arg) {
    const InterfaceName ifname = interfaceOf(WLBRCM_HERE, arg, kAux | kResult);
    if (!ifname)
        return WLBRCM_EINVAL;
    const ResultPath path(WLBRCM_COMMAND("/tmp/%sscanresults"), ifname);
    Report report(WLBRCM_HERE, path, WLBRCM_COMMAND("wlctl -i %s scanresults > %s"), ifname);
    const int capacity = report ? countAccessPoints(path) : 0;
    if (capacity <= 0)
        return WLBRCM_EFAILED;
    auto *aps = static_cast<WlScanAp *>(calloc(static_cast<size_t>(capacity), sizeof(WlScanAp)));
    if (aps == nullptr)
        return WLBRCM_EFAILED;
    ApReader reader(ifname.c_str(), aps, capacity);
    for (std::string_view line; report.next<253>(&line);)
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
    FieldCopy ifname(intf->radio.ifName);
    WlanParamArg arg = {ifname.data(), nullptr, reinterpret_cast<char *>(&found), &list, 0};
    if (qvWlanGetScanApResults(&arg) != WLBRCM_OK) {
        WLBRCM_LOG(LOG_ERR, "WDS scan fail on %s......\n", Shown(ifname.c_str()).c_str());
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
