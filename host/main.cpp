#include "host/cli/command_line.h"

// A command table that does not hold together throws, and the program ends with what() said.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char **argv) { return static_cast<int>(wlhost::commandLine(argc, argv)); }
