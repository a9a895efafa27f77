// What a radio can and does transmit at.
#include "module/argument.h"
#include "module/command.h"
#include "module/numbers.h"
#include "status/readers.h"

namespace wlbrcm {

namespace {

// IEEE 802.11 VHT/HE modulation and coding schemes, by MCS index within one stream.
struct McsRate {
    uint8_t bits; // coded bits per subcarrier
    uint8_t numerator;
    uint8_t denominator;
};
constexpr McsRate ieee_80211_mcs_rate_info[] = {{1, 1, 2}, {2, 1, 2}, {2, 3, 4}, {4, 1, 2}, {4, 3, 4},  {6, 2, 3},
                                                {6, 3, 4}, {6, 5, 6}, {8, 3, 4}, {8, 5, 6}, {10, 3, 4}, {10, 5, 6}};
constexpr unsigned kMcsCount = sizeof ieee_80211_mcs_rate_info / sizeof ieee_80211_mcs_rate_info[0];
constexpr int kHighestMcs = 9;    // that a rate set is believed to name
constexpr int kMostStreams = 400; // keeps the rate within 32 bits

struct Subcarriers {
    uint32_t bandwidth;
    uint32_t count; // that carry data
};
constexpr Subcarriers kSubcarriers[] = {{20, 52}, {40, 108}, {80, 234}, {160, 468}};

uint32_t subcarriers(uint32_t bandwidth) {
    for (const Subcarriers &width : kSubcarriers) {
        if (width.bandwidth == bandwidth)
            return width.count;
    }
    return 0;
}

void cutNewline(char *line) { line[strcspn(line, "\n")] = '\0'; }

} // namespace

bool readHtMcs(std::string_view line, int *mbps) {
    constexpr int kMbpsPerStream = 150;
    if (!contains(line, "Supported HT MCS"))
        return false;
    const int highest = takeThrough(&line, "-") ? decimalNumber(line) : 0;
    const bool known = highest >= 7 && highest <= 30; // one to three streams
    *mbps = known ? (highest + 1) / 8 * kMbpsPerStream : 0;
    return true;
}

void readMcsSet(std::string_view line, RateSet *set) {
    constexpr int kIndexes = 32; // of 8 for each of 4 streams
    Words words(line);
    for (std::string_view word; words.next(&word);) {
        if (word == "[" || word == "]")
            continue;
        const int index = decimalNumber(word);
        if (index < kIndexes)
            *set = {index % 8, index / 8 + 1};
        else if (index > kIndexes)
            set->mcs = index;
    }
}

void readVhtWords(std::string_view line, RateSet *set) {
    Words words(line);
    for (std::string_view word; words.next(&word);) {
        if (contains(word, "x") && takeDecimal(&word, &set->mcs) && takeText(&word, "x"))
            takeDecimal(&word, &set->streams);
    }
}

bool phyRate(const RateSet &set, uint32_t bandwidth, uint32_t *kbps) {
    *kbps = 0;
    if (static_cast<unsigned>(set.mcs) >= kMcsCount)
        return false;
    if (set.streams < 0 || set.streams > kMostStreams)
        return true;
    const McsRate &rate = ieee_80211_mcs_rate_info[set.mcs];
    const uint32_t bits =
        static_cast<uint32_t>(set.streams) * rate.bits * rate.numerator * subcarriers(bandwidth) / rate.denominator;
    *kbps = (bits * 2500 + 4) / 9; // one symbol lasts 3.6 microseconds
    return true;
}

namespace {

// Whether the driver chooses the rate itself.
bool isRateAutomatic(Here here, const InterfaceName &ifname, const ResultPath &path, int band) {
    Report report(here, path, WLBRCM_COMMAND("wlctl -i %s %s > %s"), ifname,
                  band == WLBRCM_BAND_2G ? "2g_rate"_word : "5g_rate"_word);
    char line[99];
    if (!report.next(line))
        return false;
    cutNewline(line);
    return strcmp(line, "auto") == 0;
}

RateSet readRateSet(Here here, const InterfaceName &ifname, const ResultPath &path, int band) {
    Report report(here, path, WLBRCM_COMMAND("wlctl -i %s rateset > %s"), ifname);
    RateSet set;
    bool vht = false;
    char line[99] = "";
    while (report.next(line)) {
        cutNewline(line);
        if (contains(line, "MCS SET"))
            readMcsSet(line, &set);
        vht = vht || (band == WLBRCM_BAND_5G && contains(line, "VHT"));
    }
    if (vht)
        readVhtWords(line, &set);
    if (set.mcs > kHighestMcs)
        set.mcs = kHighestMcs;
    return set;
}

// The rate of a mode without 802.11n, in kbit/s; 0 for the other modes.
uint32_t legacyRate(int band, int mode) {
    struct Legacy {
        int band, mode;
        uint32_t kbps;
    };
    constexpr Legacy kLegacy[] = {
        {WLBRCM_BAND_2G, 1, 11000}, {WLBRCM_BAND_2G, 0, 54000}, {WLBRCM_BAND_2G, 2, 54000}, {WLBRCM_BAND_5G, 5, 54000}};
    for (const Legacy &legacy : kLegacy) {
        if (legacy.band == band && legacy.mode == mode)
            return legacy.kbps;
    }
    return 0;
}

void writeRate(char *text, uint32_t kbps) {
    constexpr size_t kTextSize = 32; // promised to callers
    if (kbps > 1024)
        snprintf(text, kTextSize, "%u Mbps", kbps / 1000);
    else
        snprintf(text, kTextSize, "%u kbps", kbps);
}

int bandOfText(std::string_view text) {
    return contains(text, "2.4GHz") ? WLBRCM_BAND_2G : contains(text, "5GHz") ? WLBRCM_BAND_5G : 0;
}

} // namespace

} // namespace wlbrcm

using namespace wlbrcm;

int qvWlanGetMaxBitRate(WlanParamArg *arg) {
    const InterfaceName ifname = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!ifname)
        return 0;
    std::string_view value = arg->value;
    std::string_view phy;
    takeWord(&value, value.size(), &phy);
    Report report(WLBRCM_HERE, ResultPath(WLBRCM_COMMAND("/tmp/%s_status"), ifname),
                  WLBRCM_COMMAND("wlctl -i %s status > %s"), ifname);
    int mbps = 0;
    unsigned streams = 0;
    char line[100];
    if (phy == "n") {
        while (report.next(line) && !readHtMcs(line, &mbps))
            continue;
    } else if (phy == "v") {
        constexpr int kMbps[] = {0, 433, 867, 1300, 1733};
        while (report.next(line))
            streams += contains(line, "NSS") ? 1 : 0;
        mbps = streams < sizeof kMbps / sizeof kMbps[0] ? kMbps[streams] : 0;
    }
    return mbps;
}

int qvWlanRateUpdate(WlanParamArg *arg) {
    const InterfaceName ifname = interfaceOf(WLBRCM_HERE, arg, kValue | kResult);
    if (!ifname)
        return WLBRCM_EINVAL;
    std::string_view value = arg->value;
    std::string_view bandText;
    int mode = -1;
    if (takeWord(&value, 15, &bandText))
        takeDecimal(&value, &mode);
    const int band = bandOfText(bandText);

    WlChannelInfo info = {};
    WlanParamArg current = {};
    current.prefix = arg->prefix;
    current.result = &info;
    qvWlanGetCurrentChannelInfo(&current);

    const ResultPath path(WLBRCM_COMMAND("/tmp/%s_rate"), ifname);
    RateSet set;
    if (isRateAutomatic(WLBRCM_HERE, ifname, path, band))
        set = readRateSet(WLBRCM_HERE, ifname, path, band);
    uint32_t kbps = legacyRate(band, mode);
    if (kbps == 0 && !phyRate(set, info.bandwidth, &kbps))
        printf("error %s: MCS value is out of range, please update ieee_80211_mcs_rate_info. \n", "qvWlanRateUpdate");
    writeRate(static_cast<char *>(arg->result), kbps);
    return WLBRCM_OK;
}
