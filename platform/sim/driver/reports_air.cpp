// Driver reports on stations, on the beacon and on what else is on the air.
#include "platform/sim/driver/driver_commands.h"

#include <algorithm>

namespace wlsim {
namespace {

constexpr unsigned kFlagsLegacy = 0x3b, kFlagsHt = 0x1e03b, kFlagsVht = 0x11e03b;

const Station *findStation(const Bss &bss, const std::string &text) {
    auto mac = parseMac(text);
    auto same = [&](const Station &station) { return mac && station.mac == *mac; };
    auto found = std::find_if(bss.stations.begin(), bss.stations.end(), same);
    return found == bss.stations.end() ? nullptr : &*found;
}

Reply unknownStation(const Bss &bss, const std::string &text) {
    return refuse(text + " is not associated with " + bss.ifName);
}

// A 40 MHz station on a 20 MHz channel still says what it could do.
std::string capabilityLines(const Station &station) {
    bool wide = station.width >= 40;
    std::string out;
    if (station.phy == "ac" || station.phy == "n") {
        out += format("\t HT caps 0x%x:%s SGI20%s\n", wide ? 0x6fu : 0x6du, wide ? " 40MHz" : "", wide ? " SGI40" : "");
    }
    if (station.phy == "ac") {
        out += "\t VHT caps 0x1e3: LDPC SGI80 STBC\n";
    }
    return out;
}

std::string hexLines(const std::vector<int> &bytes, bool offsets) {
    std::string out;
    for (size_t i = 0; i < bytes.size(); i++) {
        if (i % 16 == 0) {
            out += i ? "\n" : "";
            out += offsets ? format("    %04zx:", i) : "   ";
        }
        out += format(" %02x", static_cast<unsigned>(bytes[i]) & 0xff);
    }
    return out + "\n";
}

std::string tag(int id, const char *name, const std::vector<int> &body, bool offsets) {
    return format("Tag:%d Len:%zu - %s\n", id, body.size(), name) + hexLines(body, offsets);
}

std::vector<int> mcsMap(int streams) {
    std::vector<int> map(16, 0);
    std::fill_n(map.begin(), streams, 0xff);
    return map;
}

std::vector<int> htCapabilities(const Radio &radio) {
    std::vector<int> body = {radio.maxWidth >= 40 ? 0xef : 0xad, 0x09, 0x17};
    std::vector<int> map = mcsMap(radio.streams());
    body.insert(body.end(), map.begin(), map.end());
    body.resize(26, 0);
    return body;
}

std::vector<int> htOperation(const Radio &radio) {
    bool wide = radio.chanspec->width >= 40;
    bool above = (radio.chanspec->value & 0x100) == 0; // the neighbour of an even position lies above
    std::vector<int> body = {radio.chanspec->control, wide ? (above ? 0x05 : 0x07) : 0x00};
    body.resize(22, 0);
    return body;
}

// Two bits a stream: 2 for MCS 0 to 9, 3 for a stream that is not there.
int vhtMap(int streams) {
    int map = 0xffff;
    for (int stream = 0; stream < streams; stream++) {
        map &= ~(1 << (2 * stream));
    }
    return map;
}

std::string vhtTags(const Radio &radio) {
    int map = vhtMap(radio.streams());
    std::vector<int> caps = {0xb1, 0x01, 0x80, 0x33, map & 0xff, map >> 8, 0, 0, map & 0xff, map >> 8, 0, 0};
    bool wide = radio.chanspec->width == 80;
    std::vector<int> operation = {wide ? 1 : 0, wide ? radio.chanspec->centre() : 0, 0, map & 0xff, map >> 8};
    return tag(191, "VHT", caps, false) + tag(192, "VHT", operation, false);
}

std::string securityLines(const Neighbour &ap) {
    std::string out;
    bool mixed = ap.security == "wpapskmix";
    if (mixed || ap.security == "wpa2psk" || ap.security == "wpa2") {
        out += std::string("RSN (WPA2):\n\tmulticast cipher: ") + (mixed ? "TKIP" : "AES-CCMP") +
               "\n\tunicast ciphers(" + (mixed ? "2): TKIP AES-CCMP" : "1): AES-CCMP") +
               "\n\tAKM Suites(1): " + (ap.security == "wpa2" ? "WPA2" : "WPA2-PSK") +
               "\n\tCapabilities(0x000c): No Pre-Auth, Pairwise\n";
    }
    if (mixed || ap.security == "wpapsk") {
        out += "WPA:\n\tmulticast cipher: TKIP\n\tunicast ciphers(1): TKIP\n\tAKM Suites(1): WPA-PSK\n";
    }
    return out;
}

std::string scanEntry(const Neighbour &ap, int noise) {
    bool n = ap.phy == "n" || ap.phy == "ac", ac = ap.phy == "ac";
    std::string out = "SSID: \"" + escapeBytes(ap.ssid) + "\"\n";
    out += format("Mode: %s\tRSSI: %d dBm\tSNR: %d dB\tnoise: %d dBm\tFlags: RSSI on-channel\tChannel: %s\n",
                  ap.adhoc ? "Ad Hoc" : "Managed", ap.rssi, ap.rssi - noise, noise, ap.chanspec.text().c_str());
    out += format("BSSID: %s\tCapability: ESS\n", ap.bssid.text().c_str());
    out += format("Beacon Period: %d\tDTIM Period: %d\n", ap.beaconPeriod, ap.dtim);
    out += "Supported Rates: " + legacyRates(ap.chanspec.band, ap.phy == "b") + "\n" + securityLines(ap);
    if (n) {
        out += format("HT Capable:\n\tChanspec: %s\n\tPrimary channel: %d\n\tHT Capabilities:\n"
                      "\tSupported HT MCS : 0-%d\n",
                      ap.chanspec.longReport().c_str(), ap.chanspec.control, 8 * ap.streams - 1);
    }
    if (ac) {
        out += "VHT Capable:\n\tSupported VHT MCS:\n" + vhtStreams(ap.streams, "\t\t");
    }
    if (!n) {
        out += format("\tChanspec: %s\n", ap.chanspec.longReport().c_str());
    }
    return out + (ap.wps ? "WPS: V2.0 Configured\n" : "") + "\n";
}

} // namespace

Reply cmdAssocList(Driver &, Target target, const Words &) {
    std::string out;
    for (const Station &station : target.bss.stations) {
        out += "assoclist " + station.mac.text() + "\n";
    }
    return done(out);
}

Reply cmdRssi(Driver &, Target target, const Words &arguments) {
    const Station *station = findStation(target.bss, arguments[0]);
    return station ? done(format("%d\n", station->rssi)) : unknownStation(target.bss, arguments[0]);
}

Reply cmdStaInfo(Driver &driver, Target target, const Words &arguments) {
    const Station *station = findStation(target.bss, arguments[0]);
    if (!station) {
        return unknownStation(target.bss, arguments[0]);
    }
    unsigned flags = station->phy == "ac" ? kFlagsVht : station->phy == "n" ? kFlagsHt : kFlagsLegacy;
    const StationCounters &counters = station->counters;
    std::string out = format("[VER 4] STA %s:\n\t aid:%d\n", station->mac.text().c_str(),
                             static_cast<int>(station - target.bss.stations.data()) + 1);
    out += "\t rateset " + legacyRates(target.radio.band, station->phy == "b") + ":\n";
    out += format("\t idle 0 seconds\n\t in network %lld seconds\n\t state: AUTHENTICATED ASSOCIATED AUTHORIZED\n",
                  static_cast<long long>((driver.ports.clock.nowMs() - station->joinedMs) / 1000));
    out += format("\t flags 0x%x:%s\n", flags, station->phy == "ac" ? " WME VHT_CAP HT_CAP" : "");
    out += capabilityLines(*station);
    const std::pair<const char *, uint64_t> lines[] = {
        {"tx total pkts", counters.txPackets},   {"tx total bytes", counters.txBytes},
        {"tx ucast pkts", counters.txPackets},   {"tx failures", counters.txFailures},
        {"rx data pkts", counters.rxPackets},    {"rx data bytes", counters.rxBytes},
        {"tx pkts retries", counters.txRetries}, {"tx pkts retry exhausted", counters.txExhausted},
    };
    for (const auto &[name, value] : lines) {
        out += format("\t %s: %llu\n", name, static_cast<unsigned long long>(value));
    }
    out += format("\t rate of last tx pkt: %u kbps - %u kbps\n\t rate of last rx pkt: %u kbps\n", station->txRate,
                  station->txRate, station->rxRate);
    return done(out);
}

Reply cmdBeaconInfo(Driver &driver, Target target, const Words &) {
    const Radio &radio = target.radio;
    if (auto down = notOnAir(driver, target)) {
        return *down;
    }
    unsigned privacy = target.bss.security.needsAuthenticator() || target.bss.security.wep ? 0x10 : 0;
    std::string out = format("Beacon Interval: %d\nCapabilities: 0x%04x\n", radio.beaconPeriod, 0x0401 | privacy);
    std::string ssid = target.bss.settings["closed"] ? std::string() : target.bss.ssid;
    out += tag(0, "SSID", std::vector<int>(ssid.begin(), ssid.end()), true);
    if (radio.n) {
        out += tag(45, "HT Capabilities", htCapabilities(radio), true);
        out += tag(61, "HT Information", htOperation(radio), true);
    }
    return done(out + (radio.vht ? vhtTags(radio) : ""));
}

Reply cmdChanimStats(Driver &, Target target, const Words &) {
    Radio &radio = target.radio;
    if (!radio.up) {
        return refuse("chanim_stats: the radio is down");
    }
    std::string heads, values;
    uint64_t used = 0;
    for (const char *name : {"tx", "inbss", "obss", "nocat", "nopkt", "doze"}) {
        used += radio.chanim[name];
        heads += std::string(name) + "\t";
        values += format("%llu\t", static_cast<unsigned long long>(radio.chanim[name]));
    }
    unsigned long long free = used < 100 ? 100 - used : 0;
    values += format(
        "%llu\t%llu\t%llu\t%llu\t%llu\t%d\t%llu", free, static_cast<unsigned long long>(radio.chanim["goodtx"]),
        static_cast<unsigned long long>(radio.chanim["badtx"]), static_cast<unsigned long long>(radio.chanim["glitch"]),
        static_cast<unsigned long long>(radio.chanim["badplcp"]), radio.noise, free);
    return done("version: 2\nchanspec\t" + heads + "txop\tgoodtx\tbadtx\tglitch\tbadplcp\tknoise\tidle\n" +
                format("0x%04x\t", radio.chanspec->value) + values + "\n");
}

Reply cmdScanResults(Driver &, Target target, const Words &) {
    if (!target.radio.scanned) {
        return refuse("scanresults: no scan was made");
    }
    std::string out;
    for (const Neighbour &ap : *target.radio.scanned) {
        out += scanEntry(ap, ap.noise);
    }
    return done(out);
}

} // namespace wlsim
