// WPS sessions: which radio, which command, and how one is stopped.
#include <wlbrcm/wps.h>

#include "module/command.h"
#include "module/nvram.h"
#include "module/record.h"
#include "module/waiting.h"

using namespace wlbrcm;

namespace {

constexpr char kStopCommand[] = "SET wps_config_command=2 wps_action=0";
constexpr char kHardwareButton[] = "client-pbc-hw";
constexpr char kSoftwareButton[] = "client-pbc";
constexpr char kStationPin[] = "client-pin";

// The argument of a start command: none, the UUID behind everything else, or the PIN in the PIN's place.
enum class Argument { kNone, kUuid, kPin };

struct StartMode {
    const char *mode;
    int method;    // 1 PIN, 2 push button
    int pbcMethod; // 1 hardware button, 2 software
    Argument argument;
};
constexpr StartMode kStartModes[] = {
    {kHardwareButton, 2, 1, Argument::kUuid},
    {kSoftwareButton, 2, 2, Argument::kNone},
    {kStationPin, 1, 2, Argument::kPin},
};

const StartMode *findMode(const char *mode) {
    for (const StartMode &row : kStartModes) {
        if (strcmp(row.mode, mode) == 0)
            return &row;
    }
    return nullptr;
}

bool argumentValid(Argument kind, const char *arg) {
    if (kind == Argument::kNone)
        return true;
    if (arg == nullptr || arg[0] == '\0')
        return false;
    return kind != Argument::kPin || qvWlanWscPincheck(arg) == 0;
}

// A text that enters a line of the daemon's protocol, where blanks part one key from the next.
bool isProtocolText(Here here, const char *text) {
    for (const char *at = text; at != nullptr && *at != '\0'; ++at) {
        if (static_cast<unsigned char>(*at) > ' ' && *at != '\x7f')
            continue;
        WLBRCM_LOG_AT(here, LOG_ERR, "invalid text for the WPS daemon \"%s\".\n", Shown(text).c_str());
        return false;
    }
    return true;
}

Text<256> startCommand(const StartMode &mode, const char *ifname, const char *arg, const char *station) {
    Text<256> command("SET wps_method=%d wps_sta_pin=%s wps_action=3 wps_config_command=1 wps_pbc_method=%d "
                      "wps_ifname=%s ",
                      mode.method, mode.argument == Argument::kPin ? arg : WLBRCM_PBC_PIN, mode.pbcMethod, ifname);
    if (station != nullptr)
        command.append("wps_autho_sta_mac=%s ", station);
    if (mode.argument == Argument::kUuid)
        command.append("wps_uuid=%s ", arg);
    return command;
}

bool hasWps(const WlIntf &intf) { return intf.caps.wpsCapable != 0 && intf.bss[0].wpsEnable != 0; }

int startSession(const WlIntf &intf, const char *mode, const char *arg) {
    return qvWlanActionWpsCmd(FieldCopy(intf.radio.ifName).c_str(), mode, arg);
}

bool takesHardwareButton(const WlIntf *intf) {
    return intf != nullptr && intf->radio.radioOn != 0 && hasWps(*intf) && intf->bss[0].wpsPbcEnable != 0;
}

// States in which the daemon has left the session by itself; also the neutral reading of a text that is no number.
bool isIdle(int status) { return status == 0 || status == 2 || status == 4; }

void resetProgress(Here here) { writeText(here, Key("wps_proc_status"), "0"); }

} // namespace

int qvWlanActionWpsCmd(const char *ifname, const char *mode, const char *arg) {
    if (ifname == nullptr || mode == nullptr)
        return WLBRCM_EINVAL;
    WLBRCM_LOG(LOG_DEBUG, "Enter, ifname = %s, cfg = %s.\n", Shown(ifname).c_str(), Shown(mode).c_str());
    const StartMode *start = findMode(mode);
    if (start == nullptr)
        return WLBRCM_EFAILED;
    if (!argumentValid(start->argument, arg))
        return WLBRCM_EINVAL;
    const InterfaceName name(WLBRCM_HERE, ifname);
    if (!name)
        return WLBRCM_EINVAL;
    const bool version2 = nvram_match("wps_version2", "enabled") != 0;
    char station[32];
    copyText(station, version2 ? nvramText("wps_autho_sta_mac") : "");
    if (start->argument == Argument::kNone)
        arg = nullptr;
    if (!isProtocolText(WLBRCM_HERE, station) || !isProtocolText(WLBRCM_HERE, arg))
        return WLBRCM_EINVAL;
    const Text<256> command = startCommand(*start, name.c_str(), arg, version2 ? station : nullptr);
    if (!commandFits(WLBRCM_HERE, command.fits(), command.c_str()))
        return WLBRCM_EINVAL;
    set_wps_env(command.c_str());
    return WLBRCM_OK;
}

void qvWlanStopWps(void) {
    get_wps_env();
    if (wps_config_command == 0)
        return;
    set_wps_env(kStopCommand);
    pauseFor(2);
    const char *status = nvram_get("wps_proc_status");
    if (status == nullptr) {
        resetProgress(WLBRCM_HERE);
        return;
    }
    if (isIdle(decimal(status)))
        return;
    set_wps_env(kStopCommand);
    pauseFor(1);
    resetProgress(WLBRCM_HERE);
}

int qvbrcm_WPSHWPushButton(WlIntf **intfs, int count, const char *uuid) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    if (intfs == nullptr)
        return WLBRCM_EINVAL;
    const WlIntf *choice = nullptr;
    for (int i = 0; i < count; ++i) {
        if (takesHardwareButton(intfs[i]) && (choice == nullptr || intfs[i]->radio.band == WLBRCM_BAND_5G))
            choice = intfs[i];
    }
    return choice != nullptr ? startSession(*choice, kHardwareButton, uuid) : WLBRCM_EFAILED;
}

int qvbrcm_WPSSWPushButton(WlIntf *intf) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    if (intf == nullptr)
        return WLBRCM_EINVAL;
    return hasWps(*intf) ? startSession(*intf, kSoftwareButton, nullptr) : WLBRCM_OK;
}

int qvbrcm_WPSStartStaPin(WlIntf *intf, const char *pin) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    if (intf == nullptr)
        return WLBRCM_EINVAL;
    return hasWps(*intf) ? startSession(*intf, kStationPin, pin) : WLBRCM_OK;
}

int qvbrcm_WPSCancel(WlIntf *intf) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    if (intf == nullptr)
        return WLBRCM_EINVAL;
    if (hasWps(*intf))
        qvWlanStopWps();
    return WLBRCM_OK;
}
