#include "module/waiting.h"

#include <cerrno>
#include <poll.h>

namespace wlbrcm {

namespace {

timespec now() {
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time;
}

} // namespace

void pauseFor(unsigned seconds) {
    timespec left = {static_cast<time_t>(seconds), 0};
    while (nanosleep(&left, &left) != 0 && errno == EINTR)
        continue;
}

Deadline::Deadline(int seconds) : at_(now()) { at_.tv_sec += seconds; }

bool Deadline::waitReadable(int descriptor) const {
    constexpr long kPerMillisecond = 1000000;
    pollfd wanted = {descriptor, POLLIN, 0};
    int ready = 0;
    do {
        const timespec time = now();
        const auto seconds = static_cast<long>(at_.tv_sec - time.tv_sec);
        // Rounded up: a wait that ends early would be one more wait of nothing.
        const long left = seconds * 1000 + (at_.tv_nsec - time.tv_nsec + kPerMillisecond - 1) / kPerMillisecond;
        if (left <= 0)
            return false;
        ready = poll(&wanted, 1, static_cast<int>(left));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

} // namespace wlbrcm
