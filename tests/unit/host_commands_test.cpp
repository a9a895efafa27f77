// The host's commands against a module that records what it was asked for.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "commands.h"
#include "host.h"
#include "text.h"

namespace wlhost {
namespace {

std::vector<std::string> calls;
int operationResult;

template <typename... Parts> int called(Parts... parts) {
    std::string call;
    ((call += (call.empty() ? "" : " ") + std::string(parts)), ...);
    calls.push_back(call);
    return operationResult;
}

int initWlan(WlIntf *intf, const WlLanCfg *lan) {
    intf->state = WLBRCM_STATE_READY;
    std::string members;
    for (int i = 0; i < lan->groups[0].memberCount; ++i)
        members += std::string(" ") + lan->groups[0].members[i].ifName;
    return called("init", intf->intfName, std::to_string(intf->radio.channel), lan->groups[0].name + members);
}
int reloadWlan(WlIntf *intf) { return called("reload", intf->intfName, std::to_string(intf->radio.channel)); }
int updateLan(void *, void *, const WlLanCfg *lan) { return called("lan", lan->groups[0].name); }
int stationFilter(WlIntf *intf, const char *path) {
    return called("filter", path, intf->bss[0].macFilterMode, intf->bss[0].macFilterList);
}
int bsaMacFilter(const char *ifname, int cmd, const uint8_t mac[6]) {
    MacBytes bytes;
    std::memcpy(bytes.data(), mac, 6);
    return called("bsa", ifname, std::to_string(cmd), formatMac(bytes));
}
int enablePreset(const char *ifname, int enable) { return called("preset", ifname, std::to_string(enable)); }
int setMac(WlIntf *intf, const uint8_t mac[6]) {
    std::memcpy(intf->macAddr, mac, 6);
    return called("mac", intf->intfName);
}
void *copied(const void *value, size_t size) { return std::memcpy(std::malloc(size), value, size); }
int statusUpdate(WlIntf *, WlStatusItem *items, int count) {
    const int32_t noise = -91, channel = 0;
    const WlTrafficCounters counters{1, 2, 3, 4, 5, 6, 7, 8};
    for (int i = 0; i < count; ++i) {
        std::string name = items[i].name;
        if (name == "Noise")
            items[i].value = copied(&noise, sizeof noise);
        else if (name == "CurChannel")
            items[i].value = copied(&channel, sizeof channel);
        else if (name == "RadioStatus")
            items[i].value = strdup("Up");
        else if (name == "wl0_TrafficInfo")
            items[i].value = copied(&counters, sizeof counters);
    }
    return 0;
}
int stations(WlIntf *, int, WlStaInfo **list, int *count) {
    *list = static_cast<WlStaInfo *>(std::calloc(2, sizeof(WlStaInfo)));
    *count = 2;
    return 0;
}

const char *const kConfig = R"({"lan": {"groups": [{"name": "br0", "ports": ["eth0"]}]}, "radios": [
    {"name": "wl0", "country": "DE/3", "channel": 36, "ssids": [
        {"ssid_hex": "ff41", "encryption": "psk2", "key": "correct horse", "network": "br0"},
        {"ssid": "party", "preset": "on-demand"}]},
    {"name": "wl1", "country": "DE/3", "channel": 6, "ssids": [{"ssid": "things", "hidden": true}]}]})";

class HostCommands : public testing::Test {
  protected:
    HostCommands() : file_("/tmp/wlhost-commands." + std::to_string(getpid()) + ".json") {
        calls.clear();
        operationResult = 0;
        const char *names[] = {"wl0", "wl1", "wl2"};
        for (int i = 0; i < 3; ++i) {
            copyText(intfs_[i].intfName, names[i]);
            intfs_[i].bandCode = i == 0 ? WLBRCM_BANDCODE_5G : WLBRCM_BANDCODE_2G;
            intfs_[i].caps.maxBss = 6;
            module_.radios.push_back(&intfs_[i]);
        }
        ops_.initWlan = initWlan, ops_.reloadWlan = reloadWlan, ops_.updateLaninfo = updateLan;
        ops_.stationFilter = stationFilter, ops_.bsaMacFilter = bsaMacFilter;
        ops_.enablePresetSsid = enablePreset, ops_.setWlanMacAddr = setMac;
        module_.ops = &ops_;
        write(kConfig);
        host_ = std::make_unique<Host>(module_, Config::load(file_));
        host_->bringUp();
    }
    ~HostCommands() override { std::filesystem::remove(file_); }

    void write(const std::string &text) { std::ofstream(file_) << text; }
    // The configuration file with one value changed.
    void change(const char *pointer, const json &value) {
        json config = json::parse(kConfig);
        config[json::json_pointer(pointer)] = value;
        write(config.dump());
    }
    json ask(const char *command, const json &args = json::object()) {
        return json::parse(answer(*host_, json{{"command", command}, {"args", args}}.dump()).dump());
    }
    json result(const char *command, const json &args = json::object()) {
        json reply = ask(command, args);
        EXPECT_EQ(reply["status"], 0) << reply;
        return reply.value("result", json());
    }
    using Calls = std::vector<std::string>;

    std::string file_;
    WlIntf intfs_[3]{};
    WlModuleOps ops_{};
    Module module_;
    std::unique_ptr<Host> host_;
};

TEST_F(HostCommands, BringsConfiguredRadiosUpAndLeavesOthersAlone) {
    EXPECT_EQ(calls, (Calls{"init wl0 36 br0 eth0 wl0", "init wl1 6 br0 eth0 wl0"}));
    EXPECT_EQ(intfs_[2].state, 0);
    EXPECT_EQ(intfs_[0].radio.bssCount, 2);
}

TEST_F(HostCommands, RefusesRadiosThatDoNotExistBeforeAnythingRuns) {
    calls.clear();
    change("/radios/1/name", "wl7");
    try {
        Host(module_, Config::load(file_));
        FAIL();
    } catch (const Failure &failure) {
        EXPECT_EQ(std::string(failure.what()).substr(file_.size()),
                  ":1: radios[1].name: \"wl7\" does not exist; wl0, wl1, wl2");
    }
    EXPECT_EQ(calls, Calls{});
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
    change("/radios/0/channel", 45);
    json refused = ask("reload");
    EXPECT_EQ(refused["status"], kUsage);
    EXPECT_EQ(intfs_[0].radio.channel, 44);
    EXPECT_EQ(calls, Calls{}) << "a file that is not sound was applied";

    change("/lan/groups/0/ports", {"eth0", "eth1"});
    EXPECT_EQ(result("reload")["lan"], "updated");
    EXPECT_EQ(calls, (Calls{"lan br0", "reload wl0 36"}));
}

TEST_F(HostCommands, FilterOfTheUser) {
    calls.clear();
    json filter = result(
        "filter", {{"interface", "wl0"}, {"mode", "deny"}, {"stations", {"00:10:18:aa:bb:01", "00-10-18-AA-BB-01"}}});
    EXPECT_EQ(calls, (Calls{"filter wl0 DENY 00:10:18:AA:BB:01"}));
    EXPECT_EQ(filter["stations"], json::array({"00:10:18:aa:bb:01"}));
    EXPECT_EQ(result("ssids")[0]["filter"], "deny");
    EXPECT_EQ(result("reload")["radios"][0]["action"], "reloaded") << "the file's filter is another one";
    EXPECT_STREQ(intfs_[0].bss[0].macFilterList, "");
    EXPECT_EQ(ask("filter", {{"interface", "wl0"}, {"mode", "den"}})["status"], kUsage);
    EXPECT_EQ(ask("filter", {{"interface", "wl0"}, {"mode", "off"}, {"stations", {"00:10:18:aa:bb:01"}}})["status"],
              kUsage);
    json many = json::array();
    for (int i = 0; i < 86; ++i)
        many.push_back(formatMac({2, 0, 0, 0, 0, static_cast<uint8_t>(i)}));
    EXPECT_EQ(ask("filter", {{"interface", "wl0"}, {"mode", "deny"}, {"stations", many}})["status"], kUsage);
    many.erase(0);
    EXPECT_EQ(result("filter", {{"interface", "wl0"}, {"mode", "deny"}, {"stations", many}})["stations"], many);
}

TEST_F(HostCommands, BansAtRunTime) {
    calls.clear();
    json station = {{"interface", "wl0.1"}, {"station", "00:10:18:AA:BB:02"}};
    EXPECT_EQ(result("ban", station)["denied"], json::array({"00:10:18:aa:bb:02"}));
    EXPECT_EQ(result("unban", station)["denied"], json::array());
    json absent = ask("unban", station);
    EXPECT_EQ(absent["status"], kNotFound);
    EXPECT_EQ(absent["error"]["code"], "not-found");
    result("unban", {{"interface", "wl0.1"}, {"all", true}});
    EXPECT_EQ(calls, (Calls{"bsa wl0.1 1 00:10:18:aa:bb:02", "bsa wl0.1 2 00:10:18:aa:bb:02",
                            "bsa wl0.1 0 00:00:00:00:00:00"}));
    EXPECT_EQ(ask("unban", {{"interface", "wl0.1"}})["status"], kUsage);
    EXPECT_EQ(ask("ban", {{"interface", "wl0.1"}, {"station", "00:10:18"}})["status"], kUsage);
    operationResult = -5;
    EXPECT_EQ(ask("ban", station)["error"]["text"], "bsaMacFilter returned -5");
    EXPECT_EQ(result("filter", {{"interface", "wl0.1"}})["denied"], json::array());
}

TEST_F(HostCommands, PresetsAndAddresses) {
    calls.clear();
    EXPECT_EQ(result("ssids")[1]["state"], "standby");
    result("preset", {{"interface", "wl0.1"}, {"state", "on"}});
    EXPECT_EQ(result("ssids")[1]["state"], "on");
    EXPECT_EQ(ask("preset", {{"interface", "wl0"}, {"state", "on"}})["error"]["hint"], "on demand: wl0.1");
    EXPECT_EQ(result("mac", {{"radio", "wl1"}, {"mac", "02:00:00:00:00:09"}})["mac"], "02:00:00:00:00:09");
    EXPECT_EQ(calls, (Calls{"preset wl0.1 1", "mac wl1"}));
    EXPECT_EQ(result("reload")["radios"][1]["action"], "reloaded") << "BSS addresses follow the radio's";
    EXPECT_EQ(intfs_[1].radio.baseMac[5], 9);
}

TEST_F(HostCommands, StatusWithAndWithoutTheOperation) {
    json row = result("status")[0];
    EXPECT_EQ(row["channel"], 36);
    EXPECT_EQ(row["state"], "ready");
    EXPECT_TRUE(row["noise_dbm"].is_null() && row["stations"].is_null());
    EXPECT_EQ(ask("status", {{"items", {"Noise"}}})["error"]["text"], "the module does not offer statusUpdate");

    ops_.statusUpdate = statusUpdate, ops_.getAssocDevList = stations;
    row = result("status", {{"radio", "wl0"}})[0];
    EXPECT_EQ(row["noise_dbm"], -91);
    EXPECT_EQ(row["state"], "up");
    EXPECT_EQ(row["stations"], 2);
    EXPECT_TRUE(row["channel"].is_null()) << "0 is what a failed read gives";
    json items = result("status", {{"radio", "wl0"}, {"items", {"Noise", "wl0_TrafficInfo", "Nonsense"}}})[0]["items"];
    EXPECT_EQ(items["Noise"], -91);
    EXPECT_EQ(items["wl0_TrafficInfo"]["rx_bytes"], 2);
    EXPECT_TRUE(items["Nonsense"].is_null());
}

TEST_F(HostCommands, SsidsKeepTheirBytes) {
    json row = result("ssids")[0];
    EXPECT_EQ(row["ssid"], "\\xffA");
    EXPECT_EQ(row["ssid_hex"], "ff41");
    EXPECT_EQ(row["security"], "psk2");
    EXPECT_EQ(row["bridge"], "br0");
}

TEST_F(HostCommands, EveryErrorHasItsStatusAndPlace) {
    json absent = ask("status", {{"radio", "wl2"}});
    EXPECT_EQ(absent["status"], kNotFound);
    EXPECT_EQ(absent["error"], (json{{"code", "not-found"},
                                     {"where", "wl2"},
                                     {"text", "no such radio is configured"},
                                     {"hint", "configured: wl0, wl1"}}));
    EXPECT_EQ(ask("filter", {{"interface", "wl0; reboot"}})["status"], kNotFound);
    ops_.enablePresetSsid = nullptr, ops_.reloadWlan = nullptr;
    EXPECT_EQ(ask("preset", {{"interface", "wl0.1"}, {"state", "on"}})["error"]["text"],
              "the module does not offer enablePresetSsid");
    EXPECT_EQ(ask("reload", {{"all", true}})["status"], kFailed);
    for (const char *request :
         {"", "{", "[]", "null", "{\"command\": 5}", "{\"command\": \"stat\"}",
          "{\"command\": \"status\", \"args\": []}", "{\"command\": \"status\", \"args\": {\"items\": 3}}"})
        EXPECT_EQ(answer(*host_, request)["status"], kUsage) << request;
}

} // namespace
} // namespace wlhost
