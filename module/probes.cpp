// What a radio and its board can do.
#include <wlbrcm/radio.h>

#include <sys/stat.h>

#include "module/argument.h"
#include "module/board.h"
#include "module/capabilities.h"
#include "module/numbers.h"

using namespace wlbrcm;

namespace {

bool isWirelessName(const char *ifname) { return startsWith(ifname, "wl"); }

// A listing that somebody else put there is none.
bool hasContent(const char *path) {
    const int descriptor = openOwnFile(path);
    if (descriptor < 0)
        return false;
    const bool filled = lseek(descriptor, 0, SEEK_END) > 0;
    close(descriptor);
    return filled;
}

struct PhyLetter {
    int number;
    const char *letter;
};
// PHY numbers as the driver's phytype command prints them; every other number is "b".
constexpr PhyLetter kPhyLetters[] = {{0, "a"}, {2, "g"}, {5, "g"}, {4, "n"}, {7, "n"}, {8, "n"}, {11, "v"}};

struct ChipBand {
    const char *deviceId;
    int band;
};
constexpr ChipBand kChipBands[] = {{"0x43bb", WLBRCM_BAND_2G}, {"0x43c5", WLBRCM_BAND_5G}};

// The band that a line of the revision report names, or 0. The identifier ends one character before the line's end.
int bandOfLine(const char *line) {
    const char *id = strstr(line, "0x");
    if (id == nullptr || strstr(line, "deviceid") == nullptr)
        return 0;
    for (const ChipBand &chip : kChipBands) {
        if (strncmp(id, chip.deviceId, strlen(id) - 1) == 0)
            return chip.band;
    }
    return 0;
}

// The first core revision of the driver's revision report, 0 when there is none.
unsigned readCoreRevision(const InterfaceName &ifname) {
    Report report(Here{"checkWlanTxBFCap", __LINE__}, ResultPath(WLBRCM_COMMAND("/tmp/%s_revinfo"), ifname),
                  WLBRCM_COMMAND("wlctl -i %s revinfo > %s"), ifname);
    for (char line[256]; report.next(line);) {
        std::string_view rest = line;
        std::string_view name;
        unsigned value = 0;
        while (takeWord(&rest, 63, &name)) {
            const bool read = takeText(&rest, " 0x") && takeHex(&rest, &value);
            if (name == "corerev")
                return read ? value : 0;
        }
    }
    return 0;
}

int countTransmitChains(const InterfaceName &ifname) {
    Report report(Here{"checkWlanTxBFCap", __LINE__}, ResultPath(WLBRCM_COMMAND("/tmp/%s_txchain"), ifname),
                  WLBRCM_COMMAND("wlctl -i %s txchain > %s"), ifname);
    char text[64];
    report.lines().rest(text);
    return __builtin_popcount(static_cast<unsigned>(decimalNumber(text)));
}

bool canBeamform(const char *text) {
    constexpr unsigned kFirstRevision = 40;
    if (text == nullptr)
        return false;
    const InterfaceName ifname({"checkWlanTxBFCap", __LINE__}, text);
    return ifname && readCoreRevision(ifname) >= kFirstRevision && countTransmitChains(ifname) >= 2;
}

} // namespace

int qvWlanDumpWlCap(const char *ifname, char *path) {
    if (ifname == nullptr || path == nullptr)
        return WLBRCM_EINVAL;
    if (!isWirelessName(ifname)) {
        printf("%s : error input wireless interface name\n", "qvWlanDumpWlCap");
        return WLBRCM_EFAILED;
    }
    const InterfaceName name(WLBRCM_HERE, ifname);
    if (!name)
        return WLBRCM_EFAILED;
    const ResultPath file(WLBRCM_COMMAND("/tmp/%s_cap"), name);
    copyText(path, 64, file.c_str());
    if (hasContent(path))
        return WLBRCM_OK;
    {
        Report listing(WLBRCM_HERE, file, WLBRCM_COMMAND("wlctl -i %s cap > %s"), name);
        listing.keep();
        if (!listing)
            return WLBRCM_OK;
    }
    chmod(path, S_IRUSR);
    return WLBRCM_OK;
}

int qvWlanGetBandType(const char *ifname) {
    if (ifname == nullptr || !isWirelessName(ifname))
        return 0;
    const InterfaceName name(WLBRCM_HERE, ifname);
    if (!name)
        return 0;
    Report report(WLBRCM_HERE, ResultPath(WLBRCM_COMMAND("/tmp/%s_ChipInfo"), name),
                  WLBRCM_COMMAND("wlctl -i %s revinfo > %s"), name);
    char line[64];
    int band = 0;
    while (band == 0 && report.next(line))
        band = bandOfLine(line);
    return band;
}

const char *qvWlanGetPhyType(const char *ifname) {
    if (ifname == nullptr || !isWirelessName(ifname))
        return nullptr;
    const InterfaceName name(WLBRCM_HERE, ifname);
    if (!name)
        return nullptr;
    Report report(WLBRCM_HERE, ResultPath(WLBRCM_COMMAND("/tmp/%s_phytype"), name),
                  WLBRCM_COMMAND("wlctl -i %s phytype > %s"), name);
    char line[7];
    if (!report.next(line))
        return "b";
    const int number = decimal(line);
    for (const PhyLetter &phy : kPhyLetters) {
        if (phy.number == number)
            return phy.letter;
    }
    return "b";
}

int checkWlanTxBFCap(const char *ifname) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    const bool capable = canBeamform(ifname);
    const Shown shown(ifname != nullptr ? ifname : "");
    if (capable)
        WLBRCM_LOG(LOG_DEBUG, "%s support transform beamforming.\n", shown.c_str());
    else
        WLBRCM_LOG(LOG_DEBUG, "%s not support transform beamforming.\n", shown.c_str());
    return capable ? 1 : 0;
}

int qvWlanGetMaxMbss(const char *ifname) {
    CapabilityLines lines(ifname);
    if (!lines) {
        printf("%s : Can not open %s\n", "qvWlanGetMaxMbss", lines.path());
        return 1;
    }
    int count = 1;
    for (char line[256]; lines.next(line);) {
        if (strstr(line, "mbss4") != nullptr || strstr(line, "mbss16") != nullptr)
            count = 4;
    }
    return count;
}

int qvWlanGetWmmSupport(WlanParamArg *arg) {
    if (!hasParts(arg, kValue | kResult))
        return WLBRCM_EINVAL;
    char *result = static_cast<char *>(arg->result);
    copyText(result, 2, "0");
    CapabilityLines lines(arg->value);
    if (!lines) {
        printf("%s : Can not open %s\n", "qvWlanGetWmmSupport", lines.path());
        return WLBRCM_EFAILED;
    }
    for (char line[256]; lines.next(line);) {
        if (strstr(line, "wme") != nullptr)
            copyText(result, 2, "1");
    }
    return WLBRCM_OK;
}

int qvWlanReadChipInfoStbc(void) {
    constexpr uint32_t kStbcItem = 1;
    BoardDevice device(kChipInfoDevice);
    if (!device) {
        printf("Unable to open device %s", kChipInfoDevice);
        return -1;
    }
    ChipInfoRequest request{{0, 0}, kStbcItem, -1};
    if (device.request(kReadChipInfo, &request) < 0)
        printf("%s@%d Read CHIP INFO Failure\n", "qvWlanReadChipInfoStbc", 60);
    return request.answer;
}

void qvWlanGetGPIOverlays(WlRadioCfg *radio) {
    if (radio == nullptr)
        return;
    BoardDevice device(kBoardDevice);
    if (!device.isPositive())
        return;
    int32_t answer = 0;
    BoardRequest request{&answer, nullptr, sizeof answer, 0, 0, -1};
    device.request(kReadGpioOverlays, &request);
    radio->gpioOverlays = answer;
}
