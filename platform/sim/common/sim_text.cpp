#include "platform/sim/common/sim_text.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace wlsim {

std::string format(const char *pattern, ...) {
    va_list args;
    va_start(args, pattern);
    va_list again;
    va_copy(again, args);
    int length = vsnprintf(nullptr, 0, pattern, args);
    va_end(args);
    std::string out(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    vsnprintf(out.data(), out.size() + 1, pattern, again);
    va_end(again);
    return out;
}

Words splitWords(std::string_view text, const char *separators) {
    Words words;
    size_t at = 0;
    while ((at = text.find_first_not_of(separators, at)) != std::string_view::npos) {
        size_t end = std::min(text.find_first_of(separators, at), text.size());
        words.emplace_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

std::string joinWords(const Words &words, const char *separator) {
    std::string out;
    for (const std::string &word : words) {
        out += (&word == &words.front() ? "" : separator) + word;
    }
    return out;
}

bool contains(const Words &words, const std::string &word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::optional<long> parseNumber(const std::string &text) {
    bool hex = text.compare(0, 2, "0x") == 0;
    char *end = nullptr;
    errno = 0;
    long value = strtol(text.c_str(), &end, hex ? 16 : 10);
    bool startsWell = !text.empty() && text[0] != ' ' && text[0] != '+';
    return startsWell && *end == '\0' && errno == 0 ? std::optional<long>(value) : std::nullopt;
}

std::string Mac::text() const {
    return format("%02X:%02X:%02X:%02X:%02X:%02X", bytes[0], bytes[1], bytes[2], bytes[3], bytes[4], bytes[5]);
}

std::optional<Mac> parseMac(const std::string &text) {
    Mac mac;
    unsigned field[6];
    int used = 0;
    if (text.size() > 17 || text.find_first_not_of("0123456789abcdefABCDEF:") != std::string::npos ||
        sscanf(text.c_str(), "%2x:%2x:%2x:%2x:%2x:%2x%n", field, field + 1, field + 2, field + 3, field + 4, field + 5,
               &used) != 6 ||
        static_cast<size_t>(used) != text.size()) {
        return std::nullopt;
    }
    for (size_t i = 0; i < 6; i++) {
        mac.bytes[i] = static_cast<uint8_t>(field[i]);
    }
    return mac;
}

std::string hexText(std::string_view bytes) {
    std::string out;
    for (unsigned char c : bytes) {
        out += format("%02x", c);
    }
    return out;
}

std::optional<std::string> bytesFromHex(std::string_view hex) {
    if (hex.size() % 2 != 0 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos) {
        return std::nullopt;
    }
    std::string out;
    for (size_t i = 0; i < hex.size(); i += 2) {
        out += static_cast<char>(strtol(std::string(hex.substr(i, 2)).c_str(), nullptr, 16));
    }
    return out;
}

std::string escapeBytes(std::string_view bytes) {
    std::string out;
    for (unsigned char c : bytes) {
        bool plain = c >= 0x20 && c < 0x7f && c != '\\' && c != '"';
        out += plain ? std::string(1, static_cast<char>(c)) : format("\\x%02x", c);
    }
    return out;
}

} // namespace wlsim
