// What is on the air: neighbours, channels, rates, load.
#pragma once

#include "host/state/host.h"

namespace wlhost {

json scan(Host &host, const json &args);
json survey(Host &host, const json &args);
json rates(Host &host, const json &args);
json load(Host &host, const json &args);

} // namespace wlhost
