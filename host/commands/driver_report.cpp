#include "host/commands/driver_report.h"

#include <algorithm>
#include <iterator>

#include "host/base/escape.h"

namespace wlhost {
namespace {

// Places in the message, numbers big-endian: Ethernet header, vendor header, then the event.
enum : size_t {
    kSubtypeAt = 22,
    kTypeAt = 28,
    kStatusAt = 32,
    kReasonAt = 36,
    kStationAt = 48,
    kInterfaceAt = 54,
    kInterfaceSize = 16,
    kMessageSize = kInterfaceAt + kInterfaceSize
};
constexpr uint32_t kDriverSubtype = 1;

enum : uint32_t { kAuth = 3, kAuthInd = 4, kDisassoc = 11, kDisassocInd = 12, kPrune = 23 };

struct Unrecorded {
    uint32_t type;
    const char *event;
    bool failuresOnly; // its success is a step on the way that nobody waits for
};
constexpr Unrecorded kUnrecorded[] = {{kAuth, "refused", true},
                                      {kAuthInd, "refused", true},
                                      {kDisassoc, "disassociated", false},
                                      {kDisassocInd, "disassociated", false},
                                      {kPrune, "refused", false}};

struct Reason {
    uint32_t code;
    const char *word;
};
// Of IEEE 802.11, in deauthentication and disassociation.
constexpr Reason kReasons[] = {{1, "unspecified"},
                               {2, "authentication-expired"},
                               {3, "station-leaving"},
                               {4, "inactive"},
                               {5, "access-point-full"},
                               {6, "not-authenticated"},
                               {7, "not-associated"},
                               {8, "station-left"},
                               {9, "not-authenticated"},
                               {13, "invalid-element"},
                               {14, "mic-failure"},
                               {15, "4-way-handshake-timeout"},
                               {16, "group-key-timeout"},
                               {17, "element-differs"},
                               {18, "invalid-group-cipher"},
                               {19, "invalid-pairwise-cipher"},
                               {20, "invalid-akm"},
                               {23, "802.1x-failed"},
                               {24, "cipher-rejected"},
                               {34, "poor-channel"},
                               {39, "timeout"}};
// Of the driver, when it turns a station away by itself.
constexpr Reason kPruneReasons[] = {{1, "security-mismatch"}, {3, "mac-filter"}, {4, "not-admitted"}};

template <size_t Size> json wordOf(uint32_t code, const Reason (&reasons)[Size]) {
    const auto *row = std::find_if(std::begin(reasons), std::end(reasons), [&](auto &one) { return one.code == code; });
    return row == std::end(reasons) ? json() : json(row->word);
}

uint32_t bigEndian(std::string_view bytes, size_t at, size_t size) {
    uint32_t number = 0;
    for (char c : bytes.substr(at, size))
        number = number << 8 | static_cast<uint8_t>(c);
    return number;
}

} // namespace

std::optional<DriverReport> readReport(std::string_view datagram) {
    if (datagram.size() < kMessageSize || bigEndian(datagram, kSubtypeAt, 2) != kDriverSubtype)
        return std::nullopt;
    DriverReport report{bigEndian(datagram, kTypeAt, 4),
                        bigEndian(datagram, kStatusAt, 4),
                        bigEndian(datagram, kReasonAt, 4),
                        {},
                        datagram.substr(kInterfaceAt, kInterfaceSize)};
    std::copy_n(datagram.begin() + kStationAt, report.station.size(), report.station.begin());
    report.interface = report.interface.substr(0, report.interface.find('\0'));
    return report;
}

json unrecordedEvent(const DriverReport &report) {
    const auto *row = std::find_if(std::begin(kUnrecorded), std::end(kUnrecorded),
                                   [&](const Unrecorded &one) { return one.type == report.type; });
    if (row == std::end(kUnrecorded) || (row->failuresOnly && report.status == 0))
        return nullptr;
    json event = {{"event", row->event},
                  {"mac", formatMac(report.station)},
                  {"radio", escapeBytes(report.interface.substr(0, report.interface.find('.')))},
                  {"interface", escapeBytes(report.interface)}};
    addReport(event, report);
    return event;
}

void addReport(json &row, const DriverReport &report) {
    bool joined = row["event"] == "associated" || row["event"] == "reassociated";
    if (joined && report.status != 0)
        row["event"] = "refused";
    row["status_code"] = report.status;
    row["reason_code"] = report.reason;
    bool pruned = report.type == kPrune;
    bool told = pruned || (!joined && report.reason != 0);
    row["reason"] = !told ? json() : pruned ? wordOf(report.reason, kPruneReasons) : wordOf(report.reason, kReasons);
}

} // namespace wlhost
