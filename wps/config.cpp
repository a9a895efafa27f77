// The configuration that the WPS daemon takes from nvram, and the daemon's restart.
#include <wlbrcm/wps.h>

#include "module/command.h"
#include "module/daemons.h"
#include "module/nvram.h"
#include "module/record.h"
#include "module/waiting.h"

// Provided by the host process. A program without it can load the library all the same.
extern "C" int qvUtilStrReplace(char *text, const char *from, const char *to) __attribute__((weak));

using namespace wlbrcm;

namespace {

constexpr int kLanGroups = 10;

struct Setting {
    const char *key;
    const char *value; // empty removes the variable
};

constexpr Setting kSessionDefaults[] = {
    {"wps_timeout_enable", "0"},     {"router_disable", "0"}, {"wps_random_ssid_prefix", "Korva_"},
    {"wps_sta_pin", WLBRCM_PBC_PIN}, {"wps_currentband", ""}, {"wps_autho_sta_mac", ""},
};

// The daemon's working variables; a daemon that starts finds them like this.
constexpr Setting kDaemonState[] = {
    {"wps_aplockdown_cap", "1"},
    {"wps_aplockdown_count", "10"},
    {"wps_aplockdown_duration", "300"},
    {"wps_aplockdown_ageout", "300"},
    {"wps_proc_status", "0"},
    {"wps_force_restart", "n"},
    {"wps_restart", "0"},
    {"wps_config_command", "0"},
    {"wps_status", "0"},
    {"wps_method", "1"},
    {"wps_proc_mac", ""},
};

void write(Here here, const char *key, std::string_view value) { writeText(here, Key("%s", key), value); }

template <size_t Count> void write(Here here, const Setting (&settings)[Count]) {
    for (const Setting &setting : settings)
        write(here, setting.key, setting.value);
}

// The radio's main BSS; the daemon serves no others.
bool isMain(std::string_view ifname) { return !contains(ifname, "."); }

const char *devicePin(const WlSsidCfg &main) {
    const bool valid = fieldText(main.wpsDevicePin).size() == 8 && qvWlanWscPincheck(main.wpsDevicePin) == 0;
    return valid ? main.wpsDevicePin : WLBRCM_DEFAULT_DEVICE_PIN;
}

constexpr size_t kModelNameSize = 64;

// The names go into an XML description of the device. Each of the 63 characters may become "&amp;"; what then does not
// fit is cut in front of an "&amp;", never inside one.
void escapeModelName(char (&name)[kModelNameSize]) {
    constexpr char kEscape[] = "&amp;";
    char escaped[(sizeof kEscape - 1) * kModelNameSize];
    if (strchr(name, '&') == nullptr || qvUtilStrReplace == nullptr)
        return;
    copyText(escaped, name);
    qvUtilStrReplace(escaped, "&", kEscape);
    if (copyText(name, escaped))
        return;
    char *last = strrchr(name, '&');
    if (last != nullptr && strlen(last) < sizeof kEscape - 1)
        *last = '\0';
}

void writeModelName(Here here) {
    char model[kModelNameSize];
    copyText(model, nvramText("DEV_MODELNAME"));
    if (model[0] == '\0') {
        write(here, "wps_modelname", "Broadcom");
        write(here, "wps_device_name", "KorvaAP");
        return;
    }
    escapeModelName(model);
    // The write cuts a trailing blank off the text, so that both names agree.
    __qvWlanSetVarToNvram(here.function, here.line, model, "wps_modelname", "string");
    const Text<kModelNameSize> device("%s KorvaAP", model);
    write(here, "wps_device_name", device.fits() ? device.view() : model);
}

void writeIdentity(Here here) {
    writeModelName(here);
    const std::string_view maker = nvramText("DEV_MANUFACTURER");
    const bool known = !maker.empty();
    write(here, "wps_mfstring", known ? maker : "Broadcom");
    write(here, "wps_mf_url", known ? WLBRCM_MANUFACTURER_URL : WLBRCM_CHIP_MAKER_URL);
    const std::string_view product = nvramText("DEV_PRODUCTNAME");
    write(here, "wps_modelnum", !product.empty() ? product : "123456");
    write(here, "boardnum", "1234");
    const std::string_view description = nvramText("DEV_MODELDESCRIBE");
    if (!description.empty())
        write(here, "wps_modeldes", description);
}

void writeBss(Here here, const WlSsidCfg &bss) {
    const InterfaceName ifname = usableName(here, fieldText(bss.ifName));
    if (!ifname)
        return;
    if (bss.enable == 0 || !isMain(ifname.c_str())) {
        writeText(here, ifname, "wps_mode", "disabled");
        return;
    }
    const Text<64> methods("0x%x", bss.wpsConfigMethod);
    const struct {
        const char *suffix;
        std::string_view value;
    } settings[] = {
        {"wps_mode", bss.wpsEnable != 0 ? "enabled" : "disabled"},
        {"wps_config_state", bss.wpsConfigured != 0 ? "1" : "0"},
        {"wps_oob", bss.wpsConfigured != 0 ? "disabled" : "enabled"},
        {"wps_enable_pbc", bss.wpsPbcEnable != 0 ? "1" : "0"},
        {"wps_enable_stapin", bss.wpsStaPinEnable != 0 ? "1" : "0"},
        {"wps_enable_appin", bss.wpsApPinEnable != 0 ? "1" : "0"},
        {"wps_config_method", methods.view()},
        {"wps_uuid", fieldText(bss.wpsUuid)},
    };
    for (const auto &setting : settings)
        writeText(here, ifname, setting.suffix, setting.value);
}

bool isUnconfigured(std::string_view ifname) {
    const InterfaceName name(WLBRCM_HERE, ifname);
    const char *state = name ? nvram_get(keyOf(name, "wps_config_state").c_str()) : nullptr;
    return state != nullptr && decimal(state) % 2 == 0;
}

bool hasUnconfigured(std::string_view ifnames) {
    Words words(ifnames);
    for (std::string_view name; words.next(&name);) {
        if (startsWith(name, "wl") && isMain(name) && isUnconfigured(name))
            return true;
    }
    return false;
}

// The daemon is the registrar of every LAN group, out of the box as long as one of its radios is unconfigured.
void writeRegistrar(Here here, const char *group) {
    const Key key("%sifnames", group);
    const std::string_view stored = nvramText(key.c_str());
    if (stored.empty())
        return;
    char ifnames[kLongestValue + 1];
    const bool whole = copyText(ifnames, stored);
    writeText(here, Key("%swps_reg", group), "enabled");
    const bool outOfBox = whole && hasUnconfigured(ifnames);
    writeText(here, Key("%swps_oob", group), outOfBox ? "enabled" : "disabled");
}

void writeRegistrars(Here here) {
    writeRegistrar(here, "lan_");
    for (int number = 1; number < kLanGroups; ++number)
        writeRegistrar(here, Text<64>("lan%d_", number).c_str());
}

// One daemon serves all radios, so what the other radios wrote counts as well.
bool isWanted(const WlRadioCfg *radio, WlSsidCfg *bss) {
    for (const WlSsidCfg &entry : EntriesInUse(radio, bss)) {
        if (entry.enable != 0 && entry.wpsEnable != 0 && isMain(fieldText(entry.ifName)))
            return true;
    }
    return nvram_match("wl0_wps_mode", "enabled") != 0 || nvram_match("wl1_wps_mode", "enabled") != 0;
}

} // namespace

int qvWlanWscInit(WlRadioCfg *radio, WlSsidCfg *bss) {
    constexpr int kLedOfAcRadio = 17;
    constexpr int kLed = 3;
    const Here here = WLBRCM_HERE;
    if (radio == nullptr || bss == nullptr)
        return WLBRCM_EINVAL;
    write(here, "wps_device_pin", devicePin(bss[0]));
    write(here, "wps_version2", bss[0].wpsVersion2 != 0 ? "enabled" : "disabled");
    writeIdentity(here);
    write(here, kSessionDefaults);
    write(here, kDaemonState);
    for (const WlSsidCfg &entry : EntriesInUse(radio, bss))
        writeBss(here, entry);
    write(here, "wl_wps_config_state", "1");
    write(here, "wl_wps_reg", "enabled");
    writeRegistrars(here);
    writeInt(here, usableName(here, fieldText(radio->ifName)), "wps_led",
             fieldText(radio->phyType) == "v" ? kLedOfAcRadio : kLed);
    return WLBRCM_OK;
}

void qvWlanWscRestart(WlRadioCfg *radio, WlSsidCfg *bss) {
    if (radio == nullptr || bss == nullptr)
        return;
    stopWpsMonitor(WLBRCM_HERE);
    if (!isWanted(radio, bss))
        return;
    write(WLBRCM_HERE, kDaemonState);
    pauseFor(1);
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("/bin/wps_monitor&"));
}

int qvbrcm_WPSReload(WlIntf *intf) {
    if (intf == nullptr)
        return WLBRCM_EINVAL;
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    if (intf->caps.wpsCapable == 0)
        return WLBRCM_OK;
    qvWlanWscInit(&intf->radio, intf->bss);
    restartEapd(WLBRCM_HERE);
    qvWlanWscRestart(&intf->radio, intf->bss);
    return WLBRCM_OK;
}
