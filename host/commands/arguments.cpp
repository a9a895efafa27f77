#include "host/commands/arguments.h"

#include "host/base/addresses.h"

namespace wlhost {

MacBytes macOf(const std::string &text) {
    auto mac = parseMac(text);
    if (!mac)
        throw Failure(Status::kUsage, text, "is no MAC address", "six hexadecimal pairs, such as 00:10:18:aa:bb:cc");
    if ((*mac)[0] & 1)
        throw Failure(Status::kUsage, text, "is a group address");
    return *mac;
}

std::vector<WlIntf *> radiosArg(Host &host, const json &args) {
    std::string radio = textArg(args, "radio");
    return radio.empty() ? host.configuredRadios() : std::vector<WlIntf *>{host.radio(radio)};
}

std::vector<Host::Bss> bssArg(Host &host, const json &args) {
    std::string interface = textArg(args, "interface");
    return interface.empty() ? host.allBss() : std::vector<Host::Bss>{host.bss(interface)};
}

} // namespace wlhost
