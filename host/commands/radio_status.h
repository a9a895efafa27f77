// What the host can tell about radios and SSIDs: from the records, and from the module's status operations.
#pragma once

#include "host/state/host.h"

namespace wlhost {

// Throws when the driver of a radio does not answer, on or off: the module's values are empty then, as where there are
// none.
void demandDriver(const Host &host, const WlIntf &intf);

// Items of the status operation by name; one that the module left alone is null. Throws without that operation.
json statusItems(Host &host, WlIntf &intf, const std::vector<std::string> &names);
// The configuration's word for the security of an SSID.
std::string securityName(const WlSsidCfg &record);
// "deny", "allow" or "off".
const char *filterMode(const WlSsidCfg &record);

} // namespace wlhost
