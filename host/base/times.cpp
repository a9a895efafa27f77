#include "host/base/times.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <optional>

#include "host/base/failure.h"

namespace wlhost {
namespace {

struct Unit {
    const char *name;
    int seconds;
};
constexpr Unit kUnits[] = {{"", 1}, {"s", 1}, {"m", 60}, {"h", 3600}, {"d", 86400}};

std::optional<WallTime> agoOf(const std::string &text, WallTime now) {
    const size_t digits = text.find_first_not_of("0123456789");
    const std::string unit = digits == std::string::npos ? "" : text.substr(digits);
    if (digits == 0 || text.empty() || text.size() - unit.size() > 8)
        return std::nullopt;
    for (const Unit &row : kUnits)
        if (unit == row.name)
            return now - std::chrono::seconds(atoll(text.c_str()) * row.seconds);
    return std::nullopt;
}

std::optional<WallTime> dateOf(const std::string &text, WallTime now) {
    const time_t today = std::chrono::system_clock::to_time_t(now);
    tm parts{};
    gmtime_r(&today, &parts);
    parts.tm_isdst = -1;
    const bool hasDate = text.find('T') != std::string::npos;
    const char *rest = strptime(text.c_str(), hasDate ? "%Y-%m-%dT%H:%M:%S" : "%H:%M:%S", &parts);
    if (!rest)
        return std::nullopt;
    double fraction = 0;
    if (*rest == '.') {
        char *end = nullptr;
        fraction = strtod(rest, &end);
        rest = end;
    }
    const std::string zone = rest;
    if (zone != "" && zone != "Z")
        return std::nullopt;
    // A time alone is one of the journal's table, which is in UTC.
    const bool utc = zone == "Z" || !hasDate;
    const time_t seconds = utc ? timegm(&parts) : mktime(&parts);
    return std::chrono::system_clock::from_time_t(seconds) + std::chrono::microseconds(std::llround(fraction * 1e6));
}

} // namespace

std::string utcText(WallTime time) {
    using namespace std::chrono;
    const auto sinceEpoch = duration_cast<milliseconds>(time.time_since_epoch()).count();
    const time_t seconds = static_cast<time_t>(sinceEpoch / 1000);
    tm parts{};
    gmtime_r(&seconds, &parts);
    char text[64];
    size_t length = strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(sinceEpoch % 1000));
    return text;
}

WallTime timeOf(const std::string &text, WallTime now) {
    if (auto ago = agoOf(text, now))
        return *ago;
    if (auto date = dateOf(text, now))
        return *date;
    throw Failure(Status::kUsage, text, "is no time", "such as 10m ago, or 2026-01-31T10:00:00Z");
}

} // namespace wlhost
