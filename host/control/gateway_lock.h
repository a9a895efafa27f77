// One host a gateway: two would configure the same radios and take each other's events, whatever their sockets are.
#pragma once

#include <sys/stat.h>

#include <chrono>
#include <string>

#include "host/base/fd.h"
#include "host/control/runtime_folder.h"

namespace wlhost {

// Held as long as the object lives, and no longer than its process: what the module starts does not inherit it.
// A command that looks at the platform without a host takes it meanwhile, since the module's result files have fixed
// names.
class GatewayLock {
  public:
    // Throws a Failure with status 7 that names the process which holds the lock and its
    // socket. `socket` is where this process can be asked; empty for one that serves nobody.
    explicit GatewayLock(const std::string &socket = {}, const std::string &file = runtimeFolder() + "/wlhost.lock",
                         std::chrono::milliseconds patience = std::chrono::seconds(1));
    // One that served nobody leaves the file as it was.
    ~GatewayLock();
    GatewayLock(const GatewayLock &) = delete;
    GatewayLock &operator=(const GatewayLock &) = delete;

  private:
    std::string file_;
    bool serves_;
    Fd fd_;
    std::string before_; // what the file held; nothing when it was made here
    timespec times_[2] = {};
};

} // namespace wlhost
