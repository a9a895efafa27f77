// Failures that a scenario or a test asks the driver for.
#pragma once

#include "driver.h"

namespace wlsim {

/** The ways a command can go wrong. */
bool isFaultMode(const std::string &mode);

/** The first live fault whose pattern fits the command line, counted as hit; null when none does. A pattern without
 * wildcards fits anywhere in the line. */
Fault *takeFault(std::vector<Fault> &faults, const std::vector<std::string> &words);

/** Turns a good answer into what the fault wants to be seen. */
void spoil(const Fault &fault, Reply *reply);

} // namespace wlsim
