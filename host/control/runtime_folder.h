// Where a host shows itself: the folder of its socket and of its lock.
#pragma once

#include <string>

namespace wlhost {

// /run, and where that is not writable a folder of the user's own with mode 0700: $XDG_RUNTIME_DIR, else one in /tmp.
std::string runtimeFolder();
// Makes the user's folder in /tmp when `path` stands in it, and throws a Failure with status 7 when that is not, or not
// only, the user's: anybody may take a name in /tmp first.
void secureRuntimeFolder(const std::string &path);

} // namespace wlhost
