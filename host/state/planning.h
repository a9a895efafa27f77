// What a transition would do, found out by taking its steps with every effect held back.
#pragma once

#include "host/state/transition.h"

namespace wlhost {

// Only where effects are held back. The members of the result are those of the command `plan`.
json planOf(Transition &transition);

// Whether a plan has anything to do.
bool changesAnything(const json &plan);

} // namespace wlhost
