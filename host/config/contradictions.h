// Checks that look at more than one setting.
#pragma once

#include "host/config/configuration.h"

namespace wlhost {

// Band that a radio's settings speak of: WLBRCM_BAND_2G, WLBRCM_BAND_5G, or 0 when they leave it open.
int impliedBand(const RadioFields &radio);
// Channel, width and mode against each other and against the band; with band 0 only what holds for both.
void checkChannel(const RadioFields &radio, int band, const json &node, const Path &path, Problems &problems);
// One SSID: security, keys, WPS.
void checkSsid(const SsidFields &ssid, size_t index, const json &node, const Path &path, Problems &problems);
// A radio's SSIDs beside each other.
void checkRadio(const RadioConfig &radio, const json &node, const Path &path, Problems &problems);
// Names, bridges and ports of the whole file.
void checkConfig(const Config &config, Problems &problems);

} // namespace wlhost
