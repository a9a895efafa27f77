#include "host/tap/entry.h"

namespace wlhost::tap {

const char *wordOf(Kind kind) {
    constexpr const char *kWords[] = {"command", "driver", "nvram", "pause", "datagram"};
    return kWords[static_cast<size_t>(kind)];
}

} // namespace wlhost::tap
