// Archives: records as JSON, masks, the file, what is kept, and how a replay is compared.
#include <cstring>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "host/base/failure.h"
#include "host/report/archive.h"
#include "host/report/masks.h"
#include "host/report/operations.h"
#include "host/report/records.h"
#include "host/report/script.h"
#include "host/report/tar_gz.h"
#include "host/report/trace_ring.h"

namespace wlhost {
namespace {

template <typename Act> std::string refusalOf(Act act) {
    try {
        act();
    } catch (const Failure &failure) {
        return (failure.status == Status::kUsage ? "" : "other status: ") + std::string(failure.what());
    }
    return "not refused";
}

// Every byte of the record that is not the host's own changes its JSON, and comes back from there.
TEST(ReportRecords, HoldEveryMember) {
    auto intf = std::make_unique<WlIntf>();
    const json empty = recordToJson(*intf);
    size_t silent = 0;
    auto *bytes = reinterpret_cast<uint8_t *>(intf.get());
    auto isTold = [&](size_t at) {
        bytes[at] = 1;
        const bool told = recordToJson(*intf) != empty;
        bytes[at] = 0;
        return told;
    };
    for (size_t at = 0; at < offsetof(WlIntf, bss) + sizeof(WlSsidCfg); ++at)
        silent += !isTold(at);
    for (size_t at = offsetof(WlIntf, caps); at < sizeof(WlIntf); ++at)
        silent += !isTold(at);
    constexpr size_t kHosts = 2 + (32 + 1 + 2 + 1) + (2 + 3 + 3) + (2 + 2); // WlIntf, radio, SSID, capabilities
    EXPECT_EQ(silent, kHosts);

    WlSsidCfg &bss = intf->bss[5];
    std::strcpy(bss.ssidName, "caf\xe9");
    std::strcpy(bss.wepKeys[2], "radio");
    intf->radio.txPreamble = -1;
    intf->radio.acsScanTimer = 0xffffffff;
    intf->radio.rxChainPwrsaveParams[2] = -7;
    intf->macAddr[5] = 0xff;
    const json told = recordToJson(*intf);
    auto again = std::make_unique<WlIntf>();
    recordFromJson(json::parse(told.dump()), *again);
    EXPECT_EQ(std::memcmp(again.get(), intf.get(), sizeof *intf), 0) << told;
}

TEST(ReportRecords, RefuseWhatDoesNotFit) {
    struct Case {
        const char *place, *value, *refusal;
    };
    const Case kCases[] = {
        {"/radio/txPower", "256", "is out of range"},
        {"/radio/radioIndex", "-129", "is out of range"},
        {"/radio/channel", "\"36\"", "is not a whole number"},
        {"/radio/rxChainPwrsaveParams", "[1,2]", "is not a list of 3"},
        {"/radio/countryCode", "\"12345678901\"", "does not fit into its field"},
        {"/radio/baseMac", "\"0011\"", "does not fit into its field"},
        {"/bss/0/ssidName", "{\"hex\":\"6g\"}", "is neither a text nor pairs of hexadecimal digits"},
        {"/bss/0/ssidName", "\"a\\u0000b\"", "does not fit into its field"},
        {"/bss", "[]", "is not a list of 6"},
        {"/caps", "7", "is not an object"},
    };
    WlIntf intf{};
    for (const Case &one : kCases) {
        json record = recordToJson(intf);
        record[json::json_pointer(one.place)] = json::parse(one.value);
        EXPECT_EQ(refusalOf([&] { recordFromJson(record, intf); }), one.refusal) << one.place;
    }
}

bool isPin(const std::string &text) {
    int sum = 0;
    for (size_t i = 0; i < text.size(); ++i)
        sum += (text[i] - '0') * (i % 2 == 0 ? 3 : 1);
    return sum % 10 == 0;
}

TEST(ReportMasks, KeepLengthKindAndChecksum) {
    struct Case {
        SecretKind kind;
        std::string secret;
        const char *alphabet;
    };
    const char *kHex = "0123456789abcdef", *kDigits = "0123456789";
    const char *kText = "ghijkmnopqrstuvwxyzGHJKLMNPQRSTUVWXYZ"; // never all hexadecimal
    const Case kCases[] = {
        {SecretKind::kKey, std::string(64, 'A'), kHex},  {SecretKind::kKey, "0123456789", kHex},
        {SecretKind::kKey, std::string(26, '7'), kHex},  {SecretKind::kKey, "radio", kText},
        {SecretKind::kKey, "thirteen char", kText},      {SecretKind::kKey, "correct horse battery", kText},
        {SecretKind::kKey, std::string(63, 'f'), kText}, {SecretKind::kPin, "12345670", kDigits},
        {SecretKind::kPin, "12345678", kDigits},         {SecretKind::kPin, "1234", kDigits},
    };
    Masks masks("");
    for (const Case &one : kCases) {
        const std::string mask = masks.ofSecret(one.kind, one.secret);
        EXPECT_NE(mask, one.secret);
        EXPECT_EQ(mask.size(), one.secret.size());
        EXPECT_EQ(mask.find_first_not_of(one.alphabet), std::string::npos) << mask;
        EXPECT_EQ(masks.ofSecret(one.kind, one.secret), mask) << "equal stays equal";
        if (one.kind == SecretKind::kPin && mask.size() == 8) {
            EXPECT_EQ(isPin(mask), isPin(one.secret)) << mask;
        }
    }
    EXPECT_NE(masks.ofSecret(SecretKind::kKey, "another passphrase"),
              Masks("").ofSecret(SecretKind::kKey, "another passphrase"));
    EXPECT_EQ(masks.ofSecret(SecretKind::kPin, WLBRCM_PBC_PIN), WLBRCM_PBC_PIN) << "public";
    EXPECT_EQ(masks.ofSecret(SecretKind::kKey, "ends in a blank ").back(), ' ') << "the module cuts it in some places";
}

TEST(ReportMasks, StandWhereverTheSecretStood) {
    json document = json::parse(R"([
        {"key": "correct horse", "key1": "radio", "ssid": "radio"},
        {"input": {"intf": {"bss": [{"wpaPsk": "correct horse", "wepKeys": ["radio", ""]}]}, "pin": "12345670"}},
        {"call": "nvram_set", "what": "wl0.1_wpa_psk", "value": "correct horse"},
        {"call": "nvram_get", "what": "wl0_key1", "answer": "radio"},
        {"call": "nvram_get", "what": "wl0_radio", "answer": "radio"},
        {"call": "system", "what": "nvram set wl0_wpa_psk=correct horse"},
        {"call": "sendto", "what": "127.0.0.1:40500", "value": "SET wps_sta_pin=12345670 wps_action=3"},
        {"call": "system", "what": "radio 'c''o''r''r''e''c''t'' ''h''o''r''s''e'", "answer": "-correct horse-"},
        {"call": "popen", "what": "counters", "answer": "tx 12345670 rx 3123456701"},
        {"wl0_key2": "verbs of commands", "wl1_wpa_psk": "wlctl -i"},
        {"call": "system", "what": "wlctl -i wl0 up"}
    ])");
    Masks masks("wlctl -i %s up");
    masks.learn(document);
    const json before = document;
    masks.apply(document);
    const std::string psk = document[0]["key"], wep = document[0]["key1"], pin = document[1]["input"]["pin"];
    const json &bss = document[1]["input"]["intf"]["bss"][0];
    EXPECT_EQ(document.dump().find("correct horse"), std::string::npos);
    EXPECT_EQ(bss["wpaPsk"], psk);
    EXPECT_EQ(bss["wepKeys"], json({wep, ""}));
    EXPECT_EQ(document[2]["value"], psk);
    EXPECT_EQ(document[3]["answer"], wep);
    EXPECT_EQ(document[6]["value"], "SET wps_sta_pin=" + pin + " wps_action=3");
    EXPECT_EQ(document[5]["what"], "nvram set wl0_wpa_psk=" + psk);
    EXPECT_EQ(document[7]["answer"], "-" + psk + "-");
    EXPECT_EQ(document[7]["what"].get<std::string>().find("'o''r''r'"), std::string::npos);
    EXPECT_EQ(document[8]["answer"], "tx " + pin + " rx 3123456701");
    for (size_t untouched : {4, 10}) // a short secret elsewhere; what the module spells itself
        EXPECT_EQ(document[untouched], before[untouched]);
    EXPECT_EQ(document[0]["ssid"], "radio");
    EXPECT_NE(document[9]["wl1_wpa_psk"], "wlctl -i");
}

Entry entry(const std::string &what) {
    Entry made;
    made.call = "system";
    made.what = what;
    return made;
}

Operation operation(const std::string &name, const std::string &radio = {}, size_t bytes = 0) {
    Operation made;
    made.name = name;
    made.radio = radio;
    made.input = R"({"text":")" + std::string(bytes, 'x') + R"("})";
    return made;
}

TEST(ReportTrace, KeepsTheStartAndEachRadiosLastBringUp) {
    TraceRing ring(30000);
    for (const char *radio : {"", "wl0", "wl0", "wl1"})
        ring.begin(operation(*radio ? "initWlan" : kModuleStart, radio, 1000));
    for (int i = 0; i < 100; ++i) {
        ring.begin(operation("statusUpdate", "wl0", 1000));
        ring.add(entry("wlctl -i wl0 status"));
        ring.end(0);
    }
    std::vector<uint64_t> numbers;
    for (const Operation &one : ring.operations())
        numbers.push_back(one.number);
    ASSERT_GT(numbers.size(), 10U);
    ASSERT_LT(numbers.size(), 20U);
    EXPECT_EQ(std::vector(numbers.begin(), numbers.begin() + 3), (std::vector<uint64_t>{0, 2, 3}));
    EXPECT_EQ(numbers.back(), 103U);
    EXPECT_EQ(numbers[3], 103 - (numbers.size() - 4)) << "the rest are the latest";
}

TEST(ReportTrace, GoesOnAtTheNextEqualEntry) {
    struct Case {
        const char *archive, *module, *differences; // a letter a call; archive's side, module's side
        int64_t result;
    };
    const Case kCases[] = {
        {"abc", "abc", "", 0},
        {"abc", "axc", "b/x ", 0},           // another one
        {"abcd", "axyd", "b/x -/y c/d ", 0}, // two others
        {"abc", "ac", "b/c ", 0},            // one less
        {"abc", "abxc", "c/x ", 0},          // one more
        {"abc", "acb", "b/c -/b ", 0},       // another order
        {"abc", "ab", "c/- ", 0},            // ends early
        {"ab", "abc", "-/c ", 0},            // goes on
        {"ab", "ab", "returns 0/returns -5 ", -5},
    };
    for (const Case &one : kCases) {
        Operation expected = operation("reloadWlan");
        for (const char *c = one.archive; *c; ++c)
            expected.entries.push_back(entry({*c}));
        Script script;
        script.begin(expected);
        for (const char *c = one.module; *c; ++c)
            script.next(entry({*c}));
        script.end(one.result);
        std::string differences;
        auto side = [](const std::string &text) {
            return text.empty() ? "-" : text.substr(text.find("system ") == 0 ? 7 : 0);
        };
        for (const Difference &difference : script.differences())
            differences += side(difference.expected) + "/" + side(difference.got) + " ";
        EXPECT_EQ(differences, one.differences) << one.archive << " " << one.module;
    }
}

std::string archiveOf(const json &about, const std::string &operations) {
    return packTarGz({{"archive.json", about.dump()}, {"operations.jsonl", operations}, {"../../etc/evil", "x"}}, 0);
}

TEST(ReportArchive, RefusesWhatIsNone) {
    const std::string start = R"({"number":0,"operation":"wlModuleInit","input":{},"entries":[]})"
                              "\n";
    const std::string later = R"({"number":5,"operation":"receive","input":{},"entries":[]})"
                              "\n";
    const std::string deep = std::string(200000, '[');
    auto about = [](int count) { return json{{"format", 1}, {"tap", 1}, {"operation_count", count}}; };
    struct Case {
        std::string bytes;
        const char *refusal;
    };
    const Case kCases[] = {
        {archiveOf(about(2), start + later), "not refused"},
        {"", "is no archive"},
        {"plain text", "is no archive"},
        {packTarGz({{"other", "x"}}, 0), "is not one of wlhost"},
        {archiveOf({{"format", 2}, {"tap", 1}}, start), "was made by a later version of wlhost"},
        {archiveOf({{"format", "1"}}, start), "has no format"},
        {archiveOf(about(2), start), "lacks operations"},
        {archiveOf(about(1), later), "does not begin with the module's start"},
        {archiveOf(about(2), start + start), "operations are out of order"},
        {archiveOf(about(1), R"({"number":0,"operation":"wlModuleInit","input":[],"entries":[]})"),
         "an operation lacks its input or its entries"},
        {archiveOf(about(2), start + R"({"number":5,"operation":"x","input":{"intf":{"as_in":3}},"entries":[]})"),
         "a record stands in an operation that there is not"},
        {archiveOf(about(1), deep), "operations.jsonl is nested too deeply"},
        {archiveOf(about(1), "\xff"), "operations.jsonl holds what is no JSON object"},
    };
    for (const Case &one : kCases)
        EXPECT_EQ(refusalOf([&] { readArchive(one.bytes); }), one.refusal);
    EXPECT_EQ(refusalOf([] {
                  unpackTarGz(packTarGz({{"a", std::string(5000, 'a')}}, 0), {"a"}, 4000);
              }),
              "is too large");
}

TEST(ReportArchive, IsWholeOrRefused) {
    const Files files = {{"a", "first"}, {"b", std::string(1500, 'b')}};
    const std::string whole = packTarGz(files, 1234567890);
    EXPECT_EQ(unpackTarGz(whole, {"a", "b"}, 10000), files);
    EXPECT_EQ(unpackTarGz(whole, {"b", "c"}, 10000).count("a"), 0U);
    EXPECT_EQ(unpackTarGz(packTarGz({{"./a", "x"}}, 0), {"a"}, 10000).count("a"), 1U);
    for (size_t length = 0; length < whole.size(); ++length)
        EXPECT_NE(refusalOf([&] { unpackTarGz({whole.data(), length}, {"a", "b"}, 10000); }), "not refused") << length;
    for (size_t at = 10; at < whole.size(); ++at) { // behind gzip's own header, which has no checksum
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x20);
        Files read = files; // some ways to compress the same differ in a bit
        refusalOf([&] { read = unpackTarGz(damaged, {"a", "b"}, 10000); });
        EXPECT_EQ(read, files) << at;
    }
}

} // namespace
} // namespace wlhost
