// Stations: who is associated, and how one is sent away.
#pragma once

#include <set>
#include <string>

#include <wlbrcm/wlbrcm.h>

#include "host/base/json.h"
#include "host/verify/world.h"

namespace wlhost {

// One station as a row; what the driver did not tell is null.
json stationRow(const WlStaInfo &station);

json stationMac(const WlStaInfo &station);

// Addresses of the stations that the driver lists for an interface. Throws status 1 when it does not.
std::set<std::string> driverStations(World &world, const std::string &ifname);

} // namespace wlhost
