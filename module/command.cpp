#include "module/command.h"

#include <wlctl_lib.h>

using namespace wlbrcm;

int __qvWlanSystemEx(const char *function, int line, const char *command) {
    if (command == nullptr)
        return WLBRCM_EINVAL;
    WLBRCM_LOG_AT((Here{function, line}), LOG_DEBUG, "cmd = %s\n", command);
    return system(command) == 0 ? WLBRCM_OK : WLBRCM_EFAILED;
}

int __qvWlanCmdExec(const char *function, int line, const char *ifname, const char *args) {
    const Here here{function, line};
    if (ifname == nullptr || args == nullptr)
        return WLBRCM_OK;
    const Text<256> command("wlctl -i %s %s", ifname, args);
    if (!commandFits(here, command.fits(), command.c_str()))
        return WLBRCM_OK;
    WLBRCM_LOG_AT(here, LOG_DEBUG, "cmd = %s\n", command.c_str());
    wlctl_cmd(command.c_str());
    return WLBRCM_OK;
}

bool wlbrcm::commandFits(Here here, bool fits, const char *command) {
    if (!fits)
        WLBRCM_LOG_AT(here, LOG_ERR, "command is too long: %s...\n", command);
    return fits;
}

int wlbrcm::runFormatted(Here here, bool logged, const char *format, ...) {
    char command[256] = "";
    size_t used = 0;
    va_list args;
    va_start(args, format);
    const bool fits = appendFormat(command, sizeof command, &used, format, args);
    va_end(args);
    if (!commandFits(here, fits, command))
        return WLBRCM_EFAILED;
    if (logged)
        return __qvWlanSystemEx(here.function, here.line, command);
    return system(command) == 0 ? WLBRCM_OK : WLBRCM_EFAILED;
}
