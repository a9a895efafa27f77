// Stations, scans, rates and beacons as the host tells them.
#include "tests/unit/host_fixture.h"

#include <climits>

#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/commands/beacon_elements.h"
#include "host/commands/driver_report.h"
#include "host/commands/station_events.h"

namespace wlhost {
namespace {

// What the module answers.
std::vector<WlStaInfo> associated;
std::vector<WlScanAp> neighbours;
std::vector<WlChanScanInfo> dumped;
int reportResult, freeAir;
const char *ratesDone;

template <typename Record> void handOut(const std::vector<Record> &records, Record **list, int *count) {
    *list = records.empty() ? nullptr : static_cast<Record *>(copied(records.data(), records.size() * sizeof(Record)));
    *count = records.empty() ? INT_MAX : static_cast<int>(records.size()); // meaningful only with records
}
int stationsOf(WlIntf *intf, int bss, WlStaInfo **list, int *count) {
    handOut(bss == 0 ? associated : std::vector<WlStaInfo>{}, list, count);
    return called("stations", intf->intfName, std::to_string(bss));
}
int disassociate(const char *ifname, const char *mac) { return called("kick", ifname, mac); }
int scanNow(WlIntf *intf) { return called("scan", intf->intfName); }
int scanReport(WlIntf *, WlChanScanInfo **channels, int *channelCount, WlScanAp **aps, int *apCount) {
    if (reportResult != 0)
        return reportResult;
    handOut(dumped, channels, channelCount);
    handOut(neighbours, aps, apCount);
    return 0;
}
int loadOf(const char *ifname, int bss, int *free) {
    if (freeAir != INT_MIN)
        *free = freeAir;
    return called("load", ifname, std::to_string(bss));
}
int beaconOf(const char *ifname, int bss, WlIntfInfo *info) {
    info->capabilities = bss == 0 ? 0x0411 : 0;
    return called("beacon", ifname, std::to_string(bss));
}
int rateItems(WlIntf *, WlStatusItem *items, int count) {
    for (int i = 0; i < count; ++i) {
        if (std::string(items[i].name) == "DataTransmitRates" && ratesDone)
            items[i].value = strdup(ratesDone);
        else if (std::string(items[i].name) == "CurRate")
            items[i].value = strdup("866 Mbps");
    }
    return 0;
}

WlStaInfo station(const char *mac, int rssi) {
    WlStaInfo record{};
    copyText(record.ifName, "wl0");
    copyText(record.macAddr, mac);
    record.rssi = rssi, record.noise = -90, record.snr = rssi + 90, record.phyMode = 16;
    record.rxBytes = 5000000000;
    return record;
}

class HostAir : public HostCommands {
  protected:
    HostAir() {
        associated = {station("02:00:00:00:00:0A", -70), station("02:00:00:00:00:0B", 0),
                      station("02:00:00:00:00:0C", -40)};
        neighbours.assign(1, {}), dumped.assign(2, {});
        reportResult = 0, freeAir = 85, ratesDone = "Done";
        ops_.getAssocDevList = stationsOf, ops_.disassociateSta = disassociate, ops_.channelScan = scanNow;
        ops_.getChanScanRpt = scanReport, ops_.getFatIntfInfo = loadOf, ops_.getGenIntfInfo = beaconOf;
        ops_.statusUpdate = rateItems;
        calls.clear();
    }
    ~HostAir() override { std::filesystem::remove("/tmp/wl0DataTxRates.txt"); }
};

TEST_F(HostAir, Stations) {
    json rows = result("stations", {{"interface", "wl0"}});
    sortRows(rows, *columnOf(findCommand("stations")->columns, "signal"));
    ASSERT_EQ(rows.size(), 3u);
    expectHas(rows[0], {{"mac", "02:00:00:00:00:0c"},
                        {"signal_dbm", -40},
                        {"snr_db", 50},
                        {"mode", "ac"},
                        {"rx_bytes", 5000000000},
                        {"width_mhz", nullptr},
                        {"rx_rate_kbps", nullptr}});
    expectHas(rows[2], {{"signal_dbm", nullptr}, {"snr_db", nullptr}}); // 0 is what an unheard station has
    EXPECT_EQ(result("stations", {{"interface", "wl0.1"}}), json::array());
    EXPECT_EQ(result("stations").size(), 6u);
    EXPECT_EQ(calls, (Calls{"stations wl0 0", "stations wl0 1", "stations wl0 0", "stations wl0 1", "stations wl1 0"}));
    EXPECT_EQ(ask("stations", {{"interface", "wl3"}})["status"], Status::kNotFound);
    operationResult = -5;
    EXPECT_EQ(ask("stations")["status"], Status::kFailed) << "a failure is no empty list";
}

TEST_F(HostAir, KickOfStationsThatAreThere) {
    EXPECT_EQ(result("kick", {{"interface", "wl0"}, {"station", "02-00-00-00-00-0a"}})["kicked"], "02:00:00:00:00:0a");
    EXPECT_EQ(calls.back(), "kick wl0 02:00:00:00:00:0A");
    calls.clear();
    json absent = ask("kick", {{"interface", "wl0"}, {"station", "02:00:00:00:00:0d"}});
    EXPECT_EQ(absent["status"], Status::kNotFound);
    EXPECT_EQ(absent["error"]["hint"], "associated: 02:00:00:00:00:0a, 02:00:00:00:00:0b, 02:00:00:00:00:0c");
    EXPECT_EQ(ask("kick", {{"interface", "wl0.1"}, {"station", "02:00:00:00:00:0a"}})["error"]["hint"],
              "associated: none");
    EXPECT_EQ(ask("kick", {{"interface", "wl0"}, {"station", "02:00"}})["status"], Status::kUsage);
    EXPECT_EQ(calls, (Calls{"stations wl0 0", "stations wl0 1"}));
}

TEST_F(HostAir, ScanKeepsBytesAndTellsUnknownFromZero) {
    WlScanAp &ap = neighbours[0];
    copyText(ap.ssid, "caf\xe9 \x1b[2J");
    copyText(ap.bssid, "02:00:5E:00:10:01");
    ap.band = WLBRCM_BAND_5G, ap.rssi = -61, ap.security = 3, ap.akm = 2, ap.ciphers = 3, ap.phyModes = 0x1c;
    copyText(ap.supportedRates, "6,5.5,,x,9y,0,-1,1733.2,1e9");
    json row = result("scan", {{"radio", "wl0"}})[0];
    EXPECT_EQ(row["supported_rates_mbps"].dump(), "[6,5.5,1733.2]");
    expectHas(row, {{"ssid", "caf\\xe9 \\x1b[2J"},
                    {"ssid_hex", "636166e9201b5b324a"},
                    {"bssid", "02:00:5e:00:10:01"},
                    {"security", "psk-mixed"},
                    {"ciphers", {"tkip", "ccmp"}},
                    {"modes", {"a", "n", "ac"}},
                    {"noise_dbm", nullptr},
                    {"channel", nullptr},
                    {"ad_hoc", nullptr}});
    result("scan", {{"cached", true}});
    EXPECT_EQ(calls, (Calls{"scan wl0"})) << "a cached scan asks for none";

    struct {
        uint16_t bits, akm;
        const char *name;
    } securities[] = {{0, 0, "open/wep"}, {1, 2, "psk"},  {2, 2, "psk2"},
                      {1, 1, "wpa"},      {2, 1, "wpa2"}, {3, 0, "wpa-mixed"}};
    for (const auto &known : securities) {
        ap.security = known.bits, ap.akm = known.akm;
        EXPECT_EQ(result("scan", {{"cached", true}})[0]["security"], known.name);
    }
}

TEST_F(HostAir, FailedScansAreErrors) {
    reportResult = -14;
    for (const char *command : {"scan", "survey"})
        EXPECT_EQ(ask(command)["error"]["text"], "there is no scan report; getChanScanRpt returned -14");
    operationResult = -5;
    calls.clear();
    EXPECT_EQ(ask("scan")["error"]["text"], "channelScan returned -5");
    EXPECT_EQ(calls, (Calls{"scan wl0"}));
    EXPECT_EQ(ask("survey", {{"radio", "wl2"}})["error"]["hint"], "configured: wl0, wl1");
}

TEST_F(HostAir, SurveyCountsChannels) {
    dumped[0].channel = 36, dumped[0].band = 5, dumped[0].bssNum = 80, dumped[0].valid = 1;
    dumped.push_back(dumped[0]);
    dumped[2].channel = 40, dumped[2].bssNum = 1;
    json rows = result("survey", {{"radio", "wl0"}});
    ASSERT_EQ(rows.size(), 2u) << "the record in the middle is empty";
    EXPECT_EQ(rows[0]["bss_count"], 80);
    rows[1]["current"] = true;
    EXPECT_EQ(shown("survey", rows), "RADIO  BAND  CHAN   BSS\n"
                                     "wl0    5GHz    36    80  ########################################\n"
                                     "wl0    5GHz    40*    1  #\n");
}

TEST_F(HostAir, RatesComeFromTheirFile) {
    std::ofstream("/tmp/wl0DataTxRates.txt") << "6,12,24:BasR\n:SupR\n5:Oth\nnonsense\n";
    json row = result("rates", {{"radio", "wl0"}})[0];
    expectHas(row, {{"basic_rates_mbps", {6, 12, 24}},
                    {"supported_rates_mbps", json::array()},
                    {"current_rate_kbps", 866000},
                    {"max_rate_mbps", nullptr}});
    for (const char *answer : {"Fail", static_cast<const char *>(nullptr)}) {
        ratesDone = answer;
        EXPECT_EQ(ask("rates", {{"radio", "wl0"}})["status"], Status::kFailed);
    }
    ratesDone = "Done";
    std::filesystem::remove("/tmp/wl0DataTxRates.txt");
    EXPECT_EQ(ask("rates", {{"radio", "wl0"}})["error"]["text"], "cannot be read");
}

TEST_F(HostAir, LoadAndBeaconNameTheBss) {
    EXPECT_EQ(result("load", {{"interface", "wl0.1"}})[0]["busy_percent"], 15);
    EXPECT_EQ(shown("load", result("load")), "IF   BUSY  FREE\nwl0  15 %  85 %\nwl1  15 %  85 %\n");
    EXPECT_EQ(calls, (Calls{"load wl0 1", "load wl0 0", "load wl1 0"}));
    freeAir = INT_MIN;
    EXPECT_TRUE(result("load")[0]["free_percent"].is_null());
    EXPECT_EQ(ask("load", {{"interface", "wl0"}})["status"], Status::kFailed);
    EXPECT_EQ(result("beacon", {{"interface", "wl0"}})[0]["capabilities"], (json{"ess", "privacy", "short-slot"}));
    EXPECT_EQ(ask("beacon", {{"interface", "wl0.1"}})["error"]["text"], "the driver gave no beacon");
    EXPECT_TRUE(result("beacon")[1]["capabilities"].is_null());
}

TEST(HostBeacon, ElementsAreDecoded) {
    WlIntfInfo info{};
    expectHas(beaconRow("wl0", info), {{"ht", nullptr}, {"vht", nullptr}, {"capabilities", nullptr}});
    info.ieFlags = 0x6;
    const uint8_t ht[] = {0xef, 0x09, 0x17, 0xff, 0xff, 0xff, 0x00}, vht[] = {0xb2, 0x01, 0x88, 0x0f, 0xea, 0xff};
    std::memcpy(info.htCap, ht, sizeof ht);
    std::memcpy(info.vhtCap, vht, sizeof vht);
    info.htInfoId = 61, info.htInfo[0] = 36, info.htInfo[1] = 3;
    json row = beaconRow("wl0", info);
    expectHas(row["ht"], {{"capabilities", {"ldpc", "40mhz", "short-gi-20", "short-gi-40", "tx-stbc", "amsdu-7935"}},
                          {"streams", 3},
                          {"rx_stbc_streams", 1},
                          {"secondary_channel", "below"},
                          {"sm_power_save", "disabled"}});
    expectHas(row["vht"], {{"capabilities", {"rx-ldpc", "short-gi-80", "tx-stbc", "mu-beamformer"}},
                           {"streams", 3},
                           {"max_mpdu_bytes", 11454},
                           {"width_mhz", nullptr}}); // no VHT Operation element
    info.vhtOpId = 192, info.vhtOp[0] = 1, info.vhtOp[1] = 42;
    EXPECT_EQ(beaconRow("wl0", info)["vht"]["center_channel"], 42);
    info.vhtCap[4] = info.vhtCap[5] = 0; // all eight streams
    EXPECT_EQ(beaconRow("wl0", info)["vht"]["streams"], 8);
}

// A message of the driver: type, status and reason, about 02:00:00:00:00:0a on wl0.1.
std::string message(uint32_t type, uint32_t status, uint32_t reason, const std::string &interface = "wl0.1") {
    std::string text(72, '\0');
    text[23] = 1;
    text[31] = static_cast<char>(type), text[35] = static_cast<char>(status), text[39] = static_cast<char>(reason);
    text[48] = 2, text[53] = 10;
    return text.replace(54, interface.size(), interface);
}

TEST(HostEvents, RowsSayWhoAndWhatIsKnown) {
    WlEvent event{};
    copyText(event.radioName, "wl0"), copyText(event.ifName, "wl0.1");
    event.event = WLBRCM_EVENT_ASSOCIATED;
    WlStaInfo joined = station("02:00:00:00:00:0A", -50);
    std::memcpy(event.sta, &joined, sizeof joined);
    json row = eventRow(event);
    // The interface is the event's, not the station record's.
    expectHas(row, {{"event", "associated"}, {"interface", "wl0.1"}, {"signal_dbm", -50}});
    addReport(row, *readReport(message(8, 1, 0)));
    expectHas(row, {{"event", "refused"}, {"status_code", 1}, {"reason", nullptr}});
    event.event = WLBRCM_EVENT_DEAUTHENTICATED;
    row = eventRow(event);
    EXPECT_FALSE(row.contains("rx_bytes"));
    addReport(row, *readReport(message(6, 0, 15)));
    row.update({{"sequence", 8}, {"time", "now"}});
    EXPECT_EQ(shown("events", row), "8 now wl0.1 02:00:00:00:00:0a deauthenticated 4-way-handshake-timeout reason 15");
    copyText(event.ifName, "\x1b[2J");
    event.event = 99;
    expectHas(eventRow(event), {{"event", nullptr}, {"interface", "\\x1b[2J"}});
}

TEST(HostEvents, WhatTheModuleKeepsToItselfIsTold) {
    struct {
        uint32_t type, status, reason;
        json event, word;
    } cases[] = {{23, 0, 3, "refused", "mac-filter"}, {23, 0, 99, "refused", nullptr},
                 {4, 1, 0, "refused", nullptr},       {4, 0, 0, nullptr, nullptr},
                 {137, 0, 0, nullptr, nullptr},       {12, 0, 8, "disassociated", "station-left"}};
    for (const auto &row : cases) {
        json event = unrecordedEvent(*readReport(message(row.type, row.status, row.reason)));
        EXPECT_EQ(event.is_null(), row.event.is_null()) << row.type;
        if (!event.is_null())
            expectHas(event, {{"event", row.event}, {"reason", row.word}});
    }
    json event = unrecordedEvent(*readReport(message(12, 0, 8, "0123456789.bcdef")));
    expectHas(event, {{"interface", "0123456789.bcdef"}, {"radio", "0123456789"}, {"mac", "02:00:00:00:00:0a"}});
    EXPECT_FALSE(readReport(message(12, 0, 8).substr(0, 69))) << "cut";
    EXPECT_FALSE(readReport(std::string(72, '\0'))) << "another protocol";
}

TEST(HostEvents, SubscribersGetWhatTheyAskedFor) {
    const json left = {{"event", "disassociated"}, {"interface", "wl0"}, {"mac", "02:00:00:00:00:0a"}};
    struct {
        json subscription;
        bool wanted;
    } cases[] = {{{{"interface", nullptr}, {"station", nullptr}, {"kinds", json::array()}}, true},
                 {{{"interface", "wl0"}, {"station", "02:00:00:00:00:0a"}, {"kinds", {"wps", "disassociated"}}}, true},
                 {{{"interface", "wl0.1"}}, false},
                 {{{"station", "02:00:00:00:00:0b"}}, false},
                 {{{"kinds", {"associated"}}}, false}};
    for (const auto &row : cases) {
        EXPECT_EQ(isWanted(left, row.subscription), row.wanted) << row.subscription;
        EXPECT_TRUE(isWanted({{"event", "host-ended"}}, row.subscription)) << row.subscription;
    }
}

} // namespace
} // namespace wlhost
