// Station events of the drivers.
#pragma once

#include <string>
#include <vector>

#include <wlbrcm/wlbrcm.h>

#include "host/base/json.h"

namespace wlhost {

class Host;

// What `--kind` chooses from: the drivers' events, then those of the host itself.
const std::vector<std::string> &eventKinds();

// Takes the next message from the event socket, which is readable. Its event as subscribers get it, without sequence
// and time, or null.
json nextEvent(const WlEvtHandler &handler);
// The row of a record.
json eventRow(const WlEvent &event);
// Keeps an event for whoever asks about its station.
void noteEvent(Host &host, const json &event);
// Whether a subscriber asked for it. What ends or disturbs the following itself is told to all.
bool isWanted(const json &event, const json &subscription);

} // namespace wlhost
