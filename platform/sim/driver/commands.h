// The table of driver commands.
#pragma once

#include "driver.h"

namespace wlsim {

using Words = std::vector<std::string>;

struct Command {
    const char *name;
    Reply (*run)(Driver &driver, Target target, const Words &arguments);
    size_t least, most; ///< number of arguments
    const char *usage;
};

constexpr size_t kAnyNumber = 512;

// Commands that change the driver.
Reply cmdUp(Driver &driver, Target target, const Words &arguments);
Reply cmdDown(Driver &driver, Target target, const Words &arguments);
Reply cmdCountry(Driver &driver, Target target, const Words &arguments);
Reply cmdChanspec(Driver &driver, Target target, const Words &arguments);
Reply cmdCsa(Driver &driver, Target target, const Words &arguments);
Reply cmdSsid(Driver &driver, Target target, const Words &arguments);
Reply cmdBss(Driver &driver, Target target, const Words &arguments);
Reply cmdMacMode(Driver &driver, Target target, const Words &arguments);
Reply cmdMac(Driver &driver, Target target, const Words &arguments);
Reply cmdAddress(Driver &driver, Target target, const Words &arguments);
Reply cmdDeauthenticate(Driver &driver, Target target, const Words &arguments);
Reply cmdScan(Driver &driver, Target target, const Words &arguments);

// Reports on the radio.
Reply cmdCap(Driver &driver, Target target, const Words &arguments);
Reply cmdRevInfo(Driver &driver, Target target, const Words &arguments);
Reply cmdPhyType(Driver &driver, Target target, const Words &arguments);
Reply cmdTxChain(Driver &driver, Target target, const Words &arguments);
Reply cmdVersion(Driver &driver, Target target, const Words &arguments);
Reply cmdTpId(Driver &driver, Target target, const Words &arguments);
Reply cmdIsUp(Driver &driver, Target target, const Words &arguments);
Reply cmdBand(Driver &driver, Target target, const Words &arguments);
Reply cmdChanspecs(Driver &driver, Target target, const Words &arguments);
Reply cmdChannels(Driver &driver, Target target, const Words &arguments);
Reply cmdStatus(Driver &driver, Target target, const Words &arguments);
Reply cmdCounters(Driver &driver, Target target, const Words &arguments);
Reply cmdRateSet(Driver &driver, Target target, const Words &arguments);
Reply cmdRate2g(Driver &driver, Target target, const Words &arguments);
Reply cmdRate5g(Driver &driver, Target target, const Words &arguments);
Reply cmdNoise(Driver &driver, Target target, const Words &arguments);
Reply cmdBssid(Driver &driver, Target target, const Words &arguments);

// Reports on stations and on the air.
Reply cmdAssocList(Driver &driver, Target target, const Words &arguments);
Reply cmdRssi(Driver &driver, Target target, const Words &arguments);
Reply cmdStaInfo(Driver &driver, Target target, const Words &arguments);
Reply cmdBeaconInfo(Driver &driver, Target target, const Words &arguments);
Reply cmdChanimStats(Driver &driver, Target target, const Words &arguments);
Reply cmdScanResults(Driver &driver, Target target, const Words &arguments);

/** "[ 6(b) 9 12(b) ]": the legacy rates a network offers. */
std::string legacyRates(Band band, bool bOnly);
/** The VHT stream lines of a status or scan report. */
std::string vhtStreams(int streams, const std::string &indent);

/** "not associated" unless the BSS announces. */
std::optional<Reply> notOnAir(Driver &driver, Target target);

} // namespace wlsim
