// The host with a module that records what it was asked for.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/command_table.h"
#include "host/control/dispatch.h"
#include "host/state/host.h"

namespace wlhost {

inline std::vector<std::string> calls;
inline int operationResult;

template <typename... Parts> int called(Parts... parts) {
    std::string call;
    ((call += (call.empty() ? "" : " ") + std::string(parts)), ...);
    calls.push_back(call);
    return operationResult;
}

inline int initWlan(WlIntf *intf, const WlLanCfg *lan) {
    intf->state = WLBRCM_STATE_READY;
    std::string members;
    for (int i = 0; i < lan->groups[0].memberCount; ++i)
        members += std::string(" ") + lan->groups[0].members[i].ifName;
    return called("init", intf->intfName, std::to_string(intf->radio.channel), lan->groups[0].name + members);
}
inline int reloadWlan(WlIntf *intf) { return called("reload", intf->intfName, std::to_string(intf->radio.channel)); }
inline int updateLan(void *, void *, const WlLanCfg *lan) { return called("lan", lan->groups[0].name); }
inline int stationFilter(WlIntf *intf, const char *path) {
    return called("filter", path, intf->bss[0].macFilterMode, intf->bss[0].macFilterList);
}
inline int bsaMacFilter(const char *ifname, int cmd, const uint8_t mac[6]) {
    MacBytes bytes;
    std::memcpy(bytes.data(), mac, 6);
    return called("bsa", ifname, std::to_string(cmd), formatMac(bytes));
}
inline int enablePreset(const char *ifname, int enable) { return called("preset", ifname, std::to_string(enable)); }
inline int setMac(WlIntf *intf, const uint8_t mac[6]) {
    std::memcpy(intf->macAddr, mac, 6);
    return called("mac", intf->intfName);
}
inline void *copied(const void *value, size_t size) { return std::memcpy(std::malloc(size), value, size); }
inline int statusUpdate(WlIntf *, WlStatusItem *items, int count) {
    const int32_t noise = -91, channel = 0;
    const WlTrafficCounters counters{1, 2, 3, 4, 5, 6, 7, 8};
    for (int i = 0; i < count; ++i) {
        std::string name = items[i].name;
        if (name == "Noise" || name == "NewNumber")
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
inline int stations(WlIntf *, int, WlStaInfo **list, int *count) {
    *list = static_cast<WlStaInfo *>(std::calloc(2, sizeof(WlStaInfo)));
    *count = 2;
    return 0;
}

// What the tools print, by interface and command, or by command alone; one that is not here fails.
inline std::map<std::string, std::string> toolSays;
inline const std::map<std::string, std::string> kUsualAnswers = {{"isup", "1"},
                                                                 {"chanspec", "36/80 (0xe02a)"},
                                                                 {"country", "DE (DE/3) GERMANY"},
                                                                 {"bss", "up"},
                                                                 {"wl0.1 bss", "down"},
                                                                 {"ssid", "Current SSID: \"\\xffA\""},
                                                                 {"closed", "0"},
                                                                 {"maxassoc", "128"},
                                                                 {"bss_maxassoc", "128"},
                                                                 {"macmode", "0"},
                                                                 {"mac", ""},
                                                                 {"assoclist", ""},
                                                                 {"scanresults", ""},
                                                                 {"dump", ""}};
struct ScriptedPlatform : Platform {
    ToolAnswer run(const std::vector<std::string> &words) const override {
        for (const std::string &key : {words[2] + " " + words[3], words[3]})
            if (auto found = toolSays.find(key); found != toolSays.end())
                return {0, found->second, ""};
        return {1, "", words[0] + " failed"};
    }
    bool exists(const std::string &) const override { return true; }
    std::optional<std::string> readFile(const std::string &) const override { return "0x1003"; }
    std::optional<std::string> linkedName(const std::string &) const override { return "br0"; }
    void pause(int) const override {}
};
inline const ScriptedPlatform kScriptedPlatform;

inline const char *const kConfig = R"({"lan": {"groups": [{"name": "br0", "ports": ["eth0"]}]}, "radios": [
    {"name": "wl0", "country": "DE/3", "channel": 36, "ssids": [
        {"ssid_hex": "ff41", "encryption": "psk2", "key": "correct horse", "network": "br0"},
        {"ssid": "party", "preset": "on-demand"}]},
    {"name": "wl1", "country": "DE/3", "channel": 6, "ssids": [{"ssid": "things", "hidden": true}]}]})";

// As a person reads it.
inline std::string shown(const char *command, const json &result) {
    const Command *row = findCommand(command);
    return row->show(result, row->columns);
}

// The values of a result that matter to a test.
inline void expectHas(const json &row, const json &expected) {
    for (const auto &[key, value] : expected.items())
        EXPECT_EQ(row.at(key), value) << key;
}

class HostCommands : public testing::Test {
  protected:
    HostCommands() : file_("/tmp/wlhost-commands." + std::to_string(getpid()) + ".json") {
        calls.clear();
        operationResult = 0;
        toolSays = kUsualAnswers;
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
        module_.nvramGet = [](const char *) -> const char * { return nullptr; };
        write(kConfig);
        host_ = std::make_unique<Host>(module_, Config::load(file_));
        host_->platform = &kScriptedPlatform;
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

} // namespace wlhost
