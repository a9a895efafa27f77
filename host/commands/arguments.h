// Arguments of a request, checked: whoever can open the control socket may send anything.
#pragma once

#include <string>
#include <vector>

#include "host/base/addresses.h"
#include "host/state/host.h"

namespace wlhost {

// Empty when the argument is missing or null.
std::string textArg(const json &args, const char *name);
bool flagArg(const json &args, const char *name);
std::vector<std::string> listArg(const json &args, const char *name);
// "on" or "off" as a truth value.
bool switchArg(const json &args, const char *name);

// Only an address that one station can have; the module would take any number of hexadecimal fields.
MacBytes macOf(const std::string &text);

// The radio or BSS that the arguments name, or every one that is configured. Throws status 3 for others.
std::vector<WlIntf *> radiosArg(Host &host, const json &args);
std::vector<Host::Bss> bssArg(Host &host, const json &args);

} // namespace wlhost
