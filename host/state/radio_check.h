// A configuration beside the radios that exist, without touching what is on the air.
#pragma once

#include "host/config/configuration.h"
#include "host/state/loaded_module.h"
#include "host/verify/platform.h"

namespace wlhost {

// What these radios will surely not do as it is asked: rows as warnings of a check have. Throws a Failure with what
// they cannot be asked at all.
json warningsOfRadios(const Module &module, const Platform &platform, const Config &config);

} // namespace wlhost
