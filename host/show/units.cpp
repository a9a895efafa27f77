#include "host/show/units.h"

#include <algorithm>
#include <cstdio>

#include "host/show/tables.h"

namespace wlhost {
namespace {

std::string withUnit(const json &value, const char *unit) {
    return value.is_null() ? cell(value) : cell(value) + " " + unit;
}

std::string oneDecimal(double value) {
    char text[32];
    std::snprintf(text, sizeof text, value < 100 ? "%.1f" : "%.0f", value);
    return text;
}

} // namespace

std::string mhz(const json &value) { return withUnit(value, "MHz"); }
std::string dbm(const json &value) { return withUnit(value, "dBm"); }
std::string db(const json &value) { return withUnit(value, "dB"); }
std::string mbps(const json &value) { return withUnit(value, "Mbit/s"); }
std::string percent(const json &value) { return withUnit(value, "%"); }
std::string exitText(const json &value) { return value == 0 ? "ok" : cell(value); }

std::string timeOfDay(const json &value) {
    const std::string text = cell(value);
    const size_t begin = text.find('T') + 1;
    return text.substr(begin, text.find('Z') - begin);
}

std::string seconds(const json &value) { return withUnit(value, "s"); }
std::string slashed(const json &value) {
    std::string text = cell(value);
    std::replace(text.begin(), text.end(), ' ', '/');
    return text;
}

std::string plain(const json &value) { return value.is_string() ? value.get<std::string>() : ""; }

std::string kbps(const json &value) {
    return value.is_number() ? oneDecimal(value.get<double>() / 1000) + " Mbit/s" : cell(value);
}

std::string bytes(const json &value) {
    constexpr const char *kUnits[] = {"kB", "MB", "GB", "TB"};
    if (!value.is_number() || value < 1000)
        return withUnit(value, "B");
    double scaled = value.get<double>() / 1000;
    size_t unit = 0;
    for (; scaled >= 1000 && unit < 3; ++unit)
        scaled /= 1000;
    return oneDecimal(scaled) + " " + kUnits[unit];
}

} // namespace wlhost
