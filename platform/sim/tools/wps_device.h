// wlsim's "wps" command.
#pragma once

#include "platform/sim/common/sim_text.h"

namespace wlsim {

// Returns the exit status.
int wpsCommand(const Words &words);

} // namespace wlsim
