#include "host/state/transition.h"

#include <algorithm>
#include <cstring>

#include "host/base/word_lists.h"
#include "host/state/bridges.h"
#include "host/state/host.h"
#include "host/state/light_changes.h"
#include "host/tap/dry_run.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

using Clock = std::chrono::steady_clock;

bool hasInterface(const RadioRecords &records, const char *ifname) {
    return std::any_of(std::begin(records.bss), std::end(records.bss),
                       [&](const WlSsidCfg &bss) { return bss.enable && std::strcmp(bss.ifName, ifname) == 0; });
}

// Interfaces that are on the air with the one and off it with the other.
json leaving(const RadioRecords &now, const RadioRecords &next) {
    json names = json::array();
    for (const WlSsidCfg &bss : now.bss)
        if (now.radio.radioOn && bss.enable && bss.ifName[0] && !(next.radio.radioOn && hasInterface(next, bss.ifName)))
            names.push_back(bss.ifName);
    return names;
}

const json &nodeOf(const Config &config, const char *radio) {
    static const json kNone = json::object();
    for (size_t i = 0; i < config.radios.size(); ++i)
        if (config.radios[i].name() == radio)
            return config.document.root["radios"][i];
    return kNone;
}

// A change that brings a finding about again without taking the radio down, if there is one.
bool repairInPlace(const Finding &finding, const RadioRecords &records, Change &change) {
    struct {
        unsigned subject;
        ChangeKind operation;
        bool LightChange::*part;
    } const kRepairs[] = {{kOfFilter, ChangeKind::kFilter, &LightChange::filter},
                          {kOfLimits, ChangeKind::kFilter, &LightChange::limits},
                          {kOfBridge, ChangeKind::kLan, &LightChange::bridge}};
    for (const auto &row : kRepairs) {
        for (size_t i = 0; i < WLBRCM_MAX_BSS; ++i) {
            if (finding.subject == row.subject && finding.interface == records.bss[i].ifName) {
                LightChange part{i, false, false, false, false};
                part.*row.part = true;
                change.parts.push_back(part);
                change.operation = std::max(change.operation, row.operation);
                return true;
            }
        }
    }
    return false;
}

// What has to be done besides, so that the radio is as it should be.
void repair(const std::vector<Finding> &differences, const RadioRecords &records, Change &change) {
    for (const Finding &finding : differences) {
        if (!repairInPlace(finding, records, change))
            change.operation = ChangeKind::kReload;
        if (change.reason.empty())
            change.reason = "is not as wanted: " + finding.check + (finding.interface.empty() ? "" : " of ") +
                            finding.interface + " is " + finding.found + ", not " + finding.wanted;
    }
}

} // namespace

Transition::Transition(Host &host, Config config, const Scope &scope) : host_(host), config_(std::move(config)) {
    bind(scope);
    bindAbandoned();
    lan_ = std::make_unique<LanRecords>(config_, host.lan().count() > 0);
    lanChanges_ = !lan_->sameAs(host.lan());
    undoesLan_ = lanChanges_ && host.lanByCommand_;
    markMembers();
    findMissingDaemons();
    for (Step &step : steps_)
        foresee(step);
}

void Transition::adopt(const std::set<std::string> &radios) {
    auto other = [&](const Step &step) { return radios.count(step.intf->intfName) == 0; };
    steps_.erase(std::remove_if(steps_.begin(), steps_.end(), other), steps_.end());
    for (Step &step : steps_)
        step.adopt = true;
    perform();
}

void Transition::bind(const Scope &scope) {
    const Module &module = host_.module();
    Problems problems(config_.document);
    std::vector<std::string> names;
    for (size_t i = 0; i < config_.radios.size(); ++i) {
        std::string name = config_.radios[i].name();
        WlIntf *intf = module.find(name);
        names.push_back(name);
        if (intf) {
            steps_.push_back(
                {intf,
                 {},
                 bindRadio(config_, i, *intf, module.phyType ? module.phyType(name.c_str()) : nullptr, problems)});
        } else {
            missing_.push_back(name);
        }
    }
    problems.throwIfAny();
    if (!scope.radio.empty() && std::count(names.begin(), names.end(), scope.radio) == 0)
        throw Failure(Status::kNotFound, scope.radio, "no such radio is configured", "configured: " + joined(names));
    if (steps_.empty())
        throw Failure(Status::kEnvironment, joined(missing_), "does not exist",
                      "radios found: " + joined(module.names()) + "; see wlhost doctor");
    for (Step &step : steps_)
        weigh(step, scope);
}

void Transition::weigh(Step &step, const Scope &scope) {
    auto known = host_.applied_.find(step.intf);
    bool named = scope.radio == step.intf->intfName;
    if (known == host_.applied_.end()) {
        step.change.operation = ChangeKind::kBringUp;
        step.change.reason = "has not been configured yet";
        return;
    }
    if (!scope.radio.empty() && !named) {
        step.records = known->second.now;
        step.asked = false;
        return;
    }
    step.change = changeBetween(known->second.now, step.records);
    if (step.change.operation != ChangeKind::kNone || !(known->second.now == step.records)) {
        std::string settings =
            changedSettings(nodeOf(host_.config_, step.intf->intfName), nodeOf(config_, step.intf->intfName));
        step.change.reason = settings.empty() ? "was changed at run time" : settings + " changed";
    }
    if (named || scope.all) {
        step.change.operation = ChangeKind::kReload;
        step.change.reason = "was asked for";
    } else if (!takesDown(step.change.operation)) {
        repair(host_.differences(step.intf, kCuredByReload, {}, false), known->second.now, step.change);
    }
    const Module &module = host_.module();
    for (const LightChange &part : step.change.parts)
        if (part.limits && !(module.setUpstreamRate && module.setDownstreamRate && module.setFlowCache))
            step.change.operation = ChangeKind::kReload;
}

void Transition::bindAbandoned() {
    for (auto &[intf, applied] : host_.applied_) {
        if (&nodeOf(config_, intf->intfName) != &nodeOf(config_, ""))
            continue;
        if (applied.off && host_.differences(intf, kOfRadio | kOfBss, {}, false).empty())
            continue;
        Step step{intf, {ChangeKind::kDown, "is no longer in the configuration", {}}, applied.now};
        step.records.radio.radioOn = 0;
        steps_.push_back(std::move(step));
    }
}

// What the step costs, as far as it can be told beforehand.
void Transition::foresee(Step &step) {
    auto known = host_.applied_.find(step.intf);
    if (known != host_.applied_.end()) {
        step.off = leaving(known->second.now, step.records);
        step.undone = undoneBetween(known->second.given, known->second.now, step.records);
    }
    if (!takesDown(step.change.operation))
        return;
    try {
        step.drops = host_.stationRows(*step.intf);
    } catch (const Failure &failure) { // no reason to leave a radio as it is
        step.change.reason += std::string("; ") + failure.what();
    }
}

// Radios that stay on the air and have an SSID in a LAN group whose own settings change.
void Transition::markMembers() {
    auto stays = [](const GroupFields &group, const std::vector<GroupFields> &others) {
        return std::any_of(others.begin(), others.end(),
                           [&](const GroupFields &other) { return std::memcmp(&group, &other, sizeof group) == 0; });
    };
    std::set<std::string> changed;
    for (const auto &[groups, others] :
         {std::pair(&config_.lan, &host_.config_.lan), {&host_.config_.lan, &config_.lan}})
        for (const GroupFields &group : *groups)
            if (!stays(group, *others))
                changed.insert(group.name);
    for (Step &step : steps_) {
        if (step.asked && lanChanges_ && step.change.operation < ChangeKind::kLan &&
            std::any_of(std::begin(step.records.bss), std::end(step.records.bss),
                        [&](const WlSsidCfg &bss) { return changed.count(bss.bridge) != 0; })) {
            step.change.operation = ChangeKind::kLan;
            step.change.reason += step.change.reason.empty() ? "lan.groups changed" : ", lan.groups changed";
        }
    }
}

// A daemon that died is started again; a radio that is taken down anyway starts them all.
void Transition::findMissingDaemons() {
    auto restarts = [](const Step &step) { return takesDown(step.change.operation); };
    if (host_.applied_.empty() || std::any_of(steps_.begin(), steps_.end(), restarts))
        return;
    for (const Finding &finding : host_.differences(nullptr, kOfDaemons | kOfWps))
        if (std::vector<std::string> words = splitWords(finding.cure);
            !words.empty() && words[0] == "/bin/" + finding.check)
            daemons_.push_back(words);
}

void Transition::perform(const std::function<void(const Step *)> &begins) {
    if (begins && (lanChanges_ || !daemons_.empty()))
        begins(nullptr);
    for (const std::vector<std::string> &words : daemons_)
        tap::run("wlhost", words);
    if (lanChanges_) {
        auto *update = host_.operation(host_.module().ops->updateLaninfo, "updateLaninfo");
        Host::check(update(nullptr, nullptr, lan_->get()), "lan", "updateLaninfo");
        host_.lanByCommand_ = false;
    }
    host_.config_ = config_;
    host_.lan_ = std::move(lan_);
    for (Step &step : steps_) {
        if (begins)
            begins(&step);
        if (host_.onStep && takesDown(step.change.operation))
            host_.onStep(std::string(step.intf->intfName) + ": " + operationWord(step.change.operation));
        auto started = Clock::now();
        perform(step);
        step.ms = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started).count();
    }
}

void Transition::perform(Step &step) {
    bool whole = step.adopt || takesDown(step.change.operation);
    try {
        step.result = whole ? bringUp(step) : changeInPlace(host_, step.intf, step.records, step.change, step.drops);
    } catch (const Failure &failure) { // the other radios get their turn
        step.result = WLBRCM_EFAILED;
        step.failure = failure.what();
    }
    if (step.result == 0 && step.asked)
        settle(step);
}

int Transition::bringUp(Step &step) {
    const WlModuleOps &ops = *host_.module().ops;
    WlIntf &intf = *step.intf;
    for (const WlSsidCfg &bss : step.records.bss)
        leaveBridge(bss.ifName, bss.bridge);
    int32_t boardWord = intf.radio.gpioOverlays; // the module's own word in the record
    std::memcpy(&intf.radio, &step.records.radio, sizeof intf.radio);
    std::memcpy(intf.bss, step.records.bss, sizeof intf.bss);
    intf.radio.gpioOverlays = boardWord;
    int rc = step.adopt || step.change.operation == ChangeKind::kBringUp
                 ? host_.operation(ops.initWlan, "initWlan")(&intf, host_.lan().get())
                 : host_.operation(ops.reloadWlan, "reloadWlan")(&intf);
    for (const WlSsidCfg &bss : step.records.bss)
        if (rc == 0 && bss.presetRole == WLBRCM_PRESET_ON_DEMAND && host_.isSwitchedOn(bss))
            rc = host_.operation(ops.enablePresetSsid, "enablePresetSsid")(bss.ifName, 1);
    return rc;
}

void Transition::settle(const Step &step) {
    Host::Applied &applied = host_.applied_[step.intf];
    applied.given = applied.now = step.records;
    applied.off = step.change.operation == ChangeKind::kDown;
    for (const WlSsidCfg &bss : step.records.bss)
        if (bss.presetRole != WLBRCM_PRESET_ON_DEMAND)
            host_.presets.erase(bss.ifName);
}

} // namespace wlhost
