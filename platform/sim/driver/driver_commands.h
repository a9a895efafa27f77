// The driver's commands: what stands behind "wlctl -i INTERFACE COMMAND".
#pragma once

#include "platform/sim/driver/sim_driver.h"

namespace wlsim {

using CommandFunction = Reply(Driver &driver, Target target, const Words &arguments);

// Commands that change the driver.
CommandFunction cmdUp, cmdDown, cmdCountry, cmdChanspec, cmdCsa, cmdSsid, cmdBss, cmdMacMode, cmdMac, cmdAddress,
    cmdDeauthenticate, cmdScan;

// Reports on the radio.
CommandFunction cmdCap, cmdRevInfo, cmdPhyType, cmdTxChain, cmdVersion, cmdTpId, cmdIsUp, cmdBand, cmdChanspecs,
    cmdChannels, cmdStatus, cmdCounters, cmdRateSet, cmdRate2g, cmdRate5g, cmdNoise, cmdBssid;

// Reports on stations and on the air.
CommandFunction cmdAssocList, cmdRssi, cmdStaInfo, cmdBeaconInfo, cmdChanimStats, cmdScanResults;

// "[ 6(b) 9 12(b) ]": the legacy rates a network offers.
std::string legacyRates(Band band, bool bOnly);
// The VHT stream lines of a status or scan report.
std::string vhtStreams(int streams, const std::string &indent);

// "not associated" unless the BSS announces.
std::optional<Reply> notOnAir(Driver &driver, Target target);

} // namespace wlsim
