// What a transition came to, as its answer tells it.
#include "host/base/word_lists.h"
#include "host/state/host.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

const char *actionOf(const Transition::Step &step) {
    constexpr const char *kActions[] = {"unchanged", "changed", "changed", "changed", "reloaded", "started", "off"};
    return step.adopt ? "kept" : kActions[static_cast<size_t>(step.change.operation)];
}

// What an operation may have touched.
unsigned subjectsOf(const Transition::Step &step) {
    constexpr unsigned kSubjects[] = {0,
                                      kOfFilter | kOfLimits,
                                      kOfBss | kOfInterface | kOfBridge | kOfFilter | kOfLimits,
                                      kOfEverything,
                                      kOfEverything,
                                      kOfEverything,
                                      kOfEverything};
    return step.adopt ? kOfEverything : kSubjects[static_cast<size_t>(step.change.operation)];
}

json rowOf(const Transition::Step &step) {
    bool down = takesDown(step.change.operation) && !step.adopt;
    return {{"radio", step.intf->intfName},
            {"action", actionOf(step)},
            {"operation", operationWord(step.adopt ? ChangeKind::kNone : step.change.operation)},
            {"reason", step.change.reason.empty() ? json() : json(step.change.reason)},
            {"result", step.result},
            {"failure", step.failure.empty() ? json() : json(step.failure)},
            {"off", step.off},
            {"undone", step.undone},
            {"drops", step.drops},
            {"down_ms", down && step.change.operation != ChangeKind::kDown ? json(step.ms)
                        : down                                             ? json()
                                                                           : json(0)}};
}

} // namespace

json Transition::outcome() {
    json radios = json::array(), differences = json::array();
    auto add = [&](const std::vector<Finding> &findings) {
        for (const Finding &finding : findings)
            differences.push_back(findingRow(finding)), differences.back()["text"] = differenceLine(finding);
    };
    bool changes = lanChanges_ || !daemons_.empty();
    json daemons = json::array();
    for (const std::vector<std::string> &words : daemons_)
        daemons.push_back(words[0]);
    for (const Step &step : steps_) {
        radios.push_back(rowOf(step));
        if (subjectsOf(step) != 0)
            add(host_.differences(step.intf, subjectsOf(step)));
        changes |= step.adopt || step.change.operation != ChangeKind::kNone;
    }
    if (changes)
        add(host_.differences(nullptr, kOfEverything));
    for (const std::string &name : missing_)
        radios.push_back({{"radio", name}, {"action", "missing"}, {"operation", "none"}, {"result", nullptr}});
    return {{"config", host_.configFile()},
            {"lan", lanChanges_ ? "updated" : "unchanged"},
            {"undone", undoesLan_ ? json{{{"interface", nullptr}, {"what", "lan"}}} : json::array()},
            {"daemons_started", std::move(daemons)},
            {"radios", std::move(radios)},
            {"differences", std::move(differences)}};
}

} // namespace wlhost
