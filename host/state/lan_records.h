// LAN groups in the module's records, with the storage behind them.
#pragma once

#include <string>
#include <vector>

#include <wlbrcm/lan.h>

#include "host/config/configuration.h"

namespace wlhost {

class LanRecords {
  public:
    // Without groups the platform's own LAN variables stay, unless `clears`: then those of earlier groups go, by one
    // group that has no name.
    explicit LanRecords(const Config &config, bool clears = false);
    LanRecords(const LanRecords &) = delete;
    LanRecords &operator=(const LanRecords &) = delete;

    const WlLanCfg *get() const { return &lan_; }
    // Groups that the configuration asks for.
    size_t count() const { return asked_.size(); }
    json describe() const;
    // Whether the configuration asks for the same; the addresses that the system gave meanwhile do not count.
    bool sameAs(const LanRecords &other) const { return asked_ == other.asked_; }

  private:
    std::vector<std::vector<WlLanMember>> members_;
    std::vector<WlLanGroup> groups_;
    WlLanCfg lan_{};
    std::vector<std::string> asked_;
};

} // namespace wlhost
