// The argument record of setters and getters, checked where a function begins.
#ifndef WLBRCM_MODULE_ARGUMENT_H
#define WLBRCM_MODULE_ARGUMENT_H

#include <wlbrcm/params.h>

#include "module/names.h"

namespace wlbrcm {

// The pointers that a function reads beside the prefix.
enum ArgumentParts : unsigned { kValue = 1, kAux = 2, kResult = 4 };

inline bool hasParts(const WlanParamArg *arg, unsigned parts) {
    return arg != nullptr && ((parts & kValue) == 0 || arg->value != nullptr) &&
           ((parts & kAux) == 0 || arg->aux != nullptr) && ((parts & kResult) == 0 || arg->result != nullptr);
}

// The interface that the record's prefix names. Invalid when the prefix or one of `parts` is missing, or when the
// prefix is no interface name, which is logged.
inline InterfaceName interfaceOf(Here here, const WlanParamArg *arg, unsigned parts = 0) {
    return hasParts(arg, parts) && arg->prefix != nullptr ? InterfaceName(here, arg->prefix) : InterfaceName();
}

} // namespace wlbrcm

#endif
