// Rate limits and the flow cache of a BSS. They act at once.
#include "params/setting.h"

using namespace wlbrcm;

namespace {

struct BurstStep {
    int fromKbit, burstKb;
};
constexpr BurstStep kUpstreamBursts[] = {{1, 50}, {5000, 100}, {10000, 150}, {15000, 200}};
constexpr BurstStep kDownstreamBursts[] = {{1, 10}, {10000, 30}, {15000, 60}};

template <size_t Count> constexpr bool ascending(const BurstStep (&steps)[Count]) {
    for (size_t i = 1; i < Count; ++i) {
        if (steps[i].fromKbit <= steps[i - 1].fromKbit)
            return false;
    }
    return steps[0].fromKbit == 1;
}
static_assert(ascending(kUpstreamBursts) && ascending(kDownstreamBursts));

template <size_t Count> int burstFor(int rate, const BurstStep (&steps)[Count]) {
    int burst = 0;
    for (const BurstStep &step : steps) {
        if (rate >= step.fromKbit)
            burst = step.burstKb;
    }
    return burst;
}

} // namespace

// An earlier limit is always removed first, so that there is never more than one queue.

int qvWlanSetUpstreamRate(WlanParamArg *arg) {
    const InterfaceName bss = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!bss)
        return WLBRCM_EINVAL;
    const int rate = decimal(arg->value);
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("tc qdisc del dev %s ingress 2> /dev/null"), bss);
    if (rate < 1)
        return WLBRCM_OK;
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("tc qdisc add dev %s handle ffff: ingress 2> /dev/null"), bss);
    runCommand(
        WLBRCM_HERE,
        WLBRCM_COMMAND("tc filter add dev %s parent ffff: protocol all u32 match u32 0 0 police rate %dkbit burst "
                       "%dkb drop flowid :1 2> /dev/null"),
        bss, rate, burstFor(rate, kUpstreamBursts));
    return WLBRCM_OK;
}

int qvWlanSetDownstreamRate(WlanParamArg *arg) {
    const InterfaceName bss = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!bss)
        return WLBRCM_EINVAL;
    const int rate = decimal(arg->value);
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("tc qdisc del dev %s root 2> /dev/null"), bss);
    if (rate < 1)
        return WLBRCM_OK;
    runCommand(WLBRCM_HERE,
               WLBRCM_COMMAND("tc qdisc add dev %s root tbf rate %dkbit latency 50ms burst %dkb 2> /dev/null"), bss,
               rate, burstFor(rate, kDownstreamBursts));
    return WLBRCM_OK;
}

int qvWlanFlowCacheSetup(WlanParamArg *arg, int enabled) {
    const InterfaceName bss = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!bss)
        return WLBRCM_EINVAL;
    const bool useCache = decimal(arg->value) != 0;
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("ebtables -t broute -D SKIP_FCACHE -i %s -j SKIPLOG"), bss);
    if (enabled == 0)
        return WLBRCM_OK;
    if (!useCache)
        runCommand(WLBRCM_HERE, WLBRCM_COMMAND("ebtables -t broute -A SKIP_FCACHE -i %s -j SKIPLOG"), bss);
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("wlctl -i %s fcache %d > /dev/null"), bss, useCache ? 1 : 0);
    return WLBRCM_OK;
}
