#include "host/state/host.h"

#include <algorithm>
#include <cstring>
#include <fstream>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/word_lists.h"

namespace wlhost {
namespace {

std::string systemAddress(const std::string &interface) {
    std::ifstream file("/sys/class/net/" + interface + "/address");
    std::string address;
    file >> address;
    auto mac = parseMac(address);
    return mac ? formatMac(*mac, true) : "";
}

json outcome(const std::string &radio, const char *action, int rc = 0) {
    return {{"radio", radio}, {"action", action}, {"result", rc}};
}

// A list of outcomes, or a Failure that names the radios which failed.
json settled(const json &outcomes) {
    std::vector<std::string> failed;
    for (const json &one : outcomes)
        if (one["result"] != 0)
            failed.push_back(one["radio"].get<std::string>() + " (" + one["result"].dump() + ")");
    if (!failed.empty())
        throw Failure(Status::kFailed, "radios", "the module could not configure " + joined(failed), "see its log");
    return outcomes;
}

} // namespace

LanRecords::LanRecords(const Config &config) {
    for (const GroupFields &fields : config.lan) {
        members_.emplace_back();
        for (const std::string &name : lanMembers(config, fields)) {
            members_.back().push_back({});
            copyText(members_.back().back().ifName, name);
        }
        asked_.push_back(std::string(fields.name) + " " + fields.hwaddr + " " + joined(lanMembers(config, fields)));
        WlLanGroup group{};
        copyText(group.name, fields.name);
        copyText(group.hwaddr, fields.hwaddr[0] ? fields.hwaddr : systemAddress(fields.name));
        group.memberCount = static_cast<int32_t>(members_.back().size());
        groups_.push_back(group);
    }
    for (size_t i = 0; i < groups_.size(); ++i)
        groups_[i].members = members_[i].data();
    lan_.count = static_cast<int32_t>(groups_.size());
    lan_.groups = groups_.data();
}

json LanRecords::describe() const {
    json groups = json::array();
    for (size_t i = 0; i < groups_.size(); ++i) {
        json ports = json::array();
        for (const WlLanMember &member : members_[i])
            ports.push_back(member.ifName);
        auto mac = parseMac(groups_[i].hwaddr);
        groups.push_back(
            {{"name", groups_[i].name}, {"mac", mac ? json(formatMac(*mac)) : json()}, {"ports", std::move(ports)}});
    }
    return groups;
}

Host::Host(Module &module, Config config) : module_(module), config_(std::move(config)) {
    bindAll(config_); // refuses what the radios cannot do before anything is applied
    lan_ = std::make_unique<LanRecords>(config_);
}

std::vector<Host::Planned> Host::bindAll(const Config &config) const {
    std::vector<Planned> plan;
    Problems problems(config.document);
    for (size_t i = 0; i < config.radios.size(); ++i) {
        std::string name = config.radios[i].name();
        WlIntf *intf = module_.find(name);
        if (intf)
            plan.push_back({intf, bindRadio(config, i, *intf, module_.phyType ? module_.phyType(name.c_str()) : nullptr,
                                            problems)});
        else
            problems.add(Path() / "radios" / i / "name",
                         "\"" + name + "\" does not exist; " + joined(module_.names(), "no radio was found"));
    }
    problems.throwIfAny();
    return plan;
}

void Host::missingOperation(const char *name) {
    throw Failure(Status::kFailed, name, std::string("the module does not offer ") + name);
}

void Host::check(int rc, const std::string &where, const char *operation) {
    if (rc != 0)
        throw Failure(Status::kFailed, where, std::string(operation) + " returned " + std::to_string(rc),
                      "see the module's log");
}

json Host::apply(const Planned &planned, bool reloading) {
    auto *init = operation(module_.ops->initWlan, "initWlan");
    auto *reloadWlan = reloading ? operation(module_.ops->reloadWlan, "reloadWlan") : nullptr;
    WlIntf &intf = *planned.intf;
    int32_t boardWord = intf.radio.gpioOverlays; // the module's own word in the record
    std::memcpy(&intf.radio, &planned.records.radio, sizeof intf.radio);
    std::memcpy(intf.bss, planned.records.bss, sizeof intf.bss);
    intf.radio.gpioOverlays = boardWord;
    int rc = reloading ? reloadWlan(&intf) : init(&intf, lan_->get());
    if (rc == 0)
        applied_[&intf] = planned.records;
    for (const WlSsidCfg &bss : planned.records.bss)
        presets.erase(bss.ifName);
    return outcome(intf.intfName, reloading ? "reloaded" : "started", rc);
}

json Host::bringUp() {
    json outcomes = json::array();
    for (const Planned &planned : bindAll(config_))
        outcomes.push_back(apply(planned, false));
    return settled(outcomes);
}

json Host::reload(const std::string &radio, const std::string &file, bool all) {
    Config fresh = Config::load(file.empty() ? configFile() : file);
    std::vector<Planned> plan = bindAll(fresh);
    auto named = [&](const Planned &planned) { return radio.empty() || radio == planned.intf->intfName; };
    std::vector<std::string> names;
    for (const Planned &planned : plan)
        names.push_back(planned.intf->intfName);
    if (std::none_of(plan.begin(), plan.end(), named))
        throw Failure(Status::kNotFound, radio,
                      radio.empty() ? "no radio is configured" : "no such radio is configured",
                      "configured: " + joined(names));

    auto lan = std::make_unique<LanRecords>(fresh);
    bool lanChanged = !lan->sameAs(*lan_) && lan->get()->count > 0;
    if (lanChanged)
        check(operation(module_.ops->updateLaninfo, "updateLaninfo")(nullptr, nullptr, lan->get()), "lan",
              "updateLaninfo");
    config_ = std::move(fresh);
    lan_ = std::move(lan);

    json outcomes = json::array();
    for (const Planned &planned : plan) {
        auto known = applied_.find(planned.intf);
        bool unchanged = known != applied_.end() && known->second == planned.records;
        if (!named(planned) || (unchanged && radio.empty() && !all))
            outcomes.push_back(outcome(planned.intf->intfName, "unchanged"));
        else
            outcomes.push_back(apply(planned, known != applied_.end()));
    }
    for (const auto &known : applied_)
        if (std::none_of(plan.begin(), plan.end(), [&](const Planned &p) { return p.intf == known.first; }))
            outcomes.push_back(outcome(known.first->intfName, "left-alone"));
    return {{"config", configFile()}, {"lan", lanChanged ? "updated" : "unchanged"}, {"radios", settled(outcomes)}};
}

json Host::updateLan(const std::string &file) {
    Config fresh = Config::load(file);
    // The LAN groups of the file; who is a member also depends on the SSIDs in force.
    fresh.radios = config_.radios;
    auto lan = std::make_unique<LanRecords>(fresh);
    if (lan->get()->count == 0)
        throw Failure(Status::kUsage, file, "has no LAN groups", "give it lan.groups");
    check(operation(module_.ops->updateLaninfo, "updateLaninfo")(nullptr, nullptr, lan->get()), "lan", "updateLaninfo");
    lan_ = std::move(lan);
    return {{"groups", lan_->describe()}};
}

std::vector<WlIntf *> Host::configuredRadios() {
    std::vector<WlIntf *> radios;
    for (const RadioConfig &radio : config_.radios)
        radios.push_back(module_.find(radio.name()));
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

std::vector<Host::Bss> Host::allBss() {
    std::vector<Bss> all;
    for (WlIntf *intf : configuredRadios())
        for (size_t i = 0; i < intf->radio.bssCount && i < WLBRCM_MAX_BSS; ++i)
            all.push_back({intf, i});
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

void Host::noteApplied(WlIntf *intf) {
    auto known = applied_.find(intf);
    if (known == applied_.end())
        return;
    for (size_t i = 0; i < WLBRCM_MAX_BSS; ++i) {
        WlSsidCfg &kept = known->second.bss[i];
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
