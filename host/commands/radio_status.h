// What the host can tell about radios and SSIDs: from the records, and from the module's status operations.
#pragma once

#include "host/state/host.h"

namespace wlhost {

// One radio as a row; what the module cannot tell is null.
json radioStatus(Host &host, WlIntf &intf);
// Items of the status operation by name; one that the module left alone is null. Throws without that operation.
json statusItems(Host &host, WlIntf &intf, const std::vector<std::string> &names);
// The same as a row of its radio.
json rawItems(Host &host, WlIntf &intf, const std::vector<std::string> &names);
// The configuration's word for the security of an SSID.
std::string securityName(const WlSsidCfg &record);
// Null for the 0 that a failed read gives, where no real value is 0.
inline json unlessZero(const json &value) { return value == 0 ? json() : value; }
json ssidStatus(Host &host, const Host::Bss &bss);
// "deny", "allow" or "off".
const char *filterMode(const WlSsidCfg &record);

} // namespace wlhost
