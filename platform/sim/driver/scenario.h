// Scenario files: the hardware and the surroundings that a gateway is simulated with.
#pragma once

#include "model.h"

#include <nlohmann/json_fwd.hpp>

namespace wlsim {

/** The gateway without a scenario: wl0 on 5 GHz with four chains, wl1 on 2.4 GHz with three. */
Model defaultModel();

/**
 * Reads a scenario text: JSON with // comments.
 *
 *   radios      array: name, band (5 or 2), deviceid, chip, corerev, phytype, txchain, mac, caps, country ("US/0"),
 * dhd, wltest, cpu, noise, maxassoc, counters {name: n}, chanim {name: n}, neighbours [...]. What a radio leaves out is
 * as in the default radio of its band. An empty array is a gateway without radios. neighbours  (of a radio) bssid, ssid
 * or ssid_hex, chanspec ("36/80"), rssi, noise, security (open, wpapsk, wpa2psk, wpapskmix, wpa2), wps, adhoc,
 * beacon_period, dtim, streams, phy (ac, n, a, g, b) nvram       {key: text}: factory values, stored at start where not
 * set faults      array: match, mode (fail, empty, garbage, cut, slow), count (-1: for ever), ms
 *
 * @return false with a text that names the place, for anything unknown, of the wrong type or out of range.
 */
bool readScenario(const std::string &text, Model *model, std::string *error);

/** One neighbour from its JSON text. */
bool readNeighbour(const std::string &text, Band band, Neighbour *neighbour, std::string *error);

} // namespace wlsim
