// Single live values of an interface: up or down, noise, traffic.
#include "module/argument.h"
#include "module/command.h"
#include "module/numbers.h"
#include "status/readers.h"

namespace wlbrcm {

namespace {

struct Counter {
    const char *name;
    uint32_t WlTrafficCounters::*field;
};
// In the order in which they are looked for in a line; the record has another.
constexpr Counter kCounters[] = {
    {"txframe", &WlTrafficCounters::txframe},     {"txbyte", &WlTrafficCounters::txbyte},
    {"rxframe", &WlTrafficCounters::rxframe},     {"rxbyte", &WlTrafficCounters::rxbyte},
    {"txerror", &WlTrafficCounters::txerror},     {"rxerror", &WlTrafficCounters::rxerror},
    {"txnoassoc", &WlTrafficCounters::txnoassoc}, {"rxbadda", &WlTrafficCounters::rxbadda},
};
constexpr int kCounterCount = sizeof kCounters / sizeof kCounters[0];
static_assert(kCounterCount * sizeof(uint32_t) == sizeof(WlTrafficCounters), "every counter is looked for");

// The number that a report's first line of at most Size - 1 characters begins with; 0 when there is no report.
template <size_t Size> int readFirstNumber(Report *report, void *result) {
    auto *number = static_cast<int *>(result);
    *number = 0;
    char line[Size];
    if (!report->next(line))
        return WLBRCM_EFAILED;
    *number = decimalNumber(line);
    return WLBRCM_OK;
}

} // namespace

int readCounters(std::string_view line, WlTrafficCounters *counters) {
    int met = 0;
    for (const Counter &counter : kCounters) {
        std::string_view rest = line;
        if (!takeThrough(&rest, counter.name))
            continue;
        ++met;
        takeUnsigned(&rest, &(counters->*counter.field));
    }
    return met;
}

} // namespace wlbrcm

using namespace wlbrcm;

int qvWlanGetRadioStatus(WlanParamArg *arg) {
    const InterfaceName ifname = interfaceOf(WLBRCM_HERE, arg, kResult);
    if (!ifname)
        return WLBRCM_EINVAL;
    Report report(WLBRCM_HERE, ResultPath(WLBRCM_COMMAND("/tmp/%s_radio_st"), ifname),
                  WLBRCM_COMMAND("wlctl -i %s isup > %s"), ifname);
    return readFirstNumber<49>(&report, arg->result);
}

int qvWlanGetNoise(WlanParamArg *arg) {
    const InterfaceName ifname = interfaceOf(WLBRCM_HERE, arg, kResult);
    if (!ifname)
        return WLBRCM_EINVAL;
    Report report(unlogged(WLBRCM_HERE), ResultPath(WLBRCM_COMMAND("/tmp/.noise_result")),
                  WLBRCM_COMMAND("wlctl -i %s status | grep \"noise:\" | awk '{sub(/.*noise:/,\"\");print $1}' > %s"),
                  ifname);
    return readFirstNumber<255>(&report, arg->result);
}

int qvWlanGetTrafficInfo(const char *ifname, WlTrafficCounters *counters) {
    WLBRCM_LOG(LOG_DEBUG, "enter\n");
    if (ifname == nullptr || counters == nullptr)
        return WLBRCM_EINVAL;
    const InterfaceName name(WLBRCM_HERE, ifname);
    if (!name)
        return WLBRCM_EINVAL;
    CommandOutput output(WLBRCM_COMMAND("wlctl -i %s counters"), name);
    if (!output)
        return WLBRCM_EFAILED;
    WlTrafficCounters read = {};
    char line[256];
    for (int met = 0; met < kCounterCount && output.next(line);)
        met += readCounters(line, &read);
    *counters = read;
    return WLBRCM_OK;
}
