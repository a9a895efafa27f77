// Channel widths as the driver's capability masks have them.
#ifndef WLBRCM_MODULE_CHANNEL_H
#define WLBRCM_MODULE_CHANNEL_H

namespace wlbrcm {

// Bit 0 stands for 20 MHz, bit 1 for 40 MHz, bit 2 for 80 MHz.
constexpr int bandwidthCapability(int bandwidth) { return bandwidth == 80 ? 7 : bandwidth == 40 ? 3 : 1; }

} // namespace wlbrcm

#endif
