// The driver's event messages.
#pragma once

#include "platform/sim/driver/sim_driver.h"

namespace wlsim {

// The message as it stands in one datagram, numbers big-endian.
std::string eventMessage(const Event &event);

} // namespace wlsim
