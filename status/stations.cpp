// The stations associated with the BSSs of a radio.
#include "module/command.h"
#include "module/numbers.h"
#include "module/record.h"
#include "status/readers.h"

#include <netinet/ether.h>

namespace wlbrcm {

bool readStationLine(const char *line, uint8_t mac[6]) {
    constexpr std::string_view kStart = "assoclist";
    ether_addr address;
    // One separator stands before the address.
    if (!startsWith(line, kStart) || line[kStart.size()] == '\0' ||
        ether_aton_r(line + kStart.size() + 1, &address) == nullptr)
        return false;
    memcpy(mac, address.ether_addr_octet, sizeof address.ether_addr_octet);
    return true;
}

namespace {

constexpr Word kResultStart = "/tmp/.assoclist_result"_word;
constexpr Here kHere{"qvbrcm_GetAssocDevList", __LINE__};

// Reads of the listings; a longer line counts as several.
using ListLine = char[99];

// Has the driver list the stations of a BSS into a file that stays. Returns its lines, -1 when there is nobody to ask.
int listStations(const WlSsidCfg &bss) {
    const InterfaceName ifname(kHere, fieldText(bss.ifName));
    if (!ifname)
        return -1;
    Report report(unlogged(kHere), ResultPath(WLBRCM_COMMAND("%s_%s"), kResultStart, ifname),
                  WLBRCM_COMMAND("wlctl -i %s assoclist > %s"), ifname);
    report.keep();
    int lines = 0;
    for (ListLine line; report.next(line);)
        ++lines;
    return report ? lines : -1;
}

// Lists the stations of the enabled entries from `first` to before `end`. The sum of their lines is returned, the
// entries that have a file are bits of `listed`.
int listEntries(const WlIntf *intf, int first, int end, unsigned *listed) {
    int lines = 0;
    for (int i = first; i < end; ++i) {
        const int more = intf->bss[i].enable != 0 ? listStations(intf->bss[i]) : -1;
        if (more < 0)
            continue;
        lines += more;
        *listed |= 1U << i;
    }
    return lines;
}

struct StationList {
    WlStaInfo *records;
    int capacity;
    int filled;
    int noise;
};

void addStation(StationList *list, const InterfaceName &ifname, const uint8_t mac[6]) {
    WlStaInfo *sta = &list->records[list->filled++];
    snprintf(sta->macAddr, sizeof sta->macAddr, "%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1], mac[2], mac[3], mac[4],
             mac[5]);
    get_sta_info(ifname.c_str(), sta->macAddr, sta);
    sta->reserved = 0;
    sta->noise = list->noise;
    sta->snr = signalToNoise(sta->rssi, sta->noise);
}

// Reads the listing of a BSS and removes it.
void addStations(StationList *list, const WlSsidCfg &bss) {
    const InterfaceName ifname(kHere, fieldText(bss.ifName));
    Report report(ResultPath(WLBRCM_COMMAND("%s_%s"), kResultStart, ifname));
    uint8_t mac[6];
    for (ListLine line; list->filled < list->capacity && report.next(line);) {
        if (readStationLine(line, mac))
            addStation(list, ifname, mac);
    }
}

int readNoise(const WlRadioCfg &radio) {
    FieldCopy ifname(radio.ifName);
    int noise = 0;
    WlanParamArg arg = {};
    arg.prefix = ifname.data();
    arg.result = &noise;
    qvWlanGetNoise(&arg);
    return noise;
}

} // namespace

} // namespace wlbrcm

using namespace wlbrcm;

int qvbrcm_GetAssocDevList(WlIntf *intf, int bssIndex, WlStaInfo **list, int *count) {
    WLBRCM_LOG(LOG_DEBUG, "enter.\n");
    if (intf == nullptr || list == nullptr || count == nullptr)
        return WLBRCM_EINVAL;
    const int entries = EntriesInUse::countOf(&intf->radio);
    if (bssIndex >= entries)
        return WLBRCM_EFAILED;
    unsigned listed = 0;
    const int capacity = listEntries(intf, bssIndex < 0 ? 0 : bssIndex, bssIndex < 0 ? entries : bssIndex + 1, &listed);
    *list = nullptr;
    *count = capacity;
    auto *records =
        capacity > 0 ? static_cast<WlStaInfo *>(calloc(static_cast<size_t>(capacity), sizeof(WlStaInfo))) : nullptr;
    if (records == nullptr) {
        runCommand(unlogged(WLBRCM_HERE), WLBRCM_COMMAND("rm -f %s_*"), kResultStart);
        return WLBRCM_OK;
    }
    StationList stations{records, capacity, 0, readNoise(intf->radio)};
    for (int i = 0; i < entries; ++i) {
        if ((listed >> i & 1) != 0)
            addStations(&stations, intf->bss[i]);
    }
    if (stations.filled == 0) {
        free(records);
        return WLBRCM_OK;
    }
    *list = records;
    *count = stations.filled;
    return WLBRCM_OK;
}
