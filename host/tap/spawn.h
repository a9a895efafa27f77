// Programs run without a shell.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace wlhost::tap {

// Runs a program to its end; it finds stdin empty. The exit status, 127 when it could not be started, 128 and the
// signal that ended it. What it prints is kept up to 1 MiB where a text is given.
int spawn(const std::vector<std::string> &argv, std::string *output, std::string *error);

// What waitpid() says of a child, also when a signal comes in between.
int waitFor(pid_t child);
// A status of waitpid() or system() as shells number it.
int exitStatus(int status);

// A file in memory for what is printed; -1 where the system has none.
int memoryFile();
// What was written to it, up to 1 MiB. Whoever still holds it writes no more.
std::string takeText(int fd);

} // namespace wlhost::tap
