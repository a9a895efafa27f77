#include "host/base/escape.h"

#include <cctype>
#include <cstdint>

namespace wlhost {
namespace {

struct Sequence {
    size_t length = 0;
    uint32_t code = 0;
};

// The well-formed UTF-8 sequence at the start of `bytes`; of length 0 when there is none.
Sequence sequenceAt(std::string_view bytes) {
    auto byte = [&](size_t i) { return static_cast<uint8_t>(bytes[i]); };
    uint8_t lead = byte(0);
    if (lead < 0x80)
        return {1, lead};
    size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || bytes.size() < length)
        return {};
    uint32_t code = lead & (0x7fU >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0) != 0x80)
            return {};
        code = code << 6 | (byte(i) & 0x3fU);
    }
    constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    bool malformed = code < kSmallest[length] || code > 0x10ffff || (code >= 0xd800 && code <= 0xdfff);
    return malformed ? Sequence{} : Sequence{length, code};
}

// Control characters and the marks that turn the writing direction: how a network name would repaint a terminal. The
// backslash is what escapes are made with.
bool isPrintable(uint32_t code) {
    bool invisible = code < 0x20 || (code >= 0x7f && code < 0xa0) || code == '\\' || code == 0xad || code == 0x61c ||
                     (code >= 0x200b && code <= 0x200f) || (code >= 0x2028 && code <= 0x202e) ||
                     (code >= 0x2060 && code <= 0x206f) || code == 0xfeff;
    return !invisible;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    int lower = std::tolower(static_cast<unsigned char>(c));
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

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
        auto [length, code] = sequenceAt(bytes);
        if (length > 0 && isPrintable(code)) {
            shown += bytes.substr(0, length);
        } else {
            length = 1;
            shown += "\\x" + toHex(bytes.substr(0, 1));
        }
        bytes.remove_prefix(length);
    }
    return shown;
}

size_t wellFormedLength(std::string_view bytes) {
    size_t at = 0;
    while (at < bytes.size()) {
        size_t length = sequenceAt(bytes.substr(at)).length;
        if (length == 0)
            break;
        at += length;
    }
    return at;
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

} // namespace wlhost
