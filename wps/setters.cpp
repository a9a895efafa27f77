// WPS settings one by one.
#include <wlbrcm/wps.h>

#include "module/argument.h"
#include "module/nvram.h"

using namespace wlbrcm;

namespace {

constexpr size_t kPinBuffer = 32;

} // namespace

int qvWlanSetWpsConfMode(WlanParamArg *) { return WLBRCM_OK; }

int qvWlanSetWpsMethod(WlanParamArg *arg) {
    if (!hasParts(arg, kValue))
        return WLBRCM_EINVAL;
    const char *method = "pbc";
    if (strcmp(arg->value, "pin") == 0)
        method = nvram_match("wps_sta_pin", WLBRCM_PBC_PIN) != 0 ? "ap-pin" : "sta-pin";
    else if (strcmp(arg->value, "pbc") != 0)
        return WLBRCM_EINVAL;
    nvram_set("_wps_config_method", method);
    return WLBRCM_OK;
}

int qvWlanSetWpsPinCode(WlanParamArg *arg) {
    if (!hasParts(arg, kValue))
        return WLBRCM_EINVAL;
    nvram_set("wps_sta_pin", arg->value);
    return WLBRCM_OK;
}

int qvWlanSetWpsConfStatus(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue | kAux);
    if (!name)
        return WLBRCM_EINVAL;
    const int configured = decimal(arg->value);
    if (configured != 0 && configured != 1)
        return WLBRCM_EINVAL;
    if (!valueFits(WLBRCM_HERE, "wps_config_state", arg->value))
        return WLBRCM_EINVAL;
    writeText(WLBRCM_HERE, name, "wps_config_state", arg->value);
    if (decimal(arg->aux) == 0) {
        writeText(WLBRCM_HERE, Key("wl_wps_config_state"), arg->value);
        nvram_set("lan_wps_oob", configured == 0 ? "enabled" : "disabled");
    }
    return WLBRCM_OK;
}

int qvWlanSetWpsVendorPinCode(WlanParamArg *arg) {
    if (!hasParts(arg, kValue))
        return WLBRCM_EINVAL;
    char stored[kPinBuffer];
    copyText(stored, nvramText("wps_device_pin"));
    if (strcmp(stored, arg->value) != 0)
        nvram_set("wps_device_pin", arg->value);
    return WLBRCM_OK;
}

int qvWlanSetWpsPBCType(WlanParamArg *arg) {
    if (!hasParts(arg, kValue))
        return WLBRCM_EINVAL;
    return writeText(WLBRCM_HERE, Key("wps_pbc_type"), arg->value);
}

int qvWlanGenWpsVendorPinCode(WlanParamArg *arg) {
    if (!hasParts(arg, kAux))
        return WLBRCM_EINVAL;
    char pin[kPinBuffer] = {};
    qvWlanWscPinGen(pin);
    memcpy(arg->aux, pin, strlen(pin) + 1);
    return WLBRCM_OK;
}

int qvWlanGetWpsVendorPinCode(WlanParamArg *arg) {
    if (!hasParts(arg, kResult))
        return WLBRCM_EINVAL;
    const char *pin = nvram_get("wps_device_pin");
    if (pin != nullptr)
        copyText(static_cast<char *>(arg->result), kPinBuffer, pin);
    return WLBRCM_OK;
}

int qvWlanGetWPSUuid(WlanParamArg *arg) {
    if (!hasParts(arg, kResult))
        return WLBRCM_EINVAL;
    const char *uuid = nvram_get("wps_uuid");
    if (uuid != nullptr)
        memcpy(arg->result, uuid, strlen(uuid) + 1);
    return WLBRCM_OK;
}

int qvWlanGetWPSProcStatus(WlanParamArg *arg) {
    if (arg == nullptr)
        return WLBRCM_EINVAL;
    const char *stored = nvram_get("wps_proc_status");
    if (stored == nullptr || arg->result == nullptr)
        return WLBRCM_OK;
    const int status = decimal(stored);
    memcpy(arg->result, &status, sizeof status);
    return WLBRCM_OK;
}

int set_wps_config_method_default(void) {
    return nvram_set("wps_config_method", nvram_match("wps_version2", "enabled") != 0 ? "0x2288" : "0x88");
}
