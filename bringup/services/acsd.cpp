// The daemon that chooses channels.
#include <wlbrcm/bringup.h>

#include "bringup/entries.h"
#include "module/command.h"
#include "module/nvram.h"

using namespace wlbrcm;

namespace {

// The daemon serves the radios of one list, which all radios share: each takes itself out and, when on, in again.
void rewriteServedRadios(Here here, const char *radioName, bool on) {
    char list[256] = "";
    bool whole = true;
    Words served(nvramText("acs_ifnames"));
    for (std::string_view word; served.next(&word);) {
        if (word != radioName)
            whole = appendWord(list, word) && whole;
    }
    if (on)
        whole = appendWord(list, radioName) && whole;
    if (!whole)
        WLBRCM_LOG_AT(here, LOG_ERR, "no room for every radio in acs_ifnames.\n");
    writeText(here, Key("acs_ifnames"), list);
}

void writeRadioVariables(Here here, const char *radioName, const WlRadioCfg *radio) {
    writeInt(here, radioName, "acs_cs_scan_timer", static_cast<int>(radio->acsScanTimer));
    writeInt(here, radioName, "acs_use_escan", 1);
    writeInt(here, radioName, "acs_pol_idx", radio->acsPolicyIndex);
    writeText(here, radioName, "acs_fcs_mode", "0");
}

} // namespace

void qvWlanStartAcsd(WlRadioCfg *radio, WlSsidCfg *) {
    const FieldCopy radioName(radio->ifName);
    if (*radioName.c_str() != '\0') {
        rewriteServedRadios(WLBRCM_HERE, radioName.c_str(), radio->radioOn != 0);
        writeRadioVariables(WLBRCM_HERE, radioName.c_str(), radio);
    }
    writeText(WLBRCM_HERE, Key("acs_2g_ch_no_restrict"), "1");
    writeText(WLBRCM_HERE, Key("acs_ctrl_chan_adjust"), "0");
    runCommand(WLBRCM_HERE, "/bin/acsd");
}
