// wlconf: takes the stored configuration of a radio into the driver. The store is its only source.
#include "platform/sim/driver/bss_security.h"
#include "platform/sim/driver/sim_driver.h"
#include "platform/sim/nvram/nvram_store.h"

#include <algorithm>
#include <climits>

namespace wlsim {
namespace {

struct NumberKey {
    const char *key;
    long lowest, highest;
};
constexpr NumberKey kRadioNumbers[] = {
    {"nband", -1, 2},     {"bw_cap", 1, 7},   {"nmode", -1, 1},       {"vhtmode", -1, 1},      {"gmode", 0, 6},
    {"maxassoc", 0, 256}, {"bcn", 20, 1024},  {"rts", 0, 2347},       {"frag", 256, 2346},     {"rate", -1, INT_MAX},
    {"nmcsidx", -2, 32},  {"stbc_rx", -1, 4}, {"obss_coex", -1, 1},   {"country_rev", 0, 999}, {"atf", 0, 1},
    {"antdiv", -1, 3},    {"lazywds", 0, 1},  {"txbf_bfr_cap", 0, 2}, {"txbf_bfe_cap", 0, 2},
};
constexpr NumberKey kBssNumbers[] = {
    {"closed", 0, 1},          {"ap_isolate", 0, 1}, {"bss_maxassoc", 0, 256},      {"wmf_bss_enable", 0, 1},
    {"wme_bss_disable", 0, 1}, {"mfp", 0, 2},        {"wpa_gtk_rekey", 0, INT_MAX}, {"auth", 0, 2},
};
constexpr struct {
    const char *key, *words;
} kRadioWords[] = {
    {"reg_mode", "off h d"},    {"frameburst", "on off"},         {"plcphdr", "long auto"},
    {"ampdu", "auto on off"},   {"amsdu", "auto on off"},         {"rifs_advert", "auto off"},
    {"stbc_tx", "auto on off"}, {"wme", "auto on off"},           {"wme_apsd", "on off"},
    {"wme_no_ack", "on off"},   {"gmode_protection", "auto off"}, {"nmode_protection", "auto off"},
};

long number(const std::string &prefix, const char *key, long otherwise) {
    return parseNumber(stored(prefix, key)).value_or(otherwise);
}

template <size_t N> void checkNumbers(const std::string &prefix, const NumberKey (&keys)[N], Words *problems) {
    for (const NumberKey &row : keys) {
        std::string text = stored(prefix, row.key);
        auto value = parseNumber(text);
        if (!text.empty() && (!value || *value < row.lowest || *value > row.highest)) {
            problems->push_back(prefix + "_" + row.key + "=" + text + " is invalid");
        }
    }
}

void checkWords(const std::string &prefix, Words *problems) {
    for (const auto &row : kRadioWords) {
        std::string text = stored(prefix, row.key);
        if (!text.empty() && !contains(splitWords(row.words), text)) {
            problems->push_back(prefix + "_" + row.key + "=" + text + " is invalid");
        }
    }
}

void readCountry(Radio &radio, Words *problems) {
    std::string code = stored(radio.name, "country_code");
    if (code.empty()) {
        return;
    }
    if (!findCountry(code)) {
        problems->push_back("unknown country " + code);
        return;
    }
    radio.country = code;
    radio.countryRev = number(radio.name, "country_rev", 0);
}

// Which of the chip's abilities the configuration leaves on, and so how wide a channel may be.
void readModes(Radio &radio, Words *problems) {
    long band = number(radio.name, "nband", 0);
    if (band != 0 && band != (radio.band == Band::kGhz5 ? 1 : 2)) {
        problems->push_back("nband " + std::to_string(band) + " is not this radio's band");
    }
    radio.n = number(radio.name, "nmode", -1) != 0;
    radio.vht = radio.n && radio.acPhy() && number(radio.name, "vhtmode", -1) != 0;
    radio.gmode = number(radio.name, "gmode", 1);
    long cap = number(radio.name, "bw_cap", 7);
    int offered = (cap & 4) != 0 ? 80 : (cap & 2) != 0 ? 40 : 20;
    int able = radio.band == Band::kGhz5 && radio.vht ? 80 : radio.n ? 40 : 20;
    radio.maxWidth = std::min(offered, able);
}

std::string channelTrouble(const Radio &radio, const Chanspec &chanspec) {
    if (!isAllowed(radio.locale(), chanspec)) {
        return "is not allowed in " + radio.country;
    }
    return chanspec.width > radio.maxWidth ? format("is wider than the %d MHz configured", radio.maxWidth) : "";
}

void readChannel(Radio &radio, Words *problems) {
    std::string text = stored(radio.name, "chanspec");
    text = text.empty() ? stored(radio.name, "channel") : text;
    radio.autoChannel = text.empty() || text == "0";
    if (radio.autoChannel) {
        // A provisional channel until the selection daemon has made its choice.
        auto allowed = allowedChanspecs(radio.locale(), radio.band, 20);
        radio.chanspec = allowed.front();
        return;
    }
    auto chanspec = parseChanspec(radio.band, text);
    std::string trouble = chanspec ? channelTrouble(radio, *chanspec) : "does not exist in this band";
    if (!trouble.empty()) {
        problems->push_back("channel " + text + " " + trouble);
        return;
    }
    radio.chanspec = chanspec;
}

void readRates(Radio &radio) {
    long rate = number(radio.name, "rate", 0), mcs = number(radio.name, "nmcsidx", -1);
    radio.fixedRate.clear();
    if (radio.n && mcs >= 0) {
        radio.fixedRate = format("ht mcs %ld", mcs);
    } else if (rate > 0) {
        radio.fixedRate = format("rate %ld Mbps", rate);
    }
    radio.beaconPeriod = static_cast<int>(number(radio.name, "bcn", 100));
    long limit = number(radio.name, "maxassoc", 0);
    if (limit > 0) {
        radio.settings["maxassoc"] = limit;
    } else {
        radio.settings.erase("maxassoc");
    }
}

Words readRadio(Radio &radio) {
    Words problems;
    checkNumbers(radio.name, kRadioNumbers, &problems);
    checkWords(radio.name, &problems);
    readCountry(radio, &problems);
    readModes(radio, &problems);
    readChannel(radio, &problems);
    readRates(radio);
    return problems;
}

void readMacFilter(Bss &bss, Words *problems) {
    std::string mode = stored(bss.ifName, "macmode");
    bss.macMode = mode == "deny" ? MacMode::kDeny : mode == "allow" ? MacMode::kAllow : MacMode::kOff;
    if (bss.macMode == MacMode::kOff && !mode.empty() && mode != "disable" && mode != "disabled") {
        problems->push_back("unknown macmode " + mode);
    }
    bss.macList.clear();
    for (const std::string &word : splitWords(stored(bss.ifName, "maclist"))) {
        auto mac = parseMac(word);
        if (mac) {
            bss.macList.push_back(*mac);
        } else {
            problems->push_back("maclist entry " + word + " is no address");
        }
    }
}

void readAddress(Driver &driver, Bss &bss, Words *problems) {
    std::string text = stored(bss.ifName, "hwaddr");
    if (text.empty()) {
        return;
    }
    auto mac = parseMac(text);
    if (!mac || !driver.ports.net.setMac(bss.ifName, *mac)) {
        problems->push_back("hwaddr " + text + " cannot be set");
    }
}

void readBss(Driver &driver, Bss &bss) {
    Words problems;
    checkNumbers(bss.ifName, kBssNumbers, &problems);
    bss.ssid = stored(bss.ifName, "ssid");
    bss.dtim = static_cast<int>(number(bss.ifName, "dtim", 1));
    for (const char *key : {"closed", "ap_isolate", "bss_maxassoc", "wmf_bss_enable"}) {
        bss.settings[key] = number(bss.ifName, key, 0);
    }
    std::string mode = stored(bss.ifName, "mode");
    if (!mode.empty() && mode != "ap") {
        problems.push_back("mode " + mode + " serves no stations");
    }
    readMacFilter(bss, &problems);
    readAddress(driver, bss, &problems);
    bss.refusal = problems.empty() ? "" : problems.front();
}

bool enabled(const Bss &bss) { return stored(bss.ifName, "bss_enabled") == "1"; }

// Interfaces of the virtual BSSs follow the list: new ones are created, those no longer listed go away.
void matchInterfaces(Driver &driver, Radio &radio, Words *problems) {
    Words listed = splitWords(stored(radio.name, "vifs"));
    for (Bss &bss : radio.bss) {
        bool wanted = bss.index == 0 || contains(listed, bss.ifName);
        if (bss.exists && !wanted) {
            driver.ports.net.remove(bss.ifName);
            Bss fresh;
            fresh.index = bss.index;
            fresh.ifName = bss.ifName;
            bss = fresh;
        }
        std::string error = wanted ? driver.createInterface(radio, bss) : "";
        if (!error.empty()) {
            problems->push_back(error);
        }
    }
    for (const std::string &name : listed) {
        if (!driver.find(name)) {
            problems->push_back(name + " in the vifs list is no BSS of " + radio.name);
        }
    }
}

void takeDown(Driver &driver, Radio &radio) {
    for (Bss &bss : radio.bss) {
        driver.dropStations(bss, kEventDisassocInd, 8);
        bss.up = false;
    }
    radio.up = false;
    radio.stage = Stage::kDown;
}

Reply report(const Words &problems) { return problems.empty() ? done() : refuse(joinWords(problems, "; ")); }

Reply down(Driver &driver, Radio &radio) {
    takeDown(driver, radio);
    return done();
}

Reply up(Driver &driver, Radio &radio) {
    takeDown(driver, radio);
    if (stored(radio.name, "radio") == "0") {
        return done(radio.name + ": radio is switched off\n");
    }
    Words problems = readRadio(radio);
    if (!problems.empty()) {
        return report(problems);
    }
    matchInterfaces(driver, radio, &problems);
    for (Bss &bss : radio.bss) {
        if (bss.exists) {
            readBss(driver, bss);
        }
    }
    radio.up = true;
    radio.stage = Stage::kConfigured;
    return report(problems);
}

Reply security(Driver &, Radio &radio) {
    if (radio.stage < Stage::kConfigured) {
        return refuse(radio.name + " is not up: security comes after up");
    }
    Words problems;
    for (Bss &bss : radio.bss) {
        if (!bss.exists || !enabled(bss)) {
            continue;
        }
        bss.security = readSecurity(bss.ifName);
        if (!bss.security.broken.empty()) {
            problems.push_back(bss.ifName + ": " + bss.security.broken);
        }
    }
    radio.stage = std::max(radio.stage, Stage::kSecured);
    return report(problems);
}

bool sharesAddress(Driver &driver, const Radio &radio, const Bss &bss) {
    return std::any_of(radio.bss.begin(), radio.bss.end(), [&](const Bss &other) {
        return other.up && &other != &bss && driver.address(radio, other) == driver.address(radio, bss);
    });
}

std::string startTrouble(Driver &driver, const Radio &radio, const Bss &bss) {
    if (!bss.refusal.empty()) {
        return bss.refusal;
    }
    if (bss.ssid.empty() || bss.ssid.size() > 32) {
        return bss.ssid.empty() ? "no SSID" : "SSID too long";
    }
    return sharesAddress(driver, radio, bss) ? "address already in use" : "";
}

Reply start(Driver &driver, Radio &radio) {
    if (radio.stage < Stage::kSecured) {
        return refuse(radio.name + ": start comes after up and security");
    }
    Words problems;
    for (Bss &bss : radio.bss) {
        if (!bss.exists || !enabled(bss)) {
            continue;
        }
        std::string trouble = startTrouble(driver, radio, bss);
        bss.up = trouble.empty();
        if (!bss.up) {
            problems.push_back(bss.ifName + ": " + trouble);
        }
    }
    radio.stage = Stage::kStarted;
    return report(problems);
}

constexpr struct {
    const char *name;
    Reply (*run)(Driver &, Radio &);
} kVerbs[] = {{"down", down}, {"up", up}, {"security", security}, {"start", start}};

} // namespace

Words wlconfVerbs() {
    Words names;
    for (const auto &verb : kVerbs) {
        names.push_back(verb.name);
    }
    return names;
}

Reply runWlconf(Driver &driver, const Words &words) {
    if (words.size() != 3) {
        return refuse("usage: wlconf RADIO down|up|security|start", 2);
    }
    Radio *radio = driver.findRadio(words[1]);
    if (!radio) {
        return refuse(words[1] + " is no radio");
    }
    for (const auto &verb : kVerbs) {
        if (words[2] == verb.name) {
            return verb.run(driver, *radio);
        }
    }
    return refuse("unknown verb " + words[2], 2);
}

} // namespace wlsim
