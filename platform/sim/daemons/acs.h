// Automatic channel selection: what a scan found, what it counts per channel, which channel is the quietest.
#pragma once

#include "platform/sim/driver/model.h"

namespace wlsim {

// The access points of a driver's scan report: channel, width and PHY. Those without a usable channel are left out.
std::vector<Neighbour> readScanReport(const std::string &report);

// The numbers of a driver's channel listing.
std::vector<int> readChannels(const std::string &listing);

// The chanspecs of a driver's listing, such as 36/80 of the line "36/80 (0xe02a)".
std::vector<Chanspec> readChanspecs(const std::string &listing);

// The daemon's table of access points per channel: a header and one line of 13 numbers for each channel.
std::string bssTable(const std::vector<int> &channels, const std::vector<Neighbour> &neighbours);

// The quietest of the candidates whose channel is not in `skip`; `current` stays where none is better. Nothing when no
// candidate is left.
std::optional<Chanspec> quietest(const std::vector<Chanspec> &candidates, const std::vector<int> &skip,
                                 const std::vector<Neighbour> &neighbours, const std::string &current);

} // namespace wlsim
