#include <algorithm>

#include "host/base/escape.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/radio_status.h"
#include "host/commands/wps_sessions.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

using Clock = std::chrono::steady_clock;

// How long a session stays open (Wi-Fi Protected Setup).
constexpr std::chrono::seconds kWalkTime{120};

constexpr int kIdle = 0, kSucceeded = 2, kTimedOut = 4;
constexpr const char *kResults[] = {nullptr, nullptr, "done", "failed", "timed-out"};

// The daemon's progress code; null when the module cannot tell. Other codes than these are steps of a running session.
json progressOf(Host &host) {
    auto radios = host.configuredRadios();
    return radios.empty() ? json() : statusItems(host, *radios.front(), {"WPSStatus"})["WPSStatus"];
}

bool isRunning(const json &progress) {
    return progress.is_number() && progress != kIdle && (progress < kSucceeded || progress > kTimedOut);
}

json resultOf(const Host &host, const json &progress) {
    if (!progress.is_number() || isRunning(progress))
        return nullptr;
    // A code that was there before says nothing of the new session.
    if (host.wps && !host.wps->ran && !host.wps->cancelled && progress == host.wps->before)
        return "not-taken";
    if (const char *result = kResults[progress.get<int>()])
        return result;
    return host.wps ? json("cancelled") : json();
}

void tellChange(Host &host, const json &session) {
    json now = {{"state", session["state"]}, {"result", session["result"]}};
    if (!host.wps || host.wps->told == now)
        return;
    host.wps->told = now;
    host.tell({{"event", "wps"},
               {"radio", session["radio"]},
               {"method", session["method"]},
               {"state", session["state"]},
               {"result", session["result"]}});
}

json sessionState(Host &host) {
    json progress = progressOf(host);
    bool running = isRunning(progress);
    json radio, method, left;
    if (host.wps) {
        host.wps->ran |= running;
        radio = host.wps->radio, method = host.wps->method;
        auto remaining = std::chrono::duration_cast<std::chrono::seconds>(host.wps->started + kWalkTime - Clock::now());
        left = running ? json(std::max<int64_t>(remaining.count(), 0)) : json();
    }
    json result = resultOf(host, progress);
    json row = {{"radio", radio},
                {"method", method},
                {"state", progress.is_null() ? json() : json(running ? "running" : "idle")},
                {"seconds_left", left},
                {"result", result},
                {"progress_code", progress},
                // What the station and the radio agreed on is not the host's before it is taken over.
                {"next", result == "done" && host.wps ? json("wlhost wps apply " + host.wps->radio) : json()}};
    tellChange(host, row);
    return row;
}

// The module does nothing, and says that all is well, on a radio without WPS.
void demandWps(const WlIntf &intf, uint8_t WlSsidCfg::*method, const char *what) {
    const WlSsidCfg &main = intf.bss[0];
    if (!intf.caps.wpsCapable || !intf.radio.radioOn || !main.enable || !main.wpsEnable)
        throw Failure(Status::kFailed, intf.intfName, "WPS is off",
                      "wps.enabled of the radio's first SSID switches it on");
    if (method && !(main.*method))
        throw Failure(Status::kFailed, intf.intfName, std::string("WPS is configured without ") + what);
}

bool takesPushButton(const WlIntf &intf) {
    return intf.radio.radioOn && intf.caps.wpsCapable && intf.bss[0].wpsEnable && intf.bss[0].wpsPbcEnable;
}

// The radio named, else the module's own choice of the hardware button: the last of 5 GHz, or the first.
WlIntf *choose(Host &host, const std::string &radio) {
    if (!radio.empty())
        return host.radio(radio);
    WlIntf *choice = nullptr;
    for (WlIntf *intf : host.configuredRadios())
        if (takesPushButton(*intf) && (!choice || intf->radio.band == WLBRCM_BAND_5G))
            choice = intf;
    if (!choice)
        throw Failure(Status::kFailed, "wps", "no radio takes a push button",
                      "switch on wps.enabled of its first SSID");
    return choice;
}

// One session at a time, and no new one over a result that is not taken: it could not be told from its successor's.
// What the daemon says meanwhile.
json demandIdle(Host &host) {
    json progress = progressOf(host);
    std::string radio = host.wps ? host.wps->radio : "RADIO";
    if (isRunning(progress))
        throw Failure(Status::kFailed, "wps", "a session is under way", "end it with: wlhost wps cancel " + radio);
    if (progress == kSucceeded)
        throw Failure(Status::kFailed, "wps", "the last session's result has not been taken",
                      "take it with: wlhost wps apply " + radio);
    return progress;
}

// The module sends a datagram and says that all is well, whether or not somebody took it.
void demandTaken(Host &host) {
    constexpr int kStep = 100, kLongest = 3000; // ms
    for (int waited = 0; waited < kLongest && progressOf(host) == host.wps->before; waited += kStep)
        host.platform->pause(kStep);
    if (sessionState(host)["result"] == "not-taken")
        throw Failure(Status::kFailed, host.wps->radio, "the WPS daemon did not take the session", "see wlhost verify");
}

template <typename Start>
json startSession(Host &host, WlIntf &intf, const char *method, const char *slot, Start start) {
    host.demandVerified(nullptr, kOfWps); // a daemon that is on its way gets the time to come
    WpsSession session{intf.intfName, method, Clock::now(), demandIdle(host)};
    Host::check(start(), intf.intfName, slot);
    host.wps = session;
    demandTaken(host);
    return sessionState(host);
}

std::string pinArg(const json &args) {
    std::string pin = textArg(args, "pin");
    bool digits = std::all_of(pin.begin(), pin.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!digits || (pin.size() != 4 && pin.size() != 8))
        throw Failure(Status::kUsage, "pin", "is not 4 or 8 digits");
    return pin;
}

bool isValidPin(const Host &host, const std::string &pin) {
    return host.operation(host.module().checkPin, "qvWlanWscPincheck")(pin.c_str()) == 0;
}

} // namespace

bool sessionMayChange(const Host &host) {
    constexpr std::chrono::seconds kBeginning{10}; // the daemon takes its time to take a session
    return host.wps && (host.wps->told.value("state", json()) == "running" ||
                        (!host.wps->ran && Clock::now() < host.wps->started + kBeginning));
}

void watchSession(Host &host) {
    try {
        sessionState(host);
    } catch (const Failure &) { // who asks for the session hears why
    }
}

json wpsPushButton(Host &host, const json &args) {
    bool hardware = flagArg(args, "hardware");
    std::string radio = textArg(args, "radio");
    if (hardware && !radio.empty())
        throw Failure(Status::kUsage, "wps", "takes a radio or --hardware, one of them");
    WlIntf &intf = *choose(host, radio);
    demandWps(intf, &WlSsidCfg::wpsPbcEnable, "push button");
    const WlModuleOps &ops = *host.module().ops;
    if (hardware) {
        auto *press = host.operation(ops.wpsHwPushButton, "wpsHwPushButton");
        auto radios = host.configuredRadios();
        return startSession(host, intf, "hardware-button", "wpsHwPushButton",
                            [&] { return press(radios.data(), static_cast<int>(radios.size()), intf.bss[0].wpsUuid); });
    }
    auto *press = host.operation(ops.wpsSwPushButton, "wpsSwPushButton");
    return startSession(host, intf, "push-button", "wpsSwPushButton", [&] { return press(&intf); });
}

json wpsPin(Host &host, const json &args) {
    WlIntf &intf = *host.radio(textArg(args, "radio"));
    std::string pin = pinArg(args);
    if (!isValidPin(host, pin))
        throw Failure(Status::kUsage, "pin", "has a wrong checksum");
    demandWps(intf, &WlSsidCfg::wpsStaPinEnable, "station PINs");
    auto *start = host.operation(host.module().ops->wpsStartStaPin, "wpsStartStaPin");
    return startSession(host, intf, "pin", "wpsStartStaPin", [&] { return start(&intf, pin.c_str()); });
}

json wpsCheckPin(Host &host, const json &args) {
    std::string pin = pinArg(args);
    if (!isValidPin(host, pin))
        throw Failure(Status::kFailed, "pin", "has a wrong checksum");
    return {{"pin", pin}, {"valid", true}};
}

json wpsCancel(Host &host, const json &args) {
    WlIntf &intf = *host.radio(textArg(args, "radio"));
    demandWps(intf, nullptr, "");
    Host::check(host.operation(host.module().ops->wpsCancel, "wpsCancel")(&intf), intf.intfName, "wpsCancel");
    if (host.wps)
        host.wps->cancelled = true;
    json session = sessionState(host);
    if (session["state"] == "running")
        throw Failure(Status::kFailed, intf.intfName, "the session goes on: the WPS daemon did not end it",
                      "see wlhost verify");
    return session;
}

json wpsStatus(Host &host, const json &) { return sessionState(host); }

json wpsApply(Host &host, const json &args) {
    WlIntf &intf = *host.radio(textArg(args, "radio"));
    demandWps(intf, nullptr, "");
    uint8_t changed = 0;
    int rc = host.operation(host.module().ops->wpsUpdateConfg, "wpsUpdateConfg")(&intf, &changed);
    host.noteApplied(&intf);
    host.wps.reset();
    Host::check(rc, intf.intfName, "wpsUpdateConfg");
    host.demandVerified(&intf, kOfBss | kOfWps, intf.intfName);
    host.tell({{"event", "wps"}, {"radio", intf.intfName}, {"state", "idle"}, {"result", "applied"}});
    const WlSsidCfg &main = intf.bss[0];
    return {{"radio", intf.intfName},
            {"changed", changed != 0},
            {"ssid", escapeBytes(main.ssidName)},
            {"ssid_hex", toHex(main.ssidName)},
            {"security", securityName(main)}};
}

} // namespace wlhost
