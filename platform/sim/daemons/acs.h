/** @file
 * Automatic channel selection: what a scan found, what it counts per channel, which channel is the quietest.
 */
#ifndef WLSIM_ACS_H
#define WLSIM_ACS_H

#include <string>
#include <vector>

namespace wlsim {

/** Socket between acsd and acs_cli. A request is one line "INTERFACE WORD [NUMBER]"; the answer is text, a NUL and the
 * client's exit status as one digit. An answer that ends without them was cut off. */
constexpr const char *kAcsSocket = "/var/run/acsd.sock";

enum class ApMode { a, b, g, n, ac };

struct Neighbour {
    int channel = 0; ///< control channel
    int width = 20;
    ApMode mode = ApMode::g;
};

/** The access points of a driver's scan report; those without a channel are left out. */
std::vector<Neighbour> readScanReport(const std::string &report);

/** The numbers of a driver's channel listing. */
std::vector<int> readChannels(const std::string &listing);

/** The chanspec texts of a driver's listing, such as "36/80" from "36/80 (0xe02a)". */
std::vector<std::string> readChanspecs(const std::string &listing);

/** The daemon's table of access points per channel: a header and one line of 13 numbers for each channel. */
std::string bssTable(const std::vector<int> &channels, const std::vector<Neighbour> &neighbours);

/** What a radio on `chanspec` (width in MHz) would share the air with; lower is better. */
int interference(const std::string &chanspec, int width, const std::vector<Neighbour> &neighbours);

/** The quietest of the candidates whose channel is not in `skip`; `current` stays where none is better. Empty when no
 * candidate is left. */
std::string quietest(const std::vector<std::string> &candidates, int width, const std::vector<int> &skip,
                     const std::vector<Neighbour> &neighbours, const std::string &current);

} // namespace wlsim

#endif
