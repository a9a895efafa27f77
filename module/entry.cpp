// The entry point: tables for the host, radios found and handed over.
#include <csignal>
#include <cstdlib>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <wlbrcm/wlbrcm.h>

#include "module/capabilities.h"

using namespace wlbrcm;

WlPrintFn brcm_print_fn = nullptr;
int32_t act_wl_cnt = 0;

namespace {

constexpr char kModuleName[] = "BRCM";

constexpr WlModuleOps operations() {
    WlModuleOps ops = {};
    for (size_t i = 0; i < sizeof kModuleName; ++i)
        ops.name[i] = kModuleName[i];
    ops.initWlan = qvbrcm_InitWlan;
    ops.reloadWlan = qvbrcm_ReloadWlan;
    ops.statusUpdate = qvbrcm_StatusUpdate;
    ops.setWlanMacAddr = qvbrcm_SetWlanMacAddr;
    ops.updateLaninfo = qvbrcm_UpdateLaninfo;
    ops.channelScan = qvbrcm_ChannelScan;
    ops.getChanScanRpt = qvbrcm_GetChanScanRpt;
    ops.wpsReload = qvbrcm_WPSReload;
    ops.wpsSwPushButton = qvbrcm_WPSSWPushButton;
    ops.wpsHwPushButton = qvbrcm_WPSHWPushButton;
    ops.wpsStartStaPin = qvbrcm_WPSStartStaPin;
    ops.wpsCancel = qvbrcm_WPSCancel;
    ops.wpsUpdateConfg = qvbrcm_WPSUpdateConfg;
    ops.stationFilter = qvbrcm_StationFilter;
    ops.getAssocDevList = qvbrcm_GetAssocDevList;
    ops.bsaMacFilter = qvbrcm_BsaMacFilter;
    ops.disassociateSta = qvbrcm_DisassociateSTA;
    ops.getGenIntfInfo = qvbrcm_GetGenIntfInfo;
    ops.getFatIntfInfo = qvbrcm_GetFatIntfInfo;
    ops.enablePresetSsid = qvbrcm_EnablePresetSSID;
    ops.enableFenraEvt = qvbrcm_EnableFenraEvt;
    return ops;
}
constexpr WlModuleOps kOperations = operations();

struct BssWord {
    const char *word;
    int32_t maxBss;
    uint8_t mbss;
};
// A later row of a line overrides an earlier one. A radio record has six entries, whatever the driver offers.
constexpr BssWord kBssWords[] = {{"1ssid", 1, 0}, {"mbss4", 4, 1}, {"mbss8", 6, 1}, {"mbss16", 6, 1}};

struct FlagWord {
    const char *word;
    uint8_t WlCaps::*flag;
};
constexpr FlagWord kFlagWords[] = {
    {"wme", &WlCaps::wme},
    {"wme", &WlCaps::wmeApsd},
    {"ampdu", &WlCaps::ampdu},
    {"amsdutx", &WlCaps::amsduTx},
    {"wmf", &WlCaps::wmf},
    {"wds", &WlCaps::wds},
    {"radio_pwrsave", &WlCaps::radioPwrsave},
    {"rxchain_pwrsave", &WlCaps::rxchainPwrsave},
    {"multi-user", &WlCaps::muMimo},
};

void readCapabilityLine(const char *line, WlCaps *caps) {
    for (const BssWord &row : kBssWords) {
        if (strstr(line, row.word) != nullptr) {
            caps->maxBss = row.maxBss;
            caps->mbss = row.mbss;
        }
    }
    for (const FlagWord &row : kFlagWords) {
        if (strstr(line, row.word) != nullptr)
            caps->*row.flag = 1;
    }
}

void fillCapabilities(const char *ifname, bool is5GHz, WlCaps *caps) {
    caps->wpsCapable = 1;
    CapabilityLines listing(ifname);
    for (char line[256]; listing.next(line);)
        readCapabilityLine(line, caps);
    caps->txbf = static_cast<uint8_t>(checkWlanTxBFCap(ifname));
    if (is5GHz) {
        caps->wmf = 1;
        caps->atf = 1;
    }
    if (caps->maxBss == 0)
        caps->maxBss = 1;
    memset(caps->vifNames, 0, sizeof caps->vifNames);
    for (int i = 1; i < caps->maxBss; ++i)
        snprintf(caps->vifNames[i - 1], sizeof caps->vifNames[i - 1], "%.15s.%d", ifname, i);
}

// The address stays zero when the interface does not tell one.
void readHardwareAddress(int sock, const char *ifname, uint8_t (&mac)[6]) {
    ifreq request = {};
    copyText(request.ifr_name, ifname);
    request.ifr_hwaddr.sa_family = AF_INET;
    if (ioctl(sock, SIOCGIFHWADDR, &request) == 0)
        memcpy(mac, request.ifr_hwaddr.sa_data, sizeof mac);
}

// Wakes the radio once, so that its LED and its command interface are in a known state.
void prepareDriver(Here here, const InterfaceName &ifname, WlCaps *caps) {
    runCommand(here, WLBRCM_COMMAND("wlctl -i %s up"), ifname);
    runCommand(here, WLBRCM_COMMAND("wlctl -i %s leddc 0 2>/dev/null"), ifname);
    runCommand(here, WLBRCM_COMMAND("wlctl -i %s down"), ifname);
    if (runCommand(here, WLBRCM_COMMAND("dhdctl -i %s version &> /dev/null"), ifname) == WLBRCM_OK)
        caps->dhd = 1;
}

void registerRadio(const WlModuleHostOps *hostOps, int sock, const char *name) {
    const Here here{"wlModuleInit", __LINE__};
    const int band = qvWlanGetBandType(name);
    if (band == 0) {
        WLBRCM_LOG_AT(here, LOG_ERR, "Cannot identify interface %s is 2.4G or 5G... determine interface %s fail.\n",
                      Shown(name).c_str(), Shown(name).c_str());
        return;
    }
    const InterfaceName ifname(here, name);
    ++act_wl_cnt;
    auto *intf = static_cast<WlIntf *>(calloc(1, sizeof(WlIntf)));
    if (intf == nullptr)
        return;
    const bool is5GHz = band == WLBRCM_BAND_5G;
    copyText(intf->intfName, name);
    intf->bandCode = is5GHz ? WLBRCM_BANDCODE_5G : WLBRCM_BANDCODE_2G;
    readHardwareAddress(sock, name, intf->macAddr);
    fillCapabilities(name, is5GHz, &intf->caps);
    prepareDriver(here, ifname, &intf->caps);
    if (hostOps->registerIntf == nullptr || hostOps->registerIntf(intf, kModuleName) != 0)
        free(intf);
}

void discoverRadios(const WlModuleHostOps *hostOps) {
    const int sock = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    CommandOutput names(
        WLBRCM_COMMAND("/bin/cat /proc/net/dev | /bin/grep wl | awk '{ print substr($1, 0, length($1)-1); }'"));
    for (char line[50]; names.next(line);) {
        if (strchr(line, '.') != nullptr)
            continue;
        line[strcspn(line, "\r\n")] = '\0';
        registerRadio(hostOps, sock, line);
    }
    if (sock >= 0)
        close(sock);
}

// Hands the event handler over; false when the host does not take it.
bool handOver(const WlModuleHostOps *hostOps, int sock) {
    auto *handler = static_cast<WlEvtHandler *>(calloc(1, sizeof(WlEvtHandler)));
    if (handler == nullptr)
        return false;
    handler->init = qvbrcm_EvtInit;
    handler->receive = qvbrcm_EvtReceive;
    handler->sock = sock;
    if (hostOps->registerEvtHandler(kModuleName, handler) == 0)
        return true;
    free(handler);
    return false;
}

void registerEvents(const WlModuleHostOps *hostOps) {
    if (hostOps->registerEvtHandler == nullptr)
        return;
    int sock = -1;
    const bool open = qvbrcm_EvtInit(&sock) == WLBRCM_OK;
    if (open && handOver(hostOps, sock))
        return;
    // Nobody will read events or have them forwarded.
    if (sock >= 0)
        close(sock);
    if (open) {
        close(fenra_rpe_sock);
        fenra_rpe_sock = 0;
    }
}

// Hands the operations table over; false when the host does not take it.
bool registerOperations(const WlModuleHostOps *hostOps, void *arg) {
    auto *ops = static_cast<WlModuleOps *>(calloc(1, sizeof(WlModuleOps)));
    if (ops == nullptr)
        return false;
    memcpy(ops, &kOperations, sizeof *ops);
    if (hostOps->registerModule(ops, arg) == 0)
        return true;
    free(ops);
    return false;
}

// Without SIGCHLD the C library cannot tell how a command ended, and counts every one as failed.
void warnOfIgnoredChildren(Here here) {
    struct sigaction action = {};
    if (sigaction(SIGCHLD, nullptr, &action) == 0 &&
        (action.sa_handler == SIG_IGN || (action.sa_flags & SA_NOCLDWAIT) != 0))
        WLBRCM_LOG_AT(here, LOG_ERR, "SIGCHLD is ignored: every command will count as failed.\n");
}

} // namespace

int wlModuleInit(WlModuleHostOps *hostOps, void *arg) {
    if (hostOps == nullptr || hostOps->registerModule == nullptr)
        return -1;
    brcm_print_fn = hostOps->print;
    WLBRCM_LOG(LOG_DEBUG, "enter.\n");
    warnOfIgnoredChildren(WLBRCM_HERE);
    if (!registerOperations(hostOps, arg))
        return -1;
    registerEvents(hostOps);
    discoverRadios(hostOps);
    if (qvbrcm_MacFilter_init() != 0)
        return 0;
    WLBRCM_LOG(LOG_ERR, "fail to qvbrcm_MacFilter_init\n");
    return -1;
}
