// The last step of a bring-up: the platform takes the configuration up.
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <wlbrcm/bringup.h>

#include "module/command.h"
#include "module/numbers.h"
#include "module/nvram.h"
#include "module/record.h"

using namespace wlbrcm;

namespace {

constexpr char kAcsDaemon[] = "/bin/acsd";

bool fileExists(const char *path) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    close(file);
    return true;
}

void qvWlanSetupBridge(const WlRadioCfg *radio, WlSsidCfg *bss) {
    for (const WlSsidCfg &entry : EntriesInUse(radio, bss)) {
        if (entry.enable == 0)
            continue;
        const InterfaceName ifname = usableName(WLBRCM_HERE, fieldText(entry.ifName));
        const InterfaceName bridge = usableName(WLBRCM_HERE, fieldText(entry.bridge));
        if (ifname && bridge)
            runCommand(WLBRCM_HERE, WLBRCM_COMMAND("brctl addif %s %s"), bridge, ifname);
    }
}

// The discovery daemon is told the first LAN's bridge, or nothing when there is none; a name that is no interface name
// would be read by the shell, so the daemon then stays off.
void startLinkDiscovery(Here here) {
    const std::string_view text = nvramText("lan_ifname");
    if (text.empty())
        runCommand(here, WLBRCM_COMMAND("/bin/lld2d "));
    else if (const InterfaceName bridge = usableName(here, text))
        runCommand(here, WLBRCM_COMMAND("/bin/lld2d %s"), bridge);
}

void qvWlanStartServices() {
    startLinkDiscovery(WLBRCM_HERE);
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("/bin/eapd"));
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("/bin/nas"));
}

// A preset SSID is configured like any other, but stays down and unlisted until it is enabled on demand.
void holdBack(Here here, const InterfaceName &ifname) {
    qvbrcm_SetVifsForPresetIntf(0, ifname.c_str());
    runCommand(here, WLBRCM_COMMAND("wl -i %s bss down"), ifname);
}

void qvWlanIfaceUp(const WlRadioCfg *radio, WlSsidCfg *bss) {
    for (const WlSsidCfg &entry : EntriesInUse(radio, bss)) {
        const bool preset = entry.presetRole == WLBRCM_PRESET_ON_DEMAND;
        if (!preset && entry.enable == 0)
            continue;
        const InterfaceName ifname = usableName(WLBRCM_HERE, fieldText(entry.ifName));
        if (ifname && preset)
            holdBack(WLBRCM_HERE, ifname);
        else if (ifname)
            runCommand(WLBRCM_HERE, WLBRCM_COMMAND("ifconfig %s up 2>/dev/null"), ifname);
    }
}

bool entryFollowsInUse(const WlRadioCfg *radio, const WlSsidCfg *bss) {
    const int count = EntriesInUse::countOf(radio);
    return count < WLBRCM_MAX_BSS && bss[count].enable != 0;
}

// Manufacturing drivers call themselves so.
bool isTestDriver(const InterfaceName &ifname) {
    CommandOutput output(WLBRCM_COMMAND("wlctl -i %s ver | grep WLTEST"), ifname);
    char line[128];
    return output.next(line) && line[0] != '\0' && line[0] != '\n';
}

void tuneDriver(Here here, const WlRadioCfg *radio, const InterfaceName &ifname) {
    for (const char *args : {"phy_watchdog 1", "ampdu_tx_density 6", "ampdu_rx_density 6"})
        __qvWlanCmdExec(here.function, here.line, ifname.c_str(), args);
    if (radio->band == WLBRCM_BAND_5G && isTestDriver(ifname))
        __qvWlanCmdExec(here.function, here.line, ifname.c_str(), "txbf 2");
}

void startRadio(Here here, const WlRadioCfg *radio, WlSsidCfg *bss, const char *radioName) {
    qvWlConfStart(radioName);
    qvWlanIfaceUp(radio, bss);
    const InterfaceName ifname = usableName(here, radioName);
    if (ifname && !entryFollowsInUse(radio, bss))
        runCommand(here, WLBRCM_COMMAND("ifconfig %s up 2>/dev/null"), ifname);
    qvWlanSetPriority(radioName);
    if (ifname)
        tuneDriver(here, radio, ifname);
}

void makeRealtime(int pid, const char *ifname) {
    sched_param parameters = {};
    parameters.sched_priority = 5;
    if (pid > 0 && sched_setscheduler(pid, SCHED_RR, &parameters) != 0)
        printf("Failed to make wlan processing on %s realtime\n", ifname);
}

// The CPU that serves an interface, as the driver tells it; -1 when it does not.
int readEventCpu(Here here, const InterfaceName &ifname) {
    Report report(unlogged(here), ResultPath(WLBRCM_COMMAND("/tmp/wlctl_tp_id")),
                  WLBRCM_COMMAND("wlctl -i %s tp_id > %s"), ifname);
    if (!report)
        return -1;
    char text[64];
    const auto length = static_cast<int>(report.lines().rest(text));
    const int cpu = decimal(text);
    WLBRCM_LOG_AT(here, LOG_DEBUG, "read of output: rc=%d cpu=%d buf=%s\n", length, cpu, Shown(text).c_str());
    return cpu;
}

} // namespace

int qvWlanFinishSetup(WlRadioCfg *radio, WlSsidCfg *bss) {
    const FieldCopy radioName(radio->ifName);
    if (radio->radioOn != 0) {
        qvWlConfUp(radioName.c_str());
        qvWlanSetIfaceMAC(radio, bss);
        qvWlConfSecurity(radioName.c_str());
    }
    qvWlanSetupBridge(radio, bss);
    qvWlanStartServices();
    if (radio->radioOn != 0)
        startRadio(WLBRCM_HERE, radio, bss, radioName.c_str());
    if (fileExists(kAcsDaemon))
        qvWlanStartAcsd(radio, bss);
    return WLBRCM_OK;
}

int qvWlanSetIfaceMAC(WlRadioCfg *radio, WlSsidCfg *bss) {
    for (const WlSsidCfg &entry : EntriesInUse(radio, bss)) {
        if (entry.enable == 0)
            continue;
        const InterfaceName ifname = usableName(WLBRCM_HERE, fieldText(entry.ifName));
        if (!ifname)
            continue;
        const MacText mac(WLBRCM_HERE, fieldText(entry.macText));
        if (!mac)
            continue;
        runCommand(WLBRCM_HERE, WLBRCM_COMMAND("ifconfig %s hw ether %s &>/dev/null"), ifname, mac);
        runCommand(WLBRCM_HERE, WLBRCM_COMMAND("wlctl -i %s cur_etheraddr %s &>/dev/null"), ifname, mac);
    }
    return WLBRCM_OK;
}

int qvWlanSetPriority(const char *ifname) {
    if (ifname == nullptr)
        return WLBRCM_EINVAL;
    int worker = prctl_getPidByName(Text<64>("%s-kthrd", ifname).c_str());
    if (worker < 1)
        worker = get_event_pid(ifname);
    const int timer = prctl_getPidByName(Text<64>("%s-tmr-kthrd", ifname).c_str());
    makeRealtime(worker, ifname);
    makeRealtime(timer, ifname);
    return WLBRCM_OK;
}

int get_event_pid(const char *ifname) {
    constexpr const char *kWorkers[] = {"events/0", "events/1"};
    if (ifname == nullptr || !startsWith(ifname, "wl"))
        return -1;
    const InterfaceName name(WLBRCM_HERE, ifname);
    if (!name)
        return -1;
    const int cpu = readEventCpu(WLBRCM_HERE, name);
    const int pid = cpu == 0 || cpu == 1 ? prctl_getPidByName(kWorkers[cpu]) : -1;
    WLBRCM_LOG(LOG_DEBUG, "returning pid %d\n", pid);
    return pid;
}

int qvbrcm_SetWlanMacAddr(WlIntf *intf, const uint8_t mac[6]) {
    if (intf == nullptr || mac == nullptr)
        return WLBRCM_EFAILED;
    if (memcmp(intf->macAddr, mac, sizeof intf->macAddr) == 0)
        return WLBRCM_OK;
    const InterfaceName ifname(WLBRCM_HERE, fieldText(intf->intfName));
    if (!ifname)
        return WLBRCM_EFAILED;
    memcpy(intf->macAddr, mac, sizeof intf->macAddr);
    WLBRCM_LOG(LOG_DEBUG, "change %s MAC address, macaddr = %.2x:%.2x:%.2x:%.2x:%.2x:%.2x\n", ifname.c_str(), mac[0],
               mac[1], mac[2], mac[3], mac[4], mac[5]);
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("ifconfig %s hw ether %.2x:%.2x:%.2x:%.2x:%.2x:%.2x"), ifname, mac[0],
               mac[1], mac[2], mac[3], mac[4], mac[5]);
    return WLBRCM_OK;
}
