// Daemons that several subsystems stop or start again.
#ifndef WLBRCM_MODULE_DAEMONS_H
#define WLBRCM_MODULE_DAEMONS_H

#include "module/log.h"

namespace wlbrcm {

void stopWpsMonitor(Here here);
void restartEapd(Here here);

} // namespace wlbrcm

#endif
