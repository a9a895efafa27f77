// Driver reports on a radio, in the driver's formats.
#include "platform/sim/driver/driver_commands.h"

#include <algorithm>

namespace wlsim {

std::string legacyRates(Band band, bool bOnly) {
    return bOnly                 ? "[ 1(b) 2(b) 5.5(b) 11(b) ]"
           : band == Band::kGhz2 ? "[ 1(b) 2(b) 5.5(b) 6 9 11(b) 12 18 24 36 48 54 ]"
                                 : "[ 6(b) 9 12(b) 18 24(b) 36 48 54 ]";
}

std::string vhtStreams(int streams, const std::string &indent) {
    std::string out;
    for (int stream = 1; stream <= streams; stream++) {
        out += indent + format("NSS%d Tx: 0-9        Rx: 0-9\n", stream);
    }
    return out;
}

std::optional<Reply> notOnAir(Driver &driver, Target target) {
    if (driver.onAir(target.radio, target.bss)) {
        return std::nullopt;
    }
    return refuse(target.bss.ifName + ": the BSS is down");
}

namespace {

std::string highestMcs(const Radio &radio) { return std::to_string(8 * radio.streams() - 1); }

uint64_t counter(const std::map<std::string, uint64_t> &counters, const std::string &name) {
    auto found = counters.find(name);
    return found == counters.end() ? 0 : found->second;
}

Reply fixedRate(const Target &target, Band band) {
    if (target.radio.band != band) {
        return refuse("not a rate of this band");
    }
    return done((target.radio.fixedRate.empty() ? "auto" : target.radio.fixedRate) + "\n");
}

} // namespace

Reply cmdCap(Driver &, Target target, const Words &) { return done(target.radio.caps + "\n"); }

Reply cmdRevInfo(Driver &, Target target, const Words &) {
    const Radio &radio = target.radio;
    const std::pair<const char *, long> lines[] = {
        {"vendorid", 0x14e4},
        {"deviceid", radio.deviceId},
        {"radiorev", 0x62069},
        {"chipnum", radio.chip},
        {"chiprev", 3},
        {"chippackage", 1},
        {"corerev", radio.coreRev},
        {"boardid", 0x745},
        {"boardvendor", 0x14e4},
        {"boardrev", 0x1101},
        {"driverrev", 0x70ea42c},
        {"ucoderev", 0x44e001a},
        {"bus", 1},
        {"phytype", radio.phyType},
        {"phyrev", 32},
        {"anarev", 0},
        {"nvramrev", 0},
    };
    std::string out;
    for (const auto &[name, value] : lines) {
        out += format("%s 0x%lx\n", name, static_cast<unsigned long>(value));
    }
    return done(out);
}

Reply cmdPhyType(Driver &, Target target, const Words &) { return done(format("%ld\n", target.radio.phyType)); }

Reply cmdTxChain(Driver &, Target target, const Words &) {
    return done(format("%ld (0x%lx)\n", target.radio.txChain, static_cast<unsigned long>(target.radio.txChain)));
}

Reply cmdVersion(Driver &, Target target, const Words &) {
    return done(format("7.14 RC164.44%s\n%s: version 7.14.164.44 simulated FWID 01-5d6e\n",
                       target.radio.wltest ? " WLTEST" : "", target.radio.name.c_str()));
}

Reply cmdTpId(Driver &, Target target, const Words &) { return done(format("%d\n", target.radio.cpu)); }

Reply cmdIsUp(Driver &, Target target, const Words &) {
    bool up = target.radio.up && (target.bss.index == 0 || target.bss.up);
    return done(up ? "1\n" : "0\n");
}

// No line end: this is the one report whose readers compare it whole.
Reply cmdBand(Driver &, Target target, const Words &) { return done(target.radio.band == Band::kGhz2 ? "b" : "1"); }

Reply cmdChanspecs(Driver &, Target target, const Words &arguments) {
    const Radio &radio = target.radio;
    long band = static_cast<long>(radio.band), width = 0;
    const Country *country = &radio.locale();
    for (size_t i = 0; i < arguments.size(); i += 2) {
        if (arguments[i] == "-c") {
            country = i + 1 < arguments.size() ? findCountry(arguments[i + 1]) : nullptr;
            if (!country) {
                return refuse("chanspecs: unknown country");
            }
            continue;
        }
        auto value = i + 1 < arguments.size() ? parseNumber(arguments[i + 1]) : std::nullopt;
        if (!value || (arguments[i] != "-b" && arguments[i] != "-w")) {
            return refuse("usage: chanspecs [-b 2|5] [-w 20|40|80] [-c COUNTRY]", 2);
        }
        (arguments[i] == "-b" ? band : width) = *value;
    }
    if (band != static_cast<long>(radio.band)) {
        return refuse(format("chanspecs: band %ld is not this radio's", band));
    }
    std::string out;
    for (int each : {20, 40, 80}) {
        if (width != 0 && width != each) {
            continue;
        }
        for (const Chanspec &chanspec : allowedChanspecs(*country, radio.band, each)) {
            out += chanspec.report() + "\n";
        }
    }
    return out.empty() ? refuse(format("chanspecs: no channels of %ld MHz", width)) : done(out);
}

Reply cmdChannels(Driver &, Target target, const Words &) {
    std::string out;
    for (const Chanspec &chanspec : allowedChanspecs(target.radio.locale(), target.radio.band, 20)) {
        out += (out.empty() ? "" : " ") + chanspec.text();
    }
    return done(out + "\n");
}

Reply cmdStatus(Driver &driver, Target target, const Words &) {
    const Radio &radio = target.radio;
    if (auto down = notOnAir(driver, target)) {
        return *down;
    }
    std::string mac = driver.address(radio, target.bss).text();
    std::string out = format("SSID: \"%s\"\n", escapeBytes(target.bss.ssid).c_str());
    out += format("Mode: Managed\tRSSI: 0 dBm\tSNR: 0 dB\tnoise: %d dBm\tFlags: \tChannel: %s\n", radio.noise,
                  radio.chanspec->text().c_str());
    out += format("BSSID: %s\tCapability: ESS\nSupported Rates: %s\n", mac.c_str(),
                  legacyRates(radio.band, radio.gmode == 0 && !radio.n).c_str());
    if (radio.n) {
        out += format("%s Capable:\n\tChanspec: %s\n\tPrimary channel: %d\n\tHT Capabilities:\n"
                      "\tSupported HT MCS : 0-%s\n",
                      radio.vht ? "VHT" : "HT", radio.chanspec->longReport().c_str(), radio.chanspec->control,
                      highestMcs(radio).c_str());
    }
    if (radio.vht) {
        out += "\tSupported VHT MCS:\n" + vhtStreams(radio.streams(), "\t\t");
    }
    return done(out);
}

Reply cmdCounters(Driver &, Target target, const Words &) {
    const auto &own = target.bss.counters;
    std::string out;
    int column = 0;
    for (const std::string &name : splitWords(kCounterNames)) {
        uint64_t value = counter(own, name) + (target.bss.index == 0 ? counter(target.radio.counters, name) : 0);
        out += format("%s %u%s", name.c_str(), static_cast<uint32_t>(value), ++column % 4 == 0 ? "\n" : " ");
    }
    return done(out);
}

Reply cmdRateSet(Driver &, Target target, const Words &) {
    const Radio &radio = target.radio;
    std::string out = legacyRates(radio.band, radio.gmode == 0 && !radio.n) + "\n";
    if (radio.n) {
        out += "MCS SET : [ ";
        for (int mcs = 0; mcs < 8 * radio.streams(); mcs++) {
            out += std::to_string(mcs) + " ";
        }
        out += "]\n";
    }
    for (int stream = 1; radio.vht && stream <= radio.streams(); stream++) {
        out += stream == 1 ? "VHT SET :" : "         ";
        for (int mcs = 0; mcs < 10; mcs++) {
            out += format(" %dx%d", mcs, stream);
        }
        out += "\n";
    }
    return done(out);
}

Reply cmdRate2g(Driver &, Target target, const Words &) { return fixedRate(target, Band::kGhz2); }
Reply cmdRate5g(Driver &, Target target, const Words &) { return fixedRate(target, Band::kGhz5); }

Reply cmdNoise(Driver &, Target target, const Words &) { return done(format("%d\n", target.radio.noise)); }

Reply cmdBssid(Driver &driver, Target target, const Words &) {
    if (auto down = notOnAir(driver, target)) {
        return *down;
    }
    return done(driver.address(target.radio, target.bss).text() + "\n");
}

} // namespace wlsim
