// The lines of a driver's capability listing.
#ifndef WLBRCM_MODULE_CAPABILITIES_H
#define WLBRCM_MODULE_CAPABILITIES_H

#include <wlbrcm/radio.h>

#include "module/command.h"

namespace wlbrcm {

// The listing is kept in its file, so that the driver is asked once for each interface.
class CapabilityLines {
  public:
    explicit CapabilityLines(const char *ifname) {
        if (qvWlanDumpWlCap(ifname, path_) == WLBRCM_OK)
            file_ = fopen(path_, "r");
    }
    ~CapabilityLines() {
        if (file_ != nullptr)
            fclose(file_);
    }
    CapabilityLines(const CapabilityLines &) = delete;
    CapabilityLines &operator=(const CapabilityLines &) = delete;

    explicit operator bool() const { return file_ != nullptr; }
    const char *path() const { return path_; }
    bool next(char (&line)[256]) { return file_ != nullptr && readLine(file_, line); }

  private:
    char path_[64] = "";
    FILE *file_ = nullptr;
};

} // namespace wlbrcm

#endif
