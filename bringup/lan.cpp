// LAN groups: the host's bridges and their members, as the platform's daemons read them.
#include <cstdlib>

#include <wlbrcm/lan.h>

#include "bringup/entries.h"
#include "module/command.h"
#include "module/daemons.h"
#include "module/nvram.h"

using namespace wlbrcm;

namespace {

constexpr int kCleanedGroups = 10;
constexpr const char *kGroupVariables[] = {"ifname", "ifnames", "hwaddr", "wps_reg", "wps_oob"};

// "lan_ifname" for the first group, "lan1_ifname" and so on for the others.
Key groupKey(int group, const char *variable) {
    return group == 0 ? Key("lan_%s", variable) : Key("lan%d_%s", group, variable);
}

void flattenGroup(Here here, const WlLanGroup &group, WlLanInfo *info) {
    copyText(info->name, fieldText(group.name));
    copyText(info->hwaddr, fieldText(group.hwaddr));
    const int members = group.members != nullptr ? group.memberCount : 0;
    for (int i = 0; i < members; ++i) {
        const std::string_view name = fieldText(group.members[i].ifName);
        if (name.empty())
            continue;
        if (!appendWord(info->ifnames, name)) {
            WLBRCM_LOG_AT(here, LOG_DEBUG, "Error, not enough space to insert data....\n");
            return;
        }
    }
}

void removeGroupVariables(Here here) {
    for (int group = 0; group < kCleanedGroups; ++group) {
        for (const char *variable : kGroupVariables) {
            const Key key = groupKey(group, variable);
            if (!nvramText(key.c_str()).empty())
                writeText(here, key, "");
        }
    }
}

// The wired members carry their own name; their address is the driver's business.
void writeWiredMembers(Here here, const WlLanInfo &info) {
    Words members(fieldText(info.ifnames));
    for (std::string_view member; members.next(&member);) {
        if (!contains(member, "eth") && !contains(member, "usb"))
            continue;
        const InterfaceName name(here, member);
        writeText(here, name, "ifname", member);
        writeText(here, name, "hwaddr", "");
    }
}

void writeGroup(Here here, int group, const WlLanInfo &info) {
    writeText(here, groupKey(group, "ifname"), fieldText(info.name));
    writeText(here, groupKey(group, "ifnames"), fieldText(info.ifnames));
    writeText(here, groupKey(group, "hwaddr"), fieldText(info.hwaddr));
    writeWiredMembers(here, info);
}

// What the radios of the LAN groups say about WPS.
struct WpsSummary {
    bool allConfigured = true;
    bool on = false;

    void addRadio(const InterfaceName &radio) {
        const char *configured = nvram_get(keyOf(radio, "wps_config_state").c_str());
        if (configured != nullptr)
            allConfigured = allConfigured && decimal(configured) != 0;
        on = on || nvram_match(keyOf(radio, "wps_mode").c_str(), "enabled") != 0;
    }

    void addGroup(Here here, const WlLanInfo &info) {
        Words members(fieldText(info.ifnames));
        for (std::string_view member; members.next(&member);) {
            if (!startsWith(member, "wl") || contains(member, "."))
                continue;
            if (const InterfaceName radio(here, member); radio)
                addRadio(radio);
        }
    }
};

} // namespace

void qvbrcm_InitLanInfo(const WlLanCfg *lan, WlLanInfo **out, int *count) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    *count = lan->count;
    if (lan->count == 0 || lan->groups == nullptr) {
        WLBRCM_LOG(LOG_ERR, "Lan number = 0\n");
        return;
    }
    const auto groups = static_cast<unsigned>(lan->count);
    auto *list = lan->count > 0 ? static_cast<WlLanInfo *>(calloc(groups, sizeof(WlLanInfo))) : nullptr;
    if (list == nullptr) {
        WLBRCM_LOG(LOG_ERR, "Alloc memory error, size = %d.\n", static_cast<int>(groups * sizeof(WlLanInfo)));
        return;
    }
    for (unsigned k = 0; k < groups; ++k)
        flattenGroup(WLBRCM_HERE, lan->groups[k], &list[k]);
    *out = list;
}

void qvWlanLanVarInit(WlLanInfo *list, int count) {
    removeGroupVariables(WLBRCM_HERE);
    for (int k = 0; k < count; ++k)
        writeGroup(WLBRCM_HERE, k, list[k]);
}

void qvWlanLanVarUpdate(WlLanInfo *list, int count) {
    qvWlanLanVarInit(list, count);
    WpsSummary wps;
    for (int k = 0; k < count; ++k) {
        wps.addGroup(WLBRCM_HERE, list[k]);
        writeText(WLBRCM_HERE, groupKey(k, "wps_reg"), "enabled");
        writeText(WLBRCM_HERE, groupKey(k, "wps_oob"), wps.allConfigured ? "disabled" : "enabled");
    }
    if (wps.on) {
        stopWpsMonitor(WLBRCM_HERE);
        runCommand(WLBRCM_HERE, WLBRCM_COMMAND("/bin/wps_monitor &"));
    }
    restartEapd(WLBRCM_HERE);
}

int qvbrcm_UpdateLaninfo(void *, void *, const WlLanCfg *lan) {
    if (lan == nullptr)
        return WLBRCM_EINVAL;
    WlLanInfo *list = nullptr;
    int count = 0;
    qvbrcm_InitLanInfo(lan, &list, &count);
    if (list == nullptr)
        return WLBRCM_EFAILED;
    qvWlanLanVarUpdate(list, count);
    free(list);
    return WLBRCM_OK;
}
