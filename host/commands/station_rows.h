// Stations: who is associated, and how one is sent away.
#pragma once

#include <wlbrcm/wlbrcm.h>

#include "host/base/json.h"

namespace wlhost {

// One station as a row; what the driver did not tell is null.
json stationRow(const WlStaInfo &station);

json stationMac(const WlStaInfo &station);

} // namespace wlhost
