// MAC addresses and interface names.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wlhost {

using MacBytes = std::array<uint8_t, 6>;

// Six hexadecimal pairs joined by ':' or '-', in any case.
std::optional<MacBytes> parseMac(std::string_view text);
std::string formatMac(const MacBytes &mac, bool upper = false);

// 1 to 15 characters of [A-Za-z0-9._-], the first not '-': what the module accepts in a command.
bool isInterfaceName(std::string_view name);

} // namespace wlhost
