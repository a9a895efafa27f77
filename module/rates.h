// Data rates of 802.11n (HT) and 802.11ac (VHT), as comma-separated texts in Mbit/s.
#ifndef WLBRCM_MODULE_RATES_H
#define WLBRCM_MODULE_RATES_H

namespace wlbrcm {

// All rates of an HT radio with 1 to 4 streams at 20 or 40 MHz; null for any other.
const char *htRates(int bandwidth, int streams);

// The rates that the n-th stream of a VHT radio adds at 20, 40 or 80 MHz; null for any other.
const char *vhtRates(int bandwidth, int stream);

} // namespace wlbrcm

#endif
