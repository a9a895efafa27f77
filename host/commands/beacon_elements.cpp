#include "host/commands/beacon_elements.h"

#include <algorithm>

#include "host/commands/arguments.h"
#include "host/commands/radio_status.h"

namespace wlhost {
namespace {

struct Bit {
    unsigned place;
    const char *name;
};
constexpr Bit kCapabilityBits[] = {
    {0, "ess"},          {1, "ibss"},        {4, "privacy"}, {5, "short-preamble"},     {8, "spectrum-management"},
    {9, "qos"},          {10, "short-slot"}, {11, "apsd"},   {12, "radio-measurement"}, {14, "delayed-ba"},
    {15, "immediate-ba"}};
constexpr Bit kHtBits[] = {
    {0, "ldpc"},    {1, "40mhz"},       {4, "greenfield"},  {5, "short-gi-20"},  {6, "short-gi-40"},
    {7, "tx-stbc"}, {10, "delayed-ba"}, {11, "amsdu-7935"}, {12, "dsss-cck-40"}, {14, "40mhz-intolerant"}};
constexpr Bit kVhtBits[] = {{4, "rx-ldpc"},        {5, "short-gi-80"},    {6, "short-gi-160"},
                            {7, "tx-stbc"},        {11, "su-beamformer"}, {12, "su-beamformee"},
                            {19, "mu-beamformer"}, {20, "mu-beamformee"}, {21, "txop-ps"}};
constexpr const char *kSmPowerSave[] = {"static", "dynamic", nullptr, "disabled"};
constexpr const char *kSecondary[] = {"none", "above", nullptr, "below"};
constexpr int kMaxMpdu[] = {3895, 7991, 11454, 0};
constexpr unsigned kVhtOperationId = 192, kHtOperationId = 61;

template <size_t Size> json namesOf(uint32_t word, const Bit (&bits)[Size]) {
    json names = json::array();
    for (const Bit &bit : bits)
        if (word >> bit.place & 1)
            names.push_back(bit.name);
    return names;
}

uint32_t littleEndian(const uint8_t *bytes, int count) {
    uint32_t word = 0;
    for (int i = count; i-- > 0;)
        word = word << 8 | bytes[i];
    return word;
}

json orNull(const char *name) { return name ? json(name) : json(); }

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
    return {{"capabilities", namesOf(word, kHtBits)},
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
    return {{"capabilities", namesOf(word, kVhtBits)},
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
            {"capabilities", word.is_null() ? json() : namesOf(info.capabilities, kCapabilityBits)},
            {"ht", htOf(info)},
            {"vht", vhtOf(info)}};
}

json beacon(Host &host, const json &args) {
    auto *getInfo = host.operation(host.module().ops->getGenIntfInfo, "getGenIntfInfo");
    bool all = textArg(args, "interface").empty();
    json rows = json::array();
    for (const Host::Bss &bss : bssArg(host, args)) {
        const char *ifname = bss.record().ifName;
        WlIntfInfo info{};
        Host::check(getInfo(bss.intf->radio.ifName, bss.number(), &info), ifname, "getGenIntfInfo");
        rows.push_back(beaconRow(ifname, info));
        if (!all && isEmpty(rows.back()))
            throw Failure(Status::kFailed, ifname, "the driver gave no beacon", "is the BSS up?");
    }
    return rows;
}

} // namespace wlhost
