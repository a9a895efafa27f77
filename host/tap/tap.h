// The tap: the host sees what the module does to the world, holds it back or plays it back. It stands in front of the
// functions that the module imports, so the module is the one that ships.
#pragma once

#include "host/tap/handler.h"

namespace wlhost::tap {

// Puts the tap in front of a module, after dlopen() and before its first call. `symbol` is any function of it. Throws a
// Failure with status 7 when an import of the module would go past the tap.
void attach(void *library, const void *symbol);

// The handler of the module's calls; the one that passes them on when none was set. It stays the caller's own.
Handler &handler();
void setHandler(Handler *handler);

// The handler for a call that returns to this address: the module's calls alone are handled, others are passed on.
Handler &handlerFor(const void *returnAddress);

} // namespace wlhost::tap
