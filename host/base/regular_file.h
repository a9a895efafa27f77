// Files that the user names, which may be anything.
#pragma once

#include <string>

namespace wlhost {

// The content of a regular file. Whatever else stands there (a FIFO that would block, a device whose opening alone does
// something) is refused by name and not opened, a file above `largest` bytes not read. Throws a Failure with status 2.
std::string readRegularFile(const std::string &file, size_t largest);

} // namespace wlhost
