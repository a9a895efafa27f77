// The module's records as JSON with named members, so that an archive holds no bytes whose order or place depends on a
// processor. Members that are 0 or empty are left out.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <wlbrcm/wlbrcm.h>

#include "host/base/json.h"

namespace wlhost {

// Throws a Failure with status 2: what stands at this place of an archive does not belong there.
[[noreturn]] void refuseArchive(const std::string &place, const std::string &what);

// A text when the bytes are UTF-8, else {"hex": digits}.
json bytesToJson(std::string_view bytes);
// Throws a Failure when `value` is neither.
std::string bytesFromJson(const json &value);

json recordToJson(const WlIntf &intf);
// Throws a Failure that names the member which does not fit.
void recordFromJson(const json &from, WlIntf &intf);

json lanToJson(const WlLanCfg *lan);

// LAN groups in the module's records, with the storage behind them.
struct LanFromJson {
    explicit LanFromJson(const json &from); // null for no record

    std::vector<std::vector<WlLanMember>> members;
    std::vector<WlLanGroup> groups;
    WlLanCfg lan{};
    bool present = false;

    const WlLanCfg *get() const { return present ? &lan : nullptr; }
};

} // namespace wlhost
