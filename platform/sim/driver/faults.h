// Failures that a scenario or a test asks the driver for.
#pragma once

#include "platform/sim/common/sim_socket.h"
#include "platform/sim/driver/model.h"

namespace wlsim {

// The ways a command can go wrong.
constexpr char kFaultModes[] = "fail empty garbage cut slow";

// Why no command of the gateway's tools can ever fit the pattern; empty when one can.
std::string patternTrouble(const Model &model, const std::string &pattern);

// The first live fault whose pattern fits the command line, counted as hit; null when none does. A pattern without
// wildcards fits anywhere in the line.
Fault *takeFault(std::vector<Fault> &faults, const Words &words);

// What the mode makes of the output of a command that went well.
std::string spoilt(const std::string &mode, const std::string &output);

} // namespace wlsim
