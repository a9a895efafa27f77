#include "host/state/host.h"

#include <algorithm>
#include <cstring>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/times.h"
#include "host/base/word_lists.h"
#include "host/verify/readers.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

// What came of a transition, or a Failure when it is not what was asked.
json demandSettled(json outcome) {
    std::string text = Host::complaints(outcome);
    if (text.empty())
        return outcome;
    std::string hint = "see wlhost verify, wlhost why, and the log";
    if (json seconds = outcome.value("rollback_seconds", json()); seconds.is_number())
        hint += "; the configuration before comes back in " + seconds.dump() + " s, unless: wlhost confirm";
    throw Failure(Status::kFailed, "", text, hint, std::move(outcome));
}

} // namespace

std::string Host::complaints(const json &outcome) {
    std::string text;
    auto line = [&](const std::string &words) { text += (text.empty() ? "" : "\n") + words; };
    for (const json &radio : outcome["radios"]) {
        std::string name = radio["radio"];
        if (radio["action"] == "missing")
            line(name + ": does not exist");
        else if (radio["failure"].is_string())
            line(name + ": " + radio["failure"].get<std::string>());
        else if (radio["result"] != 0)
            line(name + ": the module could not configure it (" + radio["result"].dump() + ")");
    }
    for (const json &difference : outcome["differences"])
        line(difference["text"]);
    return text;
}

Host::Host(Module &module, Config config, Verifier verifier)
    : module_(module), config_(std::move(config)), verifier_(std::move(verifier)) {
    lan_ = std::make_unique<LanRecords>(config_);
    Transition(*this, config_, {}); // refuses what the radios cannot do before anything is applied
}

Host::~Host() = default;

void Host::missingOperation(const char *name) {
    throw Failure(Status::kFailed, name, std::string("the module does not offer ") + name);
}

void Host::check(int rc, const std::string &where, const char *operation) {
    if (rc != 0)
        throw Failure(Status::kFailed, where, std::string(operation) + " returned " + std::to_string(rc),
                      "see the module's log");
}

json Host::bringUp() {
    Transition transition(*this, config_, {});
    transition.perform();
    return transition.outcome();
}

void Host::adopt(const std::set<std::string> &radios) { Transition(*this, config_, {}).adopt(radios); }

Config Host::configOf(const ReloadRequest &request) const {
    return Config::load(request.file.empty() ? configFile() : request.file);
}

json Host::reload(const ReloadRequest &request) {
    Config before = rollback_ ? rollback_->config : config_;
    Transition transition(*this, configOf(request), {request.radio, request.all});
    transition.perform();
    rollback_.reset();
    bool rollsBack = request.rollback.count() > 0;
    if (rollsBack)
        rollback_ = Rollback{std::move(before), std::chrono::steady_clock::now() + request.rollback};
    json outcome = transition.outcome();
    outcome["rollback_seconds"] = rollsBack ? json(request.rollback.count()) : json();
    if (rollsBack) // the time to find out what was done is not the engineer's
        rollback_->due = std::chrono::steady_clock::now() + request.rollback;
    return demandSettled(std::move(outcome));
}

json Host::confirm() {
    if (!rollback_)
        throw Failure(Status::kFailed, "confirm", "nothing waits to be confirmed",
                      "wlhost reload --rollback SECONDS starts what does");
    rollback_.reset();
    return {{"config", configFile()}, {"confirmed", true}};
}

std::optional<std::chrono::steady_clock::time_point> Host::rollbackTime() const {
    return rollback_ ? std::optional(rollback_->due) : std::nullopt;
}

json Host::rollBack() {
    // Once only, whatever comes of it: the next reload retries what is not as wanted.
    const Rollback rollback = std::move(rollback_.value());
    rollback_.reset();
    Transition transition(*this, rollback.config, {});
    transition.perform();
    return demandSettled(transition.outcome());
}

json Host::updateLan(const std::string &file) {
    Config fresh = Config::load(file);
    // The LAN groups of the file; who is a member also depends on the SSIDs in force.
    fresh.radios = config_.radios;
    auto lan = std::make_unique<LanRecords>(fresh);
    if (lan->count() == 0)
        throw Failure(Status::kUsage, file, "has no LAN groups", "give it lan.groups");
    check(operation(module_.ops->updateLaninfo, "updateLaninfo")(nullptr, nullptr, lan->get()), "lan", "updateLaninfo");
    lan_ = std::move(lan);
    lanByCommand_ = true;
    demandVerified(nullptr, kOfLan | kOfDaemons);
    return {{"groups", lan_->describe()}};
}

std::vector<Finding> Host::differences(WlIntf *intf, unsigned subjects, const std::string &interface, bool patient) {
    std::vector<Finding> findings;
    if (verifier_)
        findings = verifier_(*this, intf, subjects, interface, patient);
    auto holds = [](const Finding &finding) { return finding.holds; };
    findings.erase(std::remove_if(findings.begin(), findings.end(), holds), findings.end());
    return findings;
}

void Host::demandVerified(WlIntf *intf, unsigned subjects, const std::string &interface) {
    demand(differences(intf, subjects, interface));
}

void Host::tell(json event) {
    ++eventCount;
    if (!onEvent)
        return;
    for (const char *key : {"radio", "interface", "mac"})
        event.emplace(key, nullptr);
    event["sequence"] = eventCount;
    event["time"] = utcText(std::chrono::system_clock::now());
    onEvent(event);
}

std::vector<WlIntf *> Host::configuredRadios() {
    std::vector<WlIntf *> radios;
    for (const RadioConfig &radio : config_.radios)
        if (WlIntf *intf = module_.find(radio.name()))
            radios.push_back(intf);
    return radios;
}

std::vector<WlIntf *> Host::abandonedRadios() const {
    std::vector<WlIntf *> radios;
    for (const auto &[intf, applied] : applied_)
        if (applied.off)
            radios.push_back(intf);
    return radios;
}

WlIntf *Host::radio(const std::string &name) {
    std::vector<std::string> names;
    for (WlIntf *intf : configuredRadios()) {
        if (name == intf->intfName)
            return intf;
        names.push_back(intf->intfName);
    }
    throw Failure(Status::kNotFound, name, "no such radio is configured", "configured: " + joined(names));
}

std::vector<Host::Bss> Host::bssOf(WlIntf *intf) {
    std::vector<Bss> all;
    for (size_t i = 0; i < intf->radio.bssCount && i < WLBRCM_MAX_BSS; ++i)
        all.push_back({intf, i});
    return all;
}

std::vector<Host::Bss> Host::allBss() {
    std::vector<Bss> all;
    for (WlIntf *intf : configuredRadios())
        for (const Bss &bss : bssOf(intf))
            all.push_back(bss);
    return all;
}

Host::Bss Host::bss(const std::string &ifname) {
    std::vector<std::string> names;
    for (const Bss &one : allBss()) {
        if (ifname == one.record().ifName)
            return one;
        names.push_back(one.record().ifName);
    }
    throw Failure(Status::kNotFound, ifname, "no such BSS is configured", "configured: " + joined(names));
}

std::vector<std::string> Host::stationsOn(const Bss &bss) {
    std::string ifname = bss.record().ifName;
    if (!bss.record().enable || !bss.intf->radio.radioOn || !platform->exists("/sys/class/net/" + ifname))
        return {};
    ToolAnswer answer = platform->run({"wlctl", "-i", ifname, "assoclist"});
    if (!answer)
        throw Failure(Status::kFailed, ifname, "the driver does not tell its stations: " + answer.said,
                      "see wlhost verify");
    std::set<std::string> stations = readStations(answer.out);
    return {stations.begin(), stations.end()};
}

json Host::stationRows(WlIntf &intf) {
    json rows = json::array();
    for (const Bss &bss : bssOf(&intf))
        for (const std::string &mac : stationsOn(bss))
            rows.push_back({{"mac", mac}, {"interface", bss.record().ifName}});
    return rows;
}

bool Host::isSwitchedOn(const WlSsidCfg &bss) const {
    auto known = presets.find(bss.ifName);
    return known != presets.end() && known->second;
}

void Host::noteApplied(WlIntf *intf) {
    auto known = applied_.find(intf);
    if (known == applied_.end())
        return;
    for (size_t i = 0; i < WLBRCM_MAX_BSS; ++i) {
        WlSsidCfg &kept = known->second.now.bss[i];
        const WlSsidCfg &now = intf->bss[i];
        std::memcpy(kept.macFilterMode, now.macFilterMode, sizeof now.macFilterMode);
        std::memcpy(kept.macFilterList, now.macFilterList, sizeof now.macFilterList);
        std::memcpy(kept.ssidName, now.ssidName, sizeof now.ssidName);
        std::memcpy(kept.authMode, now.authMode, sizeof now.authMode);
        std::memcpy(kept.encryption, now.encryption, sizeof now.encryption);
        std::memcpy(kept.wpaPsk, now.wpaPsk, sizeof now.wpaPsk);
        kept.wpsConfigured = now.wpsConfigured;
    }
}

} // namespace wlhost
