// The command line of wlhost.
#pragma once

#include "host/base/failure.h"

namespace wlhost {

Status commandLine(int argc, char **argv);

} // namespace wlhost
