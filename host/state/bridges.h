// Bridge membership, which is the host's to change: the module takes an interface out of no other bridge than the one
// it puts it into.
#pragma once

#include <string>

namespace wlhost {

// The bridge that an interface is a member of; empty for none.
std::string bridgeOf(const std::string &interface);
// Takes an interface out of any other bridge than `wanted`. 0, or what the tool returned.
int leaveBridge(const std::string &interface, const std::string &wanted);
// The same, and into that one, unless it is empty.
int joinBridge(const std::string &interface, const std::string &wanted);

} // namespace wlhost
