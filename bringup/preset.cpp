// Preset SSIDs: configured with the radio, but down and out of its virtual-interface list until enabled on demand.
#include <wlbrcm/bringup.h>

#include "bringup/entries.h"
#include "module/command.h"
#include "module/nvram.h"

using namespace wlbrcm;

namespace {

using VifList = Text<64>;

// The radio's name is what stands before the first dot.
InterfaceName radioOf(Here here, const InterfaceName &ifname) {
    const size_t length = strcspn(ifname.c_str(), ".");
    return {here, {ifname.c_str(), length < 7 ? length : 7}};
}

// The word of a list that is `name`, as part of the list; empty when there is none.
std::string_view findWord(std::string_view list, std::string_view name) {
    Words words(list);
    for (std::string_view word; words.next(&word);) {
        if (word == name)
            return word;
    }
    return {};
}

bool isBlank(std::string_view list) {
    std::string_view word;
    return !Words(list).next(&word);
}

// The list without a word of it and the separator behind that word.
VifList without(std::string_view list, std::string_view word) {
    const auto before = static_cast<int>(word.data() - list.data());
    const char *after = word.data() + word.size();
    const char *end = list.data() + list.size();
    if (after != end)
        ++after;
    // Behind the last name stands the blank of the one before, which the store would cut off.
    const int head = after == end && before > 0 ? before - 1 : before;
    VifList shorter("%.*s%.*s", head, list.data(), static_cast<int>(end - after), after);
    if (isBlank(shorter.view()))
        shorter.cut(0);
    return shorter;
}

} // namespace

int qvbrcm_SetVifsForPresetIntf(int enable, const char *ifname) {
    const InterfaceName name(WLBRCM_HERE, ifname);
    if (!name)
        return WLBRCM_EINVAL;
    WLBRCM_LOG(LOG_DEBUG, "enable %d, ifname %s\n", enable, ifname);
    const InterfaceName radio = radioOf(WLBRCM_HERE, name);
    if (!radio)
        return WLBRCM_EINVAL;
    const std::string_view listed = nvramText(keyOf(radio, "vifs").c_str());
    const std::string_view word = findWord(listed, name.c_str());
    if (word.empty() == (enable == 0))
        return WLBRCM_OK;
    VifList list = enable != 0 ? VifList("%.*s %s", static_cast<int>(listed.size()), listed.data(), name.c_str())
                               : without(listed, word);
    if (!list.fits()) {
        WLBRCM_LOG(LOG_ERR, "%s_vifs is too long to change: %s...\n", radio.c_str(), Shown(list.view()).c_str());
        return WLBRCM_OK;
    }
    __qvWlanSetVarToNvram2(__func__, __LINE__, list.data(), radio.c_str(), "vifs", "string");
    WLBRCM_LOG(LOG_DEBUG, "set %s_vifs in nvram to %s\n", radio.c_str(), Shown(list.view()).c_str());
    return WLBRCM_OK;
}

int qvbrcm_EnablePresetSSID(const char *ifname, int enable) {
    const InterfaceName name(WLBRCM_HERE, ifname);
    if (!name)
        return WLBRCM_EINVAL;
    const Word action = enable != 0 ? "up"_word : "down"_word;
    WLBRCM_LOG(LOG_INFO, "%s %s interface.\n", enable != 0 ? "Enable" : "Disable", name.c_str());
    runCommand(unlogged(WLBRCM_HERE), WLBRCM_COMMAND("ifconfig %s %s"), name, action);
    qvbrcm_SetVifsForPresetIntf(enable != 0 ? 1 : 0, name.c_str());
    runCommand(unlogged(WLBRCM_HERE), WLBRCM_COMMAND("wl -i %s bss %s"), name, action);
    return WLBRCM_OK;
}

void qvbrcm_ForceConfigurePresetSSID(WlRadioCfg *radio, WlSsidCfg *bss) {
    if (radio->band != WLBRCM_BAND_5G)
        return;
    for (WlSsidCfg &entry : EntriesInUse(radio, bss)) {
        if (entry.presetRole != WLBRCM_PRESET_ON_DEMAND)
            continue;
        entry.enable = 1;
        WLBRCM_LOG(LOG_INFO, "\n%s: wlanSsid[%d].enable = %d......\n", "qvbrcm_ForceConfigurePresetSSID",
                   static_cast<int>(&entry - bss), entry.enable);
        return;
    }
}
