// Reports of neighbouring access points: records, rate lists, names, and reports that are cut or garbage.
#include "tests/unit/fake_platform.h"

#include <memory>

#include "module/rates.h"
#include "scan/readers.h"

using namespace wlbrcm;

namespace {

using Aps = std::vector<WlScanAp>;

// Feeds a report line by line, as the driver's file is read.
Aps read(const std::string &report, int capacity = 8) {
    Aps records(static_cast<size_t>(capacity) + 1, WlScanAp{});
    ApReader reader("wl0", records.data(), capacity);
    for (size_t at = 0; at < report.size();) {
        const size_t newline = std::min(report.find('\n', at), report.size() - 1);
        const size_t length = std::min<size_t>(253, newline + 1 - at);
        reader.readLine(report.substr(at, length));
        at += length;
    }
    const int started = reader.finish();
    EXPECT_LE(started, capacity);
    const WlScanAp guard = {};
    EXPECT_EQ(0, memcmp(&guard, &records.back(), sizeof guard)) << "written behind the records";
    records.resize(static_cast<size_t>(started));
    return records;
}

WlScanAp one(const std::string &pieces) {
    const Aps aps = read("SSID: \"x\"\n" + pieces);
    EXPECT_EQ(1U, aps.size()) << pieces;
    return aps.empty() ? WlScanAp{} : aps[0];
}

// Two lines of one rate each that make a list of this length.
std::string ratesOfLength(size_t length) {
    const std::string first(200, '1'), second(length - first.size() - 1, '1');
    return "Supported Rates: [ " + first + " ]\nSupported Rates: [ " + second + " ]\n";
}

template <size_t Size> bool ends(const char (&field)[Size]) { return strnlen(field, Size) < Size; }

// What holds for every record, whatever the report was.
void expectSound(const WlScanAp &ap) {
    EXPECT_TRUE(ends(ap.ifName) && ends(ap.ssid) && ends(ap.bssid) && ends(ap.basicRates) && ends(ap.supportedRates));
    EXPECT_STREQ("wl0", ap.ifName);
    EXPECT_LE(strlen(ap.supportedRates), 255U);
    EXPECT_TRUE(ap.band >= 0 && ap.band <= 2 && ap.mode >= 0 && ap.mode <= 2 && ap.akm <= 2);
    EXPECT_EQ(0, (ap.phyModes & ~0x1f) | (ap.security & ~3) | (ap.ciphers & ~3));
    EXPECT_NE(0, ap.phyModes);
}

std::string decoded(const std::string &text) {
    std::vector<char> buffer(2 * text.size() + 512, '\x7f');
    memcpy(buffer.data(), text.c_str(), text.size() + 1);
    EXPECT_EQ(buffer.data(), formatSSID(buffer.data()));
    return buffer.data();
}

const std::string kReport = "SSID: \"my\\x20net\"\n"
                            "Mode: Managed\tRSSI: -45 dBm\tSNR: 50 dB\tnoise: -95 dBm\tFlags: RSN\tChannel: 36/80\n"
                            "BSSID: 00:11:22:33:44:55\tCapability: ESS WEP\n"
                            "Beacon Period: 100\tDTIM Period: 0x3\n"
                            "Supported Rates: [ 6(b) 9 12(b) 18 24(b) 36 48 54 ]\n"
                            "RSN (WPA2):\n\tmulticast cipher: AES-CCMP\n\tunicast ciphers(1): AES-CCMP\n"
                            "\tAKM Suites(1): WPA2-PSK\n"
                            "WPS: V2.0 Configured\n"
                            "VHT Capable:\n\tChanspec: 5GHz channel 42 80MHz (0xe02a)\n\tNSS1 Tx: 0-9\n\tNSS2 Tx: 0-9\n"
                            "SSID: \"\"\n"
                            "Mode: Ad Hoc\tRSSI: -70\tChannel: 11\n"
                            "Supported Rates: [ 1(b) 2(b) 5.5(b) 11(b) ]\n"
                            "WPA:\n\tunicast ciphers(2): TKIP AES-CCMP\n\tAKM Suites(1): WPA-802.1x\n";

} // namespace

TEST(AccessPoints, ARichReport) {
    const Aps aps = read(kReport);
    ASSERT_EQ(2U, aps.size());
    WlScanAp first = {}, second = {};
    strcpy(first.ifName, "wl0");
    strcpy(first.ssid, "my net");
    strcpy(first.bssid, "00:11:22:33:44:55");
    first.band = 1;
    first.bandwidth = 80;
    first.rssi = -45;
    first.wps = 1;
    first.channel = 42;
    first.beaconPeriod = 100;
    first.dtimPeriod = 3;
    first.noise = -95;
    first.phyModes = 0x1c;
    first.security = 2;
    first.akm = 2;
    first.ciphers = 2;
    first.mode = 1;
    strcpy(first.basicRates, "6,12,24");
    strcpy(first.supportedRates, "6,9,12,18,24,36,48,54,15,30,45,60,90,120,135,150,180,200,32.5,65,97.5,130,195,260,"
                                 "292.5,325,390,433.3,240,270,300,360,400,520,585,650,780,866.7");
    strcpy(second.ifName, "wl0");
    second.bandwidth = 20;
    second.rssi = -70;
    second.channel = 11;
    second.phyModes = 1;
    second.security = 1;
    second.akm = 1;
    second.ciphers = 3;
    second.mode = 2;
    strcpy(second.basicRates, "1,2,5.5,11");
    strcpy(second.supportedRates, "1,2,5.5,11");
    EXPECT_STREQ(first.supportedRates, aps[0].supportedRates);
    EXPECT_EQ(0, memcmp(&first, &aps[0], sizeof first));
    EXPECT_EQ(0, memcmp(&second, &aps[1], sizeof second));
}

TEST(AccessPoints, Pieces) {
    const struct {
        const char *pieces;
        int32_t WlScanAp::*field;
        int32_t value;
    } rows[] = {
        {"Chanspec: 2.4GHz channel 6 20MHz (0x1006)", &WlScanAp::band, 2},
        {"Chanspec: 2.4GHz channel 6 40MHz", &WlScanAp::bandwidth, 40},
        {"Chanspec: 5GHz channel 42 x\tRSSI: 7", &WlScanAp::bandwidth, 20}, // a failed scan leaves the rest
        {"Chanspec: 5GHz channel 42\t80MHz", &WlScanAp::bandwidth, 20},     // ends at its tab
        {"Chanspec:2.4GHz channel 6", &WlScanAp::band, 1}, // the first character of a value is its blank
        {"Chanspec", &WlScanAp::band, 0},
        {"Channel: 36/80", &WlScanAp::channel, 36},
        {"Channel: 36\n\tChanspec: 5GHz channel 42 80MHz", &WlScanAp::channel, 42},
        {"RSSI: 0x10", &WlScanAp::rssi, 16},
        {"RSSI: 5\nRSSI", &WlScanAp::rssi, 5}, // without a value
        {"\tRSSI: 5", &WlScanAp::rssi, 0},     // an indented key is another one
        {"Mode: Managed\nMode: other", &WlScanAp::mode, 1},
        {"x\tMode: Managed", &WlScanAp::mode, 0}, // the key reaches up to the colon
        {"Mode: Managed\t\n", &WlScanAp::mode, 1},
        {":\tMode: Managed", &WlScanAp::mode, 1},
    };
    for (const auto &row : rows)
        EXPECT_EQ(row.value, one(row.pieces).*row.field) << row.pieces;

    const struct {
        const char *pieces;
        uint16_t WlScanAp::*field;
        uint16_t value;
    } words[] = {
        {"WPA\n", &WlScanAp::security, 1},
        {"RSN", &WlScanAp::security, 2},
        {"RSNx: 1", &WlScanAp::security, 2},
        {"\tnew WPA2 key: 1", &WlScanAp::security, 2},
        {"WPA: 1\nRSN: 1", &WlScanAp::security, 3},
        {"\tRSN: 1", &WlScanAp::security, 0},
        {"AKM Suites: WPA2-PSK\n AKM Suites: 802.1x", &WlScanAp::akm, 1}, // the last line decides
        {"VHT Capable: ", &WlScanAp::phyModes, 1},                        // not in an unknown band
        {"HT Capable", &WlScanAp::phyModes, 0xb},
        {"Chanspec: 5GHz\nHT Capable", &WlScanAp::phyModes, 0xc},
        {"Chanspec: 5GHz", &WlScanAp::phyModes, 4},
        {"Supported Rates: [ 1 11.5 ]", &WlScanAp::phyModes, 1},
        {"Supported Rates: [ 1 12 ]", &WlScanAp::phyModes, 3},
        {"Supported Rates: 12", &WlScanAp::phyModes, 3},
        {"Supported Rates: x", &WlScanAp::phyModes, 1},
    };
    for (const auto &row : words)
        EXPECT_EQ(row.value, one(row.pieces).*row.field) << row.pieces;
    EXPECT_EQ(1, one("WPS\n").wps);
    EXPECT_EQ(0, one("WPSx\n").wps);
    EXPECT_STREQ("1234567890123456789012", one("BSSID: 12345678901234567890123").bssid);
    EXPECT_STREQ("00:11\n", one("BSSID: 00:11\n").bssid);
}

TEST(AccessPoints, StateBelongsToOneRecord) {
    const Aps aps = read("RSSI: -1\nMode: Managed\nSSID\nSSID: \"a\"\nHT Capable\nVHT Capable\nChannel: 5\n"
                         "Supported Rates: [ 54 ]\nSSID: \"b\"\nSSID: \"c\"\nChanspec: 5GHz\nSSID: \"d\"\nRSSI: -3\n",
                         3);
    ASSERT_EQ(3U, aps.size());
    EXPECT_EQ(0, aps[0].rssi);
    EXPECT_EQ(0, aps[0].mode);
    EXPECT_EQ(5, aps[0].channel);
    EXPECT_EQ(0xb, aps[0].phyModes);
    EXPECT_STREQ("b", aps[1].ssid);
    EXPECT_EQ(0, aps[1].channel);
    EXPECT_EQ(1, aps[1].phyModes);
    EXPECT_EQ(4, aps[2].phyModes);
    EXPECT_EQ(0, aps[2].rssi); // -3 belongs to the surplus one
}

TEST(AccessPoints, LegacyRates) {
    const struct {
        const char *value, *basic, *supported;
    } rows[] = {
        {"[ 1(b) 2(b) 5.5(b) 11(b) 6 ]", "1,2,5.5,11", "1,2,5.5,11,6"},
        {"[  6   9 ]", "", "6,9"},
        {"[ 6 9 12", "", ""},
        {"6 9 ]", "", ""},
        {"[ ]", "", ""},
        {"[]", "", ""},
        {"]", "", ""},
        {"] [ 6 ]", "", ""},
        {"[6 9]", "", ""}, // the first two characters and the last one are the brackets' blanks
        {"[ b xb 1(b) ]", "1", "1"},
    };
    for (const auto &row : rows) {
        const WlScanAp ap = one(std::string("Supported Rates: ") + row.value);
        EXPECT_STREQ(row.basic, ap.basicRates) << row.value;
        EXPECT_STREQ(row.supported, ap.supportedRates) << row.value;
    }
    // Two lines add up; a rate that would pass 255 characters is left out whole.
    EXPECT_EQ(255U, strlen(one(ratesOfLength(255)).supportedRates));
    EXPECT_EQ(200U, strlen(one(ratesOfLength(256)).supportedRates));
}

TEST(AccessPoints, McsRatesByWidthAndStreams) {
    const auto joined = [](const char *narrower, const char *own) { return std::string(narrower) + "," + own; };
    const struct {
        std::string pieces, rates;
    } rows[] = {
        {"Supported HT MCS: 0-7", htRates(20, 1)},
        {"Supported HT MCS: 0-15", htRates(20, 2)},
        {"Supported HT MCS: 0-23", htRates(20, 3)},
        {"Supported HT MCS: 0-7 31", htRates(20, 4)},
        {"Supported HT MCS: 0-6", ""},
        {"Supported HT MCS", ""},
        {"Chanspec: 2.4GHz channel 6 40MHz\n\tSupported HT MCS : 0-15", joined(htRates(20, 2), htRates(40, 2))},
        {"Chanspec: 2.4GHz channel 6 80MHz\n\tSupported HT MCS : 0-15", ""},
        {"Chanspec: 5GHz channel 36 20MHz\n\tSupported HT MCS: 0-15", ""},
        {"NSS1 Tx: 0-9", vhtRates(20, 1)},
        {"\tNSS3 Tx", vhtRates(20, 3)},
        {"Chanspec: 5GHz channel 38 40MHz\n\tNSS4 Tx: 0-9", joined(vhtRates(20, 4), vhtRates(40, 4))},
        {"Chanspec: 5GHz channel 42 80MHz\n\tNSS2 Tx: 0-9", joined(vhtRates(40, 2), vhtRates(80, 2))},
        {"Chanspec: 5GHz channel 50 160MHz\n\tNSS1 Tx: 0-9\n\tNSS2 Tx: 0-9", ""},
        {"Chanspec: 5GHz channel 1 -80MHz\n\tNSS1 Tx: 0-9", ""},
        {"Chanspec: 2.4GHz channel 6 20MHz\n\tNSS1 Tx: 0-9", ""},
    };
    for (const auto &row : rows)
        EXPECT_EQ(row.rates, one(row.pieces).supportedRates) << row.pieces;
    EXPECT_EQ(std::string("6,") + vhtRates(20, 1), one("Supported Rates: [ 6 ]\nNSS1 Tx: 1").supportedRates);
    EXPECT_STREQ("6", one("Supported Rates: [ 6 ]\nSupported HT MCS: 0").supportedRates); // no list, no comma
}

TEST(AccessPoints, RateListsEndAt255Characters) {
    const struct {
        size_t used;
        const char *rates, *added;
    } rows[] = {
        {0, "1,2", "1,2"},       {251, "1,2", ",1,2"},                           // 252 behind the comma, and 3: fits
        {252, "1,2", ",2"},      {253, "1,2", ",2"},          {254, "1,2", ","}, // no entry fits behind the comma
        {255, "1,2", ""},        {248, "12,345,6", ",345,6"}, {249, "12,345,6", ",345,6"},
        {250, "12,345,6", ",6"}, {249, "123456", ","},        {248, "123456", ",123456"},
    };
    for (const auto &row : rows) {
        char list[259] = "";
        memset(list, '9', row.used);
        addRates(list, row.rates);
        EXPECT_EQ(std::string(row.used, '9') + row.added, list) << row.used << " + " << row.rates;
    }
    // Further streams are only looked at below 251 characters; the first one always is.
    const auto lengthWith = [](size_t length, const char *piece) {
        return strlen(one(ratesOfLength(length) + piece).supportedRates);
    };
    EXPECT_EQ(251U, lengthWith(250, "NSS2 Tx: 0"));
    EXPECT_EQ(251U, lengthWith(251, "NSS2 Tx: 0"));
    EXPECT_EQ(252U, lengthWith(251, "NSS1 Tx: 0"));
}

TEST(AccessPoints, Names) {
    const struct {
        std::string value, ssid;
    } rows[] = {
        {"\"a b\"", "a b"},
        {"\"a\"b\"", "a"},
        {"\"open", ""},
        {"none", ""},
        {"", ""},
        {"\"\"", ""},
        {"\"$(reboot)`id`;\"", "$(reboot)`id`;"},
        {"\"a:b\"", "a:b"},
        {"\"" + std::string(150, 'x') + "\"", std::string(100, 'x')},
        {"\"" + std::string(240, '\\') + "\"", std::string(100, '\\')},
    };
    for (const auto &row : rows) {
        const Aps aps = read("SSID: " + row.value + "\n");
        ASSERT_EQ(1U, aps.size());
        EXPECT_EQ(row.ssid, aps[0].ssid) << row.value;
    }
}

TEST(AccessPoints, DecodedNames) {
    const std::string full(253, 'x'), nearly(251, 'x');
    const struct {
        std::string text, result;
    } rows[] = {
        {"", ""},
        {"\\x41\\x42", "AB"},
        {"\\xff\\xFE", "\xff\xfe"},
        {"\\", "\\\\"},
        {"\\n", "\\\\n"},
        {"\\X41", "\\\\X41"},
        {"\\xg1", "\\\\xg1"},
        {"\\x4", "\x04"}, // cut inside the escape: nothing behind the end is read
        {"\\x4g5", "\x04"
                   "5"},
        {"\\x", "\\\\x"},
        {"a\\x00b", "a"},
        {full, full},
        {full + "y", full},
        {nearly + "\\y", nearly + "\\\\"},
        {nearly + "y\\y", nearly + "y\\\\"}, // a doubled backslash at the last index is written whole
        {full + "\\", full},
        {nearly + "\\x41\\x42\\x43", nearly + "AB"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(row.result, decoded(row.text)) << row.text;
}

TEST(AccessPoints, EveryPrefixOfAReportIsSound) {
    for (size_t length = 0; length <= kReport.size(); ++length) {
        const Aps aps = read(kReport.substr(0, length));
        EXPECT_LE(aps.size(), 2U);
        for (const WlScanAp &ap : aps)
            expectSound(ap);
    }
}

class ScanResults : public PlatformTest {
  protected:
    int get() {
        list_.reset();
        WlScanAp *aps = nullptr;
        count = -1;
        Arg arg("wl0", "", "", 0, &aps);
        arg.record.aux = reinterpret_cast<char *>(&count);
        const int result = qvWlanGetScanApResults(arg);
        list_.reset(aps);
        EXPECT_EQ(result == 0, aps != nullptr && count != -1);
        return result;
    }
    void report(const std::string &text, const std::string &counted) {
        platform.answer("wlctl -i wl0 scanresults", text);
        platform.answer("cat /tmp/wl0scanresults | grep -c ^SSID", counted);
    }
    const WlScanAp *aps() const { return list_.get(); }
    int count = -1;

  private:
    std::unique_ptr<WlScanAp, decltype(&free)> list_{nullptr, free};
};

TEST_F(ScanResults, NothingToReadFails) {
    for (const char *counted : {"0\n", "-1\n", "", "many\n"}) {
        report(kReport, counted);
        EXPECT_EQ(-5, get()) << counted;
        EXPECT_EQ(Lines{}, platform.leftFiles());
    }
    report(kReport, "2\n");
    platform.failAllocation(0);
    EXPECT_EQ(-5, get());
    EXPECT_EQ(Lines{}, platform.leftFiles());
    platform.failPipe("cat /tmp/wl0scanresults | grep -c ^SSID");
    EXPECT_EQ(-5, get());
    EXPECT_EQ(Lines{}, platform.leftFiles());
    platform.forget();
    platform.loseOutput("wlctl -i wl0 scanresults");
    EXPECT_EQ(-5, get());
    EXPECT_EQ(Lines{}, platform.did("pipe"));
}

TEST_F(ScanResults, TheRadioLevelWrapper) {
    WlIntf intf = {};
    strcpy(intf.radio.ifName, "wl0");
    WlScanAp *list = nullptr;
    int found = 0;
    report(kReport, "2\n");
    EXPECT_EQ(0, qvbrcm_GetChanScanApRpt(&intf, &list, &found));
    EXPECT_EQ(2, found);
    free(list);
    EXPECT_EQ(-14, qvbrcm_GetChanScanApRpt(&intf, nullptr, &found));
    EXPECT_EQ(-14, qvbrcm_GetChanScanApRpt(&intf, &list, nullptr));
    EXPECT_EQ(Lines{}, platform.logged(WLBRCM_LOG_ERR));
    report(kReport, "0\n");
    EXPECT_EQ(-5, qvbrcm_GetChanScanApRpt(&intf, nullptr, nullptr));
    EXPECT_EQ(Lines{"WDS scan fail on wl0......\n"}, platform.logged(WLBRCM_LOG_ERR));
    memset(intf.radio.ifName, 'x', sizeof intf.radio.ifName); // not terminated
    EXPECT_EQ(-5, qvbrcm_GetChanScanApRpt(&intf, &list, &found));
    EXPECT_EQ("WDS scan fail on " + std::string(sizeof intf.radio.ifName, 'x') + "......\n",
              platform.logged(WLBRCM_LOG_ERR).back());
}
