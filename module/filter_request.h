// The MAC filter that a radio record asks for.
#ifndef WLBRCM_MODULE_FILTER_REQUEST_H
#define WLBRCM_MODULE_FILTER_REQUEST_H

#include <wlbrcm/macfilter.h>
#include <wlbrcm/radio.h>

#include "module/log.h"

namespace wlbrcm {

// Sets a request and gives back what it was not relieved of. 0 or WLBRCM_EFAILED, which is logged.
int setFilter(Here here, MacFilterRequest *request);

// Makes the filter of an entry the user's side of its interface's filter. Failures are logged.
void requestMacFilter(Here here, const WlSsidCfg &bss);

} // namespace wlbrcm

#endif
