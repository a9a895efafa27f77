#include "platform/sim/driver/scenario.h"

#include "platform/sim/driver/faults.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

namespace wlsim {
namespace {

using nlohmann::json;

[[noreturn]] void wrong(const std::string &where, const std::string &what) {
    throw std::runtime_error(where + ": " + what);
}

long toNumber(const json &value, const std::string &where) {
    if (value.is_number_integer()) {
        return value.get<long>();
    }
    auto number = value.is_string() ? parseNumber(value.get<std::string>()) : std::nullopt;
    return number ? *number : (wrong(where, "a number is expected"), 0);
}

long toRange(const json &value, const std::string &where, long lowest, long highest) {
    long number = toNumber(value, where);
    if (number < lowest || number > highest) {
        wrong(where, format("%ld is not within %ld..%ld", number, lowest, highest));
    }
    return number;
}

std::string toText(const json &value, const std::string &where) {
    return value.is_string() ? value.get<std::string>() : (wrong(where, "a text is expected"), "");
}

bool toFlag(const json &value, const std::string &where) {
    return value.is_boolean() ? value.get<bool>() : (wrong(where, "true or false is expected"), false);
}

Mac toMac(const json &value, const std::string &where) {
    auto mac = parseMac(toText(value, where));
    return mac ? *mac : (wrong(where, "no hardware address"), Mac{});
}

// One of the words of a blank-separated list.
std::string toWord(const json &value, const std::string &where, const std::string &words) {
    std::string text = toText(value, where);
    return contains(splitWords(words), text) ? text : (wrong(where, "'" + text + "' is not one of: " + words), "");
}

template <typename Record> using Field = std::function<void(Record &, const json &, const std::string &where)>;
template <typename Record> using Fields = std::map<std::string, Field<Record>>;

void requireObject(const json &object, const std::string &where) {
    if (!object.is_object()) {
        wrong(where, "an object is expected");
    }
}

template <typename Record>
void readRecord(const json &object, const std::string &where, const Fields<Record> &fields, Record *record) {
    requireObject(object, where);
    for (const auto &[key, value] : object.items()) {
        auto field = fields.find(key);
        if (field == fields.end()) {
            wrong(where, "unknown key '" + key + "'");
        }
        field->second(*record, value, where + "." + key);
    }
}

template <typename Record>
void readList(const json &array, const std::string &where, std::function<Record(const json &, std::string)> read,
              std::vector<Record> *list) {
    if (!array.is_array()) {
        wrong(where, "an array is expected");
    }
    for (size_t i = 0; i < array.size(); i++) {
        list->push_back(read(array[i], where + "[" + std::to_string(i) + "]"));
    }
}

void readNumbers(const json &object, const std::string &where, const char *names,
                 std::map<std::string, uint64_t> *numbers) {
    requireObject(object, where);
    for (const auto &[key, value] : object.items()) {
        toWord(key, where, names);
        (*numbers)[key] = static_cast<uint64_t>(toRange(value, where + "." + key, 0, INT64_MAX));
    }
}

template <typename Record, typename Member> Field<Record> number(Member Record::*member, long lowest, long highest) {
    return [=](Record &record, const json &value, const std::string &where) {
        record.*member = static_cast<Member>(toRange(value, where, lowest, highest));
    };
}

template <typename Record> Field<Record> text(std::string Record::*member) {
    return [=](Record &r, const json &value, const std::string &where) { r.*member = toText(value, where); };
}

template <typename Record> Field<Record> word(std::string Record::*member, const char *words) {
    return [=](Record &r, const json &value, const std::string &where) { r.*member = toWord(value, where, words); };
}

template <typename Record> Field<Record> flag(bool Record::*member) {
    return [=](Record &r, const json &value, const std::string &where) { r.*member = toFlag(value, where); };
}

template <typename Record> Field<Record> mac(Mac Record::*member) {
    return [=](Record &r, const json &value, const std::string &where) { r.*member = toMac(value, where); };
}

void readSsid(Neighbour &ap, const std::optional<std::string> &bytes, const std::string &where) {
    if (!bytes || bytes->size() > 32) {
        wrong(where, "an SSID has at most 32 bytes");
    }
    ap.ssid = *bytes;
}

Neighbour neighbourFrom(const json &object, const std::string &where, Band band) {
    static const Fields<Neighbour> kFields = {
        {"bssid", mac(&Neighbour::bssid)},
        {"ssid", [](Neighbour &ap, const json &v, const std::string &w) { readSsid(ap, toText(v, w), w); }},
        {"ssid_hex",
         [](Neighbour &ap, const json &v, const std::string &w) { readSsid(ap, bytesFromHex(toText(v, w)), w); }},
        {"chanspec",
         [](Neighbour &ap, const json &v, const std::string &w) {
             auto chanspec = parseChanspec(ap.chanspec.band, toText(v, w));
             ap.chanspec = chanspec ? *chanspec : (wrong(w, "no channel of this band"), Chanspec{});
         }},
        {"rssi", number(&Neighbour::rssi, -120, 0)},
        {"noise", number(&Neighbour::noise, -120, 0)},
        {"security", word(&Neighbour::security, "open wpapsk wpa2psk wpapskmix wpa2")},
        {"wps", flag(&Neighbour::wps)},
        {"adhoc", flag(&Neighbour::adhoc)},
        {"beacon_period", number(&Neighbour::beaconPeriod, 1, 65535)},
        {"dtim", number(&Neighbour::dtim, 1, 255)},
        {"streams", number(&Neighbour::streams, 1, 4)},
        {"phy", word(&Neighbour::phy, "ac n a g b")},
    };
    Neighbour ap;
    ap.chanspec = *parseChanspec(band, band == Band::kGhz2 ? "1" : "36");
    readRecord(object, where, kFields, &ap);
    return ap;
}

void readCountry(Radio &radio, const json &value, const std::string &where) {
    std::string text = toText(value, where);
    size_t slash = std::min(text.find('/'), text.size());
    radio.country = text.substr(0, slash);
    if (!findCountry(radio.country)) {
        wrong(where, "unknown country " + radio.country);
    }
    radio.countryRev = slash < text.size() ? parseNumber(text.substr(slash + 1)).value_or(0) : 0;
}

const Fields<Radio> &radioFields() {
    static const Fields<Radio> kFields = {
        {"name", [](Radio &, const json &, const std::string &) {}},
        {"band", [](Radio &, const json &, const std::string &) {}},
        {"deviceid", number(&Radio::deviceId, 0, 0xffff)},
        {"chip", number(&Radio::chip, 0, 0xfffff)},
        {"corerev", number(&Radio::coreRev, 0, 255)},
        {"phytype", number(&Radio::phyType, 0, 255)},
        {"txchain", number(&Radio::txChain, 1, 15)},
        {"mac", mac(&Radio::mac)},
        {"caps", text(&Radio::caps)},
        {"country", readCountry},
        {"dhd", flag(&Radio::dhd)},
        {"wltest", flag(&Radio::wltest)},
        {"cpu", number(&Radio::cpu, 0, 63)},
        {"noise", number(&Radio::noise, -120, 0)},
        {"maxassoc", number(&Radio::maxAssoc, 1, 1024)},
        {"counters",
         [](Radio &r, const json &v, const std::string &w) { readNumbers(v, w, kCounterNames, &r.counters); }},
        {"chanim", [](Radio &r, const json &v, const std::string &w) { readNumbers(v, w, kChanimNames, &r.chanim); }},
        {"neighbours",
         [](Radio &radio, const json &value, const std::string &where) {
             auto read = [&](const json &ap, const std::string &at) { return neighbourFrom(ap, at, radio.band); };
             readList<Neighbour>(value, where, read, &radio.neighbours);
         }},
    };
    return kFields;
}

// Number of BSSs that the capability words promise.
size_t bssCapacity(const std::string &caps) {
    for (size_t count : {16, 8, 4}) {
        if (contains(splitWords(caps), format("mbss%zu", count))) {
            return count;
        }
    }
    return 1;
}

// Gives the radio one BSS for each that the chip can carry, and a first channel.
void finish(Radio &radio) {
    radio.bss.resize(bssCapacity(radio.caps));
    for (size_t i = 0; i < radio.bss.size(); i++) {
        radio.bss[i].index = static_cast<int>(i);
        radio.bss[i].ifName = i ? format("%s.%zu", radio.name.c_str(), i) : radio.name;
    }
    radio.bss[0].exists = true;
    radio.vht = radio.acPhy();
    radio.maxWidth = radio.band == Band::kGhz5 && radio.vht ? 80 : 40;
    radio.chanspec = allowedChanspecs(radio.locale(), radio.band, 20).front();
}

Radio typical(Band band) {
    Radio radio;
    radio.band = band;
    radio.chanim = {{"inbss", 2}, {"obss", 5}, {"nocat", 1}, {"nopkt", 1}, {"goodtx", 2}, {"badtx", 0}};
    if (band == Band::kGhz5) {
        radio.mac = *parseMac("00:10:18:AA:BB:C0");
        radio.caps = "ap sta wet mbss16 802.11d 802.11h rm wme pio ampdu ampdu_tx ampdu_rx amsdurx amsdutx wmf wds "
                     "radio_pwrsave rxchain_pwrsave mfp dfrts txpwrcache multi-user-beamformer 802.11ac";
        radio.dhd = true;
        return radio;
    }
    radio.mac = *parseMac("00:10:18:AA:BB:D0");
    radio.deviceId = 0x43bb;
    radio.chip = 0x4360;
    radio.coreRev = 42;
    radio.phyType = 7;
    radio.txChain = 7;
    radio.cpu = 1;
    radio.noise = -88;
    radio.caps = "ap sta wet mbss4 802.11d 802.11h rm wme pio ampdu ampdu_tx ampdu_rx amsdurx amsdutx wmf "
                 "radio_pwrsave rxchain_pwrsave mfp";
    return radio;
}

Radio radioFrom(const json &object, const std::string &where) {
    if (!object.is_object() || !object.contains("name")) {
        wrong(where, "a radio has a name");
    }
    std::string name = toText(object["name"], where + ".name");
    if (name.empty() || name.size() > 10 ||
        name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789") != name.npos) {
        wrong(where + ".name", "1 to 10 of a-z and 0-9");
    }
    long band = object.contains("band") ? toNumber(object["band"], where + ".band") : 5;
    if (band != 2 && band != 5) {
        wrong(where + ".band", "2 or 5");
    }
    Radio radio = typical(band == 2 ? Band::kGhz2 : Band::kGhz5);
    radio.name = name;
    readRecord(object, where, radioFields(), &radio);
    finish(radio);
    return radio;
}

Fault faultFrom(const json &object, const std::string &where) {
    static const Fields<Fault> kFields = {
        {"match", text(&Fault::match)},
        {"mode", word(&Fault::mode, kFaultModes)},
        {"count", number(&Fault::count, -1, 1000000)},
        {"ms", number(&Fault::ms, 0, 600000)},
    };
    Fault fault;
    readRecord(object, where, kFields, &fault);
    return fault.match.empty() ? (wrong(where, "a fault has a match"), fault) : fault;
}

std::string toName(const json &value, const std::string &where) {
    std::string name = toText(value, where);
    bool good = !name.empty() && name.size() <= 15 && name[0] != '-' && escapeBytes(name) == name &&
                name.find_first_of(" '") == std::string::npos;
    return good ? name : (wrong(where, "'" + name + "' is no name of 1 to 15 characters"), "");
}

std::string toAddress(const json &value, const std::string &where) {
    std::string address = toText(value, where);
    bool good = !address.empty() && address.find_first_not_of("0123456789abcdef.:/") == std::string::npos;
    return good ? address : (wrong(where, "no address"), "");
}

Bridge bridgeFrom(const json &object, const std::string &where) {
    static const Fields<Bridge> kFields = {
        {"name", [](Bridge &b, const json &v, const std::string &w) { b.name = toName(v, w); }},
        {"address", [](Bridge &b, const json &v, const std::string &w) { b.address = toAddress(v, w); }},
        {"ports",
         [](Bridge &b, const json &v, const std::string &w) { readList<std::string>(v, w, toName, &b.ports); }},
    };
    Bridge bridge;
    readRecord(object, where, kFields, &bridge);
    return bridge.name.empty() ? (wrong(where, "a bridge has a name"), bridge) : bridge;
}

void checkFaults(const Model &model) {
    for (size_t i = 0; i < model.faults.size(); i++) {
        std::string trouble = patternTrouble(model, model.faults[i].match);
        if (!trouble.empty()) {
            wrong(format("scenario.faults[%zu].match", i), trouble);
        }
    }
}

void checkNames(const std::vector<Radio> &radios) {
    std::set<std::string> names;
    std::set<Mac> addresses;
    for (const Radio &radio : radios) {
        if (!names.insert(radio.name).second || !addresses.insert(radio.mac).second) {
            wrong("radios", "name or address of " + radio.name + " is used twice");
        }
    }
}

Model modelFrom(const json &document) {
    Model model;
    bool radios = document.is_object() && document.contains("radios");
    const Fields<Model> fields = {
        {"radios", [](Model &m, const json &v, const std::string &w) { readList<Radio>(v, w, radioFrom, &m.radios); }},
        {"bridges",
         [](Model &m, const json &v, const std::string &w) { readList<Bridge>(v, w, bridgeFrom, &m.bridges); }},
        {"threads",
         [](Model &m, const json &v, const std::string &w) { readList<std::string>(v, w, toName, &m.threads); }},
        {"faults", [](Model &m, const json &v, const std::string &w) { readList<Fault>(v, w, faultFrom, &m.faults); }},
        {"nvram",
         [](Model &m, const json &v, const std::string &w) {
             requireObject(v, w);
             for (const auto &[key, value] : v.items()) {
                 m.nvram[key] = toText(value, w + "." + key);
             }
         }},
    };
    readRecord(document, "scenario", fields, &model);
    checkNames(model.radios);
    if (!radios) {
        model.radios = defaultModel().radios;
    }
    checkFaults(model);
    return model;
}

template <typename Build> bool guarded(std::string *error, Build build) {
    try {
        build();
        return true;
    } catch (const std::exception &failure) {
        *error = failure.what();
        return false;
    }
}

json parseText(const std::string &text) { return json::parse(text, nullptr, true, true); }

} // namespace

Model defaultModel() {
    Model model;
    model.radios = {typical(Band::kGhz5), typical(Band::kGhz2)};
    for (size_t i = 0; i < model.radios.size(); i++) {
        model.radios[i].name = format("wl%zu", i);
        finish(model.radios[i]);
    }
    return model;
}

bool readScenario(const std::string &text, Model *model, std::string *error) {
    return guarded(error, [&] { *model = modelFrom(parseText(text)); });
}

std::string bootSteps(const Model &model) {
    std::string steps;
    auto add = [&](const char *what, const std::string &name, const std::string &value) {
        steps += std::string(what) + "\t" + name + "\t" + value + "\n";
    };
    for (const Bridge &bridge : model.bridges) {
        add("bridge", bridge.name, "");
        if (!bridge.address.empty()) {
            add("address", bridge.name, bridge.address);
        }
        for (const std::string &port : bridge.ports) {
            add("port", port, "");
            add("member", bridge.name, port);
        }
    }
    for (const std::string &thread : model.threads) {
        add("thread", thread, "");
    }
    return steps;
}

bool readNeighbour(const std::string &text, Band band, Neighbour *neighbour, std::string *error) {
    return guarded(error, [&] { *neighbour = neighbourFrom(parseText(text), "neighbour", band); });
}

} // namespace wlsim
