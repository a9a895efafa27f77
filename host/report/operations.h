// The operations of the module's table, one row each: how their arguments are told in a trace, and how they are run
// again from there.
#pragma once

#include "host/report/trace_ring.h"
#include "host/state/loaded_module.h"

namespace wlhost {

// The operation that a trace begins with.
constexpr const char *kModuleStart = "wlModuleInit";

void beginModuleStart(TraceRing &trace);
// From here on the module's operations are noted in the trace, whoever calls them.
void recordOperations(Module &module, TraceRing &trace);

// Runs one again, with the arguments of `input`, and gives what it returned. Throws a Failure when the input is not
// that of this operation.
int64_t runAgain(Module &module, const std::string &name, const json &input);

} // namespace wlhost
