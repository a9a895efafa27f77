/* A host that checks nothing: it fills the records with texts that a shell would run, and brings the radio up.
 * Usage: hostile_host CASE; messages of level 4 go to stdout. */
#include <dlfcn.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wlbrcm/wlbrcm.h>

#define RUNS "; touch /tmp/owned"
#define PUT(field, text) snprintf(field, sizeof(field), "%s", text)

static WlModuleOps *ops;
static WlIntf *radio;
static WlLanMember members[6];
static WlLanGroup group = {"br0", 1, "02:00:00:00:00:01", members};
static WlLanCfg lan = {1, &group};

static int keepOps(WlModuleOps *table, void *arg) { return (void)arg, ops = table, 0; }
static int keepRadio(WlIntf *intf, const char *module) { return (void)module, radio ? 1 : (radio = intf, 0); }

static void print(int level, const char *module, const char *function, int line, const char *format, ...) {
    va_list args;
    if (level != WLBRCM_LOG_ERR)
        return;
    printf("%s %s:%d ", module, function, line);
    va_start(args, format);
    vprintf(format, args);
    va_end(args);
}

static void addNetwork(int index, const char *name) {
    WlSsidCfg *b = &radio->bss[index];
    snprintf(b->ifName, sizeof b->ifName, index ? "%s.%d" : "%s", radio->intfName, index);
    b->valid = b->enable = 1, b->maxSta = 32;
    PUT(b->ssidName, name), PUT(b->bridge, "br0");
    PUT(b->authMode, "wpa2psk"), PUT(b->encryption, "aes"), PUT(b->wpaPsk, "correct horse");
}

/* A sane network first: whatever the others hold, stations join this one. */
static void fillRadio(void) {
    WlRadioCfg *r = &radio->radio;
    PUT(r->ifName, radio->intfName), PUT(r->countryCode, "DE/3");
    r->radioIndex = r->radioOn = 1, r->bssCount = 1, r->wirelessMode = 9, r->mcs = -1, r->txPower = 100, r->band = 1;
    r->channel = 36, r->bandwidth = 80, r->beaconPeriod = 100, r->dtimPeriod = 1, r->rtsThreshold = 2347;
    r->fragThreshold = 2346;
    memcpy(r->baseMac, radio->macAddr, 6);
    addNetwork(0, "sane");
    PUT(members[0].ifName, radio->intfName);
}

static void entries(void) {
    WlSsidCfg *b = radio->bss;
    radio->radio.bssCount = 6;
    for (int i = 1; i < 6; i++) {
        addNetwork(i, "$(touch /tmp/owned)");
        PUT(members[i].ifName, b[i].ifName);
    }
    group.memberCount = 6;
    PUT(b[1].bridge, "br0" RUNS);
    PUT(b[2].ifName, "wl0.2" RUNS);
    PUT(b[3].wpaPsk, "`touch /tmp/owned`'\"" RUNS), PUT(b[3].bridge, "-x");
    PUT(b[4].macFilterMode, "DENY"), PUT(b[4].macFilterList, "02:00:00:00:00:01" RUNS);
    PUT(b[5].ifName, "wl0.5-and-a-name-that-is-longer-than-any-interface-name"), PUT(b[5].radiusKey, RUNS);
    PUT(b[5].radiusIpaddr, RUNS), PUT(b[0].wpsUuid, RUNS), b[0].wpsEnable = 1;
}

static void settings(void) {
    WlRadioCfg *r = &radio->radio;
    PUT(r->acsSkipList, "1" RUNS), PUT(r->wdsMacList, "02:00:00:00:00:01" RUNS);
    PUT(r->phyType, ";id");
    r->bssCount = 6;
}

static void radioName(void) { PUT(radio->radio.ifName, "wl0" RUNS); }
static void words(void) { PUT(radio->radio.countryCode, "DE;>owned"), PUT(radio->radio.wdsMode, ";>owned"); }

static void groups(void) {
    PUT(group.name, "br0" RUNS), PUT(group.hwaddr, ";>/tmp/owned");
    group.memberCount = 2;
    PUT(members[1].ifName, "eth0;>owned");
}

/* Every text of one network runs into the next one. */
static void unterminated(void) {
    WlSsidCfg *b = &radio->bss[1];
    addNetwork(1, "");
    radio->radio.bssCount = 2;
    memset(b, 'A', sizeof *b);
    b->valid = b->enable = 1, b->upstreamRate = b->downstreamRate = 0, b->presetRole = 0, b->wpsEnable = 0;
}

static void operations(void) {
    uint8_t mac[6] = {2, 0, 0, 0, 0, 1};
    WlIntfInfo info;
    int fat;
    radio->bss[0].wpsEnable = 1;
    printf("preset %d\n", ops->enablePresetSsid("wl0.1" RUNS, 1));
    printf("ban %d\n", ops->bsaMacFilter("wl0" RUNS, 1, mac));
    printf("kick %d\n", ops->disassociateSta("wl0", "02:00:00:00:00:01" RUNS));
    printf("kick %d\n", ops->disassociateSta("wl0" RUNS, "02:00:00:00:00:01"));
    printf("info %d\n", ops->getGenIntfInfo("wl0" RUNS, 0, &info));
    printf("fat %d\n", ops->getFatIntfInfo("wl0" RUNS, 0, &fat));
    printf("pin %d\n", ops->wpsStartStaPin(radio, "12345670" RUNS));
    printf("filter %d\n", ops->stationFilter(radio, "%s%n" RUNS));
}

static const struct {
    const char *name;
    void (*fill)(void);
} kCases[] = {{"entries", entries}, {"settings", settings},         {"radio", radioName},      {"words", words},
              {"lan", groups},      {"unterminated", unterminated}, {"operations", operations}};

int main(int argc, char **argv) {
    void *library = dlopen("libwlbrcm.so.1", RTLD_NOW);
    int (*init)(WlModuleHostOps *, void *) = NULL;
    WlModuleHostOps host = {keepOps, keepRadio, NULL, print};
    if (library == NULL || argc != 2)
        return fprintf(stderr, "%s\n", library ? "which case?" : dlerror()), 2;
    *(void **)&init = dlsym(library, "wlModuleInit");
    if (init(&host, NULL) != 0 || radio == NULL)
        return 2;
    fillRadio();
    for (size_t i = 0; i < sizeof kCases / sizeof *kCases; i++)
        if (strcmp(kCases[i].name, argv[1]) == 0)
            return kCases[i].fill(), printf("result %d\n", ops->initWlan(radio, &lan)), 0;
    return 2;
}
