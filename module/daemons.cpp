#include "module/daemons.h"

#include "module/command.h"

namespace wlbrcm {

void stopWpsMonitor(Here here) {
    runCommand(here, WLBRCM_COMMAND("killall -15 wps_monitor 2>/dev/null"));
    runCommand(here, WLBRCM_COMMAND("rm /tmp/wps_monitor.pid 2>/dev/null"));
}

void restartEapd(Here here) {
    runCommand(here, WLBRCM_COMMAND("killall eapd"));
    runCommand(here, WLBRCM_COMMAND("/bin/eapd"));
}

} // namespace wlbrcm
