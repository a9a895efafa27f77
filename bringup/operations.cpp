// The operations of the host: first configuration, reload, and what a WPS session changed.
#include <cstdlib>

#include <wlbrcm/bringup.h>
#include <wlbrcm/wps.h>

#include "module/command.h"
#include "module/nvram.h"
#include "module/record.h"
#include "module/waiting.h"

using namespace wlbrcm;

namespace {

void configureAndStart(WlIntf *intf) {
    const bool wps = intf->caps.wpsCapable != 0;
    qvWlanInit(&intf->radio, intf->bss, &intf->caps);
    qvWlanReset(&intf->radio, intf->bss, &intf->caps);
    if (wps)
        qvWlanWscInit(&intf->radio, intf->bss);
    qvbrcm_SetupWlan(&intf->radio, intf->bss, &intf->caps);
    if (wps)
        qvWlanWscRestart(&intf->radio, intf->bss);
}

void writeLanVariables(const WlLanCfg *lan) {
    WlLanInfo *list = nullptr;
    int count = 0;
    qvbrcm_InitLanInfo(lan, &list, &count);
    if (list == nullptr)
        return;
    qvWlanLanVarInit(list, count);
    free(list);
}

// Key management as the WPS daemon stores it after a session, as this module stores it, and the record's word for it.
// What a session cannot agree on has no text of the first kind.
struct KeyManagement {
    const char *session;
    const char *stored;
    const char *authMode;
};
constexpr KeyManagement kKeyManagement[] = {
    {"", "", "open"},
    {"psk2 ", "psk2", "wpa2psk"},
    {"psk psk2 ", "psk psk2", "wpapskmix"},
    {nullptr, "wpa2", "wpa2"},
};

struct SessionCipher {
    const char *crypto;
    const char *encryption;
};
constexpr SessionCipher kSessionCiphers[] = {{"aes", "aes"}, {"tkip+aes", "tkipaes"}};

const char *sessionValue(const InterfaceName &radio, const char *suffix) {
    return nvram_get(keyOf(radio, suffix).c_str());
}

// Copies a value into its field, cut to it; false when the field already holds just that.
template <size_t Size> bool takeOver(char (&field)[Size], std::string_view value) {
    const std::string_view cut(value.data(), value.size() < Size ? value.size() : Size - 1);
    if (fieldText(field) == cut)
        return false;
    copyText(field, cut);
    return true;
}

template <size_t Size> bool takeOverText(char (&field)[Size], const char *value) {
    return value != nullptr && *value != '\0' && takeOver(field, value);
}

bool isInForce(const KeyManagement &row, const WlSsidCfg *entry, const char *akm) {
    const bool named = strcmp(row.stored, akm) == 0 || (row.session != nullptr && strcmp(row.session, akm) == 0);
    return named && fieldText(entry->authMode) == row.authMode;
}

bool takeOverKeyManagement(Here here, WlSsidCfg *entry, const char *akm) {
    if (akm == nullptr)
        return false;
    for (const KeyManagement &row : kKeyManagement) {
        if (isInForce(row, entry, akm))
            return false;
        if (row.session == nullptr || strcmp(row.session, akm) != 0)
            continue;
        takeOver(entry->authMode, row.authMode);
        if (*akm == '\0')
            takeOver(entry->encryption, "none");
        return true;
    }
    WLBRCM_LOG_AT(here, LOG_ERR, "Not support authMode : %s.\n", Shown(akm).c_str());
    return false;
}

bool takeOverCipher(WlSsidCfg *entry, const char *crypto) {
    for (const SessionCipher &row : kSessionCiphers) {
        if (crypto != nullptr && strcmp(row.crypto, crypto) == 0)
            return takeOver(entry->encryption, row.encryption);
    }
    return false;
}

bool takeOverSession(Here here, const WlRadioCfg *cfg, WlSsidCfg *entry) {
    const InterfaceName radio(here, fieldText(cfg->ifName));
    if (!radio)
        return false;
    bool changed = takeOverText(entry->ssidName, sessionValue(radio, "ssid"));
    changed |= takeOverKeyManagement(here, entry, sessionValue(radio, "akm"));
    if (!contains(fieldText(entry->authMode), "wpa"))
        return changed;
    changed |= takeOverCipher(entry, sessionValue(radio, "crypto"));
    changed |= takeOverText(entry->wpaPsk, sessionValue(radio, "wpa_psk"));
    return changed;
}

} // namespace

int qvbrcm_InitWlan(WlIntf *intf, const WlLanCfg *lan) {
    if (intf == nullptr || lan == nullptr)
        return WLBRCM_EINVAL;
    intf->state = WLBRCM_STATE_SETTING_UP;
    qvbrcm_ForceConfigurePresetSSID(&intf->radio, intf->bss);
    writeLanVariables(lan);
    configureAndStart(intf);
    intf->state = WLBRCM_STATE_READY;
    return WLBRCM_OK;
}

int qvbrcm_ReloadWlan(WlIntf *intf) {
    if (intf == nullptr)
        return WLBRCM_EINVAL;
    intf->state = WLBRCM_STATE_SETTING_UP;
    qvbrcm_ForceConfigurePresetSSID(&intf->radio, intf->bss);
    if (intf->radio.band == WLBRCM_BAND_5G && intf->radio.autoChannel == 0)
        qvbrcm_ChannelSwitchAnnounce(&intf->radio, intf->bss);
    configureAndStart(intf);
    intf->state = WLBRCM_STATE_READY;
    return WLBRCM_OK;
}

void qvbrcm_ChannelSwitchAnnounce(WlRadioCfg *radio, WlSsidCfg *bss) {
    // Twenty beacons announce the switch before it happens; the stations need that time.
    constexpr unsigned kAnnounceSeconds = 3;
    for (int i = 0; i < WLBRCM_MAX_BSS; ++i) {
        if (bss[i].presetRole != WLBRCM_PRESET_ANNOUNCER)
            continue;
        if (const InterfaceName ifname = usableName(WLBRCM_HERE, fieldText(bss[i].ifName))) {
            runCommand(WLBRCM_HERE, WLBRCM_COMMAND("wl -i %s csa 0 20 %d/%d"), ifname, radio->channel,
                       int{radio->bandwidth});
            pauseFor(kAnnounceSeconds);
        }
        return;
    }
}

int qvbrcm_WPSUpdateConfg(WlIntf *intf, uint8_t *changed) {
    if (intf == nullptr || changed == nullptr)
        return WLBRCM_EINVAL;
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    *changed = 0;
    WlSsidCfg *entry = &intf->bss[0];
    if (intf->caps.wpsCapable != 0 && entry->wpsEnable != 0)
        *changed = takeOverSession(WLBRCM_HERE, &intf->radio, entry) ? 1 : 0;
    if (*changed == 0)
        return qvbrcm_WPSReload(intf);
    entry->wpsConfigured = 1;
    return qvbrcm_ReloadWlan(intf);
}
