#include "tests/fuzz/target.h"

#include <memory>

namespace {

using Aps = std::vector<WlScanAp>;

// Access points of a report that is said to hold `lines` of them.
Aps scan(const std::string &report, int lines) {
    const fuzz::Gateway gateway{{"wlctl -i wl0 scanresults", report},
                                {"cat /tmp/wl0scanresults | grep -c ^SSID", std::to_string(lines)}};
    WlScanAp *records = nullptr;
    int count = -1;
    Arg arg("wl0", "", "", 0, &records);
    arg.record.aux = reinterpret_cast<char *>(&count);
    const int result = qvWlanGetScanApResults(arg);
    const std::unique_ptr<WlScanAp, decltype(&free)> block(records, free);
    HOLDS((result == 0) == (lines > 0) && (result == 0) == (records != nullptr));
    HOLDS(result != 0 || (count >= 0 && count <= lines));
    return result == 0 ? Aps(records, records + count) : Aps();
}

int linesWithSsid(const std::string &report) {
    int lines = 0;
    for (size_t at = report.find("SSID"); at != std::string::npos; at = report.find("SSID", at + 1))
        lines += at == 0 || report[at - 1] == '\n' ? 1 : 0;
    return lines;
}

} // namespace

FUZZ_TARGET(scan_results) {
    const int lines = linesWithSsid(input);
    const Aps aps = scan(input, lines);
    for (const WlScanAp &ap : aps) {
        HOLDS(strcmp(ap.ifName, "wl0") == 0 && fuzz::ends(ap.ssid) && fuzz::ends(ap.bssid));
        HOLDS(strnlen(ap.basicRates, sizeof ap.basicRates) <= 255);
        HOLDS(strnlen(ap.supportedRates, sizeof ap.supportedRates) <= 255);
        HOLDS(ap.band >= 0 && ap.band <= 2 && ap.mode >= 0 && ap.mode <= 2 && ap.akm <= 2 && ap.wps <= 1);
        HOLDS(ap.phyModes > 0 && ap.phyModes <= 0x1f && ap.security <= 3 && ap.ciphers <= 3);
    }
    // What there is no room for does not disturb the records before it.
    const Aps more = scan(input, lines + 3);
    HOLDS(more.size() >= aps.size());
    HOLDS(aps.empty() || memcmp(aps.data(), more.data(), aps.size() * sizeof(WlScanAp)) == 0);
}
