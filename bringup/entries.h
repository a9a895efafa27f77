// How the bring-up steps read a radio record: the entries in use, names that may be missing, lists of names.
#ifndef WLBRCM_BRINGUP_ENTRIES_H
#define WLBRCM_BRINGUP_ENTRIES_H

#include <optional>

#include <wlbrcm/radio.h>

#include "module/names.h"
#include "module/text.h"

namespace wlbrcm {

// The BSS entries in use, never more than the record has.
class EntriesInUse {
  public:
    EntriesInUse(const WlRadioCfg *radio, WlSsidCfg *bss) : first_(bss), count_(countOf(radio)) {}

    static int countOf(const WlRadioCfg *radio) {
        constexpr int kMost = WLBRCM_MAX_BSS;
        return radio->bssCount < kMost ? radio->bssCount : kMost;
    }
    WlSsidCfg *begin() const { return first_; }
    WlSsidCfg *end() const { return first_ + count_; }

  private:
    WlSsidCfg *first_;
    int count_;
};

// A text field of a record as a terminated text, also when the field is not.
template <size_t Size> class FieldCopy {
  public:
    explicit FieldCopy(const char (&field)[Size]) { copyText(text_, fieldText(field)); }
    const char *c_str() const { return text_; }

  private:
    char text_[Size + 1];
};

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
