// Names of the BSS interfaces of a radio.
#ifndef WLBRCM_STATUS_INTERFACE_H
#define WLBRCM_STATUS_INTERFACE_H

#include "module/names.h"
#include "module/text.h"

namespace wlbrcm {

// The radio's own interface for index 0, "<radio>.<index>" above it. A missing radio, a negative index, which names
// nothing, and a missing place for the result are invalid; each is logged.
inline InterfaceName bssInterface(Here here, const char *radio, int index, const void *result) {
    if (result == nullptr) {
        WLBRCM_LOG_AT(here, LOG_ERR, "no place for the result.\n");
        return {};
    }
    if (radio == nullptr || index <= 0)
        return {here, index == 0 ? radio : nullptr};
    return {here, Text<64>("%s.%d", radio, index).view()};
}

} // namespace wlbrcm

#endif
