#include "module/board.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace wlbrcm {

BoardDevice::BoardDevice(const char *path) : descriptor_(open(path, O_RDWR | O_CLOEXEC)) {}

BoardDevice::~BoardDevice() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

int BoardDevice::request(unsigned long code, void *block) { return ioctl(descriptor_, code, block); }

} // namespace wlbrcm
