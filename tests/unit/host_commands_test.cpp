// The host's commands against a module that records what it was asked for.
#include "tests/unit/host_fixture.h"

#include "host/base/addresses.h"
#include "host/base/word_lists.h"
#include "host/cli/completion.h"
#include "host/cli/typed_words.h"

namespace wlhost {
namespace {

TEST_F(HostCommands, BringsConfiguredRadiosUpAndLeavesOthersAlone) {
    EXPECT_EQ(calls, (Calls{"init wl0 36 br0 eth0 wl0", "init wl1 6 br0 eth0 wl0"}));
    EXPECT_EQ(intfs_[2].state, 0);
    EXPECT_EQ(intfs_[0].radio.bssCount, 2);
    expectHas(result("ssids")[0], {{"ssid", "\\xffA"}, {"ssid_hex", "ff41"}, {"security", "psk2"}, {"bridge", "br0"}});
}

TEST_F(HostCommands, ReloadsWhatChanged) {
    calls.clear();
    EXPECT_EQ(result("reload")["radios"][0]["action"], "unchanged");
    EXPECT_EQ(calls, Calls{});
    change("/radios/0/channel", 44);
    EXPECT_EQ(result("reload")["radios"][1]["action"], "unchanged");
    result("reload", {{"radio", "wl1"}});
    result("reload", {{"all", true}});
    EXPECT_EQ(calls, (Calls{"reload wl0 44", "reload wl1 6", "reload wl0 44", "reload wl1 6"}));

    calls.clear();
    json told;
    host_->onEvent = [&](const json &event) { told = event; };
    change("/radios/0/channel", 45);
    json refused = ask("reload");
    expectHas(told, {{"event", "reload"}, {"result", "usage"}, {"interface", nullptr}});
    EXPECT_EQ(refused["status"], Status::kUsage);
    EXPECT_EQ(intfs_[0].radio.channel, 44);
    EXPECT_EQ(calls, Calls{}) << "a file that is not sound was applied";

    change("/lan/groups/0/ports", {"eth0", "eth1"});
    EXPECT_EQ(result("reload")["lan"], "updated");
    expectHas(told, {{"result", "done"}, {"config", file_}, {"sequence", host_->eventCount}});
    EXPECT_EQ(calls, (Calls{"lan br0", "reload wl0 36"}));
}

TEST_F(HostCommands, ShowsSecretsToRootAlone) {
    const std::string request = R"({"command": "journal", "args": {"secrets": true}})";
    EXPECT_EQ(answer(*host_, request, 0)["status"], Status::kDone);
    const json refused = answer(*host_, request, 1000);
    EXPECT_EQ(refused["status"], Status::kFailed);
    EXPECT_NE(refused["error"]["text"].get<std::string>().find("permission"), std::string::npos);
}

TEST_F(HostCommands, FilterOfTheUser) {
    calls.clear();
    json filter = result(
        "filter", {{"interface", "wl0"}, {"mode", "deny"}, {"stations", {"00:10:18:aa:bb:01", "00-10-18-AA-BB-01"}}});
    EXPECT_EQ(calls, (Calls{"filter wl0 DENY 00:10:18:AA:BB:01"}));
    EXPECT_EQ(filter["stations"], json::array({"00:10:18:aa:bb:01"}));
    EXPECT_EQ(result("ssids")[0]["filter"], "deny");
    EXPECT_EQ(result("reload")["radios"][0]["action"], "changed") << "the file's filter is another one";
    EXPECT_STREQ(intfs_[0].bss[0].macFilterList, "");
    EXPECT_EQ(ask("filter", {{"interface", "wl0"}, {"mode", "den"}})["status"], Status::kUsage);
    EXPECT_EQ(ask("filter", {{"interface", "wl0"}, {"mode", "off"}, {"stations", {"00:10:18:aa:bb:01"}}})["status"],
              Status::kUsage);
    json many = json::array();
    for (int i = 0; i < 86; ++i)
        many.push_back(formatMac({2, 0, 0, 0, 0, static_cast<uint8_t>(i)}));
    EXPECT_EQ(ask("filter", {{"interface", "wl0"}, {"mode", "deny"}, {"stations", many}})["status"], Status::kUsage);
    many.erase(0);
    EXPECT_EQ(result("filter", {{"interface", "wl0"}, {"mode", "deny"}, {"stations", many}})["stations"], many);
}

TEST_F(HostCommands, BansAtRunTime) {
    calls.clear();
    json station = {{"interface", "wl0.1"}, {"station", "00:10:18:AA:BB:02"}};
    EXPECT_EQ(result("ban", station)["denied"], json::array({"00:10:18:aa:bb:02"}));
    EXPECT_EQ(result("unban", station)["denied"], json::array());
    json absent = ask("unban", station);
    EXPECT_EQ(absent["status"], Status::kNotFound);
    EXPECT_EQ(absent["error"]["code"], "not-found");
    result("unban", {{"interface", "wl0.1"}, {"all", true}});
    EXPECT_EQ(calls, (Calls{"bsa wl0.1 1 00:10:18:aa:bb:02", "bsa wl0.1 2 00:10:18:aa:bb:02",
                            "bsa wl0.1 0 00:00:00:00:00:00"}));
    EXPECT_EQ(ask("unban", {{"interface", "wl0.1"}})["status"], Status::kUsage);
    EXPECT_EQ(ask("ban", {{"interface", "wl0.1"}, {"station", "00:10:18"}})["status"], Status::kUsage);
    operationResult = -5;
    EXPECT_EQ(ask("ban", station)["error"]["text"], "bsaMacFilter returned -5");
    EXPECT_EQ(result("filter", {{"interface", "wl0.1"}})["denied"], json::array());
}

TEST_F(HostCommands, PresetsAndAddresses) {
    calls.clear();
    EXPECT_EQ(result("ssids")[1]["state"], "standby");
    result("preset", {{"interface", "wl0.1"}, {"state", "on"}});
    toolSays["wl0.1 bss"] = "up";
    EXPECT_EQ(result("ssids")[1]["state"], "on");
    EXPECT_EQ(ask("preset", {{"interface", "wl0"}, {"state", "on"}})["error"]["hint"], "on demand: wl0.1");
    EXPECT_EQ(result("mac", {{"radio", "wl1"}, {"mac", "02:00:00:00:00:09"}})["mac"], "02:00:00:00:00:09");
    EXPECT_EQ(calls, (Calls{"preset wl0.1 1", "mac wl1"}));
    EXPECT_EQ(result("reload")["radios"][1]["action"], "reloaded") << "BSS addresses follow the radio's";
    EXPECT_EQ(intfs_[1].radio.baseMac[5], 9);
}

TEST_F(HostCommands, StatusWithAndWithoutTheOperation) {
    expectHas(result("status")[0], {{"channel", 36}, {"state", "up"}, {"noise_dbm", nullptr}, {"stations", 0}});
    EXPECT_EQ(ask("status", {{"items", {"Noise"}}})["error"]["text"], "the module does not offer statusUpdate");

    ops_.statusUpdate = statusUpdate;
    toolSays["assoclist"] = "assoclist 02:00:00:00:00:01\nassoclist 02:00:00:00:00:02\n";
    toolSays["wl0 chanspec"] = "44/80";
    expectHas(result("status")[0],
              {{"noise_dbm", -91}, {"state", "up"}, {"stations", 4}, {"channel", 44}, {"differs", {"channel"}}});
    toolSays["wl0 isup"] = "0";
    expectHas(result("status")[0], {{"state", "down"}, {"channel", nullptr}, {"differs", {"state", "channel"}}});
    const std::string twoNames("Noise\0TrafficInfo", 17);
    json items =
        result("status", {{"radio", "wl0"},
                          {"items", {"Noise", "wl0_TrafficInfo", "Nonsense", "NewNumber", twoNames}}})[0]["items"];
    EXPECT_EQ(items["wl0_TrafficInfo"]["rx_bytes"], 2);
    // The type of a new item's value is not known here; the module reads a name up to the NUL.
    expectHas(items, {{"Noise", -91}, {"Nonsense", nullptr}, {"NewNumber", nullptr}, {twoNames, -91}});
}

TEST_F(HostCommands, EveryErrorHasItsStatusAndPlace) {
    json absent = ask("status", {{"radio", "wl2"}});
    EXPECT_EQ(absent["status"], Status::kNotFound);
    EXPECT_EQ(absent["error"], (json{{"code", "not-found"},
                                     {"where", "wl2"},
                                     {"text", "no such radio is configured"},
                                     {"hint", "configured: wl0, wl1"}}));
    EXPECT_EQ(ask("filter", {{"interface", "wl0; reboot"}})["status"], Status::kNotFound);
    ops_.enablePresetSsid = nullptr, ops_.reloadWlan = nullptr;
    EXPECT_EQ(ask("preset", {{"interface", "wl0.1"}, {"state", "on"}})["error"]["text"],
              "the module does not offer enablePresetSsid");
    EXPECT_EQ(ask("reload", {{"all", true}})["status"], Status::kFailed);
    for (const char *request : {"", "{", "[]", "null", R"({"command": 5})", R"({"command": "status", "args": []})",
                                R"({"command": "status", "args": {"items": 3}})", R"({"command": "ban"})",
                                R"({"command": "scan", "args": {"cached": 1}})", R"({"command": "doctor"})"})
        EXPECT_EQ(answer(*host_, request)["status"], Status::kUsage) << request;
    EXPECT_EQ(ask("stat")["error"]["hint"], "did you mean \"status\"?");
}

TEST(HostCompletion, OffersWhatTheTableHas) {
    std::string asked;
    auto ask = [&](const std::string &socket, const json &request) -> json {
        asked = socket + " " + request["command"].get<std::string>() +
                request.value("args", json::object()).value("interface", "");
        if (socket == "none")
            throw Failure(Status::kEnvironment, socket, "no host");
        return {{{"radio", "wl7"}, {"interface", "wl7.1"}, {"mac", "02:00:00:00:00:07"}}};
    };
    struct {
        std::vector<std::string> line;
        const char *asked, *offered, *withheld;
    } cases[] = {{{""}, "", "stations wps completion --socket --help", "pin --items"},
                 {{"wps", ""}, "", "push-button check-pin --json", "ssids wl7 --wait"},
                 {{"wps", "pin", ""}, " status", "wl7 --wait", "push-button"},
                 {{"status", "--json", "wl7", ""}, "", "--items", "wl7 status"},
                 {{"stations", "--sort", ""}, "", "signal rx-bytes", "--sort wl7.1"},
                 {{"--socket", "s", "kick", ""}, "s ssids", "wl7.1", "02:00:00:00:00:07"},
                 {{"kick", "wl7.1", ""}, " stationswl7.1", "02:00:00:00:00:07", "wl7.1"},
                 {{"kick", "wl7.1", "x", ""}, "", "--timeout", "02:00:00:00:00:07"},
                 {{"filter", "wl7.1", ""}, "", "deny allow off", ""},
                 {{"filter", "wl7.1", "deny", "x", ""}, " stationswl7.1", "02:00:00:00:00:07", "deny"},
                 {{"run", ""}, "", "<files> --sim --log-level", "status"},
                 {{"reload", "--config", ""}, "", "<files>", "--all"},
                 {{"--socket", "none", "status", ""}, "none status", "--items", "wl7"},
                 {{"nonsense", ""}, "", "--help", "status"}};
    for (const auto &row : cases) {
        asked.clear();
        std::vector<std::string> found = candidatesFor(row.line, ask);
        std::string line = joined(row.line);
        for (const std::string &word : splitWords(row.offered))
            EXPECT_EQ(std::count(found.begin(), found.end(), word), 1) << word << " behind " << line;
        for (const std::string &word : splitWords(row.withheld))
            EXPECT_EQ(std::count(found.begin(), found.end(), word), 0) << word << " behind " << line;
        EXPECT_EQ(asked, row.asked) << line;
    }
}

TEST(HostUsage, EachWordIsNamedWithTheNearest) {
    struct {
        const char *line, *where, *text, *hint;
    } cases[] = {
        {"stat", "stat", "is no command", "did you mean \"status\"? see wlhost --help"},
        {"wps", "wps", "needs one of push-button, pin, check-pin, cancel, status, apply", "see wlhost wps --help"},
        {"wps pim", "pim", "is no command", "did you mean \"pin\"? see wlhost wps --help"},
        {"reload --cofig x", "--cofig", "is no option here", "did you mean \"--config\"? see wlhost reload --help"},
        {"--jsn status", "--jsn", "is no option here", "did you mean \"--json\"? see wlhost --help"},
        {"filter wl0 den", "MODE", "\"den\" is not known here", "did you mean \"deny\"? see wlhost filter --help"},
        {"filter wl0 x", "MODE", "\"x\" is not known here", "known here: deny, allow, off; see wlhost filter --help"},
        {"status wl0 wl1", "wl1", "is one argument too many", "see wlhost status --help"},
        {"kick wl0", "MAC", "is missing: Station", "see wlhost kick --help"},
        {"--timeout=0 status", "--timeout", "\"0\" is no number from 1 to 3600", "see wlhost --help"},
        {"status --items", "--items", "has no value", "see wlhost status --help"},
        {"filter wl0 deny a b -- -c", "arguments", "otherwise", "see wlhost filter --help"},
    };
    for (const auto &row : cases) {
        Failure failure = usageFailure(splitWords(row.line), "otherwise");
        EXPECT_EQ(failure.where, row.where) << row.line;
        EXPECT_STREQ(failure.what(), row.text) << row.line;
        EXPECT_EQ(failure.hint, row.hint) << row.line;
    }
}

} // namespace
} // namespace wlhost
