#include "platform/sim/driver/sim_driver.h"

#include "platform/sim/common/sim_log.h"
#include "platform/sim/driver/event_message.h"
#include "platform/sim/driver/faults.h"
#include "platform/sim/nvram/nvram_store.h"

#include <algorithm>

namespace wlsim {

namespace {

// The veth peer of an interface: air0.1 for wl0.1. No name with "wl" in it, or it would pass for a radio.
std::string peerName(const std::string &ifName) {
    return ifName.compare(0, 2, "wl") == 0 ? "air" + ifName.substr(2) : "air-" + ifName;
}

} // namespace

Driver::Driver(Model initial, Ports machine) : model(initial), ports(machine), initial_(std::move(initial)) {}

std::string Driver::start() {
    for (const auto &[key, value] : model.nvram) {
        if (!nvram_get(key.c_str()) && nvram_set(key.c_str(), value.c_str()) != 0) {
            return "cannot store the factory value of " + key;
        }
    }
    for (const Radio &radio : model.radios) {
        std::string error = ports.net.create(radio.name, peerName(radio.name), radio.mac);
        if (!error.empty()) {
            return error;
        }
    }
    return "";
}

void Driver::stop() {
    for (const Radio &radio : model.radios) {
        for (auto bss = radio.bss.rbegin(); bss != radio.bss.rend(); ++bss) {
            if (bss->exists) {
                ports.net.remove(bss->ifName);
            }
        }
    }
}

std::string Driver::reboot() {
    stop();
    model = initial_;
    return nvram_reboot() == 0 ? start() : "the configuration store cannot be reset";
}

Radio *Driver::findRadio(const std::string &name) {
    auto found = std::find_if(model.radios.begin(), model.radios.end(), [&](Radio &r) { return r.name == name; });
    return found == model.radios.end() ? nullptr : &*found;
}

std::optional<Target> Driver::find(const std::string &ifName) {
    for (Radio &radio : model.radios) {
        for (Bss &bss : radio.bss) {
            if (bss.exists && bss.ifName == ifName) {
                return Target{radio, bss};
            }
        }
    }
    return std::nullopt;
}

std::string Driver::interfaceNames() const {
    std::string names;
    for (const Radio &radio : model.radios) {
        for (const Bss &bss : radio.bss) {
            names += bss.exists ? (names.empty() ? "" : " ") + bss.ifName : "";
        }
    }
    return names.empty() ? "none" : names;
}

std::string Driver::createInterface(const Radio &radio, Bss &bss) {
    if (bss.exists) {
        return "";
    }
    Mac mac = radio.mac;
    mac.bytes[0] = static_cast<uint8_t>(mac.bytes[0] | 2);
    mac.bytes[5] = static_cast<uint8_t>(mac.bytes[5] + bss.index);
    std::string error = ports.net.create(bss.ifName, peerName(bss.ifName), mac);
    bss.exists = error.empty();
    return error;
}

bool Driver::onAir(const Radio &radio, const Bss &bss) const {
    return radio.up && bss.exists && bss.up && ports.net.up(bss.ifName);
}

Mac Driver::address(const Radio &radio, const Bss &bss) const { return ports.net.mac(bss.ifName).value_or(radio.mac); }

bool Driver::dropStation(Bss &bss, const Mac &mac, unsigned event, unsigned reason) {
    auto same = [&](const Station &station) { return station.mac == mac; };
    auto found = std::find_if(bss.stations.begin(), bss.stations.end(), same);
    if (found == bss.stations.end()) {
        return false;
    }
    bss.stations.erase(found);
    emit({event, bss.ifName, mac, reason, 0});
    return true;
}

void Driver::dropStations(Bss &bss, unsigned event, unsigned reason) {
    while (!bss.stations.empty()) {
        Mac mac = bss.stations.back().mac;
        dropStation(bss, mac, event, reason);
    }
}

std::string Driver::authenticatorTrouble(const std::string &ifName) const {
    for (const char *name : {"nas", "eapd"}) {
        if (!ports.processes.running(name)) {
            return std::string(name) + " does not run";
        }
    }
    for (int group = 0; group < 10; group++) {
        if (contains(splitWords(stored(group ? format("lan%d", group) : "lan", "ifnames")), ifName)) {
            return "";
        }
    }
    return "no LAN group lists " + ifName;
}

// The event daemon passes events on, and only when the configuration asks for them.
bool Driver::eventsPass() const { return stored("mevent_enable") == "1" && ports.processes.running("eapd"); }

void Driver::emit(const Event &event, long count) {
    if (!eventsPass_) {
        eventsPass_ = eventsPass();
    }
    logLine("event", format("%s number %u station %s reason %u status %u", event.ifName.c_str(), event.number,
                            event.station.text().c_str(), event.reason, event.status) +
                         (count > 1 ? format(" %ld times", count) : "") +
                         (*eventsPass_ ? "" : " kept back: mevent_enable is not 1 or eapd does not run"));
    for (long i = 0; *eventsPass_ && i < count; i++) {
        ports.events.send(eventMessage(event));
    }
}

void Driver::countTraffic(Radio &radio, Bss &bss) {
    int64_t now = ports.clock.nowMs();
    for (Station &station : bss.stations) {
        auto bytes = static_cast<uint64_t>((now - station.countedMs) * station.trafficKbit / 8);
        uint64_t packets = bytes / 1500;
        if (packets == 0) {
            continue;
        }
        station.countedMs = now;
        StationCounters &counters = station.counters;
        counters.txPackets += packets;
        counters.rxPackets += packets / 2;
        counters.txBytes += bytes;
        counters.rxBytes += bytes / 4;
        const std::pair<const char *, uint64_t> moved[] = {
            {"txframe", packets}, {"txbyte", bytes}, {"rxframe", packets / 2}, {"rxbyte", bytes / 4}};
        for (const auto &[name, amount] : moved) {
            bss.counters[name] += amount;
            radio.counters[name] += bss.index == 0 ? 0 : amount;
        }
    }
}

void Driver::finishSwitches(Radio &radio) {
    for (ChannelSwitch &change : radio.switches) {
        if (change.done || change.dueMs > ports.clock.nowMs()) {
            continue;
        }
        change.done = true;
        if (radio.up) {
            radio.chanspec = change.target;
            emit({kEventCsaComplete, change.ifName, {}, 0, 0});
        }
    }
}

// Takes in what happened since the last command: time passed, and others may have taken interfaces down.
void Driver::catchUp() {
    for (Radio &radio : model.radios) {
        finishSwitches(radio);
        for (Bss &bss : radio.bss) {
            if (!bss.stations.empty() && !onAir(radio, bss)) {
                dropStations(bss, kEventDisassocInd, 8);
            }
            countTraffic(radio, bss);
        }
    }
}

Reply Driver::dispatch(const Words &words) {
    constexpr struct {
        const char *tool;
        Reply (*run)(Driver &, const Words &);
    } kTools[] = {{"wlctl", runDriverCommand},
                  {"wl", runDriverCommand},
                  {"dhdctl", runDriverCommand},
                  {"wlconf", runWlconf},
                  {"wlsim", runControl}};
    for (const auto &tool : kTools) {
        if (words[0] == tool.tool) {
            return tool.run(*this, words);
        }
    }
    return refuse("no such tool", 2);
}

Reply Driver::spoiltDispatch(const Words &words) {
    Fault *fault = words[0] == "wlsim" ? nullptr : takeFault(model.faults, words);
    Reply reply = fault && fault->mode == "fail" ? refuse("driver error (injected)") : dispatch(words);
    if (fault) {
        reply.delayMs = fault->ms;
        reply.out = spoilt(fault->mode, reply.out);
    }
    return reply;
}

// Tools whose work is done elsewhere ask beforehand, with "fault" before their words, and are told the way to go wrong.
Reply Driver::faultOf(const Words &words) {
    Fault *fault = takeFault(model.faults, words);
    Reply reply = fault && fault->mode == "fail" ? refuse("driver error (injected)") : done(fault ? fault->mode : "");
    reply.delayMs = fault ? fault->ms : 0;
    return reply;
}

Reply Driver::run(const Words &words) {
    if (words.empty()) {
        return refuse("empty request\n", 2);
    }
    eventsPass_.reset();
    catchUp();
    bool asks = words[0] == "fault" && words.size() > 1;
    Reply reply = asks ? faultOf(Words(words.begin() + 1, words.end())) : spoiltDispatch(words);
    if (!asks) {
        logCommand(words, reply.status, reply.err);
    }
    if (!reply.err.empty()) {
        reply.err = words[asks ? 1 : 0] + ": " + reply.err + (reply.err.back() == '\n' ? "" : "\n");
    }
    return reply;
}

} // namespace wlsim
