// How busy the current channel is.
#include "module/command.h"
#include "module/numbers.h"
#include "status/interface.h"
#include "status/readers.h"

#include <climits>

namespace wlbrcm {

int channelLoad(std::string_view line) {
    // Which of the numbers behind the chanspec count, by their place.
    constexpr bool kCounts[] = {false, true, true, true, true, false, false, true, true};
    int64_t sum = 0;
    uint32_t chanspec;
    int number;
    if (takeText(&line, "0x") && takeHex(&line, &chanspec)) {
        for (const bool counts : kCounts) {
            if (!takeDecimal(&line, &number))
                break;
            sum += counts ? number : 0;
        }
    }
    const int64_t load = 100 - sum;
    return static_cast<int>(load > INT_MAX ? INT_MAX : load < INT_MIN ? INT_MIN : load);
}

} // namespace wlbrcm

using namespace wlbrcm;

int qvbrcm_GetFatIntfInfo(const char *ifname, int bssIndex, int *fat) {
    WLBRCM_LOG(LOG_DEBUG, "enter.\n");
    const InterfaceName name = bssInterface(WLBRCM_HERE, ifname, bssIndex, fat);
    if (!name)
        return WLBRCM_OK;
    Report report(unlogged(WLBRCM_HERE), ResultPath(WLBRCM_COMMAND("/tmp/.fat_info")),
                  WLBRCM_COMMAND("wlctl -i %s chanim_stats > %s"), name);
    char line[255];
    bool header = false;
    while (!header && report.next(line))
        header = contains(line, "inbss");
    if (!header || !report.next(line))
        return WLBRCM_OK;
    WLBRCM_LOG(LOG_DEBUG, "chanim_stats=> %s\n", Shown(line).c_str());
    *fat = channelLoad(line);
    WLBRCM_LOG(LOG_DEBUG, "fat %d\n", *fat);
    return WLBRCM_OK;
}
