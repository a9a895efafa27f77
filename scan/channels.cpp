// Channel survey: forced scans of the channel selection daemon, and what it counted on each channel.
#include <wlbrcm/scan.h>

#include "module/argument.h"
#include "module/command.h"
#include "module/numbers.h"
#include "module/record.h"
#include "scan/readers.h"

using namespace wlbrcm;

namespace {

constexpr int kMostNumbers = 13;

// A dump line has one of two shapes. The BSSs of a channel stand in several columns of the longer one.
struct LineShape {
    int numbers;
    int band; // 0 for any
    int columns[7];
    int columnCount;
};
constexpr LineShape kLineShapes[] = {
    {5, 0, {1}, 1},
    {13, WLBRCM_BAND_2G, {2, 3, 4, 5}, 4},
    {13, 0, {1, 4, 5, 7, 8, 9, 10}, 7},
};

const LineShape *shapeOf(int numbers, int band) {
    for (const LineShape &shape : kLineShapes) {
        if (shape.numbers == numbers && (shape.band == 0 || shape.band == band))
            return &shape;
    }
    return nullptr;
}

// A line of the dump; a longer one comes in pieces, each of which counts.
using DumpLine = char[256];

int countLines(Report *dump) {
    int count = 0;
    for (DumpLine line; dump->next(line);)
        ++count;
    return count;
}

// Zero-filled records, of which the first ones are filled.
WlChanScanInfo *readChannels(Report *dump, int count, int band) {
    auto *channels = static_cast<WlChanScanInfo *>(calloc(static_cast<size_t>(count), sizeof(WlChanScanInfo)));
    if (channels == nullptr)
        return nullptr;
    DumpLine line;
    dump->lines().rewind();
    dump->next(line); // the header
    for (int filled = 0; filled < count && dump->next(line);)
        filled += readChannelLine(line, band, &channels[filled]) ? 1 : 0;
    return channels;
}

// The argument record keeps `count` behind a text pointer.
int dumpChannels(WlIntf *intf, WlChanScanInfo **channels, int *count) { // NOLINT(readability-non-const-parameter)
    int band = intf->radio.band;
    FieldCopy ifname(intf->radio.ifName);
    WlanParamArg arg = {ifname.data(), reinterpret_cast<char *>(&band), reinterpret_cast<char *>(count), channels, 0};
    return qvWlanDumpCSRes(&arg);
}

} // namespace

bool wlbrcm::readChannelLine(std::string_view line, int band, WlChanScanInfo *channel) {
    int numbers[kMostNumbers];
    int read = 0;
    while (read < kMostNumbers && takeDecimal(&line, &numbers[read]))
        ++read;
    const LineShape *shape = shapeOf(read, band);
    if (shape == nullptr || numbers[0] < 0 || numbers[0] > UINT16_MAX)
        return false;
    channel->chanspec = channel->channel = static_cast<uint16_t>(numbers[0]);
    channel->bandwidth = 20;
    channel->band = band == WLBRCM_BAND_2G ? 2 : 5;
    channel->sideband = 0;
    channel->valid = 1;
    channel->bssNum = 0;
    for (int i = 0; i < shape->columnCount; ++i)
        channel->bssNum += static_cast<uint32_t>(numbers[shape->columns[i]]);
    return true;
}

int qvWlanChanScan(WlanParamArg *arg) {
    const InterfaceName ifname = interfaceOf(WLBRCM_HERE, arg);
    if (!ifname)
        return WLBRCM_EINVAL;
    CommandOutput answer(WLBRCM_COMMAND("acs_cli -i %s csscan_force"), ifname);
    for (char line[256]; answer.next(line);) {
        if (contains(line, "Request finished"))
            return WLBRCM_OK;
    }
    return WLBRCM_EFAILED;
}

int qvbrcm_ChannelScan(WlIntf *intf) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    if (intf == nullptr)
        return WLBRCM_EINVAL;
    FieldCopy ifname(intf->radio.ifName);
    WlanParamArg arg = {};
    arg.prefix = ifname.data();
    if (qvWlanChanScan(&arg) == WLBRCM_OK)
        return WLBRCM_OK;
    WLBRCM_LOG(LOG_ERR, "Channel scan fail on %s......\n", Shown(ifname.c_str()).c_str());
    return WLBRCM_EFAILED;
}

int qvWlanDumpCSRes(WlanParamArg *arg) {
    const InterfaceName ifname = interfaceOf(WLBRCM_HERE, arg, kValue | kAux | kResult);
    if (!ifname)
        return WLBRCM_EINVAL;
    int band = 0;
    memcpy(&band, arg->value, sizeof band);
    Report dump(WLBRCM_HERE, ResultPath(WLBRCM_COMMAND("/tmp/%s_acs_dump_res"), ifname),
                WLBRCM_COMMAND("acs_cli -i %s dump bss > %s"), ifname);
    const int count = countLines(&dump) - 1;
    WlChanScanInfo *channels = count > 0 ? readChannels(&dump, count, band) : nullptr;
    if (channels == nullptr)
        return WLBRCM_EFAILED;
    memcpy(arg->aux, &count, sizeof count);
    *static_cast<WlChanScanInfo **>(arg->result) = channels;
    return WLBRCM_OK;
}

int qvbrcm_GetChanScanRpt(WlIntf *intf, WlChanScanInfo **channels, int *channelCount, WlScanAp **aps, int *apCount) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    const bool wantsChannels = channels != nullptr && channelCount != nullptr;
    const bool wantsAps = aps != nullptr && apCount != nullptr;
    if (!wantsChannels && !wantsAps) {
        WLBRCM_LOG(LOG_ERR, "Invalid parameter.\n");
        return WLBRCM_EFAILED;
    }
    if (intf == nullptr)
        return WLBRCM_EINVAL;
    int count = 0;
    WlChanScanInfo *list = nullptr;
    if (wantsChannels) {
        if (dumpChannels(intf, &list, &count) != WLBRCM_OK) {
            WLBRCM_LOG(LOG_ERR, "Error to dump scan channel result\n");
            return WLBRCM_EINVAL;
        }
    }
    if (wantsAps && qvbrcm_GetChanScanApRpt(intf, aps, apCount) != WLBRCM_OK) {
        WLBRCM_LOG(LOG_ERR, "Error to dump scan ap result\n");
        free(list);
        if (wantsChannels) {
            *channels = nullptr;
            *channelCount = 0;
        }
        return WLBRCM_EINVAL;
    }
    if (wantsChannels) {
        *channels = list;
        *channelCount = count;
    }
    return WLBRCM_OK;
}
