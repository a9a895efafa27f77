// The WPS session that this host started, as it goes on without anybody asking.
#pragma once

namespace wlhost {

class Host;

// While it may change it is to be looked at about once a second, so that followers of the events hear of it.
bool sessionMayChange(const Host &host);
void watchSession(Host &host);

} // namespace wlhost
