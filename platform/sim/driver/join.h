// Stations that come and go.
#pragma once

#include "platform/sim/driver/bss_security.h"
#include "platform/sim/driver/sim_driver.h"

namespace wlsim {

struct JoinRequest {
    // Empty: whichever BSS announces the SSID.
    std::string ifName;
    std::optional<std::string> ssid;
    std::optional<Band> band;
    // Of a station that looks nowhere else.
    std::optional<int> channel;
    Credentials credentials;
    Station station;
};

struct JoinResult {
    // The BSS joined.
    std::string ifName;
    // Why not; empty when joined.
    std::string refusal;
};

// Lets a station try: what the bring-up made of the radio decides.
JoinResult join(Driver &driver, const JoinRequest &request);

// Returns the interface it left, or empty.
std::string leave(Driver &driver, const Mac &mac);

} // namespace wlsim
