// The current channel of an interface.
#include "module/argument.h"
#include "module/command.h"
#include "module/numbers.h"
#include "status/readers.h"

namespace wlbrcm {

namespace {

// A chanspec holds the centre channel, the position of the control channel in a wide one, the width and the band.
constexpr uint32_t kCentreMask = 0x00FF;
constexpr uint32_t kSidebandMask = 0x0700;
constexpr uint32_t kWidthMask = 0x3800;
constexpr uint32_t kBandMask = 0xC000;
constexpr uint32_t kWidth40 = 0x1800;
constexpr uint32_t kWidth80 = 0x2000;

struct Position {
    int offset; // of the control channel from the centre
    uint32_t sideband;
};
constexpr Position kWhole = {0, 0};
constexpr Position kLower40 = {-2, 1};
constexpr Position kUpper40 = {2, 2};
constexpr Position kPositions80[] = {{-6, 3}, {-2, 4}, {2, 5}, {6, 6}}; // by the sideband bits; further ones are lowest

struct Width {
    uint32_t mhz;
    Position position;
};

Width widthOf(uint32_t chanspec) {
    const uint32_t sideband = (chanspec & kSidebandMask) >> 8;
    switch (chanspec & kWidthMask) {
    case kWidth40:
        return {40, sideband == 0 ? kLower40 : kUpper40};
    case kWidth80:
        return {80, kPositions80[sideband < 4 ? sideband : 0]};
    default:
        return {20, kWhole};
    }
}

} // namespace

bool readChanspec(std::string_view line, uint32_t *chanspec) {
    if (!takeThrough(&line, "("))
        return false;
    *chanspec = hexNumber(line);
    return true;
}

bool decodeChanspec(uint32_t chanspec, WlChannelInfo *info) {
    const Width width = widthOf(chanspec);
    const int channel = static_cast<int>(chanspec & kCentreMask) + width.position.offset;
    if (chanspec == 0 || chanspec > UINT16_MAX || channel < 0)
        return false;
    info->chanspec = static_cast<uint16_t>(chanspec);
    info->channel = static_cast<uint16_t>(channel);
    info->bandwidth = width.mhz;
    info->band = (chanspec & kBandMask) != 0 ? 5 : 2;
    info->sideband = width.position.sideband;
    return true;
}

} // namespace wlbrcm

using namespace wlbrcm;

int qvWlanGetCurrentChannelInfo(WlanParamArg *arg) {
    const InterfaceName ifname = interfaceOf(WLBRCM_HERE, arg, kResult);
    if (!ifname || !startsWith(ifname.c_str(), "wl"))
        return WLBRCM_EINVAL;
    Report report(unlogged(WLBRCM_HERE), ResultPath(WLBRCM_COMMAND("/tmp/.cur_channel")),
                  WLBRCM_COMMAND("wlctl -i %s chanspec > %s"), ifname);
    if (!report) {
        printf("%s: error open file\n", "qvWlanGetCurrentChannelInfo");
        return WLBRCM_EFAILED;
    }
    uint32_t chanspec = 0;
    char line[100];
    bool found = false;
    while (!found && report.next(line))
        found = readChanspec(line, &chanspec);
    return decodeChanspec(chanspec, static_cast<WlChannelInfo *>(arg->result)) ? WLBRCM_OK : WLBRCM_EFAILED;
}

int qvWlanGetCurrentCh(WlanParamArg *arg) {
    if (arg == nullptr)
        return -1;
    WlChannelInfo info;
    WlanParamArg current = {};
    current.prefix = arg->prefix;
    current.result = &info;
    return qvWlanGetCurrentChannelInfo(&current) == WLBRCM_OK ? info.channel : -1;
}
