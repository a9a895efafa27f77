// How a radio record is read: the entries in use, and fields that a host may have filled to the brim.
#ifndef WLBRCM_MODULE_RECORD_H
#define WLBRCM_MODULE_RECORD_H

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
    char *data() { return text_; }

  private:
    char text_[Size + 1];
};

} // namespace wlbrcm

#endif
