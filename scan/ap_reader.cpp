// The driver's report of neighbouring access points.
#include "scan/readers.h"

#include <wlbrcm/status.h>

#include "module/numbers.h"
#include "module/rates.h"
#include "module/text.h"

namespace wlbrcm {

namespace {

constexpr size_t kLongestList = 255;

enum : uint16_t {
    kPhyB = 0x1,
    kPhyG = 0x2,
    kPhyA = 0x4,
    kPhyN = 0x8,
    kPhyAc = 0x10,
    kWpa = 0x1,
    kWpa2 = 0x2,
    kTkip = 0x1,
    kCcmp = 0x2,
    kAkmOther = 1,
    kAkmPsk = 2
};
enum : int32_t { kInfrastructure = 1, kAdHoc = 2, kDefaultWidth = 20 };

std::string_view behind(std::string_view text, size_t count) {
    text.remove_prefix(count < text.size() ? count : text.size());
    return text;
}

// The text between the first and the second double quote, empty without them.
std::string_view quoted(std::string_view value) {
    const std::string_view name = behind(value, indexOf(value, '"') + 1);
    const size_t length = indexOf(name, '"');
    return length < name.size() ? std::string_view(name.data(), length) : "";
}

void storeName(std::string_view name, char (&ssid)[101]) {
    // Decoding doubles some characters, so it needs the room of the longest result.
    char text[256];
    copyText(text, name);
    copyText(ssid, formatSSID(text));
}

// A list that is added to, so that its end is looked for once.
class EntryList {
  public:
    template <size_t Size> explicit EntryList(char (&list)[Size]) : list_(list), used_(strlen(list)) {
        static_assert(Size > kLongestList);
    }
    // Adds one entry, when it and its comma fit.
    void add(std::string_view word) {
        const size_t comma = used_ > 0 ? 1 : 0;
        if (word.empty() || used_ + comma + word.size() > kLongestList)
            return;
        list_[used_] = ',';
        used_ += comma;
        copyText(list_ + used_, kLongestList + 1 - used_, word);
        used_ += word.size();
    }

  private:
    char *list_;
    size_t used_;
};

// "[ 1(b) 2(b) 5.5(b) 11(b) 6 9 ]": a rate marked with "b" is a basic one.
void addLegacyRates(std::string_view rates, WlScanAp *ap) {
    const size_t end = indexOf(rates, ']');
    if (end == rates.size() || end == 0)
        return;
    EntryList basic(ap->basicRates);
    EntryList supported(ap->supportedRates);
    Words words(behind({rates.data(), end - 1}, indexOf(rates, '[') + 2));
    for (std::string_view word; words.next(&word);) {
        const size_t mark = indexOf(word, 'b');
        if (mark < word.size()) {
            word = {word.data(), mark > 0 ? mark - 1 : 0};
            basic.add(word);
        }
        supported.add(word);
    }
}

// Adds the rates of the access point's width, behind those of half the width where there are some. Other widths have no
// rates.
void addMcsRates(WlScanAp *ap, const char *(*rates)(int bandwidth, int streams), int streams) {
    const char *own = rates(ap->bandwidth, streams);
    if (own == nullptr)
        return;
    const char *narrower = rates(ap->bandwidth / 2, streams);
    char list[sizeof ap->supportedRates];
    copyText(list, narrower != nullptr ? narrower : "");
    addRates(list, own);
    addRates(ap->supportedRates, list);
}

struct HtStreams {
    std::string_view highestMcs;
    int streams;
};
constexpr HtStreams kHtStreams[] = {{"31", 4}, {"23", 3}, {"15", 2}, {"7", 1}};

void startRecord(ApReader &reader, const Piece &piece) { reader.start(piece); }

void readBssid(ApReader &reader, const Piece &piece) { copyText(reader.record().bssid, behind(piece.value, 1)); }

void readMode(ApReader &reader, const Piece &piece) {
    if (contains(piece.value, "Managed"))
        reader.record().mode = kInfrastructure;
    else if (contains(piece.value, "Ad Hoc"))
        reader.record().mode = kAdHoc;
}

void readBeaconPeriod(ApReader &reader, const Piece &piece) {
    reader.record().beaconPeriod = unsignedNumber(piece.value);
}

void readDtimPeriod(ApReader &reader, const Piece &piece) { reader.record().dtimPeriod = unsignedNumber(piece.value); }

void readChannel(ApReader &reader, const Piece &piece) {
    reader.channelFallback(static_cast<int>(unsignedNumber(piece.value)));
}

void readRssi(ApReader &reader, const Piece &piece) {
    reader.record().rssi = static_cast<int32_t>(unsignedNumber(piece.value));
}

void readNoise(ApReader &reader, const Piece &piece) {
    reader.record().noise = static_cast<int16_t>(unsignedNumber(piece.value));
}

void readLegacyRates(ApReader &reader, const Piece &piece) { reader.legacyRates(piece.value); }

// " 5GHz channel 42 80MHz (0xe02a)"
void readChanspec(ApReader &reader, const Piece &piece) {
    WlScanAp &ap = reader.record();
    ap.band = startsWith(behind(piece.value, 1), "2.4G") ? WLBRCM_BAND_2G : WLBRCM_BAND_5G;
    std::string_view rest = piece.value;
    if (takeThrough(&rest, "channel") && takeDecimal(&rest, &ap.channel))
        takeDecimal(&rest, &ap.bandwidth);
}

void readWps(ApReader &reader, const Piece &) { reader.record().wps = 1; }

void readWpa(ApReader &reader, const Piece &) { reader.record().security |= kWpa; }

void readWpa2(ApReader &reader, const Piece &) { reader.record().security |= kWpa2; }

void readCiphers(ApReader &reader, const Piece &piece) {
    if (contains(piece.value, "TKIP"))
        reader.record().ciphers |= kTkip;
    if (contains(piece.value, "CCMP"))
        reader.record().ciphers |= kCcmp;
}

void readAkm(ApReader &reader, const Piece &piece) {
    reader.record().akm = contains(piece.value, "PSK") ? kAkmPsk : kAkmOther;
}

void readVht(ApReader &reader, const Piece &) { reader.vhtSeen(); }

void readHt(ApReader &reader, const Piece &) { reader.htSeen(); }

void readHtMcs(ApReader &reader, const Piece &piece) {
    if (reader.record().band == WLBRCM_BAND_5G)
        return;
    for (const HtStreams &row : kHtStreams) {
        if (contains(piece.value, row.highestMcs)) {
            addMcsRates(&reader.record(), htRates, row.streams);
            return;
        }
    }
}

template <int Stream> void readVhtMcs(ApReader &reader, const Piece &) {
    // Further streams add nothing to a list that is as good as full.
    constexpr size_t kNearlyFull = 251;
    WlScanAp &ap = reader.record();
    if (ap.band != WLBRCM_BAND_2G && (Stream == 1 || strlen(ap.supportedRates) < kNearlyFull))
        addMcsRates(&ap, vhtRates, Stream);
}

void passOver(ApReader &, const Piece &) {}

enum class Test { kWhole, kSubstring, kPrefix };
enum class Value { kNeeded, kOptional };

struct Rule {
    Test test;
    KeyMark key;
    Value value;
    void (*read)(ApReader &reader, const Piece &piece);
};

// The first rule that matches decides: "VHT Capable" contains "HT Capable", and so on.
constexpr Rule kRules[] = {
    {Test::kWhole, "SSID", Value::kNeeded, startRecord},
    {Test::kWhole, "BSSID", Value::kNeeded, readBssid},
    {Test::kWhole, "Mode", Value::kNeeded, readMode},
    {Test::kWhole, "Beacon Period", Value::kNeeded, readBeaconPeriod},
    {Test::kWhole, "DTIM Period", Value::kNeeded, readDtimPeriod},
    {Test::kWhole, "Channel", Value::kNeeded, readChannel},
    {Test::kWhole, "RSSI", Value::kNeeded, readRssi},
    {Test::kWhole, "noise", Value::kNeeded, readNoise},
    {Test::kWhole, "Supported Rates", Value::kNeeded, readLegacyRates},
    {Test::kSubstring, "Chanspec", Value::kNeeded, readChanspec},
    {Test::kWhole, "WPS", Value::kOptional, readWps},
    {Test::kWhole, "WPA", Value::kOptional, readWpa},
    {Test::kPrefix, "RSN", Value::kOptional, readWpa2},
    {Test::kSubstring, "WPA2", Value::kOptional, readWpa2},
    {Test::kSubstring, "unicast ciphers", Value::kNeeded, readCiphers},
    {Test::kSubstring, "AKM Suites", Value::kOptional, readAkm},
    {Test::kSubstring, "VHT Capable", Value::kOptional, readVht},
    {Test::kSubstring, "HT Capable", Value::kOptional, readHt},
    {Test::kSubstring, "Supported HT MCS", Value::kNeeded, readHtMcs},
    {Test::kSubstring, "NSS1 Tx", Value::kOptional, readVhtMcs<1>},
    {Test::kSubstring, "NSS2 Tx", Value::kOptional, readVhtMcs<2>},
    {Test::kSubstring, "NSS3 Tx", Value::kOptional, readVhtMcs<3>},
    {Test::kSubstring, "NSS4 Tx", Value::kOptional, readVhtMcs<4>},
    {Test::kPrefix, "", Value::kOptional, passOver}, // any other key
};

bool matches(const Rule &rule, std::string_view key) {
    switch (rule.test) {
    case Test::kWhole:
        return key == rule.key.text;
    case Test::kPrefix:
        return startsWith(key, rule.key.text);
    case Test::kSubstring:
        return contains(key, rule.key.text);
    }
    return false;
}

} // namespace

void addRates(char (&list)[259], std::string_view rates) {
    size_t used = strnlen(list, kLongestList);
    if (used > 0 && used < kLongestList)
        list[used++] = ',';
    // The highest rates stand last, so the first ones go.
    while (used + rates.size() > kLongestList)
        rates = behind(rates, indexOf(rates, ',') + 1);
    copyText(list + used, sizeof list - used, rates);
}

bool Pieces::next(Piece *piece) {
    if (rest_.empty())
        return false;
    const char *at = rest_.data();
    const char *const end = at + rest_.size();
    uint32_t characters = 0;
    while (at != end && *at != ':')
        characters |= characterBit(*at++);
    piece->characters = characters;
    const auto colon = static_cast<size_t>(at - rest_.data());
    piece->key = {rest_.data(), colon};
    piece->hasValue = colon < rest_.size();
    rest_.remove_prefix(piece->hasValue ? colon + 1 : colon);
    const size_t tab = indexOf(rest_, '\t');
    piece->value = {rest_.data(), tab};
    rest_.remove_prefix(tab < rest_.size() ? tab + 1 : tab);
    if (!piece->hasValue && piece->key.back() == '\n')
        piece->key.remove_suffix(1);
    return true;
}

void ApReader::readLine(std::string_view line) {
    Pieces pieces(line);
    for (Piece piece; pieces.next(&piece);)
        dispatch(piece);
}

void ApReader::dispatch(const Piece &piece) {
    const uint32_t characters = piece.characters;
    const Rule *rule = kRules; // the last one matches everything
    while (!rule->key.mayStandIn(characters) || !matches(*rule, piece.key))
        ++rule;
    if ((piece.hasValue || rule->value == Value::kOptional) && (current_ != nullptr || rule->read == startRecord))
        rule->read(*this, piece);
}

void ApReader::start(const Piece &piece) {
    complete();
    current_ = started_ < capacity_ ? &records_[started_++] : nullptr;
    if (current_ == nullptr)
        return;
    channelFallback_ = highestLegacyRate_ = 0;
    ht_ = vht_ = false;
    storeName(quoted(piece.value), current_->ssid);
    copyText(current_->ifName, ifname_);
    current_->bandwidth = kDefaultWidth;
}

void ApReader::legacyRates(std::string_view rates) {
    char text[254];
    copyText(text, rates);
    highestLegacyRate_ = getMaxRateSet(text);
    addLegacyRates(text, current_);
}

uint16_t ApReader::phyModes() const {
    constexpr int kSlowestOfdmRate = 12;
    if (current_->band == WLBRCM_BAND_5G)
        return vht_ ? kPhyAc | kPhyN | kPhyA : ht_ ? kPhyN | kPhyA : kPhyA;
    if (ht_)
        return kPhyN | kPhyG | kPhyB;
    return highestLegacyRate_ >= kSlowestOfdmRate ? kPhyG | kPhyB : kPhyB;
}

void ApReader::complete() {
    if (current_ == nullptr)
        return;
    current_->phyModes = phyModes();
    if (current_->channel == 0)
        current_->channel = channelFallback_;
}

int ApReader::finish() {
    complete();
    current_ = nullptr;
    return started_;
}

} // namespace wlbrcm
