// Changes that leave a radio on the air.
#pragma once

#include "host/base/addresses.h"
#include "host/state/host.h"

namespace wlhost {

// Takes the light settings of `records` over. Stations that a filter or a switched-off preset sends away are added to
// `drops`. 0, or the first other result of an operation.
int changeInPlace(Host &host, WlIntf *intf, const RadioRecords &records, const Change &change, json &drops);

// Whether the user's filter or a ban of the run time denies a station.
bool isDenied(Host &host, const WlSsidCfg &bss, const std::string &mac);
// Sends a station away. Throws when it is still there.
void sendAway(Host &host, const Host::Bss &bss, const MacBytes &mac);
// Sends the associated stations away that are denied; their addresses.
std::vector<std::string> sendDeniedAway(Host &host, const Host::Bss &bss);

} // namespace wlhost
