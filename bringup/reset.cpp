// Radio reset: driver threads on their CPU, daemons stopped, radio and interfaces down.
#include <sched.h>

#include <wlbrcm/bringup.h>

#include "module/command.h"
#include "module/daemons.h"
#include "module/record.h"

using namespace wlbrcm;

namespace {

// A driver thread by its name, and its process id when it runs.
struct DriverThread {
    DriverThread(const char *format, int radio) : name(format, radio), pid(prctl_getPidByName(name.c_str())) {}
    bool found() const { return pid >= 1; }

    Text<64> name;
    int pid;
};

void placeThread(Here here, const DriverThread &thread, int cpu) {
    cpu_set_t set;
    static_assert(sizeof set == 128, "the driver's threads are placed by a CPU set of 1024 bits");
    CPU_ZERO(&set);
    CPU_SET(static_cast<unsigned>(cpu), &set);
    const int rc = sched_setaffinity(thread.pid, sizeof set, &set);
    if (rc != 0)
        WLBRCM_LOG_AT(here, LOG_ERR, "sched_setaffinity failed, rc=%d, %s(%d)\n", rc, thread.name.c_str(), thread.pid);
    else
        WLBRCM_LOG_AT(here, LOG_DEBUG, "sched_setaffinity set %s(%d) to CPU(%d)\n", thread.name.c_str(), thread.pid,
                      cpu);
}

void qvWlanSetupTPs(const char *ifname) {
    int radio = 0;
    if (sscanf(ifname, "wl%d", &radio) != 1) {
        WLBRCM_LOG(LOG_ERR, "parse interface name fail (%s).\n", Shown(ifname).c_str());
        return;
    }
    DriverThread driver("dhd%d_dpc", radio);
    if (!driver.found())
        driver = DriverThread("wl%d-kthrd", radio);
    const DriverThread forwarder("wfd%d-thrd", radio);
    if (!driver.found()) {
        WLBRCM_LOG(LOG_ERR, "Cannot find process %s pid.\n", Shown(ifname).c_str());
        return;
    }
    WLBRCM_LOG(LOG_DEBUG, "%s, %s(%d), %s(%d)\n", Shown(ifname).c_str(), driver.name.c_str(), driver.pid,
               forwarder.name.c_str(), forwarder.pid);
    const int cpu = act_wl_cnt >= 2 && radio != 0 ? 1 : 0;
    placeThread(WLBRCM_HERE, driver, cpu);
    if (forwarder.found())
        placeThread(WLBRCM_HERE, forwarder, cpu);
    else
        WLBRCM_LOG(LOG_ERR, "Cannot find process %s pid.\n", forwarder.name.c_str());
}

void qvWlanStopServices() {
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("killall -9 lld2d 2>/dev/null"));
    stopWpsMonitor(WLBRCM_HERE);
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("killall -9 nas 2>/dev/null"));
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("killall -9 eapd 2>/dev/null"));
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("killall -9 acsd 2>/dev/null"));
}

void qvWlanIfaceDown(const WlRadioCfg *radio, WlSsidCfg *bss) {
    for (const WlSsidCfg &entry : EntriesInUse(radio, bss)) {
        const InterfaceName ifname = usableName(WLBRCM_HERE, fieldText(entry.ifName));
        if (!ifname)
            continue;
        if (const InterfaceName bridge = usableName(WLBRCM_HERE, fieldText(entry.bridge)))
            runCommand(WLBRCM_HERE, WLBRCM_COMMAND("brctl delif %s %s 2>/dev/null"), bridge, ifname);
        runCommand(WLBRCM_HERE, WLBRCM_COMMAND("ifconfig %s down 2>/dev/null"), ifname);
    }
}

void runWlconf(Here here, const char *ifname, Word action) {
    if (ifname == nullptr)
        return;
    if (const InterfaceName name = usableName(here, ifname))
        runCommand(here, WLBRCM_COMMAND("/bin/wlconf %s %s"), name, action);
}

} // namespace

int qvWlanReset(WlRadioCfg *radio, WlSsidCfg *bss, WlCaps *) {
    qvWlanSetupTPs(FieldCopy(bss[0].ifName).c_str());
    if (const InterfaceName radioName = usableName(WLBRCM_HERE, fieldText(radio->ifName)))
        __qvWlanCmdExec(__func__, __LINE__, radioName.c_str(), "phy_watchdog 0");
    qvWlanStopServices();
    qvWlConfDown(FieldCopy(radio->ifName).c_str());
    qvWlanIfaceDown(radio, bss);
    return WLBRCM_OK;
}

void qvWlConfDown(const char *ifname) { runWlconf(WLBRCM_HERE, ifname, "down"_word); }

void qvWlConfUp(const char *ifname) { runWlconf(WLBRCM_HERE, ifname, "up"_word); }

void qvWlConfSecurity(const char *ifname) { runWlconf(WLBRCM_HERE, ifname, "security"_word); }

void qvWlConfStart(const char *ifname) { runWlconf(WLBRCM_HERE, ifname, "start"_word); }
