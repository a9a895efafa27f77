// The driver's own message of an event, read without any I/O. The module makes a record of five kinds of it and drops
// status and reason; a host that follows the events wants them too.
#pragma once

#include <optional>
#include <string_view>

#include "host/base/addresses.h"
#include "host/base/json.h"

namespace wlhost {

struct DriverReport {
    uint32_t type, status, reason;
    MacBytes station;
    std::string_view interface; // part of the datagram; any bytes
};

// Nothing for a datagram that is no event of the driver, or is cut.
std::optional<DriverReport> readReport(std::string_view datagram);

// The event as subscribers get it, when it is one that matters to them and of which the module gives no record.
json unrecordedEvent(const DriverReport &report);
// Adds status and reason to the row of a recorded event; a station that did not get in has not joined.
void addReport(json &row, const DriverReport &report);

} // namespace wlhost
