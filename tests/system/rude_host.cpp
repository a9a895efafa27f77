// A host that takes no care of its process. Usage: rude_host STEP...; prints the number that each step gave, and the
// module's messages of level 4. A result file is a step too: an operation that reads it. Without a step these are
// listed, each with the number that it should give.
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/time.h>
#include <unistd.h>
#include <wlbrcm/wlbrcm.h>

static char wl0[] = "wl0", phy[] = "v", mode[] = "5GHz 9", width[] = "5GHz,80,both", country[] = "DE/3";
static char text[WLBRCM_CHANNEL_LIST_SIZE];
static int number;
static void *list;
static WlIntf radio;
static WlLanCfg lan;
static WlTrafficCounters counters;
static WlIntfInfo beacon;
static WlStaInfo station, *stations;

static WlanParamArg *arg(void *value = nullptr, void *result = nullptr, void *aux = nullptr) {
    static WlanParamArg record;
    record = {wl0, static_cast<char *>(value), static_cast<char *>(aux), result, 0};
    return &record;
}

static void print(int level, const char *module, const char *function, int line, const char *format, ...) {
    va_list args;
    va_start(args, format);
    if (level == WLBRCM_LOG_ERR && printf("%s %s:%d ", module, function, line) > 0)
        vprintf(format, args);
    va_end(args);
}

static void fillRadio() {
    WlRadioCfg &r = radio.radio;
    WlSsidCfg &b = radio.bss[0];
    strcpy(r.ifName, wl0), strcpy(r.countryCode, country), memcpy(r.baseMac, "\0\x10\x18\xaa\xbb\xc0", 6);
    r.radioIndex = r.radioOn = 1, r.bssCount = 1, r.band = WLBRCM_BAND_5G, r.channel = 36, r.bandwidth = 80;
    r.wirelessMode = 9, r.mcs = -1, r.txPower = 100, r.beaconPeriod = 100, r.dtimPeriod = 1;
    strcpy(b.ifName, wl0), strcpy(b.ssidName, "rude"), strcpy(b.bridge, "br0"), strcpy(b.authMode, "wpa2psk");
    strcpy(b.encryption, "aes"), strcpy(b.wpaPsk, "correct horse"), b.presetRole = WLBRCM_PRESET_ANNOUNCER;
    b.valid = b.enable = b.wpsEnable = b.wpsPbcEnable = b.wpsConfigured = radio.caps.wpsCapable = 1, b.maxSta = 32;
}

static int discover() {
    WlModuleHostOps host = {[](WlModuleOps *, void *) { return 0; }, [](WlIntf *, const char *) { return ++number; },
                            nullptr, print};
    return wlModuleInit(&host, nullptr), number;
}

static int openMany() {
    for (number = 0; number >= 0 && number < 1100;)
        number = dup(0);
    return number;
}

static int interrupt() {
    struct sigaction action = {}; // without SA_RESTART
    action.sa_handler = [](int) {};
    const itimerval often = {{0, 500}, {0, 500}}; // several times within the shortest command
    return sigaction(SIGALRM, &action, nullptr) + setitimer(ITIMER_REAL, &often, nullptr);
}

static const struct {
    const char *name;
    int (*run)();
    int normal;
} kSteps[] = {
    {"interrupt", interrupt, 0},
    {"open-many", openMany, 1100},
    {"ignore-children", [] { return signal(SIGCHLD, SIG_IGN) == SIG_ERR ? -1 : 0; }, 0},
    {"discover", discover, 2},
    {"start", [] { return qvbrcm_InitWlan(&radio, &lan); }, 0},
    {"scan", [] { return qvbrcm_ChannelScan(&radio); }, 0},
    {"traffic", [] { return qvWlanGetTrafficInfo(wl0, &counters), int(counters.rxbadda); }, 4711},
    {"announce", [] { return qvbrcm_ChannelSwitchAnnounce(&radio.radio, radio.bss), 0; }, 0},
    {"press", [] { return qvbrcm_WPSSWPushButton(&radio); }, 0},
    {"cancel", [] { return qvbrcm_WPSCancel(&radio); }, 0},
    {"session", [] { return wps_config_command = -1, get_wps_env(), int(wps_config_command); }, 1},
    {"/tmp/wl0_ChipInfo", [] { return qvWlanGetBandType(wl0); }, WLBRCM_BAND_5G},
    {"/tmp/wl0_phytype", [] { return int(*qvWlanGetPhyType(wl0)); }, 'v'},
    {"/tmp/wl0_revinfo", [] { return checkWlanTxBFCap(wl0); }, 1},
    {"/tmp/wl0_txchain", [] { return checkWlanTxBFCap(wl0); }, 1},
    {"/tmp/wl0_cap", [] { return qvWlanGetMaxMbss(wl0); }, 4},
    {"/tmp/wl0_status", [] { return qvWlanGetMaxBitRate(arg(phy)); }, 1733},
    {"/tmp/wl0_rate", [] { return qvWlanRateUpdate(arg(mode, text)), atoi(text); }, 1733},
    {"/tmp/wl0_radio_st", [] { return qvWlanGetRadioStatus(arg(nullptr, &number)), number; }, 1},
    {"/tmp/wl0_mac_filter_list", [] { return qvWlanGetMacAuthList(arg()); }, 0},
    {"/tmp/wl0chspeclist", [] { return qvWlanChannelList(arg(width, text, country)), int(strlen(text)); }, 55},
    {"/var/wl0chlist", [] { return qvWlanGetValidChannel(arg(nullptr, text)), int(strlen(text)); }, 67},
    {"/tmp/wl0rateset.txt", [] { return qvWlanGetDataTxRates(arg(), 9, 80, WLBRCM_BAND_5G); }, 0},
    {"/tmp/wl0DataTxRates.txt", [] { return qvWlanGetDataTxRates(arg(), 9, 80, WLBRCM_BAND_5G); }, 0},
    {"/tmp/wlctl_tp_id", [] { return get_event_pid(wl0) > 0 ? 1 : -1; }, 1},
    {"/tmp/.fat_info", [] { return qvbrcm_GetFatIntfInfo(wl0, 0, &number), number; }, 89},
    {"/tmp/.cur_channel", [] { return qvWlanGetCurrentCh(arg()); }, 36},
    {"/tmp/.noise_result", [] { return qvWlanGetNoise(arg(nullptr, &number)), number; }, -92},
    {"/tmp/wl0_acs_dump_res", [] { return qvWlanDumpCSRes(arg(&radio.radio.band, &list, &number)), number; }, 19},
    {"/tmp/wl0scanresults", [] { return qvWlanGetScanApResults(arg(nullptr, &list, &number)), number; }, 3},
    {"/tmp/.intf_info_result", [] { return qvbrcm_GetGenIntfInfo(wl0, 0, &beacon), int(beacon.ieFlags); }, 6},
    {"/tmp/.assoclist_result_wl0", [] { return qvbrcm_GetAssocDevList(&radio, 0, &stations, &number), number; }, 1},
    {"/tmp/.sta_result", [] { return get_sta_info(wl0, "02:00:00:00:00:01", &station), int(station.rssi); }, -50},
};

int main(int argc, char **argv) {
    brcm_print_fn = print;
    fillRadio();
    for (const auto &step : kSteps) {
        if (argc == 1 && step.name[0] == '/')
            printf("%s %d\n", step.name, step.normal);
    }
    for (int i = 1; i < argc; i++) {
        for (const auto &step : kSteps) {
            if (strcmp(argv[i], step.name) == 0)
                printf("%s %d\n", step.name, step.run());
        }
    }
}
