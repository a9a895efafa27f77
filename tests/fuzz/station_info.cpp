#include "tests/fuzz/target.h"

#include <algorithm>

namespace {

constexpr char kMac[] = "00:11:22:AA:BB:CC";

WlStaInfo read(const std::string &report, char mode) {
    const fuzz::Gateway gateway{
        {"wlctl -i wl0.1 rssi", report}, {"wlctl -i wl0.1 sta_info", report}, {"wlctl -i wl0 band", report}};
    WlStaInfo sta = {};
    strcpy(sta.macAddr, kMac);
    HOLDS(do_get_sta_info("wl0.1", kMac, &sta, mode) == 0);
    return sta;
}

bool isOneOf(uint32_t value, std::initializer_list<uint32_t> values) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

} // namespace

FUZZ_TARGET(station_info) {
    WlStaInfo full = read(input, 'd');
    HOLDS(strcmp(full.ifName, "wl0.1") == 0 && strcmp(full.macAddr, kMac) == 0);
    HOLDS(isOneOf(full.phyMode, {0, 1, 2, 4, 8, 16}) && isOneOf(full.bandwidth, {0, 20, 40, 80, 160}));
    HOLDS((full.phyMode == 0) == (full.bandwidth == 0));
    HOLDS(full.authenticated <= 1 && full.rssi <= 0 && full.lastTxRate == full.txRate);
    HOLDS(full.snr == 0 && full.noise == 0 && full.reserved == 0);

    // The last line of a kind decides, so that a report that comes twice says the same.
    const WlStaInfo twice = read(input + "\n" + input, 'd');
    if (input.find('\0') == std::string::npos)
        HOLDS(fuzz::same(twice, full));

    // The basic record lacks the counters and nothing else.
    const WlStaInfo basic = read(input, 'b');
    full.txPkts = full.rxPkts = full.txFailures = full.txRetries = full.txRetryExhausted = 0;
    full.txBytes = full.rxBytes = 0;
    HOLDS(fuzz::same(basic, full));
}
