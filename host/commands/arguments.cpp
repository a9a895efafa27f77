#include "host/commands/arguments.h"

#include "host/base/addresses.h"

namespace wlhost {

std::string textArg(const json &args, const char *name) {
    auto value = args.find(name);
    if (value == args.end() || value->is_null())
        return "";
    if (!value->is_string())
        throw Failure(Status::kUsage, name, "is not a text");
    return value->get<std::string>();
}

bool flagArg(const json &args, const char *name) {
    auto value = args.find(name);
    if (value == args.end() || value->is_null())
        return false;
    if (!value->is_boolean())
        throw Failure(Status::kUsage, name, "is not true or false");
    return value->get<bool>();
}

std::vector<std::string> listArg(const json &args, const char *name) {
    std::vector<std::string> list;
    for (const json &value : args.value(name, json::array())) {
        if (!value.is_string())
            throw Failure(Status::kUsage, name, "holds something that is not a text");
        list.push_back(value.get<std::string>());
    }
    return list;
}

bool switchArg(const json &args, const char *name) {
    std::string state = textArg(args, name);
    if (state != "on" && state != "off")
        throw Failure(Status::kUsage, state, "is not on or off");
    return state == "on";
}

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
