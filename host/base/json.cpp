#include "host/base/json.h"

namespace wlhost {

std::string dumped(const json &value, int indent) {
    return value.dump(indent, ' ', false, json::error_handler_t::replace);
}

} // namespace wlhost
