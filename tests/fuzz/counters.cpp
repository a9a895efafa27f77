#include "target.h"

#include "status/readers.h"

namespace {

WlTrafficCounters read(const std::string &report) {
    FakePlatform platform;
    platform.answer("wlctl -i wl0 counters", report);
    WlTrafficCounters counters;
    memset(&counters, 0x5a, sizeof counters);
    HOLDS(qvWlanGetTrafficInfo("wl0", &counters) == 0);
    return counters;
}

bool same(const WlTrafficCounters &one, const WlTrafficCounters &other) {
    return memcmp(&one, &other, sizeof one) == 0;
}

// A report that names every counter.
std::string report(const WlTrafficCounters &c) {
    char text[512];
    snprintf(text, sizeof text,
             "txframe %u txbyte %u txretrans 0 txerror %u\nrxframe %u rxbyte %u rxerror %u\ntxnoassoc %u rxbadda %u\n",
             c.txframe, c.txbyte, c.txerror, c.rxframe, c.rxbyte, c.rxerror, c.txnoassoc, c.rxbadda);
    return text;
}

} // namespace

FUZZ_TARGET(counters) {
    const WlTrafficCounters found = read(input);
    // A complete report reads back, and what comes behind it is not read.
    HOLDS(same(read(report(found)), found));
    HOLDS(same(read(report(found) + input), found));

    WlTrafficCounters one = found;
    const int met = wlbrcm::readCounters(input, &one);
    HOLDS(met >= 0 && met <= 8);
    HOLDS(met > 0 || same(one, found));
}
