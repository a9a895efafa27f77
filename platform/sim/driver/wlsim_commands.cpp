// wlsim: what a person or a test does to the simulated surroundings.
#include "platform/sim/driver/sim_driver.h"

#include "platform/sim/common/sim_log.h"
#include "platform/sim/common/sim_options.h"
#include "platform/sim/driver/faults.h"
#include "platform/sim/driver/join.h"
#include "platform/sim/driver/scenario.h"
#include "platform/sim/driver/state.h"

#include <algorithm>
#include <climits>

namespace wlsim {
namespace {

Reply usage(const std::string &text) { return refuse("usage: wlsim " + text, 2); }

Reply status(Driver &driver, const Words &words) {
    Options options = readOptions(words, "--json", "");
    if (!options.error.empty() || !options.plain.empty()) {
        return usage("status [--json]");
    }
    return done(options.has("--json") ? stateJson(driver) : stateTable(driver));
}

constexpr char kJoinUsage[] =
    "join IF | --ssid SSID | --ssid-hex HEX  [--mac MAC] [--passphrase P] [--security "
    "open|wep|wpapsk|wpa2psk|wpa|wpa2]\n"
    "       [--cipher aes|tkip] [--no-pmf] [--band 2|5] [--channel N] [--phy ac|n|a|g|b] [--rssi DBM] [--streams N]\n"
    "       [--traffic KBIT] [--count N]";

// Fills the request from the options; an error text for what does not fit.
std::string readStation(Options &options, JoinRequest *request) {
    auto mac = parseMac(options.text("--mac", "02:00:00:00:00:01"));
    std::string phy = options.text("--phy", "ac"), cipher = options.text("--cipher");
    if (!mac) {
        return "--mac takes an address";
    }
    if (!contains({"ac", "n", "a", "g", "b"}, phy) || !contains({"", "aes", "tkip"}, cipher)) {
        return "unknown --phy or --cipher";
    }
    Station &station = request->station;
    station.mac = *mac;
    station.phy = phy;
    station.rssi = static_cast<int>(options.number("--rssi", -50, -120, -1));
    station.streams = static_cast<int>(options.number("--streams", 2, 1, 4));
    station.trafficKbit = static_cast<int>(options.number("--traffic", 0, 0, 10000000));
    request->credentials.cipher = cipher;
    request->credentials.pmf = !options.has("--no-pmf");
    return options.error;
}

std::string readNetwork(Options &options, JoinRequest *request) {
    Credentials &credentials = request->credentials;
    credentials.passphrase = options.text("--passphrase");
    credentials.security = options.text("--security", credentials.passphrase.empty() ? "open" : "wpa2psk");
    request->ifName = options.plain.empty() ? "" : options.plain[0];
    request->ssid = options.has("--ssid") ? std::optional<std::string>(options.text("--ssid")) : std::nullopt;
    if (options.has("--ssid-hex")) {
        request->ssid = bytesFromHex(options.text("--ssid-hex"));
    }
    if (options.has("--band")) {
        std::string band = options.text("--band");
        request->band = band == "2" ? Band::kGhz2 : Band::kGhz5;
        options.error = band == "2" || band == "5" ? options.error : "--band takes 2 or 5";
    }
    if (options.has("--channel")) {
        request->channel = static_cast<int>(options.number("--channel", 1, 1, 255));
    }
    if (!isSecurityWord(credentials.security)) {
        return "unknown --security " + credentials.security;
    }
    bool named = !request->ifName.empty() || request->ssid;
    return !named || options.plain.size() > 1 ? "an interface or an SSID is needed" : options.error;
}

Mac following(Mac mac, long steps) {
    uint64_t number = 0;
    for (uint8_t byte : mac.bytes) {
        number = number << 8 | byte;
    }
    number += static_cast<uint64_t>(steps);
    for (size_t i = mac.bytes.size(); i-- > 0; number >>= 8) {
        mac.bytes[i] = static_cast<uint8_t>(number);
    }
    return mac;
}

std::string joinedText(Driver &driver, const std::string &ifName, const Mac &mac) {
    Target target = *driver.find(ifName);
    std::string bridge = driver.ports.net.bridge(ifName);
    return format("joined %s %s channel %s ssid \"%s\" bridge %s\n", ifName.c_str(), mac.text().c_str(),
                  target.radio.chanspec->text().c_str(), escapeBytes(target.bss.ssid).c_str(),
                  bridge.empty() ? "none" : bridge.c_str());
}

Reply joinCommand(Driver &driver, const Words &words) {
    Options options =
        readOptions(words, "--no-pmf",
                    "--ssid --ssid-hex --mac --passphrase --security --cipher --band --channel --phy --rssi "
                    "--streams --traffic --count");
    JoinRequest request;
    std::string error = options.error.empty() ? readStation(options, &request) : options.error;
    error = error.empty() ? readNetwork(options, &request) : error;
    long count = options.number("--count", 1, 1, 100000);
    if (!error.empty() || !options.error.empty()) {
        return usage(kJoinUsage + ("\n" + (error.empty() ? options.error : error)));
    }
    if (!request.ifName.empty() && !driver.find(request.ifName)) {
        return refuse("no such interface " + request.ifName + " (there are: " + driver.interfaceNames() + ")");
    }
    Reply reply;
    Mac first = request.station.mac;
    for (long i = 0; i < count && reply.err.empty(); i++) {
        request.station.mac = following(first, i);
        JoinResult result = join(driver, request);
        logLine("join",
                request.station.mac.text() + " " +
                    (result.refusal.empty()
                         ? "joined " + result.ifName
                         : "refused by " + (request.ifName.empty() ? "all" : request.ifName) + ": " + result.refusal));
        if (result.refusal.empty()) {
            reply.out += joinedText(driver, result.ifName, request.station.mac);
        } else {
            reply.status = 1;
            reply.err = result.refusal;
        }
    }
    return reply;
}

Reply leaveCommand(Driver &driver, const Words &words) {
    auto mac = words.size() == 1 ? parseMac(words[0]) : std::nullopt;
    if (words.size() == 1 && words[0] == "--all") {
        for (Radio &radio : driver.model.radios) {
            for (Bss &bss : radio.bss) {
                driver.dropStations(bss, kEventDisassocInd, 8);
            }
        }
        return done();
    }
    if (!mac) {
        return usage("leave MAC | --all");
    }
    std::string ifName = leave(driver, *mac);
    return ifName.empty() ? refuse(mac->text() + " is not associated") : done("left " + ifName + "\n");
}

struct RadioKey {
    const char *name;
    long lowest, highest;
    void (*set)(Radio &radio, long value);
};
constexpr RadioKey kRadioKeys[] = {
    {"noise", -120, 0, [](Radio &radio, long value) { radio.noise = static_cast<int>(value); }},
    {"cpu", 0, 63, [](Radio &radio, long value) { radio.cpu = static_cast<int>(value); }},
    {"maxassoc", 1, 1024, [](Radio &radio, long value) { radio.maxAssoc = value; }},
    {"wltest", 0, 1, [](Radio &radio, long value) { radio.wltest = value != 0; }},
    {"dhd", 0, 1, [](Radio &radio, long value) { radio.dhd = value != 0; }},
};

struct StationKey {
    const char *name;
    long lowest, highest;
    void (*set)(Station &station, long value);
};
constexpr StationKey kStationKeys[] = {
    {"rssi", -120, 0, [](Station &sta, long value) { sta.rssi = static_cast<int>(value); }},
    {"tx_rate", 0, INT_MAX, [](Station &sta, long value) { sta.txRate = static_cast<uint32_t>(value); }},
    {"rx_rate", 0, INT_MAX, [](Station &sta, long value) { sta.rxRate = static_cast<uint32_t>(value); }},
    {"tx_failures", 0, INT_MAX, [](Station &s, long value) { s.counters.txFailures = static_cast<uint32_t>(value); }},
    {"tx_retries", 0, INT_MAX, [](Station &s, long value) { s.counters.txRetries = static_cast<uint32_t>(value); }},
    {"tx_bytes", 0, LONG_MAX, [](Station &s, long value) { s.counters.txBytes = static_cast<uint64_t>(value); }},
    {"rx_bytes", 0, LONG_MAX, [](Station &s, long value) { s.counters.rxBytes = static_cast<uint64_t>(value); }},
    {"traffic", 0, 10000000, [](Station &sta, long value) { sta.trafficKbit = static_cast<int>(value); }},
};

template <typename Key, size_t N, typename Record>
Reply assign(const Key (&keys)[N], Record *record, const std::string &owner, const std::string &name, long value) {
    if (!record) {
        return refuse("no such " + owner);
    }
    Words names;
    for (const Key &key : keys) {
        names.push_back(key.name);
        if (name != key.name) {
            continue;
        }
        if (value < key.lowest || value > key.highest) {
            return refuse(format("%s takes %ld to %ld", key.name, key.lowest, key.highest), 2);
        }
        key.set(*record, value);
        return done();
    }
    return refuse("unknown key " + name + "; there are: " + joinWords(names), 2);
}

Station *findStation(Driver &driver, const std::string &text) {
    auto mac = parseMac(text);
    for (Radio &radio : driver.model.radios) {
        for (Bss &bss : radio.bss) {
            for (Station &station : bss.stations) {
                if (mac && station.mac == *mac) {
                    return &station;
                }
            }
        }
    }
    return nullptr;
}

Reply setCommand(Driver &driver, const Words &words) {
    auto value = words.size() == 4 ? parseNumber(words[3]) : std::nullopt;
    if (!value) {
        return usage("set radio|counters|chanim RADIO KEY NUMBER | set station MAC KEY NUMBER");
    }
    if (words[0] == "station") {
        return assign(kStationKeys, findStation(driver, words[1]), "station " + words[1], words[2], *value);
    }
    Radio *radio = driver.findRadio(words[1]);
    if (words[0] == "radio") {
        return assign(kRadioKeys, radio, "radio " + words[1], words[2], *value);
    }
    bool chanim = words[0] == "chanim";
    if (!radio || (!chanim && words[0] != "counters") || *value < 0) {
        return refuse(radio ? "cannot set " + words[0] : "no such radio " + words[1], radio ? 2 : 1);
    }
    const char *names = chanim ? kChanimNames : kCounterNames;
    if (!contains(splitWords(names), words[2])) {
        return refuse("unknown key " + words[2] + "; there are: " + names, 2);
    }
    (chanim ? radio->chanim : radio->counters)[words[2]] = static_cast<uint64_t>(*value);
    return done();
}

Reply addNeighbour(Radio &radio, const std::string &text) {
    Neighbour ap;
    std::string error;
    if (!readNeighbour(text, radio.band, &ap, &error)) {
        return refuse(error);
    }
    radio.neighbours.push_back(ap);
    return done();
}

Reply removeNeighbour(Radio &radio, const std::string &text) {
    auto mac = parseMac(text);
    auto same = [&](const Neighbour &ap) { return mac && ap.bssid == *mac; };
    auto gone = std::remove_if(radio.neighbours.begin(), radio.neighbours.end(), same);
    bool any = gone != radio.neighbours.end();
    radio.neighbours.erase(gone, radio.neighbours.end());
    return any ? done() : refuse("no neighbour " + text);
}

Reply neighbourCommand(Driver &driver, const Words &words) {
    Radio *radio = words.size() >= 2 ? driver.findRadio(words[1]) : nullptr;
    if (words.size() >= 2 && !radio) {
        return refuse("no such radio " + words[1]);
    }
    if (words.size() == 3 && words[0] == "add") {
        return addNeighbour(*radio, words[2]);
    }
    if (words.size() == 3 && words[0] == "remove") {
        return removeNeighbour(*radio, words[2]);
    }
    if (words.size() == 2 && words[0] == "clear") {
        radio->neighbours.clear();
        return done();
    }
    return usage("neighbour add RADIO JSON | remove RADIO BSSID | clear RADIO");
}

Reply eventCommand(Driver &driver, const Words &words) {
    Options options = readOptions(words, "", "--mac --reason --status --count");
    long number = options.plain.size() == 2 ? parseNumber(options.plain[1]).value_or(-1) : -1;
    auto mac = parseMac(options.text("--mac", "02:00:00:00:00:01"));
    auto reason = static_cast<unsigned>(options.number("--reason", 0, 0, INT_MAX));
    auto result = static_cast<unsigned>(options.number("--status", 0, 0, INT_MAX));
    long count = options.number("--count", 1, 1, 10000000);
    if (number < 0 || number > INT_MAX || !mac || !options.error.empty()) {
        return usage("event IF NUMBER [--mac MAC] [--reason N] [--status N] [--count N]  " + options.error);
    }
    driver.emit({static_cast<unsigned>(number), options.plain[0], *mac, reason, result}, count);
    return done();
}

Reply listFaults(const Driver &driver) {
    std::string out;
    for (const Fault &fault : driver.model.faults) {
        out +=
            format("%-8s left %-7s hits %-4d %s\n", fault.mode.c_str(),
                   fault.count < 0 ? "forever" : std::to_string(fault.count).c_str(), fault.hits, fault.match.c_str());
    }
    return done(out);
}

Reply failCommand(Driver &driver, const Words &words) {
    Options options = readOptions(words, "--list --clear", "--mode --ms");
    if (options.has("--list") || options.has("--clear")) {
        Reply reply = listFaults(driver);
        if (options.has("--clear")) {
            driver.model.faults.clear();
        }
        return reply;
    }
    Fault fault;
    fault.mode = options.text("--mode", options.has("--ms") ? "slow" : "fail");
    fault.ms = static_cast<int>(options.number("--ms", 0, 0, 600000));
    std::string count = options.plain.size() > 1 ? options.plain[1] : "1";
    auto times = count == "forever" ? std::optional<long>(-1) : parseNumber(count);
    if (options.plain.empty() || options.plain.size() > 2 || !contains(splitWords(kFaultModes), fault.mode) || !times ||
        *times == 0 || *times < -1 || *times > INT_MAX || !options.error.empty()) {
        return usage("fail PATTERN [COUNT|forever] [--mode fail|empty|garbage|cut|slow] [--ms N] | --list | --clear");
    }
    fault.match = options.plain[0];
    std::string trouble = patternTrouble(driver.model, fault.match);
    if (!trouble.empty()) {
        return refuse(trouble);
    }
    fault.count = static_cast<int>(*times);
    driver.model.faults.push_back(fault);
    return done();
}

Reply rebootCommand(Driver &driver, const Words &words) {
    if (!words.empty()) {
        return usage("reboot");
    }
    std::string error = driver.reboot();
    return error.empty() ? done() : refuse(error);
}

constexpr struct {
    const char *name;
    Reply (*run)(Driver &, const Words &);
} kWlsimCommands[] = {
    {"status", status},      {"join", joinCommand},           {"leave", leaveCommand}, {"set", setCommand},
    {"event", eventCommand}, {"neighbour", neighbourCommand}, {"fail", failCommand},   {"reboot", rebootCommand},
};

} // namespace

Reply runControl(Driver &driver, const Words &words) {
    std::string name = words.size() > 1 ? words[1] : "";
    for (const auto &command : kWlsimCommands) {
        if (name == command.name) {
            return command.run(driver, Words(words.begin() + 2, words.end()));
        }
    }
    return usage("wait|status|join|leave|set|neighbour|event|flood|agent|wps|fail|reboot ...");
}

} // namespace wlsim
