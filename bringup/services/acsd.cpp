// The daemon that chooses channels.
#include <wlbrcm/bringup.h>

#include "bringup/entries.h"
#include "module/command.h"
#include "module/nvram.h"
#include "module/record.h"

using namespace wlbrcm;

namespace {

// The daemon serves the radios of one list, which all radios share: each takes itself out and, when on, in again.
void rewriteServedRadios(Here here, const InterfaceName &radio, bool on) {
    char list[256] = "";
    bool whole = true;
    Words served(nvramText("acs_ifnames"));
    for (std::string_view word; served.next(&word);) {
        if (word != radio.c_str())
            whole = appendWord(list, word) && whole;
    }
    if (on)
        whole = appendWord(list, radio.c_str()) && whole;
    if (!whole)
        WLBRCM_LOG_AT(here, LOG_ERR, "no room for every radio in acs_ifnames.\n");
    writeText(here, Key("acs_ifnames"), list);
}

void writeRadioVariables(Here here, const InterfaceName &radio, const WlRadioCfg *cfg) {
    writeInt(here, radio, "acs_cs_scan_timer", static_cast<int>(cfg->acsScanTimer));
    writeInt(here, radio, "acs_use_escan", 1);
    writeInt(here, radio, "acs_pol_idx", cfg->acsPolicyIndex);
    writeText(here, radio, "acs_fcs_mode", "0");
}

} // namespace

void qvWlanStartAcsd(WlRadioCfg *radio, WlSsidCfg *) {
    if (const InterfaceName name = usableName(WLBRCM_HERE, fieldText(radio->ifName))) {
        rewriteServedRadios(WLBRCM_HERE, name, radio->radioOn != 0);
        writeRadioVariables(WLBRCM_HERE, name, radio);
    }
    writeText(WLBRCM_HERE, Key("acs_2g_ch_no_restrict"), "1");
    writeText(WLBRCM_HERE, Key("acs_ctrl_chan_adjust"), "0");
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("/bin/acsd"));
}
