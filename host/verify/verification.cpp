#include "host/verify/verification.h"

#include <algorithm>

#include "host/base/escape.h"
#include "host/base/masking.h"
#include "host/base/word_lists.h"
#include "host/journal/journal.h"
#include "host/tap/live.h"
#include "host/tap/tap.h"
#include "host/verify/checks.h"

namespace wlhost {
namespace {

void replaceAll(std::string &text, const std::string &name, const std::string &value) {
    for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + value.size()))
        text.replace(at, name.size(), value);
}

// As one word of a command that a person may copy.
std::string inShell(const std::string &text) {
    constexpr char kPlain[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._/-";
    if (!text.empty() && text.find_first_not_of(kPlain) == std::string::npos)
        return text;
    std::string quoted;
    for (char c : escapeBytes(text))
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return "'" + quoted + "'";
}

// No command takes the name of a radio that left the configuration.
bool isAbandoned(const Place &place) {
    std::vector<WlIntf *> radios = place.host.abandonedRadios();
    return std::count(radios.begin(), radios.end(), place.intf) > 0;
}

// A BSS without an interface has nothing that could be asked about; that it is missing says it all.
bool isMissing(const Findings &findings) {
    return !findings.empty() && (findings.back().found == "missing" || findings.back().found == "no interface");
}

void examinePlace(const Place &place, Scope scope, unsigned subjects, Findings &findings) {
    for (const Check &check : checks()) {
        if (check.scope != scope || (check.subject & subjects) == 0 || !check.applies(place))
            continue;
        findings.push_back(carryOut(check, place));
        if (scope == Scope::kBss && isMissing(findings))
            return;
    }
}

const std::string &shownOr(const std::string &text, const std::string &otherwise) {
    return text.empty() ? otherwise : text;
}

void explain(Findings &findings) {
    for (Finding &finding : findings) {
        if (!finding.holds && finding.said.empty() && !finding.interface.empty())
            finding.said = lastComplaint(finding.interface);
        if (!finding.holds && finding.said.empty() && !finding.radio.empty())
            finding.said = lastComplaint(finding.radio);
    }
}

} // namespace

std::string lastComplaint(const std::string &name) {
    const uint64_t operation = tap::Operation::current().number();
    const auto &entries = journal().entries();
    for (auto at = entries.rbegin(); at != entries.rend() && at->operation == operation; ++at) {
        std::vector<std::string> words = splitWords(at->what);
        if (at->status != 0 && !at->said.empty() && !tap::isNoise(at->what) &&
            std::count(words.begin(), words.end(), name) > 0)
            return escapeBytes(splitWords(masked(at->said), '\n').front());
    }
    return "";
}

bool isRadioWanted(const Place &place) {
    std::vector<WlIntf *> radios = place.host.configuredRadios();
    return std::count(radios.begin(), radios.end(), place.intf) > 0 && place.intf->radio.radioOn;
}

Air wantedAir(const Place &place) {
    if (!isRadioWanted(place) || !place.bss->valid || !place.bss->enable)
        return Air::kOff;
    auto switched = place.host.presets.find(place.bss->ifName);
    bool on = switched != place.host.presets.end() && switched->second;
    return place.bss->presetRole == WLBRCM_PRESET_ON_DEMAND && !on ? Air::kStandby : Air::kOn;
}

bool answered(const ToolAnswer &answer, Finding &finding) {
    if (answer)
        return true;
    finding.said = answer.said;
    finding.holds = false;
    return false;
}

void compare(Finding &finding, const std::string &wanted, const std::string &found) {
    finding.wanted = wanted;
    finding.found = found;
    finding.holds = wanted == found;
}

Finding carryOut(const Check &check, const Place &place) {
    Finding finding;
    finding.radio = place.radio();
    finding.interface = place.interface();
    finding.check = check.name;
    finding.subject = check.subject;
    finding.mayCome = check.mayCome;
    check.look(place, finding);
    std::string cure = finding.holds ? "" : shownOr(finding.cure, check.cure);
    replaceAll(cure, " {radio}", isAbandoned(place) ? "" : " " + place.radio());
    replaceAll(cure, "{if}", place.interface());
    replaceAll(cure, "{config}", inShell(place.host.configFile()));
    finding.cure = cure;
    return finding;
}

Findings examine(Host &host, World &world, WlIntf &intf, unsigned subjects, const std::string &interface) {
    Findings findings;
    Place radio{host, world, &intf};
    examinePlace(radio, Scope::kRadio, subjects, findings);
    for (size_t i = 0; i < intf.radio.bssCount && i < WLBRCM_MAX_BSS; ++i)
        if (intf.bss[i].ifName[0] && (interface.empty() || interface == intf.bss[i].ifName))
            examinePlace({host, world, &intf, &intf.bss[i]}, Scope::kBss, subjects, findings);
    return findings;
}

Findings examine(Host &host, WlIntf &intf, unsigned subjects, const std::string &interface) {
    World world(host);
    return examine(host, world, intf, subjects, interface);
}

Findings examineGateway(Host &host, World &world, unsigned subjects) {
    Findings findings;
    examinePlace({host, world}, Scope::kGateway, subjects, findings);
    return findings;
}

Findings examineGateway(Host &host, unsigned subjects) {
    World world(host);
    return examineGateway(host, world, subjects);
}

Findings examineAll(Host &host, unsigned subjects, const std::string &radio) {
    World world(host);
    Findings all;
    auto add = [&](Findings some) { all.insert(all.end(), some.begin(), some.end()); };
    for (WlIntf *intf : radio.empty() ? host.configuredRadios() : std::vector<WlIntf *>{host.radio(radio)})
        add(examine(host, world, *intf, subjects));
    for (WlIntf *intf : radio.empty() ? host.abandonedRadios() : std::vector<WlIntf *>())
        add(examine(host, world, *intf, subjects & (kOfRadio | kOfBss)));
    add(examineGateway(host, world, subjects));
    return all;
}

Findings settled(Host &host, const std::function<Findings()> &look) {
    constexpr int kFirst = 50, kLongest = 1000; // ms; a look costs commands, so there are few
    auto mayCome = [](const Finding &one) { return !one.holds && one.mayCome; };
    Findings findings = look();
    for (int wait = kFirst; wait < kLongest && std::any_of(findings.begin(), findings.end(), mayCome); wait *= 2) {
        host.platform->pause(wait);
        findings = look();
    }
    return findings;
}

void demand(const Findings &findings) {
    json differences = json::array();
    std::string lines;
    for (const Finding &finding : findings) {
        if (finding.holds)
            continue;
        differences.push_back(findingRow(finding));
        lines += "\n  " + differenceLine(finding);
    }
    if (differences.empty())
        return;
    throw Failure(Status::kFailed, "",
                  (differences.size() == 1 ? "1 check does not hold:"
                                           : std::to_string(differences.size()) + " checks do not hold:") +
                      lines,
                  differences[0]["cure"].get<std::string>(), {{"differences", differences}});
}

std::string differenceLine(const Finding &finding) {
    std::string text = shownOr(finding.interface, finding.radio);
    text += (text.empty() ? "" : " ") + finding.check + ": wanted " + finding.wanted;
    text += finding.said.empty() || !finding.found.empty() ? ", found " + finding.found : ", no answer";
    return text + (finding.said.empty() ? "" : ": " + finding.said);
}

Verifier platformVerifier() {
    return [](Host &host, WlIntf *intf, unsigned subjects, const std::string &interface, bool patient) {
        auto look = [&] { return intf ? examine(host, *intf, subjects, interface) : examineGateway(host, subjects); };
        Findings findings = patient ? settled(host, look) : look();
        explain(findings);
        return findings;
    };
}

void demandAnswers(const Findings &findings) {
    for (const Finding &finding : findings)
        if (!finding.said.empty())
            throw Failure(Status::kFailed, shownOr(finding.interface, finding.radio),
                          finding.check + ": the platform does not tell: " + finding.said, "wlhost verify shows more");
}

json findingRow(const Finding &finding) {
    auto known = [](const std::string &text) { return text.empty() ? json() : json(text); };
    return {{"radio", known(finding.radio)}, {"interface", known(finding.interface)},
            {"check", finding.check},        {"wanted", finding.wanted},
            {"found", known(finding.found)}, {"holds", finding.holds},
            {"cure", finding.cure},          {"said", known(finding.said)}};
}

} // namespace wlhost
