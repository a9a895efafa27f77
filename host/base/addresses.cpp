#include "host/base/addresses.h"

#include <algorithm>
#include <cctype>

#include "host/base/escape.h"

namespace wlhost {

std::optional<MacBytes> parseMac(std::string_view text) {
    if (text.size() != 17)
        return std::nullopt;
    MacBytes mac{};
    for (size_t i = 0; i < mac.size(); ++i) {
        auto pair = fromHex(text.substr(3 * i, 2));
        bool separated = i == 5 || ((text[3 * i + 2] == ':' || text[3 * i + 2] == '-') && text[3 * i + 2] == text[2]);
        if (!pair || !separated)
            return std::nullopt;
        mac[i] = static_cast<uint8_t>((*pair)[0]);
    }
    return mac;
}

std::string formatMac(const MacBytes &mac, bool upper) {
    std::string hex = toHex({reinterpret_cast<const char *>(mac.data()), mac.size()});
    std::string text;
    for (size_t i = 0; i < hex.size(); ++i) {
        if (i > 0 && i % 2 == 0)
            text += ':';
        text += upper ? static_cast<char>(std::toupper(static_cast<unsigned char>(hex[i]))) : hex[i];
    }
    return text;
}

bool isInterfaceName(std::string_view name) {
    auto legal = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
               c == '-';
    };
    return !name.empty() && name.size() <= 15 && name[0] != '-' && std::all_of(name.begin(), name.end(), legal);
}

} // namespace wlhost
