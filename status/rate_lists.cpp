// The file of basic and supported data rates that the host reads.
#include <unistd.h>

#include "module/argument.h"
#include "module/command.h"
#include "module/rates.h"
#include "status/readers.h"

namespace wlbrcm {

int streamsOfMcsLine(std::string_view line) {
    struct Mark {
        const char *highest;
        int streams;
    };
    constexpr Mark kMarks[] = {{"7", 1}, {"15", 2}, {"23", 3}, {"31", 4}};
    int streams = 0;
    if (!contains(line, "MCS SET :"))
        return streams;
    for (const Mark &mark : kMarks) {
        if (contains(line, mark.highest))
            streams = mark.streams;
    }
    return streams;
}

namespace {

// Rates that a wireless mode supports: a fixed list, or those of 802.11n or 802.11ac.
enum class Rates { kFixed, kHt, kVht };
struct ModeRates {
    int band, mode;
    Rates kind;
    const char *list;
};
constexpr char kRates11b[] = "1,2,5.5,11"; // also the basic rates of 2.4 GHz
constexpr char kRates11g[] = "1,2,5.5,6,9,11,12,18,24,36,48,54";
constexpr char kRates11a[] = "6,9,12,18,24,36,48,54";
constexpr char kBasicRates5g[] = "6,12,24";
constexpr ModeRates kModeRates[] = {
    {WLBRCM_BAND_2G, 1, Rates::kFixed, kRates11b}, {WLBRCM_BAND_2G, 0, Rates::kFixed, kRates11g},
    {WLBRCM_BAND_2G, 2, Rates::kFixed, kRates11g}, {WLBRCM_BAND_2G, 3, Rates::kHt, nullptr},
    {WLBRCM_BAND_2G, 4, Rates::kHt, nullptr},      {WLBRCM_BAND_5G, 5, Rates::kFixed, kRates11a},
    {WLBRCM_BAND_5G, 3, Rates::kHt, nullptr},      {WLBRCM_BAND_5G, 6, Rates::kHt, nullptr},
    {WLBRCM_BAND_5G, 7, Rates::kVht, nullptr},     {WLBRCM_BAND_5G, 8, Rates::kVht, nullptr},
    {WLBRCM_BAND_5G, 9, Rates::kVht, nullptr}};

using RateList = Text<256>;

// Radios of one stream get no list, and at 2.4 GHz those of four.
void addHtRates(RateList *list, int band, int bandwidth, int streams) {
    const int most = band == WLBRCM_BAND_2G ? 3 : 4;
    const char *rates = streams >= 2 && streams <= most ? htRates(bandwidth, streams) : nullptr;
    if (rates != nullptr)
        list->append("%s", rates);
}

void addVhtRates(RateList *list, int bandwidth, int streams) {
    if (streams < 2)
        return;
    for (int stream = 1; stream <= streams; ++stream) {
        const char *rates = vhtRates(bandwidth, stream);
        if (rates != nullptr)
            list->append(list->empty() ? "%s" : ",%s", rates);
    }
}

void addSupportedRates(RateList *list, int mode, int bandwidth, int band, int streams) {
    for (const ModeRates &rates : kModeRates) {
        if (rates.band != band || rates.mode != mode)
            continue;
        if (rates.kind == Rates::kFixed)
            list->append("%s", rates.list);
        else if (rates.kind == Rates::kHt)
            addHtRates(list, band, bandwidth, streams);
        else
            addVhtRates(list, bandwidth, streams);
    }
}

const char *basicRates(int band) {
    return band == WLBRCM_BAND_2G ? kRates11b : band == WLBRCM_BAND_5G ? kBasicRates5g : "";
}

// Modes without 802.11n say nothing about streams and count as two. 0 when the driver's report is missing.
int streamsOfMode(const InterfaceName &ifname, int mode) {
    constexpr int kDefaultStreams = 2;
    constexpr Here kHere{"qvWlanGetDataTxRates", __LINE__};
    if (mode == 0 || mode == 1 || mode == 2 || mode == 5)
        return kDefaultStreams;
    const ResultPath path(WLBRCM_COMMAND("/tmp/%srateset.txt"), ifname);
    Report report(kHere, path, WLBRCM_COMMAND("wlctl -i %s rateset > %s"), ifname);
    if (!report) {
        WLBRCM_LOG_AT(kHere, LOG_ERR, ": %s no such file.\n", path.c_str());
        return 0;
    }
    int streams = kDefaultStreams;
    for (char line[256]; report.next(line);) {
        const int named = streamsOfMcsLine(line);
        streams = named != 0 ? named : streams;
    }
    return streams;
}

} // namespace

} // namespace wlbrcm

using namespace wlbrcm;

int qvWlanGetDataTxRates(WlanParamArg *arg, int wirelessMode, int bandwidth, int band) {
    const InterfaceName ifname = interfaceOf(WLBRCM_HERE, arg);
    if (!ifname)
        return WLBRCM_EINVAL;
    const int streams = streamsOfMode(ifname, wirelessMode);
    if (streams == 0)
        return WLBRCM_EFAILED;
    WLBRCM_LOG(LOG_DEBUG, ": Enter. %s antenna number: %d.\n", ifname.c_str(), streams);
    RateList supported;
    addSupportedRates(&supported, wirelessMode, bandwidth, band, streams);
    const ResultPath path(WLBRCM_COMMAND("/tmp/%sDataTxRates.txt"), ifname);
    const int file = clearPlace(WLBRCM_HERE, path.c_str(), "data rates") ? createOwnFile(path.c_str()) : -1;
    if (file < 0) {
        WLBRCM_LOG(LOG_ERR, ":%s no such file.\n", path.c_str());
        return WLBRCM_EFAILED;
    }
    const bool written = dprintf(file, "%s:BasR\n%s:SupR\n", basicRates(band), supported.c_str()) > 0;
    return close(file) == 0 && written ? WLBRCM_OK : WLBRCM_EFAILED;
}
