// Capability elements of a beacon, decoded (IEEE 802.11 9.4).
#pragma once

#include <string>

#include <wlbrcm/wlbrcm.h>

#include "host/base/json.h"

namespace wlhost {

// What a BSS announces; elements that its beacon lacks are null.
json beaconRow(const std::string &ifname, const WlIntfInfo &info);

} // namespace wlhost
