// What the driver knows about one associated station.
#include "module/command.h"
#include "module/numbers.h"
#include "status/readers.h"

#include <climits>

namespace wlbrcm {

namespace {

constexpr Here kStaInfoHere{"do_get_sta_info", __LINE__};

// A line of the report: "<key>: <value>". What some keys stand for is in the key itself, behind `mark`.
struct Field {
    std::string_view afterMark;
    std::string_view value;
};

// "866667 kbps - 650000 kbps": the first number, which has no sign.
uint32_t rateOf(std::string_view value) { return unsignedNumber({value.data(), indexOf(value, '-')}); }

void readTxRate(const Field &field, WlStaInfo *sta, StationCaps * /*caps*/) {
    sta->txRate = sta->lastTxRate = rateOf(field.value);
}

void readRxRate(const Field &field, WlStaInfo *sta, StationCaps * /*caps*/) { sta->rxRate = rateOf(field.value); }

template <auto Member> void readCaps(const Field &field, WlStaInfo * /*sta*/, StationCaps *caps) {
    caps->*Member = unsignedNumber(field.afterMark);
}

void readRateSetText(const Field &field, WlStaInfo * /*sta*/, StationCaps *caps) {
    // One separator follows the word: a blank of the key, or the colon in front of the value.
    std::string_view text = field.afterMark;
    if (text.empty())
        text = field.value;
    else
        text.remove_prefix(1);
    copyText(caps->rateSet, text);
}

template <auto Member> void readPackets(const Field &field, WlStaInfo *sta, StationCaps * /*caps*/) {
    sta->*Member = unsignedNumber(field.value);
}

template <auto Member> void readBytes(const Field &field, WlStaInfo *sta, StationCaps * /*caps*/) {
    sta->*Member = unsignedNumber64(field.value);
}

struct Row {
    KeyMark mark;
    bool counter;
    void (*read)(const Field &field, WlStaInfo *sta, StationCaps *caps);
};
// The first mark found in a key decides: "HT caps" is part of "VHT caps".
constexpr Row kRows[] = {
    {"rate of last tx pkt", false, readTxRate},
    {"rate of last rx pkt", false, readRxRate},
    {"flags", false, readCaps<&StationCaps::flags>},
    {"VHT caps", false, readCaps<&StationCaps::vht>},
    {"HT caps", false, readCaps<&StationCaps::ht>},
    {"rateset", false, readRateSetText},
    {"tx total pkts", true, readPackets<&WlStaInfo::txPkts>},
    {"tx total bytes", true, readBytes<&WlStaInfo::txBytes>},
    {"rx data pkts", true, readPackets<&WlStaInfo::rxPkts>},
    {"rx data bytes", true, readBytes<&WlStaInfo::rxBytes>},
    {"tx failures", true, readPackets<&WlStaInfo::txFailures>},
    {"tx pkts retries", true, readPackets<&WlStaInfo::txRetries>},
    {"tx pkts retry exhausted", true, readPackets<&WlStaInfo::txRetryExhausted>},
};

// The driver prints a negative number, or nothing useful.
void readRssi(const InterfaceName &ifname, const MacText &mac, const ResultPath &path, WlStaInfo *sta) {
    Report report(unlogged(kStaInfoHere), path, WLBRCM_COMMAND("wlctl -i %s rssi %s > %s"), ifname, mac);
    char line[255];
    if (report.next(line) && line[0] == '-')
        sta->rssi = decimalNumber(line);
}

constexpr uint32_t kAuthenticated = 0x8;
constexpr uint32_t kAssociated = 0x10;
constexpr uint32_t kVhtCapable = 0x100000;
constexpr uint32_t kVht160 = 0x4;
constexpr uint32_t kHt40 = 0x2;
enum PhyMode : uint32_t { kPhy11b = 1, kPhy11g = 2, kPhy11a = 4, kPhy11n = 8, kPhy11ac = 16 };

PhyMode legacyMode(const InterfaceName &ifname, const char *rateSet) {
    constexpr int kHighest11b = 11; // Mbit/s
    if (checkWlBand(ifname.c_str()) == WLBRCM_BAND_5G)
        return kPhy11a;
    return getMaxRateSet(rateSet) <= kHighest11b ? kPhy11b : kPhy11g;
}

void decideMode(const InterfaceName &ifname, const StationCaps &caps, WlStaInfo *sta) {
    if (caps.flags == 0)
        return;
    sta->authenticated = (caps.flags & kAuthenticated) != 0 ? 1 : 0;
    if ((caps.flags & kAssociated) == 0)
        return;
    if ((caps.flags & kVhtCapable) != 0) {
        sta->phyMode = kPhy11ac;
        sta->bandwidth = (caps.vht & kVht160) != 0 ? 160 : 80;
    } else if (caps.ht != 0) {
        sta->phyMode = kPhy11n;
        sta->bandwidth = (caps.ht & kHt40) != 0 ? 40 : 20;
    } else {
        sta->phyMode = legacyMode(ifname, caps.rateSet);
        sta->bandwidth = 20;
    }
}

// The whole part of a rate in Mbit/s, at most INT_MAX. Few rates need strtod(), which costs more than the rest.
int takeRate(const char **text) {
    const char *const start = *text;
    int64_t rate = 0;
    for (; isDigit(**text); ++*text)
        rate = rate < INT_MAX ? rate * 10 + (**text - '0') : rate;
    const int next = **text | 0x20;
    if (**text != '.' && next != 'e' && next != 'x')
        return rate < INT_MAX ? static_cast<int>(rate) : INT_MAX;
    char *end;
    const double number = strtod(start, &end);
    *text = end;
    return number < INT_MAX ? static_cast<int>(number) : INT_MAX;
}

} // namespace

void readStationInfo(std::string_view line, bool counters, WlStaInfo *sta, StationCaps *caps) {
    const size_t colon = indexOf(line, ':');
    if (colon == line.size())
        return;
    const std::string_view key(line.data(), colon);
    const uint32_t characters = characterSet(key);
    line.remove_prefix(colon + 1);
    for (const Row &row : kRows) {
        if (!row.mark.mayStandIn(characters) || (row.counter && !counters))
            continue;
        std::string_view afterMark = key;
        if (!takeThrough(&afterMark, row.mark.text))
            continue;
        row.read({afterMark, line}, sta, caps);
        return;
    }
}

} // namespace wlbrcm

using namespace wlbrcm;

int checkWlBand(const char *ifname) {
    if (ifname == nullptr)
        return -1;
    const InterfaceName radio(WLBRCM_HERE, std::string_view(ifname, strcspn(ifname, ".")));
    if (!radio)
        return -1;
    CommandOutput output(WLBRCM_COMMAND("wlctl -i %s band"), radio);
    char text[64];
    const std::string_view band(text, output.lines().rest(text));
    return band == "b" ? WLBRCM_BAND_2G : band == "1" ? WLBRCM_BAND_5G : -1;
}

int getMaxRateSet(const char *text) {
    int highest = -1;
    if (text == nullptr)
        return highest;
    while (*text != '\0') {
        if (!isDigit(*text)) {
            ++text;
            continue;
        }
        const int rate = takeRate(&text);
        highest = rate > highest ? rate : highest;
    }
    return highest;
}

int do_get_sta_info(const char *ifname, const char *mac, WlStaInfo *sta, char mode) {
    if (ifname == nullptr || mac == nullptr || sta == nullptr)
        return -1;
    const InterfaceName name(WLBRCM_HERE, ifname);
    const MacText address(WLBRCM_HERE, mac);
    if (!name || !address)
        return WLBRCM_EINVAL;
    const ResultPath path(WLBRCM_COMMAND("/tmp/.sta_result"));
    readRssi(name, address, path, sta);
    copyText(sta->ifName, name.c_str());
    Report report(unlogged(WLBRCM_HERE), path, WLBRCM_COMMAND("wlctl -i %s sta_info %s > %s"), name, address);
    StationCaps caps;
    for (std::string_view line; report.next<254>(&line);)
        readStationInfo(line, mode == 'd', sta, &caps);
    decideMode(name, caps, sta);
    return WLBRCM_OK;
}

int get_sta_info(const char *ifname, const char *mac, WlStaInfo *sta) { return do_get_sta_info(ifname, mac, sta, 'd'); }

int get_sta_basic_info(const char *ifname, const char *mac, WlStaInfo *sta) {
    return do_get_sta_info(ifname, mac, sta, 'b');
}
