// The readers of one line or of a few words. What each is to make of a text stands in the tables of the unit tests;
// here stands what holds for any text.
#include "tests/fuzz/target.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>
#include <numeric>

#include "macfilter/pool.h"
#include "module/numbers.h"
#include "status/readers.h"

using namespace wlbrcm;

namespace {

// What strtoul() with 32 bits would give, on a processor of any width.
uint32_t expectedUnsigned(const char *text, int base) {
    const char *digits = text + strspn(text, " \t\n\v\f\r");
    const bool negative = *digits == '-';
    if (*digits == '-' || *digits == '+')
        ++digits;
    errno = 0;
    const unsigned long long number =
        isalnum(static_cast<unsigned char>(*digits)) ? strtoull(digits, nullptr, base) : 0;
    if (errno == ERANGE || number > UINT32_MAX)
        return UINT32_MAX;
    return static_cast<uint32_t>(negative ? 0 - number : number);
}

int expectedDecimal(const char *text) {
    const long long number = strtoll(text, nullptr, 10);
    return number > INT_MAX ? INT_MAX : number < INT_MIN ? INT_MIN : static_cast<int>(number);
}

FUZZ_TARGET(numbers) {
    const std::string text = input.substr(0, input.find('\0'));
    HOLDS(unsignedNumber(text) == expectedUnsigned(text.c_str(), 0));
    HOLDS(hexNumber(text) == expectedUnsigned(text.c_str(), 16));
    HOLDS(decimalNumber(text) == expectedDecimal(text.c_str()));

    // A conversion of a scan ends where libc's does, and without a number it changes nothing.
    int number = 7, expected = 7, end = 0;
    std::string_view rest = text;
    const bool found = takeDecimal(&rest, &number);
    HOLDS(found == (sscanf(text.c_str(), "%d%n", &expected, &end) == 1));
    HOLDS(found ? number == expectedDecimal(text.c_str()) : number == 7);
    HOLDS(!found || rest == std::string_view(text).substr(static_cast<size_t>(end)));

    uint32_t hex = 7;
    rest = text;
    HOLDS(takeHex(&rest, &hex) ? rest.size() < text.size() : hex == 7);
    std::string_view word;
    rest = text;
    if (takeWord(&rest, 5, &word)) {
        HOLDS(!word.empty() && word.size() <= 5 && word.find_first_of(" \t\n\v\f\r") == std::string_view::npos);
        HOLDS(word.data() + word.size() == rest.data());
    }
}

bool readChannelInfo(const std::string &report, WlChannelInfo *info) {
    const fuzz::Gateway gateway{{"wlctl -i wl0 chanspec", report}};
    Arg arg("wl0", "", "", 0, info);
    const int result = qvWlanGetCurrentChannelInfo(arg);
    HOLDS(result == 0 || result == WLBRCM_EFAILED);
    HOLDS(qvWlanGetCurrentCh(arg) == (result == 0 ? info->channel : -1));
    return result == 0;
}

FUZZ_TARGET(chanspec) {
    uint32_t number = 0;
    WlChannelInfo decoded = {};
    if (readChanspec(input, &number) && decodeChanspec(number, &decoded))
        HOLDS(decoded.chanspec == number);

    WlChannelInfo info, untouched;
    memset(&untouched, 0x5a, sizeof untouched);
    info = untouched;
    if (!readChannelInfo(input, &info)) {
        HOLDS(fuzz::same(info, untouched));
        return;
    }
    const int offset = info.channel - (info.chanspec & 0xff);
    HOLDS(info.chanspec != 0 && (info.band == 2 || info.band == 5));
    if (info.bandwidth == 20)
        HOLDS(info.sideband == 0 && offset == 0);
    else if (info.bandwidth == 40)
        HOLDS(info.sideband >= 1 && info.sideband <= 2 && abs(offset) == 2);
    else
        HOLDS(info.bandwidth == 80 && info.sideband >= 3 && info.sideband <= 6 && abs(offset) <= 6);

    WlChannelInfo again = untouched;
    char text[64];
    snprintf(text, sizeof text, "%d (0x%x)\n", info.channel, info.chanspec);
    HOLDS(readChannelInfo(text, &again) && fuzz::same(again, info));
}

constexpr int kUntouched = 12345;

int loadOfReport(const std::string &report) {
    const fuzz::Gateway gateway{{"wlctl -i wl0 chanim_stats", report}};
    int load = kUntouched;
    HOLDS(qvbrcm_GetFatIntfInfo("wl0", 0, &load) == 0);
    return load;
}

// The load by libc's own reading; only for numbers that fit an int.
int expectedLoad(const std::string &line) {
    int n[6] = {};
    sscanf(line.c_str(), "0x%*x %*d %d %d %d %d %*d %*d %d %d", &n[0], &n[1], &n[2], &n[3], &n[4], &n[5]);
    return 100 - std::accumulate(std::begin(n), std::end(n), 0);
}

FUZZ_TARGET(channel_statistics) {
    const int load = loadOfReport(input);
    HOLDS(load == kUntouched || input.find("inbss") != std::string::npos);
    const std::string line = input.substr(0, input.find_first_of(std::string("\0\n", 2)));
    const auto isDigit = [](unsigned char c, int) { return isxdigit(c) != 0; };
    const bool longNumber = std::search_n(line.begin(), line.end(), 9, 0, isDigit) != line.end();
    // Libraries disagree about "0x" without a digit behind it, so only the mark itself may have one.
    if (longNumber || line.size() > 254 || line.find_first_of("xX", 2) != std::string::npos)
        return;
    const int expected = expectedLoad(line);
    HOLDS(channelLoad(line) == expected);
    if (!line.empty())
        HOLDS(loadOfReport("version: 3\nchanspec tx inbss obss\n" + line + "\n" + input) == expected);
}

WlTrafficCounters countersOf(const std::string &report) {
    const fuzz::Gateway gateway{{"wlctl -i wl0 counters", report}};
    WlTrafficCounters counters;
    memset(&counters, 0x5a, sizeof counters);
    HOLDS(qvWlanGetTrafficInfo("wl0", &counters) == 0);
    return counters;
}

FUZZ_TARGET(counters) {
    const WlTrafficCounters found = countersOf(input);
    // A report that names every counter reads back, and what comes behind it is not read.
    char report[512];
    snprintf(report, sizeof report,
             "txframe %u txbyte %u txretrans 0 txerror %u\nrxframe %u rxbyte %u rxerror %u\ntxnoassoc %u rxbadda %u\n",
             found.txframe, found.txbyte, found.txerror, found.rxframe, found.rxbyte, found.rxerror, found.txnoassoc,
             found.rxbadda);
    HOLDS(fuzz::same(countersOf(report), found));
    HOLDS(fuzz::same(countersOf(report + input), found));

    WlTrafficCounters one = found;
    const int met = readCounters(input, &one);
    HOLDS(met >= 0 && met <= 8);
    HOLDS(met > 0 || fuzz::same(one, found));
}

constexpr int kHighestMbps = 173333; // 400 streams, the most that are believed, of MCS 9 at 80 MHz

void checkRate(const std::string &report, const char *request) {
    const fuzz::Gateway gateway{{"wlctl -i wl0 chanspec", "36/80 (0xe02a)\n"},
                                {"wlctl -i wl0 2g_rate", "auto\n"},
                                {"wlctl -i wl0 5g_rate", "auto\n"},
                                {"wlctl -i wl0 rateset", report}};
    char text[32];
    HOLDS(qvWlanRateUpdate(Arg("wl0", request, "", 0, text)) == 0);
    HOLDS(fuzz::ends(text));
    unsigned rate = 0;
    char unit[8] = "", more = '\0';
    HOLDS(sscanf(text, "%u %7s%c", &rate, unit, &more) == 2);
    HOLDS(strcmp(unit, "Mbps") == 0 ? rate >= 1 && rate <= kHighestMbps : strcmp(unit, "kbps") == 0 && rate <= 1024);
}

// The lists of basic and supported rates.
void checkRateLists(const std::string &report, int mode, int bandwidth, int band) {
    FakePlatform platform;
    platform.answer("wlctl -i wl0 rateset", report);
    HOLDS(qvWlanGetDataTxRates(Arg("wl0"), mode, bandwidth, band) == 0);
    HOLDS(platform.leftFiles() == Lines{"/tmp/wl0DataTxRates.txt"});
    const std::string lists = platform.files["/tmp/wl0DataTxRates.txt"];
    const size_t basic = lists.find(":BasR\n");
    HOLDS(basic > 0 && basic < lists.size());
    const size_t supported = lists.find(":SupR\n", basic);
    HOLDS(supported + 6 == lists.size());
    HOLDS(fuzz::isNumberList(lists.substr(0, basic)));
    HOLDS(fuzz::isNumberList(lists.substr(basic + 6, supported - basic - 6)));
}

FUZZ_TARGET(rate_set) {
    checkRate(input, "2.4GHz 4");
    checkRate(input, "5GHz 9");
    for (const int bandwidth : {20, 40, 80}) {
        checkRateLists(input, 9, bandwidth, WLBRCM_BAND_5G);
        checkRateLists(input, 4, bandwidth, WLBRCM_BAND_2G);
    }
    const int streams = streamsOfMcsLine(input);
    HOLDS(streams >= 0 && streams <= 4);
}

constexpr char kNoiseCommand[] = "run wlctl -i wl0 status | grep \"noise:\" | awk '{sub(/.*noise:/,\"\");print $1}' > ";

// Every command was made of our own words, checked names and numbers: nothing of the input reached the shell.
bool isListingCommand(const std::string &command) {
    for (const std::string start : {kNoiseCommand, "run wlctl -i wl0", "run rm -f /tmp/.assoclist_result_*"}) {
        if (command.compare(0, start.size(), start) == 0)
            return command.find_first_of(";|&$`\\'\"()\n", start.size()) == std::string::npos;
    }
    return false;
}

// The radio's own interface lists `first`, a virtual one `second`.
std::vector<WlStaInfo> stationsOf(const std::string &first, const std::string &second) {
    FakePlatform platform;
    const auto intf = std::make_unique<WlIntf>();
    strcpy(intf->radio.ifName, "wl0");
    intf->radio.bssCount = 2;
    for (int i = 0; i < 2; ++i) {
        intf->bss[i].enable = 1;
        strcpy(intf->bss[i].ifName, i == 0 ? "wl0" : "wl0.1");
    }
    platform.answer("wlctl -i wl0 assoclist", first);
    platform.answer("wlctl -i wl0.1 assoclist", second);
    platform.answer("wlctl -i wl0 status", "-91\n");
    WlStaInfo *records = nullptr;
    int count = -1;
    HOLDS(qvbrcm_GetAssocDevList(intf.get(), -1, &records, &count) == 0);
    const std::unique_ptr<WlStaInfo, decltype(&free)> block(records, free);
    HOLDS(count >= 0 && count <= fuzz::reads(first, 98) + fuzz::reads(second, 98));
    HOLDS(std::all_of(platform.journal.begin(), platform.journal.end(), isListingCommand));
    HOLDS(records == nullptr || platform.leftFiles().empty());
    return records == nullptr ? std::vector<WlStaInfo>() : std::vector<WlStaInfo>(records, records + count);
}

// The stations as the driver would list them.
std::string listing(const std::vector<WlStaInfo> &stations) {
    std::string lines;
    for (const WlStaInfo &sta : stations)
        lines += std::string("assoclist ") + sta.macAddr + "\n";
    return lines;
}

FUZZ_TARGET(station_list) {
    const size_t middle = std::min(input.find("\n\n"), input.size());
    const std::vector<WlStaInfo> stations = stationsOf(input.substr(0, middle), input.substr(middle));
    bool virtualOnes = false;
    for (const WlStaInfo &sta : stations) {
        HOLDS(fuzz::ends(sta.ifName) && strlen(sta.macAddr) == 17);
        HOLDS(strcmp(sta.ifName, "wl0") == 0 || strcmp(sta.ifName, "wl0.1") == 0);
        HOLDS(!virtualOnes || strcmp(sta.ifName, "wl0.1") == 0);
        virtualOnes = strcmp(sta.ifName, "wl0.1") == 0;
        HOLDS(strspn(sta.macAddr, "0123456789ABCDEF:") == 17);
        HOLDS(sta.noise == -91 && sta.snr == sta.rssi - sta.noise);
    }
    HOLDS(listing(stationsOf(listing(stations), "")) == listing(stations));
}

constexpr int32_t kPoolSize = 512;

// In the order of the text: a list has its last address first.
std::string addresses(const MacFilterEntry *list, int32_t *length) {
    std::string all;
    for (*length = 0; list != nullptr; list = list->next, ++*length) {
        const uint8_t *m = list->mac;
        char one[19];
        snprintf(one, sizeof one, "%02X:%02X:%02X:%02X:%02X:%02X ", m[0], m[1], m[2], m[3], m[4], m[5]);
        all.insert(0, one);
    }
    return all;
}

// The user's filter of wl0, handed on to the driver.
void applyFilter(MacFilterEntry *list, uint32_t command, const FakePlatform &platform) {
    MacFilterRequest request = {};
    strcpy(request.data.intf_name, "wl0");
    request.data.b_user_config = 1;
    request.data.cmd = command;
    request.mac_list = list;
    const int done = qvbrcm_MacFilter_set(&request);
    HOLDS(request.mac_list == nullptr && (done == 1 || list != nullptr));
    for (const std::string &run : platform.did("run wlctl -i wl0 mac "))
        HOLDS(run == "run wlctl -i wl0 mac none" ||
              run.find_first_not_of("0123456789ABCDEF: ", 21) == std::string::npos);
}

FUZZ_TARGET(mac_list) {
    FakePlatform platform;
    HOLDS(qvbrcm_MacFilter_init() == 1 && _mac_free_cnt == kPoolSize);
    MacFilterEntry *list = qvbrcm_MacFilter_mac_list_by_str(input.c_str());
    int32_t length, lengthAgain;
    const std::string found = addresses(list, &length);
    HOLDS(_mac_free_cnt == kPoolSize - length);
    qvbrcm_MacFilter_release_list(&list);
    HOLDS(list == nullptr && _mac_free_cnt == kPoolSize);

    list = qvbrcm_MacFilter_mac_list_by_str(found.c_str());
    HOLDS(addresses(list, &lengthAgain) == found && lengthAgain == length);
    applyFilter(list, WLBRCM_FILTER_DENY, platform);
    HOLDS(_mac_free_cnt == kPoolSize - length);
    applyFilter(nullptr, WLBRCM_FILTER_OFF, platform);
    HOLDS(_mac_free_cnt == kPoolSize);
}

constexpr size_t kLongestReply = 255; // as much as one datagram is read for

void parseReply(const std::string &text) {
    std::vector<char> reply(text.c_str(), text.c_str() + text.size() + 1); // its end is that of the memory
    HOLDS(parse_wps_env(reply.data()) == 0);
    HOLDS(fuzz::ends(wps_uuid) && fuzz::ends(wps_autho_sta_mac));
}

// The five variables as the daemon would report them.
std::string wpsState() {
    return "wps_config_command=" + std::to_string(wps_config_command) + " wps_action=" + std::to_string(wps_action) +
           " wps_method=" + std::to_string(wps_method) + " wps_uuid=" + wps_uuid +
           " wps_autho_sta_mac=" + wps_autho_sta_mac;
}

FUZZ_TARGET(wps_reply) {
    const std::string text = input.substr(0, std::min(input.find('\0'), kLongestReply));
    const auto mentions = [&text](const char *word) { return text.find(word) != std::string::npos; };
    wps_config_command = wps_action = wps_method = 77;
    strcpy(wps_uuid, "previous");
    strcpy(wps_autho_sta_mac, "previous");
    parseReply(text);
    HOLDS(mentions("wps_config_command=") || wps_config_command == 0);
    HOLDS(mentions("wps_action=") || wps_action == 0);
    HOLDS(mentions("wps_method=") || wps_method == 0);
    HOLDS(mentions("wps_uuid=") || strcmp(wps_uuid, "previous") == 0);
    HOLDS(mentions(wps_autho_sta_mac));
    const std::string reported = wpsState();
    wps_config_command = wps_action = wps_method = -1;
    parseReply(reported);
    HOLDS(wpsState() == reported);
}

} // namespace
