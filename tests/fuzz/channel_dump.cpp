#include "tests/fuzz/target.h"

#include <memory>

#include "scan/readers.h"

namespace {

std::vector<WlChanScanInfo> dump(const std::string &report, int band) {
    const fuzz::Gateway gateway{{"acs_cli -i wl0 dump bss", report}};
    WlChanScanInfo *records = nullptr;
    int count = -1;
    Arg arg("wl0", "", "", 0, &records);
    arg.record.value = reinterpret_cast<char *>(&band);
    arg.record.aux = reinterpret_cast<char *>(&count);
    const int result = qvWlanDumpCSRes(arg);
    const std::unique_ptr<WlChanScanInfo, decltype(&free)> block(records, free);
    const int below = fuzz::reads(report, 255) - 1; // the header
    HOLDS((result == 0) == (below > 0) && (result == 0) == (records != nullptr));
    HOLDS(count == (result == 0 ? below : -1));
    return result == 0 ? std::vector<WlChanScanInfo>(records, records + count) : std::vector<WlChanScanInfo>();
}

} // namespace

FUZZ_TARGET(channel_dump) {
    WlChanScanInfo first;
    long long number;
    if (wlbrcm::readChannelLine(input, WLBRCM_BAND_5G, &first))
        HOLDS(sscanf(input.c_str(), "%lld", &number) == 1 && first.channel == number);
    for (const int band : {0, int{WLBRCM_BAND_5G}, int{WLBRCM_BAND_2G}}) {
        bool rest = false;
        for (const WlChanScanInfo &channel : dump(input, band)) {
            const WlChanScanInfo empty = {};
            HOLDS(channel.valid == 1 ? !rest : fuzz::same(channel, empty));
            rest = channel.valid == 0;
            if (rest)
                continue;
            HOLDS(channel.channel == channel.chanspec && channel.bandwidth == 20 && channel.sideband == 0);
            HOLDS(channel.band == (band == WLBRCM_BAND_2G ? 2 : 5));
            WlChanScanInfo again = {};
            const std::string line =
                std::to_string(channel.channel) + " " + std::to_string(static_cast<int32_t>(channel.bssNum)) + " 0 0 0";
            HOLDS(wlbrcm::readChannelLine(line, band, &again) && fuzz::same(again, channel));
        }
    }
}
