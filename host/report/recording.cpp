#include "host/report/recording.h"

#include "host/report/operations.h"
#include "host/report/recorder.h"
#include "host/tap/tap.h"

namespace wlhost {
namespace {

TraceRing trace;
Recorder recorder(trace);

} // namespace

Module &loadRecorded(const std::string &library) {
    beginModuleStart(trace);
    tap::setRecorder(&recorder);
    Module &module = loadModule(library);
    trace.end(0);
    recordOperations(module, trace);
    return module;
}

const TraceRing &recording() { return trace; }

} // namespace wlhost
