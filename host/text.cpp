#include "text.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <numeric>

#include "failure.h"

namespace wlhost {
namespace {

// Length of the well-formed, printable UTF-8 sequence at the start of `bytes`, or 0. Control characters and the marks
// that turn the writing direction are not printable: they are how a network name would repaint a terminal.
size_t printableSequence(std::string_view bytes) {
    auto byte = [&](size_t i) { return static_cast<uint8_t>(bytes[i]); };
    uint8_t lead = byte(0);
    if (lead < 0x80)
        return lead >= 0x20 && lead != 0x7f && lead != '\\' ? 1 : 0;
    size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || bytes.size() < length)
        return 0;
    uint32_t code = lead & (0x7fU >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0) != 0x80)
            return 0;
        code = code << 6 | (byte(i) & 0x3fU);
    }
    constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    bool malformed = code < kSmallest[length] || code > 0x10ffff || (code >= 0xd800 && code <= 0xdfff);
    bool invisible = code < 0xa0 || code == 0xad || code == 0x61c || (code >= 0x200b && code <= 0x200f) ||
                     (code >= 0x2028 && code <= 0x202e) || (code >= 0x2060 && code <= 0x206f) || code == 0xfeff;
    return malformed || invisible ? 0 : length;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    int lower = std::tolower(static_cast<unsigned char>(c));
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            size_t change = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({change, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[b.size()];
}

} // namespace

const char *statusWord(int status) {
    switch (status) {
    case kUsage:
        return "usage";
    case kNotFound:
        return "not-found";
    case kTimeout:
        return "timeout";
    case kEnvironment:
        return "environment";
    default:
        return "failed";
    }
}

std::string toHex(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (char c : bytes) {
        hex += kDigits[static_cast<uint8_t>(c) >> 4];
        hex += kDigits[static_cast<uint8_t>(c) & 15];
    }
    return hex;
}

std::string escapeBytes(std::string_view bytes) {
    std::string shown;
    while (!bytes.empty()) {
        size_t length = printableSequence(bytes);
        if (length == 0) {
            length = 1;
            shown += "\\x" + toHex(bytes.substr(0, 1));
        } else {
            shown += bytes.substr(0, length);
        }
        bytes.remove_prefix(length);
    }
    return shown;
}

std::optional<std::string> fromHex(std::string_view digits) {
    if (digits.size() % 2 != 0)
        return std::nullopt;
    std::string bytes;
    for (size_t i = 0; i < digits.size(); i += 2) {
        int high = hexDigit(digits[i]), low = hexDigit(digits[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

std::optional<MacBytes> parseMac(std::string_view text) {
    if (text.size() != 17)
        return std::nullopt;
    MacBytes mac{};
    for (size_t i = 0; i < mac.size(); ++i) {
        auto pair = fromHex(text.substr(3 * i, 2));
        bool separated = i == 5 || ((text[3 * i + 2] == ':' || text[3 * i + 2] == '-') && text[3 * i + 2] == text[2]);
        if (!pair || !separated)
            return std::nullopt;
        mac[i] = static_cast<uint8_t>((*pair)[0]);
    }
    return mac;
}

std::string formatMac(const MacBytes &mac, bool upper) {
    std::string hex = toHex({reinterpret_cast<const char *>(mac.data()), mac.size()});
    std::string text;
    for (size_t i = 0; i < hex.size(); ++i) {
        if (i > 0 && i % 2 == 0)
            text += ':';
        text += upper ? static_cast<char>(std::toupper(static_cast<unsigned char>(hex[i]))) : hex[i];
    }
    return text;
}

bool isInterfaceName(std::string_view name) {
    auto legal = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
               c == '-';
    };
    return !name.empty() && name.size() <= 15 && name[0] != '-' && std::all_of(name.begin(), name.end(), legal);
}

std::optional<std::string> nearestName(std::string_view name, const std::vector<std::string> &candidates) {
    std::optional<std::string> nearest;
    size_t best = std::max<size_t>(2, name.size() / 3) + 1;
    for (const std::string &candidate : candidates) {
        size_t distance = editDistance(name, candidate);
        // A name of which nothing is left is no typing mistake.
        if (distance < best && distance < std::max(name.size(), candidate.size())) {
            best = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string joined(const std::vector<std::string> &items, const char *none) {
    std::string text;
    for (const std::string &item : items)
        text += (text.empty() ? "" : ", ") + item;
    return text.empty() ? none : text;
}

} // namespace wlhost
