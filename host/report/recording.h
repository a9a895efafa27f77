// The recording of this host's module, for a report.
#pragma once

#include "host/report/trace_ring.h"
#include "host/state/loaded_module.h"

namespace wlhost {

// Loads the module and records from its first call on.
Module &loadRecorded(const std::string &library);
const TraceRing &recording();

} // namespace wlhost
