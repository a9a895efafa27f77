#include "target.h"

#include "status/readers.h"

namespace {

bool read(const std::string &report, WlChannelInfo *info) {
    FakePlatform platform;
    platform.answer("wlctl -i wl0 chanspec", report);
    Arg arg("wl0", "", "", 0, info);
    const int result = qvWlanGetCurrentChannelInfo(arg);
    HOLDS(result == 0 || result == WLBRCM_EFAILED);
    HOLDS(qvWlanGetCurrentCh(arg) == (result == 0 ? info->channel : -1));
    HOLDS(platform.leftFiles().empty());
    return result == 0;
}

} // namespace

FUZZ_TARGET(chanspec) {
    uint32_t number = 0;
    WlChannelInfo decoded = {};
    if (wlbrcm::readChanspec(input, &number) && wlbrcm::decodeChanspec(number, &decoded))
        HOLDS(decoded.chanspec == number);

    WlChannelInfo info, untouched;
    memset(&info, 0x5a, sizeof info);
    untouched = info;
    if (!read(input, &info)) {
        HOLDS(memcmp(&info, &untouched, sizeof info) == 0);
        return;
    }
    const int offset = info.channel - (info.chanspec & 0xff);
    HOLDS(info.chanspec != 0 && (info.band == 2 || info.band == 5));
    if (info.bandwidth == 20)
        HOLDS(info.sideband == 0 && offset == 0);
    else if (info.bandwidth == 40)
        HOLDS(info.sideband >= 1 && info.sideband <= 2 && abs(offset) == 2);
    else
        HOLDS(info.bandwidth == 80 && info.sideband >= 3 && info.sideband <= 6 && abs(offset) <= 6);

    char text[64];
    snprintf(text, sizeof text, "%d (0x%x)\n", info.channel, info.chanspec);
    WlChannelInfo again = untouched;
    HOLDS(read(text, &again) && memcmp(&again, &info, sizeof info) == 0);
}
