// The lines of a driver's capability listing.
#ifndef WLBRCM_MODULE_CAPABILITIES_H
#define WLBRCM_MODULE_CAPABILITIES_H

#include <unistd.h>

#include <wlbrcm/radio.h>

#include "module/command.h"

namespace wlbrcm {

// The listing is kept in its file, so that the driver is asked once for each interface.
class CapabilityLines {
  public:
    explicit CapabilityLines(const char *ifname) {
        if (qvWlanDumpWlCap(ifname, path_) == WLBRCM_OK)
            descriptor_ = openOwnFile(path_);
        lines_.readFrom(descriptor_);
    }
    ~CapabilityLines() {
        if (descriptor_ >= 0)
            close(descriptor_);
    }
    CapabilityLines(const CapabilityLines &) = delete;
    CapabilityLines &operator=(const CapabilityLines &) = delete;

    explicit operator bool() const { return descriptor_ >= 0; }
    const char *path() const { return path_; }
    bool next(char (&line)[256]) { return lines_.next(line); }

  private:
    char path_[64] = "";
    int descriptor_ = -1;
    LineReader lines_;
};

} // namespace wlbrcm

#endif
