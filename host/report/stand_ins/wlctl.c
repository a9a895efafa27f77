/* The driver's library in replay, where the module's calls are answered before they come here. */
#include <wlctl_lib.h>

int wlctl_cmd(char *line) { // NOLINT(readability-non-const-parameter): as the platform declares it
    (void)line;
    return -1;
}
