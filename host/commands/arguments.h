// What the arguments of a request mean; that they are what the command's row says was checked before.
#pragma once

#include <string>
#include <vector>

#include "host/base/addresses.h"
#include "host/state/host.h"

namespace wlhost {

inline std::string textArg(const json &args, const char *name) { return args.value(name, std::string()); }
inline bool flagArg(const json &args, const char *name) { return args.value(name, false); }
inline std::vector<std::string> listArg(const json &args, const char *name) {
    return args.value(name, std::vector<std::string>());
}

// Only an address that one station can have; the module would take any number of hexadecimal fields.
MacBytes macOf(const std::string &text);

// The radio or BSS that the arguments name, or every one that is configured. Throws status 3 for others.
std::vector<WlIntf *> radiosArg(Host &host, const json &args);
std::vector<Host::Bss> bssArg(Host &host, const json &args);

} // namespace wlhost
