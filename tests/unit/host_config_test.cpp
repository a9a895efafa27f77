// The configuration file: what is accepted, what is refused with which words, and where each value goes.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <regex>

#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/config/configuration.h"
#include "tests/unit/data_lines.h"

namespace wlhost {
namespace {

const char *const kBase = R"({
  "lan": {"groups": [{"name": "br0", "ports": ["eth0"]}, {"name": "br1", "ports": ["wl0.3"]}]},
  "radios": [
    {"name": "wl0", "country": "DE/3", "channel": 36, "ssids": [
      {"ssid": "one", "encryption": "psk2", "key": "correct horse", "network": "br0"},
      {"ssid": "two", "network": "br0"}]},
    {"name": "wl1", "country": "DE/3", "channel": 6, "ssids": [{"ssid": "three"}]}]})";

std::string problemOf(const std::string &text) {
    try {
        Config::from(Document::parse("t", text));
        return "";
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.status, Status::kUsage);
        return failure.what();
    }
}

// The base configuration with the value at a JSON pointer replaced; an empty value removes it.
std::string patched(const char *pointer, const char *value) {
    json config = json::parse(kBase);
    json::json_pointer where(pointer);
    if (*value)
        config[where] = json::parse(value);
    else
        config[where.parent_pointer()].erase(where.back());
    return config.dump();
}

// One line of the file a case: pointer, value, problems.
TEST(HostConfig, ValuesAndTheirProblems) {
    const std::vector<std::string> lines = readLines("config_problems.jsonl");
    ASSERT_EQ(lines.size(), 67U);
    for (const std::string &line : lines) {
        const json row = json::parse(line);
        const std::string pointer = row[0], value = row[1];
        EXPECT_EQ(problemOf(patched(pointer.c_str(), value.c_str())), row[2].get<std::string>()) << line;
    }
}

TEST(HostConfig, Passphrases) {
    const char *const kKey = "; 8 to 63, or 64 hexadecimal digits; WEP has key1 to key4";
    auto key = [&](size_t length, char c) {
        return problemOf(patched("/radios/0/ssids/0/key", json(std::string(length, c)).dump().c_str()));
    };
    EXPECT_EQ(key(7, 'x'), std::string("t:1: radios[0].ssids[0].key: ******** is 7 characters") + kKey);
    EXPECT_EQ(key(8, 'x'), "");
    EXPECT_EQ(key(63, 'x'), "");
    EXPECT_NE(key(64, 'x').find("is 64 characters, but not all hexadecimal digits"), std::string::npos);
    EXPECT_EQ(key(64, 'f'), "");
    EXPECT_NE(key(65, 'f').find("is 65 characters"), std::string::npos);
}

// Each control channel with each width: the widths that fit, by the band plans.
TEST(HostConfig, WidthsFitChannels) {
    struct {
        int channel;
        const char *fits;
    } cases[] = {{36, "HT40+ VHT80"},
                 {40, "HT40- VHT80"},
                 {64, "HT40- VHT80"},
                 {144, "HT40- VHT80"},
                 {149, "HT40+ VHT80"},
                 {161, "HT40- VHT80"},
                 {165, ""},
                 {1, "HT40+"},
                 {4, "HT40+"},
                 {5, "HT40+ HT40-"},
                 {9, "HT40+ HT40-"},
                 {10, "HT40-"},
                 {13, "HT40-"},
                 {14, ""}};
    for (const auto &row : cases) {
        for (const char *mode : {"HT40+", "HT40-", "VHT80"}) {
            json config = json::parse(kBase);
            config["radios"][0]["channel"] = row.channel;
            config["radios"][0]["htmode"] = mode;
            std::vector<std::string> fits = splitWords(row.fits);
            EXPECT_EQ(problemOf(config.dump()).empty(), std::count(fits.begin(), fits.end(), mode) == 1)
                << mode << " on " << row.channel;
        }
    }
}

// What a file may not be: what is wrong and where, with nothing that a terminal or a log could not take, and no secret.
TEST(HostConfig, HostileFiles) {
    auto nested = [](size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    const struct {
        std::string text, problem;
    } cases[] = {
        {nested(64), "t:1: [...] is not an object"},
        {nested(65), "t:1: more than 64 brackets inside each other"},
        {std::string(200000, '['), "t:1: more than 64 brackets inside each other"},
        {"[\"a\n", "t:2:0: syntax error while parsing value - invalid string: control character U+000A (LF) must be "
                   "escaped to \\u000A or \\n; near '\"a'"},
        {"[\n\"Caf\xe9\"]", "t:2:6: syntax error while parsing value - invalid string: ill-formed UTF-8 byte; near "
                            "'\"Caf\\xe9\"'"},
        {"{\"key\": \"geheim\xe9\"}",
         "t:1:17: syntax error while parsing value - invalid string: ill-formed UTF-8 byte"},
        {"[1,\n// \xe9\n2]", "t:2: '\\xe9' in a comment is not UTF-8"},
        {"[\n1e999]", "t:2: a number that is too large"},
        {"{\"radios\": [],\n\"\\u001b\": 1,\n\"\\u001b\": 2}",
         "t:3: \"\\x1b\" stands twice in one object, first in line 2"},
        {"{\"radios\": [\n1,\n2\n]}", "t:2: radios[0]: 1 is not an object\nt:3: radios[1]: 2 is not an object"},
    };
    for (const auto &row : cases)
        EXPECT_EQ(problemOf(row.text), row.problem) << row.text.substr(0, 40);
}

TEST(HostConfig, ProblemsForPrograms) {
    try {
        Config::from(Document::parse("t", patched("/radios/0/ssids/0", R"({"ssid": 7, "key": 12345678, "kye": "x"})")));
        FAIL();
    } catch (const Failure &failure) {
        const std::string at = "radios[0].ssids[0].";
        EXPECT_EQ(
            failure.details["errors"],
            json({{{"path", at + "ssid"}, {"line", 1}, {"value", 7}, {"allowed", kSsidRule.allowed}},
                  {{"path", at + "key"}, {"line", 1}, {"value", "********"}, {"allowed", kPskRule.allowed}},
                  {{"path", at + "kye"}, {"line", 1}, {"value", nullptr}, {"allowed", "did you mean \"key\"?"}}}));
    }
}

TEST(HostConfig, OneSsidWithTwoKeysIsAWarning) {
    auto warnings = [](const char *ssid) {
        std::string all;
        for (const Problem &one : Config::from(Document::parse("t", patched("/radios/1/ssids/0", ssid))).warnings)
            all += one.text;
        return all;
    };
    EXPECT_EQ(warnings(R"({"ssid": "one", "encryption": "psk2", "key": "battery staple"})"),
              "t:1: warning: radios[1].ssids[0].key: the same SSID has another key at radios[0].ssids[0]");
    for (const char *sound : {R"({"ssid": "one", "encryption": "psk2", "key": "correct horse"})",
                              R"({"ssid": "One", "encryption": "psk2", "key": "battery staple"})",
                              R"({"ssid": "one", "encryption": "psk2", "key": "battery staple", "disabled": true})"})
        EXPECT_EQ(warnings(sound), "") << sound;
}

// Patterns see letters, where the checks count bytes.
bool schemaTakes(const TextRule &rule, const std::string &text) {
    const std::string pattern = rule.pattern;
    std::wstring wide;
    for (size_t i = 0; i < text.size(); ++i)
        wide += text[i] == '\xc3' ? static_cast<wchar_t>(0xc0 + (text[++i] & 0x3f)) : static_cast<wchar_t>(text[i]);
    bool fits = rule.longest == 0 || (wide.size() >= rule.shortest && wide.size() <= rule.longest);
    return fits && std::regex_search(wide, std::wregex(std::wstring(pattern.begin(), pattern.end())));
}

TEST(HostConfig, PatternsAgreeWithTheChecks) {
    const std::vector<std::string> lines = readLines("config_texts.jsonl");
    ASSERT_EQ(lines.size(), 13U);
    for (const std::string &line : lines) {
        const json row = json::parse(line);
        const TextRule &rule = *fieldAt(splitWords(row[0].get<std::string>(), '.')).rule;
        for (bool good : {true, false}) {
            for (std::string text : row[good ? 1 : 2]) {
                EXPECT_EQ(schemaTakes(rule, text), good) << row[0] << ": " << text;
                EXPECT_EQ(rule.problem(text).empty(), good) << row[0] << ": " << text;
            }
        }
    }
}

TEST(HostConfig, SyntaxAndLines) {
    EXPECT_EQ(problemOf("{\n \"radios\": [}"),
              "t:2:13: syntax error while parsing value - unexpected '}'; expected '[', '{', or a literal; "
              "near '\": [}'");
    EXPECT_EQ(problemOf("{\"radios\": [{\"name\": 1,\n\"name\": 2}]}"),
              "t:2: \"name\" stands twice in one object, first in line 1");
    EXPECT_EQ(
        problemOf("// one\n{ /* two\n*/ \"radios\":\n [ {\"name\": \"a]{,\\\"\", \"x\": [1, {}]},\n {\"nam\": 3}] }"),
        "t:4: radios[0].name: \"a]{,\\\"\" is no name of a radio; wl and its number, wl0 to wl99\n"
        "t:4: radios[0]: country is missing; two capitals and perhaps a slash and a revision, such as DE/3\n"
        "t:4: radios[0].x: unknown name; known here: " +
            [] {
                std::vector<std::string> names;
                for (const Field &field : *fieldAt({"radios"}).children)
                    names.push_back(field.name);
                return joined(names);
            }() +
            "\nt:5: radios[1]: name is missing; wl and its number, wl0 to wl99\n"
            "t:5: radios[1]: country is missing; two capitals and perhaps a slash and a revision, such as DE/3\n"
            "t:5: radios[1].nam: unknown name; did you mean \"name\"?");
}

WlIntf radioRecord(const char *name, int bandCode, int maxBss) {
    WlIntf intf{};
    copyText(intf.intfName, name);
    intf.bandCode = bandCode;
    intf.caps.maxBss = maxBss;
    std::memcpy(intf.macAddr, "\x00\x10\x18\xaa\xbb\xcc", 6);
    return intf;
}

RadioRecords bound(const std::string &text, const WlIntf &intf, const char *phy = nullptr) {
    Config config = Config::from(Document::parse("t", text));
    Problems problems(config.document);
    RadioRecords records = bindRadio(config, 0, intf, phy, problems);
    problems.throwIfAny();
    return records;
}

#define RADIO "/radios/0/"
#define SSID "/radios/0/ssids/0/"
#define NUMBER(member) [](const RadioRecords &r) { return std::to_string(r.member); }
#define WEP                                                                                                            \
    R"({"ssid_hex": "ff5c20", "encryption": "wep-shared", "key3": "abcde", "key1": "0102030405", "wep_default_key": 3})"
#define RADIUS R"({"ssid": "b", "encryption": "wpa2", "radius": {"server": "fe80::1", "port": 1645, "secret": "s e"}})"
#define TEXT(member) [](const RadioRecords &r) { return std::string(r.member); }

// Every name of the file and the member that it fills, with a value that differs from the initial one.
TEST(HostConfig, ValuesReachTheirMembers) {
    struct {
        const char *pointer, *value, *expected;
        std::string (*member)(const RadioRecords &);
    } cases[] = {
        {RADIO "disabled", "true", "0", NUMBER(radio.radioOn)},
        {RADIO "index", "3", "3", NUMBER(radio.radioIndex)},
        {RADIO "channel", "\"auto\"", "1", NUMBER(radio.autoChannel)},
        {RADIO "channel", "48", "48", NUMBER(radio.channel)},
        {RADIO "htmode", "\"VHT80\"", "80", NUMBER(radio.bandwidth)},
        {RADIO "hwmode", "\"nac\"", "8", NUMBER(radio.wirelessMode)},
        {RADIO "country", "\"US/0\"", "US/0", TEXT(radio.countryCode)},
        {RADIO "regmode", "\"d\"", "2", NUMBER(radio.regMode)},
        {RADIO "dfs_preism", "61", "61", NUMBER(radio.dfsPreIsm)},
        {RADIO "dfs_postism", "62", "62", NUMBER(radio.dfsPostIsm)},
        {RADIO "tpc_db", "3", "3", NUMBER(radio.tpcDb)},
        {RADIO "txpower", "42", "42", NUMBER(radio.txPower)},
        {RADIO "beacon_int", "200", "200", NUMBER(radio.beaconPeriod)},
        {RADIO "dtim_period", "255", "255", NUMBER(radio.dtimPeriod)},
        {RADIO "rts", "500", "500", NUMBER(radio.rtsThreshold)},
        {RADIO "frag", "600", "600", NUMBER(radio.fragThreshold)},
        {RADIO "mcs", "7", "7", NUMBER(radio.mcs)},
        {RADIO "mcast_rate", "11", "11", NUMBER(radio.multicastRate)},
        {RADIO "acs_scan_timer", "77", "77", NUMBER(radio.acsScanTimer)},
        {RADIO "acs_policy", "2", "2", NUMBER(radio.acsPolicyIndex)},
        {RADIO "acs_exclude", "[36, 40]", "36,40", TEXT(radio.acsSkipList)},
        {RADIO "frameburst", "false", "0", NUMBER(radio.frameBurst)},
        {RADIO "atf", "true", "1", NUMBER(radio.atfEnable)},
        {RADIO "beamforming", "false", "0", NUMBER(radio.txbfBfe)},
        {RADIO "su_beamformer", "false", "0", NUMBER(radio.txbfBfr)},
        {RADIO "su_beamformee", "false", "0", NUMBER(radio.txbfBfe)},
        {RADIO "mu_beamforming", "true", "1", NUMBER(radio.txbfMu)},
        {RADIO "coexistence", "false", "0", NUMBER(radio.apCoex)},
        {RADIO "bg_protection", "\"off\"", "2", NUMBER(radio.bgProtection)},
        {RADIO "ht_protection", "false", "0", NUMBER(radio.htProtect)},
        {RADIO "preamble", "\"long\"", "0", NUMBER(radio.txPreamble)},
        {RADIO "rifs", "\"off\"", "0", NUMBER(radio.rifsAdv)},
        {RADIO "interference", "4", "4", NUMBER(radio.interferenceMode)},
        {RADIO "wds_mode", "\"wds\"", "wds", TEXT(radio.wdsMode)},
        {RADIO "lazywds", "true", "1", NUMBER(radio.lazyWds)},
        {RADIO "wds_peers", "[\"00-10-18-aa-bb-01\", \"00:10:18:AA:bb:02\"]", "00:10:18:AA:BB:01 00:10:18:AA:BB:02",
         TEXT(radio.wdsMacList)},
        {RADIO "rxchain_pwrsave", "{\"enable\": 1, \"quiet_time\": 5, \"pps\": 6}", "6",
         NUMBER(radio.rxChainPwrsaveParams[2])},
        {RADIO "radio_pwrsave", "{\"level\": 3}", "3", NUMBER(radio.radioPwrsaveParams[3])},
        {RADIO "phytype", "\"a\"", "a", TEXT(radio.phyType)},
        {RADIO "macaddr", "\"02:00:00:00:00:07\"", "7", NUMBER(radio.baseMac[5])},
        {SSID "disabled", "true", "0", NUMBER(bss[0].enable)},
        {SSID "path", "\"Device.1\"", "Device.1", TEXT(bss[0].objPath)},
        {SSID "hidden", "true", "1", NUMBER(bss[0].hideSsid)},
        {SSID "isolate", "true", "1", NUMBER(bss[0].bssIsolation)},
        {SSID "wmf", "true", "1", NUMBER(bss[0].multicastFwd)},
        {SSID "wmm", "false", "0", NUMBER(bss[0].wmm)},
        {SSID "uapsd", "false", "0", NUMBER(bss[0].wmmApsd)},
        {SSID "encryption", "\"psk-mixed\"", "tkipaes", TEXT(bss[0].encryption)},
        {SSID "encryption", "\"psk-mixed\"", "wpapskmix", TEXT(bss[0].authMode)},
        {SSID "key", "\"battery staple\"", "battery staple", TEXT(bss[0].wpaPsk)},
        {SSID "key_fallback", "\"battery staple\"", "battery staple", TEXT(bss[0].wpaPskFallback)},
        {SSID "ieee80211w", "2", "2", NUMBER(bss[0].protectMF)},
        {SSID "wpa_group_rekey", "9", "9", NUMBER(bss[0].rekeyInterval)},
        {SSID "eap_reauth_period", "8", "8", NUMBER(bss[0].netReauth)},
        {SSID "rsn_preauth", "true", "1", NUMBER(bss[0].preauth)},
        {SSID "maxassoc", "512", "512", NUMBER(bss[0].maxSta)},
        {SSID "macfilter", "\"allow\"", "ALLOW", TEXT(bss[0].macFilterMode)},
        {SSID "network", "\"br1\"", "br1", TEXT(bss[0].bridge)},
        {SSID "limit_up", "10000000", "10000000", NUMBER(bss[0].upstreamRate)},
        {SSID "limit_down", "4", "4", NUMBER(bss[0].downstreamRate)},
        {SSID "preset", "\"announcer\"", "2", NUMBER(bss[0].presetRole)},
        {"/radios/0/ssids/1/main", "true", "0", NUMBER(bss[0].main)},
        {"/radios/0/ssids/0", WEP, "\xff\\ ", TEXT(bss[0].ssidName)},
        {"/radios/0/ssids/0", WEP, "shared", TEXT(bss[0].authMode)},
        {"/radios/0/ssids/0", WEP, "abcde", TEXT(bss[0].wepKeys[2])},
        {"/radios/0/ssids/0", WEP, "0102030405", TEXT(bss[0].wepKeys[0])},
        {"/radios/0/ssids/0", WEP, "3", NUMBER(bss[0].defaultKeyId)},
        {"/radios/0/ssids/1", RADIUS, "fe80::1", TEXT(bss[1].radiusIpaddr)},
        {"/radios/0/ssids/1", RADIUS, "1645", NUMBER(bss[1].radiusPort)},
        {"/radios/0/ssids/1", RADIUS, "s e", TEXT(bss[1].radiusKey)},
        {SSID "wps", "{\"enabled\": true}", "00000000000010008000001018aabbcc", TEXT(bss[0].wpsUuid)},
        {SSID "wps", "{\"uuid\": \"01234567-89AB-cdef-0123-456789abcdef\"}", "0123456789abcdef0123456789abcdef",
         TEXT(bss[0].wpsUuid)},
        {SSID "wps", "{\"configured\": false}", "0", NUMBER(bss[0].wpsConfigured)},
        {SSID "wps", "{\"version2\": false}", "136", NUMBER(bss[0].wpsConfigMethod)},
        {SSID "wps", "{\"config_methods\": 65535}", "65535", NUMBER(bss[0].wpsConfigMethod)},
        {SSID "wps", "{\"push_button\": false}", "0", NUMBER(bss[0].wpsPbcEnable)},
        {SSID "wps", "{\"station_pin\": false}", "0", NUMBER(bss[0].wpsStaPinEnable)},
        {SSID "wps", "{\"ap_pin\": true}", "1", NUMBER(bss[0].wpsApPinEnable)},
        {SSID "wps", "{\"device_pin\": \"31415927\"}", "31415927", TEXT(bss[0].wpsDevicePin)},
    };
    WlIntf intf = radioRecord("wl0", WLBRCM_BANDCODE_5G, 6);
    RadioRecords plain = bound(kBase, intf);
    for (const auto &row : cases) {
        EXPECT_EQ(row.member(bound(patched(row.pointer, row.value), intf)), row.expected) << row.pointer;
        EXPECT_NE(row.member(plain), row.expected) << row.pointer << " is that anyway";
    }
    EXPECT_EQ(plain.radio.mcs, -1);
    EXPECT_EQ(bound(patched("/radios/0", R"({"name": "wl0", "country": "DE", "channel": 48, "htmode": "HT40-",
        "ssids": [{"ssid": "a"}]})"),
                    intf)
                  .radio.sideband,
              1);
    EXPECT_EQ(plain.radio.radioIndex, 1);
    EXPECT_EQ(plain.radio.bssCount, 2);
    EXPECT_EQ(plain.radio.wirelessMode, 6); // a/n for HT20 at 5 GHz
    EXPECT_STREQ(plain.bss[1].ifName, "wl0.1");
    EXPECT_TRUE(plain.bss[0].main && plain.bss[0].valid && !plain.bss[1].main && !plain.bss[2].valid);
    EXPECT_STREQ(bound(kBase, intf, "v").radio.phyType, "v");
}

TEST(HostConfig, RadiosThatCannotDoIt) {
    auto problem = [](const WlIntf &intf) -> std::string {
        try {
            bound(kBase, intf);
            return "";
        } catch (const Failure &failure) {
            return failure.what();
        }
    };
    EXPECT_EQ(problem(radioRecord("wl0", WLBRCM_BANDCODE_2G, 4)),
              "t:4: radios[0].channel: 36 is no 2.4 GHz channel; 1 to 14");
    EXPECT_EQ(problem(radioRecord("wl0", WLBRCM_BANDCODE_5G, 2)), "");
    EXPECT_EQ(problem(radioRecord("wl0", WLBRCM_BANDCODE_5G, 1)),
              "t:4: radios[0].ssids: 2 SSIDs; wl0 carries at most 1\n"
              "t:6: radios[0].ssids[1].ifname: \"wl0.1\" does not exist; wl0 carries at most 1 SSIDs");
}

const std::filesystem::path kExamples = WLHOST_EXAMPLES;

TEST(HostConfig, SchemaBesideTheExamplesIsTheTables) {
    json schema = Document::load(kExamples / "wlbrcm.schema.json").root;
    EXPECT_EQ(json::diff(schema, configSchema()), json::array()) << "wlhost schema > examples/wlbrcm.schema.json";
}

TEST(HostConfig, ExamplesAreSound) {
    int checked = 0;
    for (const auto &entry : std::filesystem::directory_iterator(kExamples)) {
        if (entry.path().filename() == "wlbrcm.schema.json")
            continue;
        EXPECT_NO_THROW(Config::load(entry.path())) << entry.path();
        ++checked;
    }
    EXPECT_GE(checked, 2);
}

} // namespace
} // namespace wlhost
