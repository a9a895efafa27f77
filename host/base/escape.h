// Foreign bytes made safe to show.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace wlhost {

// Printable UTF-8 stays; every other byte, and the backslash, becomes \xNN. Applied once, where text is shown.
std::string escapeBytes(std::string_view bytes);
// Length of the part that is well-formed UTF-8, from the start on.
size_t wellFormedLength(std::string_view bytes);
// Two lower-case hexadecimal digits a byte.
std::string toHex(std::string_view bytes);
std::optional<std::string> fromHex(std::string_view digits);

// Copies into a fixed field that the caller checked the length for; always terminates.
template <size_t Size> void copyText(char (&field)[Size], std::string_view text) {
    size_t length = text.size() < Size ? text.size() : Size - 1;
    text.copy(field, length);
    field[length] = '\0';
}

} // namespace wlhost
