#include "host/cli/command_line.h"

int main(int argc, char **argv) { return static_cast<int>(wlhost::commandLine(argc, argv)); }
