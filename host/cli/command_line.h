// The command line of wlhost.
#pragma once

namespace wlhost {

/// @return exit status, see Status.
int commandLine(int argc, char **argv);

} // namespace wlhost
