#include "cli.h"

int main(int argc, char **argv) { return wlhost::commandLine(argc, argv); }
