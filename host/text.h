// Texts at the edge: foreign bytes made safe to show, addresses and names checked, nearest names.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wlhost {

using MacBytes = std::array<uint8_t, 6>;

/// Printable UTF-8 stays; every other byte, and the backslash, becomes \xNN. Applied once, where text is shown.
std::string escapeBytes(std::string_view bytes);
/// Two lower-case hexadecimal digits a byte.
std::string toHex(std::string_view bytes);
std::optional<std::string> fromHex(std::string_view digits);

/// Six hexadecimal pairs joined by ':' or '-', in any case.
std::optional<MacBytes> parseMac(std::string_view text);
std::string formatMac(const MacBytes &mac, bool upper = false);

/// 1 to 15 characters of [A-Za-z0-9._-], the first not '-': what the module accepts in a command.
bool isInterfaceName(std::string_view name);

/// The candidate that differs in the fewest places, when it is near enough to be a typing mistake.
std::optional<std::string> nearestName(std::string_view name, const std::vector<std::string> &candidates);
/// Items joined by ", ", or `none` when there is none.
std::string joined(const std::vector<std::string> &items, const char *none = "none");

/// Copies into a fixed field that the caller checked the length for; always terminates.
template <size_t Size> void copyText(char (&field)[Size], std::string_view text) {
    size_t length = text.size() < Size ? text.size() : Size - 1;
    text.copy(field, length);
    field[length] = '\0';
}

} // namespace wlhost
