// The status items that the host asks for by name.
#include "module/command.h"

#include <wlbrcm/params.h>
#include <wlbrcm/status.h>
#include <wlbrcm/wps.h>

using namespace wlbrcm;

namespace {

// What the getters of one call are given. Names are copies, because a field of the host's may lack its end.
struct Request {
    explicit Request(const WlRadioCfg &cfg) : radio(cfg), bandText(cfg.band == WLBRCM_BAND_2G ? "2.4GHz" : "5GHz") {
        copyText(ifName, fieldText(cfg.ifName));
        copyText(country, fieldText(cfg.countryCode));
        arg.prefix = ifName;
        arg.value = input;
        arg.index = cfg.radioIndex - 1;
    }

    const WlRadioCfg &radio;
    const char *bandText;
    WlanParamArg arg = {};
    char ifName[sizeof WlRadioCfg::ifName + 1];
    char country[sizeof WlRadioCfg::countryCode + 1];
    char input[256] = "";
    char text[WLBRCM_CHANNEL_LIST_SIZE] = "";
};

struct Item {
    const char *name;
    // Sets the item's value, or leaves it when there is none.
    void (*serve)(Request &request, const Item &row, WlStatusItem *item);
    int width = 0; // of a channel list, with its sideband
    const char *sideband = nullptr;
};

void storeInt(WlStatusItem *item, int32_t number) {
    auto *value = static_cast<int32_t *>(malloc(sizeof(int32_t)));
    if (value != nullptr)
        *value = number;
    item->value = value;
}

void storeText(WlStatusItem *item, const char *text) { item->value = strdup(text); }

void serveChannelList(Request &request, const Item &row, WlStatusItem *item) {
    snprintf(request.input, sizeof request.input, "%s,%d,%s", request.bandText, row.width, row.sideband);
    request.arg.aux = request.country;
    request.arg.result = request.text;
    if (qvWlanChannelList(&request.arg) == WLBRCM_OK)
        storeText(item, request.text);
}

// Getters whose result is the value; a failed one counts as 0.
template <int (*Get)(WlanParamArg *)> void serveResult(Request &request, const Item & /*row*/, WlStatusItem *item) {
    const int result = Get(&request.arg);
    storeInt(item, result == -1 ? 0 : result);
}

void serveMaxBitRate(Request &request, const Item &row, WlStatusItem *item) {
    copyText(request.input, fieldText(request.radio.phyType));
    serveResult<qvWlanGetMaxBitRate>(request, row, item);
}

template <int (*Get)(WlanParamArg *)> bool getInt(Request &request, int *number) {
    *number = 0;
    request.arg.result = number;
    return Get(&request.arg) == WLBRCM_OK;
}

void serveRadioStatus(Request &request, const Item & /*row*/, WlStatusItem *item) {
    int up;
    if (getInt<qvWlanGetRadioStatus>(request, &up))
        storeText(item, up == 1 ? "Up" : "Down");
}

void serveWpsStatus(Request &request, const Item & /*row*/, WlStatusItem *item) {
    constexpr unsigned kHighest = 10;
    constexpr int kOther = 3;
    int progress;
    if (getInt<qvWlanGetWPSProcStatus>(request, &progress))
        storeInt(item, static_cast<unsigned>(progress) > kHighest ? kOther : progress);
}

void serveNoise(Request &request, const Item & /*row*/, WlStatusItem *item) {
    int noise;
    if (getInt<qvWlanGetNoise>(request, &noise))
        storeInt(item, noise);
}

void serveRate(Request &request, const Item & /*row*/, WlStatusItem *item) {
    snprintf(request.input, sizeof request.input, "%s %d", request.bandText, request.radio.wirelessMode);
    request.arg.result = request.text;
    if (qvWlanRateUpdate(&request.arg) == WLBRCM_OK)
        storeText(item, request.text);
}

template <auto Field> void serveChannel(Request &request, const Item & /*row*/, WlStatusItem *item) {
    WlChannelInfo info = {};
    request.arg.result = &info;
    if (qvWlanGetCurrentChannelInfo(&request.arg) == WLBRCM_OK)
        storeInt(item, static_cast<int32_t>(info.*Field));
}

// "wl0.1_TrafficInfo" asks for wl0.1; without a name there is nobody to ask.
void serveTraffic(Request &request, const Item & /*row*/, WlStatusItem *item) {
    const char *end = strchr(item->name, '_');
    if (end == nullptr || end == item->name)
        return;
    copyText(request.text, {item->name, static_cast<size_t>(end - item->name)});
    auto *counters = static_cast<WlTrafficCounters *>(calloc(1, sizeof(WlTrafficCounters)));
    if (counters == nullptr || qvWlanGetTrafficInfo(request.text, counters) == WLBRCM_OK)
        item->value = counters;
    else
        free(counters);
}

void serveDataRates(Request &request, const Item & /*row*/, WlStatusItem *item) {
    const WlRadioCfg &radio = request.radio;
    WLBRCM_LOG_AT((Here{"qvbrcm_StatusUpdate", __LINE__}), LOG_DEBUG,
                  ": %s: Input Data:{ifName:%s, wifiMode:%d, Bw:%d, Band:%d}\n", Shown(item->name).c_str(),
                  Shown(request.ifName).c_str(), radio.wirelessMode, radio.bandwidth, radio.band);
    const int result = qvWlanGetDataTxRates(&request.arg, radio.wirelessMode, radio.bandwidth, radio.band);
    storeText(item, result == WLBRCM_OK ? "Done" : "Fail");
}

constexpr Item kItems[] = {
    {"20M_Channel", serveChannelList, 20, "upper"},
    {"40M_UpperChannel", serveChannelList, 40, "upper"},
    {"40M_LowerChannel", serveChannelList, 40, "lower"},
    {"80M_Channel", serveChannelList, 80, "lower"},
    {"MaxBitRate", serveMaxBitRate},
    {"RadioStatus", serveRadioStatus},
    {"CurChannel", serveResult<qvWlanGetCurrentCh>},
    {"CurRate", serveRate},
    {"WPSStatus", serveWpsStatus},
    {"CurBandwidth", serveChannel<&WlChannelInfo::bandwidth>},
    {"CurChanspec", serveChannel<&WlChannelInfo::chanspec>},
    {"SideBand", serveChannel<&WlChannelInfo::sideband>},
    {"Noise", serveNoise},
};
// Found anywhere in a name, after all of the above.
constexpr Item kPartialItems[] = {{"TrafficInfo", serveTraffic}, {"DataTransmitRates", serveDataRates}};

const Item *findItem(const char *name) {
    for (const Item &item : kItems) {
        if (strcmp(item.name, name) == 0)
            return &item;
    }
    for (const Item &item : kPartialItems) {
        if (strstr(name, item.name) != nullptr)
            return &item;
    }
    return nullptr;
}

} // namespace

int qvbrcm_StatusUpdate(WlIntf *intf, WlStatusItem *items, int count) {
    WLBRCM_LOG(LOG_DEBUG, "enter.\n");
    if (intf == nullptr || items == nullptr || count < 1)
        return WLBRCM_EINVAL;
    Request request(intf->radio);
    for (WlStatusItem *item = items; item != items + count; ++item) {
        const Item *row = item->name != nullptr ? findItem(item->name) : nullptr;
        if (row != nullptr)
            row->serve(request, *row, item);
    }
    return WLBRCM_OK;
}
