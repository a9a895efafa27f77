// Nvram defaults: the base variables of every BSS and the addresses derived for the virtual ones.
#include <wlbrcm/bringup.h>

#include "bringup/entries.h"
#include "module/channel.h"
#include "module/nvram.h"
#include "module/record.h"

using namespace wlbrcm;

namespace {

// Addresses are given out in blocks of four, so that those of one radio differ in the low bits of the last byte only.
int addressBlock(int bssCount) { return (bssCount + 3) / 4 * 4; }

void deriveAddress(const uint8_t (&base)[6], int i, int bssCount, char (&text)[18]) {
    constexpr unsigned kLocallyAdministered = 0x02;
    unsigned first = base[0];
    unsigned last = base[5];
    if (i > 0) {
        const auto block = static_cast<unsigned>(addressBlock(bssCount));
        first = (((last % 3 + 12) * 8) | kLocallyAdministered) & 0xFF;
        last = ((last + static_cast<unsigned>(i)) % block) | (last & ~(block - 1));
    }
    copyText(text, Text<64>("%02X:%02X:%02X:%02X:%02X:%02X", first, base[1], base[2], base[3], base[4], last).view());
}

void writeDisabledBss(Here here, const WlRadioCfg *radio, const InterfaceName &ifname) {
    writeInt(here, ifname, "bss_enabled", 0);
    writeInt(here, ifname, "radio", radio->radioOn);
}

void writeEnabledBss(Here here, const WlRadioCfg *radio, const WlSsidCfg &entry, const InterfaceName &ifname,
                     bool primary) {
    const std::string_view wep = fieldText(entry.encryption) == "wep" ? "enabled" : "disabled";
    writeInt(here, ifname, "radio", radio->radioOn);
    writeText(here, ifname, "hwaddr", fieldText(entry.macText));
    writeInt(here, ifname, "bss_enabled", 1);
    writeText(here, ifname, "ifname", ifname.c_str());
    writeText(here, ifname, "mode", "ap");
    writeText(here, ifname, "wep", wep);
    if (primary)
        writeText(here, Key("wl_wep"), wep);
    writeText(here, ifname, "radius_ipaddr", fieldText(entry.radiusIpaddr));
    writeInt(here, ifname, "radius_port", entry.radiusPort);
    writeText(here, ifname, "radius_key", fieldText(entry.radiusKey));
    writeInt(here, ifname, "net_reauth", entry.netReauth);
    writeInt(here, ifname, "preauth", entry.preauth);
}

} // namespace

int qvWlanInit(WlRadioCfg *radio, WlSsidCfg *bss, WlCaps *caps) {
    qvWlanSetASPM(radio, caps);
    qvWlanChipVarInit(radio, bss);
    qvWlanNvramInit(radio, bss);
    return WLBRCM_OK;
}

// Power management of the bus stays as the driver has it.
int qvWlanSetASPM(WlRadioCfg *radio, WlCaps *) {
    return usableName(WLBRCM_HERE, fieldText(radio->ifName)) ? WLBRCM_OK : WLBRCM_EINVAL;
}

int qvWlanChipVarInit(WlRadioCfg *, WlSsidCfg *) { return WLBRCM_OK; }

int qvWlanNvramInit(WlRadioCfg *radio, WlSsidCfg *bss) {
    const int count = EntriesInUse::countOf(radio);
    const InterfaceName radioName = usableName(WLBRCM_HERE, fieldText(radio->ifName));
    char vifs[WLBRCM_MAX_BSS * 16] = "";
    writeInt(WLBRCM_HERE, Key("acs_no_restrict_align"), 1);
    for (int i = 0; i < count; ++i) {
        const InterfaceName ifname = usableName(WLBRCM_HERE, fieldText(bss[i].ifName));
        if (!ifname)
            continue;
        if (bss[i].enable == 0) {
            writeDisabledBss(WLBRCM_HERE, radio, ifname);
            continue;
        }
        deriveAddress(radio->baseMac, i, count, bss[i].macText);
        if (i > 0)
            appendWord(vifs, ifname.c_str());
        writeEnabledBss(WLBRCM_HERE, radio, bss[i], ifname, i == 0);
    }
    writeText(WLBRCM_HERE, radioName, "vifs", vifs);
    writeInt(WLBRCM_HERE, radioName, "bw_cap", bandwidthCapability(radio->bandwidth));
    return WLBRCM_OK;
}
