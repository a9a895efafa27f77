// Names of a radio record that may be missing, and lists of names.
#ifndef WLBRCM_BRINGUP_ENTRIES_H
#define WLBRCM_BRINGUP_ENTRIES_H

#include <optional>

#include "module/names.h"
#include "module/record.h"

namespace wlbrcm {

// The name in a record for use in a command. A missing one is nothing to report; one that is no interface name was
// logged. Either way the command is left out and the bring-up goes on.
inline std::optional<InterfaceName> usableName(Here here, std::string_view text) {
    if (text.empty())
        return std::nullopt;
    const InterfaceName name(here, text);
    return name ? std::optional<InterfaceName>(name) : std::nullopt;
}

// Appends a word to a blank-separated list, whole or not at all.
template <size_t Size> bool appendWord(char (&list)[Size], std::string_view word) {
    const size_t used = strlen(list);
    const size_t blank = used > 0 ? 1 : 0;
    if (used + blank + word.size() >= Size)
        return false;
    if (blank != 0)
        list[used] = ' ';
    return copyText(list + used + blank, Size - used - blank, word);
}

} // namespace wlbrcm

#endif
