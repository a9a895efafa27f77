#include "host/tap/platform.h"

#include <dlfcn.h>

namespace wlhost::tap {
namespace {

Platform functions;
bool known = false;

void find(void *where) {
#define WLHOST_FIND(name) functions.name = reinterpret_cast<decltype(functions.name)>(dlsym(where, #name));
    WLHOST_TAPPED(WLHOST_FIND)
#undef WLHOST_FIND
    known = true;
}

} // namespace

const Platform &platform() {
    if (!known)
        find(RTLD_NEXT);
    return functions;
}

void takePlatform(void *library) { find(library); }

} // namespace wlhost::tap
