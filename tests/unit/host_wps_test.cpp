// WPS sessions of the host, and the switch of the event forwarding.
#include "tests/unit/host_fixture.h"

#include "host/base/escape.h"
#include "host/commands/wps_sessions.h"

namespace wlhost {
namespace {

int32_t progress;

int progressItem(WlIntf *, WlStatusItem *items, int count) {
    for (int i = 0; i < count; ++i)
        if (std::string(items[i].name) == "WPSStatus")
            items[i].value = copied(&progress, sizeof progress);
    return 0;
}
int taken(int code) {
    progress = code;
    return operationResult;
}
int pressButton(WlIntf *intf) { return called("button", intf->intfName) == 0 ? taken(1) : operationResult; }
int pressHardware(WlIntf **, int count, const char *uuid) {
    called("hardware", std::to_string(count), uuid[0] ? "uuid" : "no uuid");
    return taken(1);
}
int startPin(WlIntf *intf, const char *pin) { return called("pin", intf->intfName, pin); } // a daemon that is away
int cancelSession(WlIntf *intf) {
    called("cancel", intf->intfName);
    return taken(0);
}
int updateConfig(WlIntf *intf, uint8_t *changed) {
    copyText(intf->bss[0].ssidName, "agreed");
    copyText(intf->bss[0].wpaPsk, "new key 1");
    *changed = 1;
    called("update", intf->intfName);
    return taken(0);
}
int checkPin(const char *pin) { return std::string(pin) == "12345670" || std::strlen(pin) == 4 ? 0 : -1; }
int switchForwarding(int enable) { return called("forward", std::to_string(enable)); }

class HostWps : public HostCommands {
  protected:
    HostWps() {
        progress = 0;
        for (WlIntf *intf : {&intfs_[0], &intfs_[1]}) {
            intf->caps.wpsCapable = 1;
            intf->bss[0].wpsEnable = intf->bss[0].wpsPbcEnable = intf->bss[0].wpsStaPinEnable = 1;
            copyText(intf->bss[0].wpsUuid, "0123456789abcdef");
        }
        ops_.statusUpdate = progressItem, ops_.wpsSwPushButton = pressButton, ops_.wpsHwPushButton = pressHardware;
        ops_.wpsStartStaPin = startPin, ops_.wpsCancel = cancelSession, ops_.wpsUpdateConfg = updateConfig;
        ops_.enableFenraEvt = switchForwarding;
        module_.checkPin = checkPin;
        calls.clear();
    }
};

TEST_F(HostWps, SessionFromStartToResult) {
    json told = json::array();
    host_->onEvent = [&](const json &event) { told.push_back(cell(event["state"]) + "/" + cell(event["result"])); };
    EXPECT_EQ(result("wps status")["state"], "idle");
    json session = result("wps push-button", {{"radio", "wl1"}});
    expectHas(session, {{"state", "running"}, {"radio", "wl1"}, {"result", nullptr}});
    EXPECT_GE(session["seconds_left"], 118);
    EXPECT_LE(session["seconds_left"], 120);
    EXPECT_EQ(ask("wps pin", {{"radio", "wl0"}, {"pin", "12345670"}})["error"]["hint"],
              "end it with: wlhost wps cancel wl1");
    progress = 7; // a step of the exchange
    EXPECT_EQ(result("wps status")["state"], "running");
    struct {
        int code;
        const char *result;
    } ends[] = {{2, "done"}, {3, "failed"}, {4, "timed-out"}, {0, "cancelled"}};
    for (const auto &end : ends) {
        progress = end.code;
        watchSession(*host_);
        EXPECT_EQ(told.back(), std::string("idle/") + end.result);
        EXPECT_FALSE(sessionMayChange(*host_));
        expectHas(result("wps status"), {{"result", end.result}, {"state", "idle"}, {"seconds_left", nullptr}});
    }
    EXPECT_EQ(told.size(), 5u) << "what did not change is not told again";
    EXPECT_EQ(calls, (Calls{"button wl1"}));
}

TEST_F(HostWps, OldResultsAreNotTakenForNewOnes) {
    for (int old : {0, 3, 4}) {
        progress = old;
        json answer = ask("wps pin", {{"radio", "wl0"}, {"pin", "12345670"}});
        EXPECT_EQ(answer["error"]["text"], "the WPS daemon did not take the session") << old;
        EXPECT_EQ(result("wps status")["result"], "not-taken") << old;
        progress = 3 - old / 3; // the answer came late after all, as another code
        EXPECT_NE(result("wps status")["result"], "not-taken") << old;
    }
    progress = 2;
    EXPECT_EQ(ask("wps push-button", {{"radio", "wl0"}})["error"]["hint"], "take it with: wlhost wps apply wl0");
    EXPECT_EQ(calls.size(), 3u);
}

TEST_F(HostWps, ButtonsChooseTheirRadio) {
    EXPECT_EQ(result("wps push-button", {{"hardware", true}})["radio"], "wl0") << "5 GHz goes first";
    EXPECT_EQ(result("wps cancel", {{"radio", "wl0"}})["result"], "cancelled");
    intfs_[0].bss[0].wpsPbcEnable = 0;
    EXPECT_EQ(result("wps push-button")["radio"], "wl1");
    EXPECT_EQ(calls, (Calls{"hardware 2 uuid", "cancel wl0", "button wl1"}));
    EXPECT_EQ(ask("wps push-button", {{"radio", "wl0"}})["error"]["text"], "WPS is configured without push button");
    intfs_[1].bss[0].wpsEnable = 0;
    EXPECT_EQ(ask("wps push-button")["status"], Status::kFailed);
    for (const char *command : {"wps push-button", "wps cancel", "wps apply"})
        EXPECT_EQ(ask(command, {{"radio", "wl1"}})["error"]["text"], "WPS is off") << command;
    EXPECT_EQ(ask("wps push-button", {{"radio", "wl0"}, {"hardware", true}})["status"], Status::kUsage);
    EXPECT_EQ(ask("wps cancel", {{"radio", "wl7"}})["status"], Status::kNotFound);
    EXPECT_EQ(calls.size(), 3u);
}

TEST_F(HostWps, PinsAreCheckedFirst) {
    EXPECT_EQ(result("wps check-pin", {{"pin", "12345670"}})["valid"], true);
    EXPECT_EQ(result("wps check-pin", {{"pin", "1234"}})["valid"], true);
    EXPECT_EQ(ask("wps check-pin", {{"pin", "12345678"}})["status"], Status::kFailed);
    for (const char *pin : {"", "123", "12345", "a=b ", "1234567a", "123456700"}) {
        EXPECT_EQ(ask("wps check-pin", {{"pin", pin}})["status"], Status::kUsage) << pin;
        EXPECT_EQ(ask("wps pin", {{"radio", "wl0"}, {"pin", pin}})["status"], Status::kUsage) << pin;
    }
    EXPECT_EQ(ask("wps pin", {{"radio", "wl0"}, {"pin", "12345678"}})["status"], Status::kUsage);
    EXPECT_EQ(calls, Calls{});
    module_.checkPin = nullptr;
    EXPECT_EQ(ask("wps check-pin", {{"pin", "12345670"}})["error"]["text"],
              "the module does not offer qvWlanWscPincheck");
}

TEST_F(HostWps, AppliedNetworkLastsUntilTheFileIsReloaded) {
    json applied = result("wps apply", {{"radio", "wl0"}});
    expectHas(applied, {{"ssid", "agreed"}, {"changed", true}});
    EXPECT_EQ(applied.dump().find("new key 1"), std::string::npos) << "a secret in an answer";
    EXPECT_EQ(result("ssids")[0]["ssid"], "agreed");
    EXPECT_EQ(result("reload")["radios"][0]["action"], "reloaded") << "the file's network is another one";
    EXPECT_EQ(result("ssids")[0]["ssid"], "\\xffA");
}

TEST_F(HostWps, Forwarding) {
    EXPECT_EQ(result("forward", {{"state", "on"}})["forward"], "on");
    result("forward", {{"state", "off"}});
    EXPECT_EQ(calls, (Calls{"forward 1", "forward 0"}));
    EXPECT_EQ(ask("forward", {{"state", "1"}})["status"], Status::kUsage);
    EXPECT_EQ(ask("events")["error"]["text"], "the module registered no event handler");
    WlEvtHandler handler{};
    module_.events = &handler;
    expectHas(result("events", {{"interface", "wl0.1"}, {"station", "02-00-00-00-00-0A"}}),
              {{"interface", "wl0.1"}, {"station", "02:00:00:00:00:0a"}, {"kinds", json::array()}});
    EXPECT_EQ(ask("events", {{"interface", "wl7"}})["status"], Status::kNotFound);
    EXPECT_EQ(ask("events", {{"kinds", {"wps", "refusd"}}})["error"]["hint"], "did you mean \"refused\"?");
    EXPECT_EQ(topicOf(R"({"command": "events"})"), "events");
    for (const char *other : {"", "[]", R"({"command": "event"})", R"({"events": 1})"})
        EXPECT_EQ(topicOf(other), "") << other;
}

} // namespace
} // namespace wlhost
