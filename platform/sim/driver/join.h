// Stations that come and go.
#pragma once

#include "driver.h"
#include "security.h"

namespace wlsim {

struct JoinRequest {
    std::string ifName; ///< empty: whichever BSS announces the SSID
    std::optional<std::string> ssid;
    std::optional<Band> band;
    Credentials credentials;
    Station station;
    bool phyGiven = false;
};

struct JoinResult {
    std::string ifName;  ///< the BSS joined
    std::string refusal; ///< why not; empty when joined
};

/** Lets a station try: what the bring-up made of the radio decides. */
JoinResult join(Driver &driver, const JoinRequest &request);

/** @return the interface it left, or empty. */
std::string leave(Driver &driver, const Mac &mac);

} // namespace wlsim
