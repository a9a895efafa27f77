#include "module/log.h"

#include <cstdio>

namespace wlbrcm {

Shown::Shown(std::string_view text) {
    constexpr size_t kEscapeLength = 4;
    size_t used = 0;
    for (const char c : text) {
        if (used + kEscapeLength >= sizeof text_)
            break;
        // A backslash as well, so that no text looks like an escape.
        if (c >= ' ' && c <= '~' && c != '\\')
            text_[used++] = c;
        else
            used += static_cast<size_t>(snprintf(text_ + used, kEscapeLength + 1, "\\x%02x",
                                                 static_cast<unsigned>(static_cast<unsigned char>(c))));
    }
    text_[used] = '\0';
}

Shown::Shown(const char *text) : Shown(std::string_view(text)) {}

} // namespace wlbrcm
