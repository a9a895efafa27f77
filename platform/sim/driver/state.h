// The state of the simulation, for people and for programs.
#pragma once

#include "platform/sim/driver/sim_driver.h"

namespace wlsim {

// One JSON document with everything the model knows.
std::string stateJson(Driver &driver);

// A table of the radios, BSSs and stations.
std::string stateTable(Driver &driver);

} // namespace wlsim
