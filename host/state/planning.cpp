#include "host/state/planning.h"

#include <algorithm>
#include <cstring>
#include <regex>
#include <set>

#include "host/base/escape.h"
#include "host/base/masking.h"
#include "host/base/word_lists.h"
#include "host/state/host.h"
#include "host/tap/dry_run.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

// What a command takes beside its pauses: one start of a shell and a tool on a gateway's processor.
constexpr int64_t kCommandMs = 5;

struct Section {
    const Transition::Step *step; // null for the LAN groups
    tap::Effects effects;
};

// The radio of "wlctl -i wl0 down"; the first one for what concerns none.
Section *sectionOf(std::vector<Section> &sections, const std::string &command) {
    Section *first = nullptr;
    for (Section &section : sections) {
        if (section.step && !first)
            first = &section;
        if (section.step && command.find(" -i " + std::string(section.step->intf->intfName) + " ") != std::string::npos)
            return &section;
    }
    return first;
}

// What the module did when it was loaded, before any step, is what each radio begins with.
void putFirst(const tap::Effects &start, std::vector<Section> &sections) {
    for (auto one = start.commands.rbegin(); one != start.commands.rend(); ++one)
        if (Section *section = sectionOf(sections, one->command))
            section->effects.commands.insert(section->effects.commands.begin(), *one);
    if (Section *section = sectionOf(sections, ""))
        section->effects.writes.insert(section->effects.writes.begin(), start.writes.begin(), start.writes.end());
}

std::vector<Section> sectionsOf(Transition &transition) {
    const tap::Effects start = tap::takeEffects();
    std::vector<Section> sections;
    auto close = [&] {
        tap::Effects effects = tap::takeEffects();
        if (!sections.empty())
            sections.back().effects = std::move(effects);
    };
    transition.perform([&](const Transition::Step *step) {
        close();
        sections.push_back({step, {}});
    });
    close();
    putFirst(start, sections);
    return sections;
}

bool isOfLan(const std::string &key) {
    static const std::regex kKeys("lan[0-9]*_(ifname|ifnames|hwaddr|wps_reg|wps_oob)");
    return std::regex_match(key, kKeys);
}

json shownValue(const std::string &key, const std::optional<std::string> &value) {
    return !value ? json() : json(escapeBytes(isSecretKey(key) ? std::string(kMask) : *value));
}

// The keys whose value differs in the end, each with the last section that writes it, null for the LAN groups.
std::map<std::string, const Transition::Step *> changedKeys(const std::vector<Section> &sections) {
    std::map<std::string, const Transition::Step *> changed;
    for (const Section &section : sections)
        for (const tap::Write &write : section.effects.writes)
            if (tap::storedReally(write.key) != tap::storedNow(write.key))
                changed[write.key] = isOfLan(write.key) ? nullptr : section.step;
    return changed;
}

json nvramRows(const std::map<std::string, const Transition::Step *> &changed, const Transition::Step *step) {
    json rows = json::array();
    for (const auto &[key, writer] : changed) {
        if (writer == step)
            rows.push_back({{"key", key},
                            {"old", shownValue(key, tap::storedReally(key))},
                            {"new", shownValue(key, tap::storedNow(key))}});
    }
    return rows;
}

json commandRows(const tap::Effects &effects) {
    json rows = json::array();
    for (const tap::Command &one : effects.commands)
        rows.push_back({{"command", masked(one.command)}, {"function", one.function}});
    return rows;
}

bool ends(const std::string &text, const char *end) {
    size_t length = std::strlen(end);
    return text.size() >= length && text.compare(text.size() - length, length, end) == 0;
}

// From the first command that takes the radio down to the last that starts it.
json downTime(const Transition::Step &step, const tap::Effects &effects) {
    if (!takesDown(step.change.operation))
        return 0;
    if (step.change.operation == ChangeKind::kDown || !step.records.radio.radioOn)
        return nullptr;
    const auto &all = effects.commands;
    auto first = std::find_if(all.begin(), all.end(), [](const auto &one) { return ends(one.command, " down"); });
    auto last =
        std::find_if(all.rbegin(), all.rend(), [](const auto &one) { return ends(one.command, " start"); }).base();
    int64_t ms = 0;
    for (auto at = first; at < last; ++at)
        ms += at->pauseMs + kCommandMs;
    return ms;
}

json rowOf(const Section &section, const std::map<std::string, const Transition::Step *> &changed) {
    const Transition::Step &step = *section.step;
    return {{"radio", step.intf->intfName},
            {"operation", operationWord(step.change.operation)},
            {"reason", step.change.reason.empty() ? json() : json(step.change.reason)},
            {"drops", step.drops},
            {"down_ms", downTime(step, section.effects)},
            {"off", step.off},
            {"undone", step.undone},
            {"nvram", nvramRows(changed, &step)},
            {"commands", commandRows(section.effects)}};
}

} // namespace

json planOf(Transition &transition) {
    std::vector<Section> sections = sectionsOf(transition);
    auto changed = changedKeys(sections);
    json radios = json::array(), lanCommands = json::array();
    for (const Section &section : sections) {
        if (section.step)
            radios.push_back(rowOf(section, changed));
        else
            lanCommands = commandRows(section.effects);
    }
    json missing = json::array();
    for (const std::string &name : transition.missing())
        missing.push_back(name);
    return {{"radios", std::move(radios)},
            {"lan", {{"nvram", nvramRows(changed, nullptr)}, {"commands", std::move(lanCommands)}}},
            {"missing", std::move(missing)}};
}

bool changesAnything(const json &plan) {
    auto &lan = plan["lan"];
    return !lan["nvram"].empty() || !lan["commands"].empty() ||
           std::any_of(plan["radios"].begin(), plan["radios"].end(),
                       [](const json &radio) { return radio["operation"] != "none"; });
}

json Host::planReload(const ReloadRequest &request) {
    Transition transition(*this, configOf(request), {request.radio, request.all});
    return planOf(transition);
}

// Addresses that the system gave bridges meanwhile are no reason to bring anything up.
bool asksForLan(const json &plan, const Config &config) {
    bool fixed = std::any_of(config.lan.begin(), config.lan.end(), [](const auto &group) { return group.hwaddr[0]; });
    return std::any_of(plan["lan"]["nvram"].begin(), plan["lan"]["nvram"].end(),
                       [&](const json &row) { return fixed || !ends(row["key"].get<std::string>(), "_hwaddr"); });
}

// Lists of names come in the order in which the radios were brought up.
bool sameWords(const json &one, const json &other) {
    auto wordsOf = [](const json &value) {
        std::vector<std::string> words = splitWords(value.is_string() ? value.get<std::string>() : "");
        std::sort(words.begin(), words.end());
        return words;
    };
    return one.is_string() && other.is_string() && wordsOf(one) == wordsOf(other);
}

// Why a radio cannot be left as it is; empty when it can.
std::string obstacleOf(Host &host, const Transition::Step &step, const json &row) {
    for (const json &change : row["nvram"])
        if (!sameWords(change["old"], change["new"]))
            return change["key"].get<std::string>() + " differs";
    std::vector<Finding> differences = host.differences(step.intf, kCuredByReload, {}, false);
    return differences.empty() ? "" : differenceLine(differences[0]);
}

// A radio whose bring-up would change nothing, and which is as it should be, is left on the air.
json Host::planBringUp(bool fresh) {
    Transition transition(*this, config_, {});
    for (Transition::Step &step : transition.steps()) {
        WlIntf found = *step.intf; // who is there now, whoever configured it
        found.radio = step.records.radio;
        std::copy(std::begin(step.records.bss), std::end(step.records.bss), found.bss);
        step.drops = stationRows(found);
    }
    json plan = planOf(transition);
    bool lan = asksForLan(plan, config_);
    for (size_t i = 0; !fresh && i < plan["radios"].size(); ++i) {
        json &radio = plan["radios"][i];
        std::string obstacle =
            lan ? "other LAN groups than those in force" : obstacleOf(*this, transition.steps()[i], radio);
        if (obstacle.empty()) {
            radio.update({{"operation", "none"},
                          {"reason", "is as wanted already"},
                          {"drops", json::array()},
                          {"down_ms", 0},
                          {"nvram", json::array()},
                          {"commands", json::array()}});
        } else {
            radio["reason"] = "not as wanted yet: " + obstacle;
        }
    }
    if (std::none_of(plan["radios"].begin(), plan["radios"].end(),
                     [](const json &radio) { return radio["operation"] != "none"; }))
        plan["lan"]["nvram"] = json::array();
    return plan;
}

} // namespace wlhost
