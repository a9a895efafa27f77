#include "target.h"

#include <memory>

namespace {

struct Stations {
    std::vector<WlStaInfo> records;
    std::string listing; // the records as the driver would list them
};

// The radio's own interface lists `first`, a virtual one `second`.
Stations list(const std::string &first, const std::string &second) {
    FakePlatform platform;
    const auto intf = std::make_unique<WlIntf>();
    strcpy(intf->radio.ifName, "wl0");
    intf->radio.bssCount = 2;
    for (int i = 0; i < 2; ++i) {
        intf->bss[i].enable = 1;
        strcpy(intf->bss[i].ifName, i == 0 ? "wl0" : "wl0.1");
    }
    platform.answer("wlctl -i wl0 assoclist", first);
    platform.answer("wlctl -i wl0.1 assoclist", second);
    platform.answer("wlctl -i wl0 status", "-91\n");
    WlStaInfo *records = nullptr;
    int count = -1;
    HOLDS(qvbrcm_GetAssocDevList(intf.get(), -1, &records, &count) == 0);
    const std::unique_ptr<WlStaInfo, decltype(&free)> block(records, free);
    HOLDS(count >= 0 && count <= fuzz::reads(first, 98) + fuzz::reads(second, 98));
    const Lines known{"run wlctl -i wl0 status | grep \"noise:\" | awk '{sub(/.*noise:/,\"\");print $1}' > ",
                      "run wlctl -i wl0", "run rm -f /tmp/.assoclist_result_*"};
    HOLDS(fuzz::onlyKnownCommands(platform, known));
    HOLDS(records == nullptr || platform.leftFiles().empty());
    Stations stations;
    for (int i = 0; records != nullptr && i < count; ++i) {
        stations.records.push_back(records[i]);
        stations.listing += std::string("assoclist ") + records[i].macAddr + "\n";
    }
    return stations;
}

} // namespace

FUZZ_TARGET(station_list) {
    const size_t middle = std::min(input.find("\n\n"), input.size());
    const Stations found = list(input.substr(0, middle), input.substr(middle));
    bool virtualOnes = false;
    for (const WlStaInfo &sta : found.records) {
        HOLDS(fuzz::ends(sta.ifName) && strlen(sta.macAddr) == 17);
        HOLDS(strcmp(sta.ifName, "wl0") == 0 || strcmp(sta.ifName, "wl0.1") == 0);
        HOLDS(!virtualOnes || strcmp(sta.ifName, "wl0.1") == 0);
        virtualOnes = strcmp(sta.ifName, "wl0.1") == 0;
        HOLDS(strspn(sta.macAddr, "0123456789ABCDEF:") == 17);
        HOLDS(sta.noise == -91 && sta.snr == sta.rssi - sta.noise);
    }
    const Stations again = list(found.listing, "");
    HOLDS(again.listing == found.listing);
}
