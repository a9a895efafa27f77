// Small text helpers of the simulator's programs.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wlsim {

using Words = std::vector<std::string>;

// printf into a string.
std::string format(const char *pattern, ...) __attribute__((format(printf, 1, 2)));

// The words of a text between any of the separators, of which several in a row are one.
Words splitWords(std::string_view text, const char *separators = " ");

std::string joinWords(const Words &words, const char *separator = " ");

bool contains(const Words &words, const std::string &word);

// A whole text as a number (decimal, or hexadecimal after 0x); nothing when any character is left over.
std::optional<long> parseNumber(const std::string &text);

// A hardware address; ordered, so that it can key a map.
struct Mac {
    std::array<uint8_t, 6> bytes{};

    std::string text() const;
    bool operator==(const Mac &other) const { return bytes == other.bytes; }
    bool operator!=(const Mac &other) const { return bytes != other.bytes; }
    bool operator<(const Mac &other) const { return bytes < other.bytes; }
};

// Exactly six hexadecimal fields of one or two digits, separated by colons.
std::optional<Mac> parseMac(const std::string &text);

std::string hexText(std::string_view bytes);
std::optional<std::string> bytesFromHex(std::string_view hex);

// Bytes outside printable ASCII, and the backslash, as \xNN: the way the driver prints an SSID.
std::string escapeBytes(std::string_view bytes);

} // namespace wlsim
