// An archive's operations run again by a module, without a gateway.
#pragma once

#include <string>

#include "host/base/json.h"

namespace wlhost {

// What came of it: `same`, `operations`, `calls`, `differences` (the first ones), `difference_count`, `gaps`,
// `archive`. Throws a Failure with status 2 when the bytes are no archive, and 7 without a module. Once in a process.
json replay(const std::string &bytes, const std::string &library);

} // namespace wlhost
