// Network names as the driver prints them.
#include <wlbrcm/scan.h>

#include <cctype>
#include <cstdio>
#include <cstring>

#include "module/numbers.h"

namespace {

// Output stops behind this index; a doubled backslash that begins there is still written whole.
constexpr size_t kLastIndex = 252;
constexpr size_t kEscapeLength = 4;

// "\xNN" is one byte of the name. Anything else that sscanf() takes for a number counts as well.
bool readEscape(const char *text, char *byte) {
    if (text[1] == 'x' && isxdigit(static_cast<unsigned char>(text[2])) != 0 &&
        isxdigit(static_cast<unsigned char>(text[3])) != 0) {
        *byte = static_cast<char>(wlbrcm::hexNumber({text + 2, 2}));
        return true;
    }
    unsigned value = 0;
    if (sscanf(text, "\\x%02x", &value) != 1)
        return false;
    *byte = static_cast<char>(value);
    return true;
}

} // namespace

char *formatSSID(char *text) {
    if (text == nullptr)
        return nullptr;
    char name[kLastIndex + 3];
    size_t used = 0;
    for (const char *from = text; used <= kLastIndex && *from != '\0';) {
        if (*from != '\\') {
            name[used++] = *from++;
        } else if (readEscape(from, &name[used])) {
            ++used;
            from += strnlen(from, kEscapeLength); // a name that was cut may end inside its last escape
        } else {
            name[used++] = *from;
            name[used++] = *from++;
        }
    }
    name[used++] = '\0';
    memcpy(text, name, used);
    return text;
}
