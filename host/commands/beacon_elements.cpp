#include "host/commands/beacon_elements.h"

#include <algorithm>

#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/radio_status.h"
#include "host/commands/values.h"

namespace wlhost {
namespace {

constexpr BitName kCapabilityBits[] = {{1U << 0, "ess"},
                                       {1U << 1, "ibss"},
                                       {1U << 4, "privacy"},
                                       {1U << 5, "short-preamble"},
                                       {1U << 8, "spectrum-management"},
                                       {1U << 9, "qos"},
                                       {1U << 10, "short-slot"},
                                       {1U << 11, "apsd"},
                                       {1U << 12, "radio-measurement"},
                                       {1U << 14, "delayed-ba"},
                                       {1U << 15, "immediate-ba"}};
constexpr BitName kHtBits[] = {{1U << 0, "ldpc"},         {1U << 1, "40mhz"},
                               {1U << 4, "greenfield"},   {1U << 5, "short-gi-20"},
                               {1U << 6, "short-gi-40"},  {1U << 7, "tx-stbc"},
                               {1U << 10, "delayed-ba"},  {1U << 11, "amsdu-7935"},
                               {1U << 12, "dsss-cck-40"}, {1U << 14, "40mhz-intolerant"}};
constexpr BitName kVhtBits[] = {{1U << 4, "rx-ldpc"},        {1U << 5, "short-gi-80"},    {1U << 6, "short-gi-160"},
                                {1U << 7, "tx-stbc"},        {1U << 11, "su-beamformer"}, {1U << 12, "su-beamformee"},
                                {1U << 19, "mu-beamformer"}, {1U << 20, "mu-beamformee"}, {1U << 21, "txop-ps"}};
constexpr const char *kSmPowerSave[] = {"static", "dynamic", nullptr, "disabled"};
constexpr const char *kSecondary[] = {"none", "above", nullptr, "below"};
constexpr int kMaxMpdu[] = {3895, 7991, 11454, 0};
constexpr unsigned kVhtOperationId = 192, kHtOperationId = 61;

uint32_t littleEndian(const uint8_t *bytes, int count) {
    uint32_t word = 0;
    for (int i = count; i-- > 0;)
        word = word << 8 | bytes[i];
    return word;
}

// Streams with a receive MCS: a byte each in the HT set, two bits each in the VHT map.
int htStreams(const uint8_t *element) {
    return static_cast<int>(std::count_if(element + 3, element + 7, [](uint8_t rates) { return rates != 0; }));
}

int vhtStreams(const uint8_t *element) {
    constexpr uint32_t kNone = 3;
    uint32_t map = littleEndian(element + 4, 2);
    int streams = 0;
    while (streams < 8 && (map >> 2 * streams & 3) != kNone)
        ++streams;
    return streams;
}

json htOf(const WlIntfInfo &info) {
    if (!(info.ieFlags & 0x2))
        return nullptr;
    uint32_t word = littleEndian(info.htCap, 2);
    bool operation = info.htInfoId == kHtOperationId;
    return {{"capabilities", bitNames(word, kHtBits)},
            {"streams", htStreams(info.htCap)},
            {"rx_stbc_streams", word >> 8 & 3},
            {"sm_power_save", orNull(kSmPowerSave[word >> 2 & 3])},
            {"primary_channel", operation ? unlessZero(info.htInfo[0]) : json()},
            {"secondary_channel", operation ? orNull(kSecondary[info.htInfo[1] & 3]) : json()}};
}

json vhtOf(const WlIntfInfo &info) {
    if (!(info.ieFlags & 0x4))
        return nullptr;
    uint32_t word = littleEndian(info.vhtCap, 4);
    bool operation = info.vhtOpId == kVhtOperationId;
    bool wide = operation && info.vhtOp[0] != 0; // else the HT element tells the width
    return {{"capabilities", bitNames(word, kVhtBits)},
            {"streams", vhtStreams(info.vhtCap)},
            {"max_mpdu_bytes", unlessZero(kMaxMpdu[word & 3])},
            {"width_mhz", wide ? json(info.vhtOp[0] == 1 ? 80 : 160) : json()},
            {"center_channel", wide ? unlessZero(info.vhtOp[1]) : json()}};
}

bool isEmpty(const json &row) {
    return row["capability_word"].is_null() && row["ht"].is_null() && row["vht"].is_null();
}

} // namespace

json beaconRow(const std::string &ifname, const WlIntfInfo &info) {
    json word = unlessZero(info.capabilities); // a BSS announces at least that it is one
    return {{"interface", ifname},
            {"capability_word", word},
            {"capabilities", word.is_null() ? json() : bitNames(info.capabilities, kCapabilityBits)},
            {"ht", htOf(info)},
            {"vht", vhtOf(info)}};
}

json beacon(Host &host, const json &args) {
    auto *getInfo = host.operation(host.module().ops->getGenIntfInfo, "getGenIntfInfo");
    bool all = textArg(args, "interface").empty();
    json rows = json::array();
    for (const Host::Bss &bss : bssArg(host, args)) {
        const char *ifname = bss.record().ifName;
        demandDriver(host, *bss.intf);
        WlIntfInfo info{};
        Host::check(getInfo(bss.intf->radio.ifName, bss.number(), &info), ifname, "getGenIntfInfo");
        rows.push_back(beaconRow(ifname, info));
        if (!all && isEmpty(rows.back()))
            throw Failure(Status::kFailed, ifname, "the driver gave no beacon", "is the BSS up?");
    }
    return rows;
}

} // namespace wlhost
