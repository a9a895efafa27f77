// Names of the BSS interfaces of a radio.
#ifndef WLBRCM_STATUS_INTERFACE_H
#define WLBRCM_STATUS_INTERFACE_H

#include "module/command.h"

namespace wlbrcm {

// The radio's own interface for index 0, "<radio>.<index>" above it. A negative index names nothing and is invalid.
inline InterfaceName bssInterface(Here here, const char *radio, int index) {
    if (index <= 0)
        return {here, index == 0 ? radio : ""};
    return {here, Text<32>("%s.%d", radio, index).view()};
}

} // namespace wlbrcm

#endif
