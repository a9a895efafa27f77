// Lists of names.
#ifndef WLBRCM_BRINGUP_ENTRIES_H
#define WLBRCM_BRINGUP_ENTRIES_H

#include "module/record.h"

namespace wlbrcm {

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
