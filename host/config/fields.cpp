#include "host/config/fields.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "host/config/text_rules.h"

// Offset and size of a record's member, the two columns that say where a value goes.
#define AT(type, member) offsetof(type, member), sizeof(type::member)

namespace wlhost {

const std::vector<HtMode> kHtModes = {
    {"HT20", 20, -1, false},  {"HT40+", 40, -1, false}, {"HT40-", 40, 1, false}, {"VHT20", 20, -1, true},
    {"VHT40+", 40, -1, true}, {"VHT40-", 40, 1, true},  {"VHT80", 80, -1, true},
};

const std::vector<SecurityKind> kSecurityKinds = {
    {"none", "open", "none"},       {"wep", "open", "wep"},     {"wep-shared", "shared", "wep"},
    {"wep-auto", "wepauto", "wep"}, {"psk2", "wpa2psk", "aes"}, {"psk-mixed", "wpapskmix", "tkipaes"},
    {"wpa2", "wpa2", "aes"},
};

const std::vector<HwMode> kHwModes = {
    {"g", true, false, false, false},  {"b", true, false, false, false},  {"bg", true, false, false, false},
    {"n", true, true, true, false},    {"bgn", true, false, true, false}, {"a", false, true, false, false},
    {"an", false, true, true, false},  {"ac", false, true, true, true},   {"nac", false, true, true, true},
    {"anac", false, true, true, true},
};

namespace {

template <typename Rows> std::vector<Word> wordsOf(const Rows &rows) {
    std::vector<Word> words;
    for (const auto &row : rows)
        words.push_back({row.name, static_cast<long>(words.size())});
    return words;
}

Field flag(const char *name, size_t offset, size_t size, bool initial, const char *about) {
    return {name, Kind::kFlag, offset, size, about, 0, -1, initial};
}

Field number(const char *name, size_t offset, size_t size, long low, long high, long initial, const char *about,
             std::vector<Word> words = {}) {
    return {name, Kind::kNumber, offset, size, about, low, high, initial, false, false, std::move(words)};
}

Field oneOf(const char *name, size_t offset, size_t size, long initial, std::vector<Word> words, const char *about) {
    return {name, Kind::kNumber, offset, size, about, 0, -1, initial, false, false, std::move(words)};
}

Field choice(const char *name, size_t offset, size_t size, const char *initial, std::vector<Word> words,
             const char *about) {
    return {name, Kind::kChoice, offset, size, about, 0, -1, 0, false, false, std::move(words), nullptr, initial};
}

Field text(const char *name, size_t offset, size_t size, const TextRule &rule, const char *about,
           const char *initial = "") {
    return {name, Kind::kText, offset, size, about, 0, -1, 0, false, false, {}, &rule, initial};
}

Field mac(const char *name, size_t offset, size_t size, const char *about) {
    return {name, Kind::kMac, offset, size, about, 0, -1, 0, false, false, {}, &kMacRule};
}

Field list(const char *name, size_t offset, size_t size, long most, const TextRule &rule, const char *about) {
    return {name, Kind::kList, offset, size, about, 0, most, 0, false, false, {}, &rule};
}

Field numbers(const char *name, size_t offset, size_t size, long most, char separator, const char *about) {
    return {name, Kind::kList, offset, size, about, 0, most, 0, false, false, {}, nullptr, "", separator};
}

Field nested(const char *name, Kind kind, long low, long high, const std::vector<Field> &children, const char *about) {
    return {name, kind, 0, 0, about, low, high, 0, false, false, {}, nullptr, "", ' ', &children};
}

Field secret(Field field) {
    field.secret = true;
    return field;
}

Field required(Field field) {
    field.required = true;
    return field;
}

Field inverted(Field field) {
    field.inverted = true;
    return field;
}

constexpr long kMonth = 31L * 24 * 3600;

using R = RadioFields;
using S = SsidFields;

// What both power saves take, in the first three words of their parameters.
std::vector<Field> idleFields(size_t offset, size_t size, const char *enableAbout) {
    return {
        number("enable", offset, size, 0, 1, 0, enableAbout),
        number("quiet_time", offset + size, size, 0, 86400, 1800, "Idle seconds before"),
        number("pps", offset + 2 * size, size, 0, 1000000, 10, "Packets per second that count as idle"),
    };
}

const std::vector<Field> &rxChainFields() {
    static const std::vector<Field> kFields =
        idleFields(AT(R, record.rxChainPwrsaveParams[0]), "1 switches receive chains off when idle");
    return kFields;
}

const std::vector<Field> &radioPwrsaveFields() {
    static const std::vector<Field> kFields = [] {
        auto rows = idleFields(AT(R, record.radioPwrsaveParams[0]), "1 duty-cycles the radio when idle");
        rows.push_back(number("level", AT(R, record.radioPwrsaveParams[3]), 0, 7, 0, "Depth of the duty cycle"));
        return rows;
    }();
    return kFields;
}

const std::vector<Field> &wpsFields() {
    static const std::vector<Field> kFields = {
        flag("enabled", AT(S, record.wpsEnable), false, "Wi-Fi Protected Setup on this SSID"),
        flag("configured", AT(S, record.wpsConfigured), true, "The network counts as configured"),
        flag("version2", AT(S, record.wpsVersion2), true, "Protocol version 2"),
        flag("push_button", AT(S, record.wpsPbcEnable), true, "Push button allowed"),
        flag("station_pin", AT(S, record.wpsStaPinEnable), true, "Station PIN allowed"),
        flag("ap_pin", AT(S, record.wpsApPinEnable), false, "PIN of the access point allowed"),
        number("config_methods", AT(S, record.wpsConfigMethod), 0, 0xffff, 0,
               "Bit mask of configuration methods; 0 takes the usual ones of the version"),
        secret(text("device_pin", AT(S, record.wpsDevicePin), kPinRule, "The device's own PIN")),
        text("uuid", AT(S, record.wpsUuid), kUuidRule, "UUID; made from the radio's address when absent"),
    };
    return kFields;
}

const std::vector<Field> &radiusFields() {
    static const std::vector<Field> kFields = {
        required(text("server", AT(S, record.radiusIpaddr), kAddressRule, "Address of the server")),
        number("port", AT(S, record.radiusPort), 1, 65535, 1812, "UDP port of the server"),
        required(secret(text("secret", AT(S, record.radiusKey), kSecretRule, "Shared secret"))),
    };
    return kFields;
}

const std::vector<Field> &ssidFields() {
    static const std::vector<Field> kFields = {
        text("ssid", AT(S, record.ssidName), kSsidRule,
             "Network name; a letter beyond ASCII takes 2 to 4 of the 32 bytes"),
        text("ssid_hex", AT(S, record.ssidName), kSsidHexRule, "Network name that is no UTF-8, in place of ssid"),
        inverted(flag("disabled", AT(S, record.enable), false, "The SSID is off")),
        text("ifname", AT(S, record.ifName), kInterfaceRule,
             "Interface; the radio's own for the first SSID, then wl0.1 and so on when absent"),
        text("path", AT(S, record.objPath), kPathRule, "Object path; the interface name when absent"),
        flag("main", AT(S, record.main), false,
             "This SSID's maxassoc limits the whole radio; the first SSID does when none is marked"),
        flag("hidden", AT(S, record.hideSsid), false, "Leave the SSID out of beacons"),
        flag("isolate", AT(S, record.bssIsolation), false, "Stations do not reach each other"),
        flag("wmf", AT(S, record.multicastFwd), false, "Wireless multicast forwarding"),
        flag("wmm", AT(S, record.wmm), true, "WMM; the first SSID also decides for the radio"),
        flag("uapsd", AT(S, record.wmmApsd), true, "WMM power save; the first SSID decides for the radio"),
        oneOf("encryption", AT(S, security), 0, wordsOf(kSecurityKinds), "Security of the network"),
        secret(text("key", AT(S, record.wpaPsk), kPskRule, "Passphrase of psk2 and psk-mixed")),
        secret(text("key_fallback", AT(S, record.wpaPskFallback), kPskRule, "Passphrase used when there is no key")),
        secret(text("key1", AT(S, record.wepKeys[0]), kWepRule, "WEP key 1")),
        secret(text("key2", AT(S, record.wepKeys[1]), kWepRule, "WEP key 2")),
        secret(text("key3", AT(S, record.wepKeys[2]), kWepRule, "WEP key 3")),
        secret(text("key4", AT(S, record.wepKeys[3]), kWepRule, "WEP key 4")),
        number("wep_default_key", AT(S, record.defaultKeyId), 1, 4, 1, "Number of the WEP key to send with"),
        number("ieee80211w", AT(S, record.protectMF), 0, 2, 0, "Management frame protection: off, optional, required"),
        number("wpa_group_rekey", AT(S, record.rekeyInterval), 0, kMonth, 3600,
               "Group key lifetime in seconds, 0 none"),
        number("eap_reauth_period", AT(S, record.netReauth), 0, kMonth, 36000, "RADIUS re-authentication in seconds"),
        flag("rsn_preauth", AT(S, record.preauth), false, "WPA2 pre-authentication"),
        number("maxassoc", AT(S, record.maxSta), 1, 512, 128, "Most stations at a time"),
        choice("macfilter", AT(S, record.macFilterMode), "",
               {{"disable", 0, ""}, {"deny", 1, "DENY"}, {"allow", 2, "ALLOW"}}, "What maclist means"),
        list("maclist", AT(S, record.macFilterList), 85, kMacRule, "Stations of the MAC filter"),
        text("network", AT(S, record.bridge), kInterfaceRule, "Bridge that the interface joins: a LAN group"),
        number("limit_up", AT(S, record.upstreamRate), 0, 10000000, 0, "Limit from the stations in kbit/s, 0 none"),
        number("limit_down", AT(S, record.downstreamRate), 0, 10000000, 0, "Limit to the stations in kbit/s, 0 none"),
        oneOf("preset", AT(S, record.presetRole), 0, {{"none", 0}, {"on-demand", 1}, {"announcer", 2}},
              "on-demand: down until switched on; announcer: announces channel switches before a reload"),
        nested("wps", Kind::kGroup, 0, 0, wpsFields(), "Wi-Fi Protected Setup, on the radio's first SSID"),
        nested("radius", Kind::kGroup, 0, 0, radiusFields(), "RADIUS server of wpa2"),
    };
    return kFields;
}

const std::vector<Field> &radioFields() {
    static const std::vector<Word> kRifs = {{"off", 0}, {"auto", -1}};
    static const std::vector<Field> kFields = {
        required(text("name", AT(R, record.ifName), kRadioRule, "Interface of the radio, such as wl0")),
        inverted(flag("disabled", AT(R, record.radioOn), false, "The radio is off")),
        number("index", AT(R, record.radioIndex), 1, 127, 0, "Number of the radio from 1; from its name when absent"),
        oneOf("band", AT(R, record.band), 0, {{"2g", 2}, {"5g", 1}}, "Band, when the file is to be checked against it"),
        number("channel", AT(R, record.channel), 1, 165, 0, "Control channel", {{"auto", 0}}),
        oneOf("htmode", AT(R, htmode), 0, wordsOf(kHtModes), "Channel width"),
        oneOf("hwmode", AT(R, record.wirelessMode), -1, wordsOf(kHwModes),
              "802.11 modes admitted; those that fit band and htmode when absent"),
        required(text("country", AT(R, record.countryCode), kCountryRule, "Regulatory country")),
        oneOf("regmode", AT(R, record.regMode), 0, {{"off", 0}, {"h", 1}, {"d", 2}}, "802.11h or 802.11d"),
        number("dfs_preism", AT(R, record.dfsPreIsm), -1, 99, -1, "Seconds of listening before use, -1 the driver's"),
        number("dfs_postism", AT(R, record.dfsPostIsm), -1, 99, -1, "Seconds of listening after use, -1 the driver's"),
        number("tpc_db", AT(R, record.tpcDb), 0, 63, 0, "Power reduction of 802.11h in dB"),
        number("txpower", AT(R, record.txPower), 1, 100, 100, "Transmit power in percent"),
        number("beacon_int", AT(R, record.beaconPeriod), 20, 1024, 100, "Beacon interval in time units"),
        number("dtim_period", AT(R, record.dtimPeriod), 1, 255, 3, "DTIM period in beacons"),
        number("rts", AT(R, record.rtsThreshold), 1, 2347, 2347, "RTS threshold in bytes"),
        number("frag", AT(R, record.fragThreshold), 256, 2346, 2346, "Fragmentation threshold in bytes"),
        number("rate", AT(R, record.rate), 0, 54000000, 0, "Fixed legacy rate in the driver's unit; needs mcs"),
        number("mcs", AT(R, record.mcs), 0, 32, -1, "Fixed MCS index", {{"auto", -1}}),
        number("mcast_rate", AT(R, record.multicastRate), 0, 54000000, 0,
               "Multicast rate in the driver's unit, 0 automatic"),
        number("acs_scan_timer", AT(R, record.acsScanTimer), 0, kMonth, 900, "Seconds between automatic channel scans"),
        number("acs_policy", AT(R, record.acsPolicyIndex), 0, 255, 0, "Policy of the channel selection daemon"),
        numbers("acs_exclude", AT(R, record.acsSkipList), 50, ',', "Channels that automatic selection skips"),
        flag("frameburst", AT(R, record.frameBurst), true, "Frame bursting"),
        flag("atf", AT(R, record.atfEnable), false, "Airtime fairness"),
        flag("beamforming", AT(R, beamforming), true, "Transmit beamforming; false overrules the next three"),
        flag("su_beamformer", AT(R, record.txbfBfr), true, "Send beamformed"),
        flag("su_beamformee", AT(R, record.txbfBfe), true, "Help others to beamform"),
        flag("mu_beamforming", AT(R, record.txbfMu), false, "Multi-user beamforming"),
        flag("coexistence", AT(R, record.apCoex), true, "20/40 MHz coexistence"),
        oneOf("bg_protection", AT(R, record.bgProtection), 1, {{"auto", 1}, {"off", 2}},
              "Protection of 802.11b stations"),
        flag("ht_protection", AT(R, record.htProtect), true, "Protection of stations without 802.11n"),
        oneOf("preamble", AT(R, record.txPreamble), 1, {{"long", 0}, {"auto", 1}}, "802.11b preamble"),
        oneOf("rifs", AT(R, record.rifsAdv), -1, kRifs, "RIFS advertisement"),
        number("interference", AT(R, record.interferenceMode), -1, 4, -1, "Interference mitigation, -1 the driver's"),
        choice("wds_mode", AT(R, record.wdsMode), "ap", {{"ap", 0, "ap"}, {"wds", 1, "wds"}},
               "Access point or bridge link"),
        flag("lazywds", AT(R, record.lazyWds), false, "Accept any WDS peer"),
        list("wds_peers", AT(R, record.wdsMacList), 4, kMacRule, "WDS peers"),
        nested("rxchain_pwrsave", Kind::kGroup, 0, 0, rxChainFields(), "Receive-chain power save"),
        nested("radio_pwrsave", Kind::kGroup, 0, 0, radioPwrsaveFields(), "Radio power save"),
        choice("phytype", AT(R, record.phyType), "",
               {{"a", 0, "a"}, {"b", 0, "b"}, {"g", 0, "g"}, {"n", 0, "n"}, {"v", 0, "v"}},
               "PHY letter; the driver's when absent"),
        mac("macaddr", AT(R, record.baseMac), "Base of the BSS addresses; the radio's own when absent"),
        nested("ssids", Kind::kRecords, 0, WLBRCM_MAX_BSS, ssidFields(),
               "Networks; the first is the radio's own interface"),
    };
    return kFields;
}

const std::vector<Field> &groupFields() {
    static const std::vector<Field> kFields = {
        required(text("name", AT(GroupFields, name), kInterfaceRule, "Bridge")),
        text("macaddr", AT(GroupFields, hwaddr), kMacRule, "Address of the bridge; the system's when absent"),
        list("ports", AT(GroupFields, ports), 64, kInterfaceRule,
             "Member interfaces; the interfaces of SSIDs that name this network join by themselves"),
    };
    return kFields;
}

const std::vector<Field> &lanFields() {
    static const std::vector<Field> kFields = {
        nested("groups", Kind::kRecords, 0, 10, groupFields(), "LAN groups; the first is the main one"),
    };
    return kFields;
}

} // namespace

const std::vector<Field> &rootFields() {
    static const std::vector<Field> kFields = {
        {"$schema", Kind::kIgnored, 0, 0, "Schema for editors"},
        nested("lan", Kind::kGroup, 0, 0, lanFields(), "Bridges"),
        required(nested("radios", Kind::kRecords, 1, 16, radioFields(), "Radios to bring up; others are left alone")),
    };
    return kFields;
}

const Field *findField(const std::vector<Field> &fields, const std::string &name) {
    auto found = std::find_if(fields.begin(), fields.end(), [&](const Field &field) { return field.name == name; });
    return found == fields.end() ? nullptr : &*found;
}

const Field &fieldAt(const std::vector<std::string> &names) {
    const Field *field = nullptr;
    for (const std::string &name : names) {
        field = findField(field ? *field->children : rootFields(), name);
        if (!field)
            throw std::logic_error("no field " + name);
    }
    return *field;
}

bool isSecretName(const std::string &name) {
    static const std::set<std::string> kNames = [] {
        std::set<std::string> names;
        std::vector<const std::vector<Field> *> tables = {&rootFields()};
        for (size_t i = 0; i < tables.size(); ++i) {
            for (const Field &field : *tables[i]) {
                if (field.children)
                    tables.push_back(field.children);
                if (field.secret)
                    names.insert(field.name);
            }
        }
        return names;
    }();
    return kNames.count(name) != 0;
}

} // namespace wlhost
