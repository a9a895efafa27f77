// Station events of the drivers, for those who follow them, and their way to the steering agent.
#pragma once

#include "host/state/host.h"

namespace wlhost {

// One event as subscribers get it.
json eventRow(const WlEvent &event, uint64_t sequence);

// Answers a subscription; the events follow as lines of their own.
json followEvents(Host &host, const json &args);
json forward(Host &host, const json &args);

} // namespace wlhost
