// The argument record that the setup sequence refills before each setter.
#ifndef WLBRCM_BRINGUP_PARAMS_RECORD_H
#define WLBRCM_BRINGUP_PARAMS_RECORD_H

#include <wlbrcm/params.h>
#include <wlbrcm/radio.h>

#include "module/text.h"

namespace wlbrcm {

// A part that a call does not set keeps what it held before. Setters report nothing here: one that refuses its value
// leaves its variables alone, and the sequence goes on.
class ParamsRecord {
  public:
    using Setter = int (*)(WlanParamArg *);

    ParamsRecord(std::string_view name, int index) : arg_{prefix_, value_, aux_, nullptr, index} { prefix(name); }
    ParamsRecord(const ParamsRecord &) = delete;
    ParamsRecord &operator=(const ParamsRecord &) = delete;

    void prefix(std::string_view name) { copyText(prefix_, name); }
    void index(int number) { arg_.index = number; }
    void aux(std::string_view text) { copyText(aux_, text); }
    template <size_t Size> void aux(const Text<Size> &text) { aux(text.view()); }

    void value(int number) { copyText(value_, Text<64>("%d", number).view()); }
    void set(Setter setter) { setter(&arg_); }
    void set(Setter setter, int number) {
        value(number);
        setter(&arg_);
    }
    void set(Setter setter, std::string_view text) {
        copyText(value_, text);
        setter(&arg_);
    }
    WlanParamArg *arg() { return &arg_; }

  private:
    char prefix_[sizeof WlRadioCfg::ifName + 1] = "";
    char value_[256] = "";
    char aux_[256] = "";
    WlanParamArg arg_;
};

} // namespace wlbrcm

#endif
