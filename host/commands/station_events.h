// Station events of the drivers.
#pragma once

#include <wlbrcm/wlbrcm.h>

#include "host/base/json.h"

namespace wlhost {

class Host;

// Keeps an event for whoever asks about its station.
void noteEvent(Host &host, const WlEvent &event);
// One event as subscribers get it.
json eventRow(const WlEvent &event, uint64_t sequence);

} // namespace wlhost
