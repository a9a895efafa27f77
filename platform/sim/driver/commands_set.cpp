// Driver commands that change something.
#include "platform/sim/driver/bss_security.h"
#include "platform/sim/driver/driver_commands.h"

#include <algorithm>

namespace wlsim {
namespace {

// Takes "-C N" off the arguments and moves the target to that BSS of the radio; a text that says what is wrong.
std::string selectBss(Radio &radio, Bss **bss, Words *arguments) {
    if (arguments->empty() || (*arguments)[0] != "-C") {
        return "";
    }
    auto index = arguments->size() > 1 ? parseNumber((*arguments)[1]) : std::nullopt;
    if (!index || *index < 0 || static_cast<size_t>(*index) >= radio.bss.size()) {
        return format("no such BSS (0..%zu)", radio.bss.size() - 1);
    }
    *bss = &radio.bss[static_cast<size_t>(*index)];
    arguments->erase(arguments->begin(), arguments->begin() + 2);
    return "";
}

std::string upTrouble(const Radio &radio, const Bss &bss) {
    if (!bss.exists) {
        return "no such BSS";
    }
    if (!radio.up || radio.stage < Stage::kSecured) {
        return "the radio is not up";
    }
    return !bss.refusal.empty() ? bss.refusal : bss.ssid.empty() ? "no SSID" : "";
}

} // namespace

Reply cmdUp(Driver &, Target target, const Words &) {
    target.radio.up = true;
    return done();
}

Reply cmdDown(Driver &driver, Target target, const Words &) {
    for (Bss &bss : target.radio.bss) {
        driver.dropStations(bss, kEventDisassocInd, 8);
    }
    target.radio.up = false;
    return done();
}

Reply cmdCountry(Driver &, Target target, const Words &arguments) {
    Radio &radio = target.radio;
    if (arguments.empty()) {
        return done(format("%s (%s/%ld) %s\n", radio.country.c_str(), radio.country.c_str(), radio.countryRev,
                           radio.locale().name));
    }
    size_t slash = std::min(arguments[0].find('/'), arguments[0].size());
    std::string code = arguments[0].substr(0, slash);
    auto revision = slash < arguments[0].size() ? parseNumber(arguments[0].substr(slash + 1)) : std::optional<long>(0);
    const Country *country = findCountry(code);
    if (!country || !revision || *revision < 0) {
        return refuse("country " + arguments[0] + " is not supported");
    }
    if (radio.up && radio.chanspec && !isAllowed(*country, *radio.chanspec)) {
        return refuse("channel " + radio.chanspec->text() + " in use is not allowed in " + code);
    }
    radio.country = code;
    radio.countryRev = *revision;
    return done();
}

Reply cmdChanspec(Driver &, Target target, const Words &arguments) {
    Radio &radio = target.radio;
    if (arguments.empty()) {
        return radio.chanspec ? done(radio.chanspec->report() + "\n") : refuse("no channel is set");
    }
    auto chanspec = parseChanspec(radio.band, arguments[0]);
    if (!chanspec || !isAllowed(radio.locale(), *chanspec)) {
        return refuse("chanspec " + arguments[0] + " is not allowed in " + radio.country);
    }
    if (chanspec->width > radio.maxWidth) {
        return refuse(format("chanspec %s is wider than %d MHz", arguments[0].c_str(), radio.maxWidth));
    }
    radio.chanspec = chanspec;
    return done();
}

Reply cmdCsa(Driver &driver, Target target, const Words &arguments) {
    auto mode = parseNumber(arguments[0]), count = parseNumber(arguments[1]);
    auto chanspec = parseChanspec(target.radio.band, arguments[2]);
    if (!mode || *mode < 0 || *mode > 1 || !count || *count < 0 || *count > 255) {
        return refuse("csa: mode 0..1, count 0..255");
    }
    if (!chanspec || !isAllowed(target.radio.locale(), *chanspec)) {
        return refuse("csa: chanspec " + arguments[2] + " is not allowed in " + target.radio.country);
    }
    if (!target.radio.up || !target.bss.up) {
        return refuse("csa: the BSS is down");
    }
    int64_t due = driver.ports.clock.nowMs() + *count * target.radio.beaconPeriod * 1024 / 1000;
    target.radio.switches.push_back(
        {target.bss.ifName, static_cast<int>(*mode), static_cast<int>(*count), *chanspec, due, false});
    return done();
}

Reply cmdSsid(Driver &driver, Target target, const Words &arguments) {
    Bss *bss = &target.bss;
    Words rest = arguments;
    std::string trouble = selectBss(target.radio, &bss, &rest);
    if (!trouble.empty() || rest.size() > 1) {
        return refuse(trouble.empty() ? "usage: ssid [-C BSS] [SSID]" : trouble, trouble.empty() ? 2 : 1);
    }
    if (rest.empty()) {
        return done("Current SSID: \"" + escapeBytes(bss->ssid) + "\"\n");
    }
    if (rest[0].size() > 32) {
        return refuse("SSID longer than 32 bytes");
    }
    // Naming a BSS brings it into being: what is set on its interface next must find one.
    std::string error = driver.createInterface(target.radio, *bss);
    if (!error.empty()) {
        return refuse(error);
    }
    bss->ssid = rest[0];
    return done();
}

Reply cmdBss(Driver &driver, Target target, const Words &arguments) {
    Bss *bss = &target.bss;
    Words rest = arguments;
    std::string trouble = selectBss(target.radio, &bss, &rest);
    if (!trouble.empty()) {
        return refuse(trouble);
    }
    if (rest.empty()) {
        return done(bss->up ? "up\n" : "down\n");
    }
    if (rest.size() > 1 || (rest[0] != "up" && rest[0] != "down")) {
        return refuse("usage: bss [-C BSS] [up|down]", 2);
    }
    bool up = rest[0] == "up";
    trouble = up ? upTrouble(target.radio, *bss) : bss->exists ? "" : "no such BSS";
    if (!trouble.empty()) {
        return refuse("bss " + rest[0] + ": " + trouble);
    }
    if (!up) {
        driver.dropStations(*bss, kEventDisassocInd, 8);
    }
    bss->up = up;
    return done();
}

Reply cmdMacMode(Driver &, Target target, const Words &arguments) {
    if (arguments.empty()) {
        return done(format("%d\n", static_cast<int>(target.bss.macMode)));
    }
    auto mode = parseNumber(arguments[0]);
    if (!mode || *mode < 0 || *mode > 2) {
        return refuse("macmode: bad argument " + arguments[0] + " (0..2)");
    }
    target.bss.macMode = static_cast<MacMode>(*mode);
    return done();
}

Reply cmdMac(Driver &, Target target, const Words &arguments) {
    std::vector<Mac> &list = target.bss.macList;
    if (arguments.empty()) {
        std::string out;
        for (const Mac &mac : list) {
            out += "mac " + mac.text() + "\n";
        }
        return done(out);
    }
    std::vector<Mac> fresh;
    for (const std::string &word : arguments) {
        auto mac = parseMac(word);
        if (!mac && !(word == "none" && arguments.size() == 1)) {
            return refuse("mac: " + word + " is no address");
        }
        if (mac) {
            fresh.push_back(*mac);
        }
    }
    list = fresh;
    return done();
}

Reply cmdAddress(Driver &driver, Target target, const Words &arguments) {
    if (arguments.empty()) {
        return done("cur_etheraddr " + driver.address(target.radio, target.bss).text() + "\n");
    }
    auto mac = parseMac(arguments[0]);
    if (!mac || (mac->bytes[0] & 1) != 0) {
        return refuse("cur_etheraddr: " + arguments[0] + " is no station address");
    }
    if (target.bss.up) {
        return refuse("cur_etheraddr: the BSS is up");
    }
    return driver.ports.net.setMac(target.bss.ifName, *mac) ? done() : refuse("cur_etheraddr: not settable");
}

Reply cmdDeauthenticate(Driver &driver, Target target, const Words &arguments) {
    auto mac = parseMac(arguments[0]);
    if (!mac) {
        return refuse("deauthenticate: " + arguments[0] + " is no address");
    }
    bool dropped = driver.dropStation(target.bss, *mac, kEventDeauthInd, 2);
    return dropped ? done() : refuse("deauthenticate: " + mac->text() + " is not associated");
}

Reply cmdScan(Driver &driver, Target target, const Words &) {
    if (!target.radio.up) {
        return refuse("scan: the radio is down");
    }
    target.radio.scanned = target.radio.neighbours;
    driver.emit({kEventScanComplete, target.radio.name, {}, 0, 0});
    return done();
}

} // namespace wlsim
