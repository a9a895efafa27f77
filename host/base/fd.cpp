#include "host/base/fd.h"

#include <unistd.h>

#include <utility>

namespace wlhost {

Fd::~Fd() {
    if (fd_ >= 0)
        close(fd_);
}

Fd &Fd::operator=(Fd &&other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

int Fd::release() {
    int fd = fd_;
    fd_ = -1;
    return fd;
}

} // namespace wlhost
