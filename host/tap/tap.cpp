#include "host/tap/tap.h"

#include <cstring>
#include <string>

#include "host/base/failure.h"
#include "host/tap/library.h"

namespace wlhost::tap {
namespace {

// Libraries call before this program's constructors have run and after its destructors have: it is there from the
// start, and never destroyed.
union Lasting {
    Handler handler;
    constexpr Lasting() : handler() {}
    ~Lasting() {}
} lasting;
Handler &passOn = lasting.handler;
Handler *inForce = &passOn;
Handler *recorder = nullptr;

Operation *innermost = nullptr;
uint64_t operations = 0;

// The last line of the module's log.
std::string lastFunction, lastText;

CodeRange moduleCode;

} // namespace

bool isTapped(const char *name) {
#define WLHOST_NAME(function) #function,
    static const char *const kNames[] = {WLHOST_TAPPED(WLHOST_NAME)};
#undef WLHOST_NAME
    for (const char *one : kNames)
        if (std::strcmp(one, name) == 0)
            return true;
    return false;
}

void attach(void *library, const void *symbol) {
    const LoadedLibrary module(symbol);
    module.eachImport([](const char *name, const void *bound) {
        if (isTapped(name) && !isOwn(bound))
            throw Failure(Status::kEnvironment, name, "the module's calls of this function go past the host",
                          "wlhost was built without exporting it, or another library stands before it");
    });
    moduleCode = module.code();
    takePlatform(library);
}

Handler &handler() { return *inForce; }
void setHandler(Handler *handler) { inForce = handler ? handler : &passOn; }
void setRecorder(Handler *outermost) { recorder = outermost; }

Handler &handlerFor(const void *returnAddress) {
    if (!moduleCode.contains(returnAddress))
        return passOn;
    return recorder ? *recorder : *inForce;
}

Operation::Operation(std::string name, std::string request)
    : around_(innermost), number_(++operations), name_(std::move(name)), request_(std::move(request)) {
    if (request_.empty())
        request_ = current().request_;
    innermost = this;
}

Operation::~Operation() {
    inForce->settle();
    innermost = around_;
}

const Operation &Operation::current() {
    static const Operation kNone{None{}};
    return innermost ? *innermost : kNone;
}

void heard(const char *function, const std::string &text) {
    lastFunction = function;
    lastText = text;
    if (recorder)
        recorder->heard(function, text);
    inForce->heard(function, text);
}

std::string functionOf(const std::string &command) {
    return lastText == "cmd = " + command ? lastFunction : Operation::current().name();
}

} // namespace wlhost::tap
