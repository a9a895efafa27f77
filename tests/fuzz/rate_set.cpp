#include "target.h"

#include "status/readers.h"

namespace {

constexpr int kHighestMbps = 173333; // 400 streams, the most that are believed, of MCS 9 at 80 MHz

void checkRate(const std::string &report, const char *request) {
    FakePlatform platform;
    platform.answer("wlctl -i wl0 chanspec", "36/80 (0xe02a)\n");
    platform.answer("wlctl -i wl0 2g_rate", "auto\n");
    platform.answer("wlctl -i wl0 5g_rate", "auto\n");
    platform.answer("wlctl -i wl0 rateset", report);
    char text[32];
    HOLDS(qvWlanRateUpdate(Arg("wl0", request, "", 0, text)) == 0);
    HOLDS(fuzz::ends(text) && platform.leftFiles().empty());
    unsigned rate = 0;
    char unit[8] = "", more = '\0';
    HOLDS(sscanf(text, "%u %7s%c", &rate, unit, &more) == 2);
    HOLDS(strcmp(unit, "Mbps") == 0 ? rate >= 1 && rate <= kHighestMbps : strcmp(unit, "kbps") == 0 && rate <= 1024);
}

// The lists of basic and supported rates.
void checkLists(const std::string &report, int mode, int bandwidth, int band) {
    FakePlatform platform;
    platform.answer("wlctl -i wl0 rateset", report);
    HOLDS(qvWlanGetDataTxRates(Arg("wl0"), mode, bandwidth, band) == 0);
    HOLDS(platform.leftFiles() == Lines{"/tmp/wl0DataTxRates.txt"});
    const std::string lists = platform.files["/tmp/wl0DataTxRates.txt"];
    const size_t basic = lists.find(":BasR\n");
    HOLDS(basic > 0 && basic < lists.size());
    const size_t supported = lists.find(":SupR\n", basic);
    HOLDS(supported + 6 == lists.size());
    HOLDS(fuzz::isNumberList(lists.substr(0, basic)));
    HOLDS(fuzz::isNumberList(lists.substr(basic + 6, supported - basic - 6)));
}

} // namespace

FUZZ_TARGET(rate_set) {
    checkRate(input, "2.4GHz 4");
    checkRate(input, "5GHz 9");
    for (const int bandwidth : {20, 40, 80}) {
        checkLists(input, 9, bandwidth, WLBRCM_BAND_5G);
        checkLists(input, 4, bandwidth, WLBRCM_BAND_2G);
    }
    const int streams = wlbrcm::streamsOfMcsLine(input);
    HOLDS(streams >= 0 && streams <= 4);
}
