// Wi-Fi Protected Setup: sessions that let a station in by push button or PIN.
#pragma once

#include "host/state/host.h"

namespace wlhost {

json wpsPushButton(Host &host, const json &args);
json wpsPin(Host &host, const json &args);
json wpsCheckPin(Host &host, const json &args);
json wpsCancel(Host &host, const json &args);
json wpsStatus(Host &host, const json &args);
// Takes over what a session agreed on.
json wpsApply(Host &host, const json &args);

} // namespace wlhost
