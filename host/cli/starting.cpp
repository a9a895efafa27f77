#include "host/cli/starting.h"

#include <algorithm>

#include "host/base/word_lists.h"
#include "host/report/recording.h"
#include "host/state/radio_check.h"
#include "host/tap/dry_run.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

constexpr std::chrono::seconds kPlanTime{30};

// "wlctl -i wl0 leddc 0 2>/dev/null" as words, when it concerns a radio that is not adopted.
std::vector<std::string> wordsForOthers(const std::string &command, const std::set<std::string> &adopted) {
    std::vector<std::string> words = splitWords(command);
    auto option = std::find(words.begin(), words.end(), "-i");
    if (option == words.end() || option + 1 == words.end() || adopted.count(option[1]) != 0)
        return {};
    auto isRedirect = [](const std::string &word) { return word.find('>') != std::string::npos; };
    words.erase(std::find_if(words.begin(), words.end(), isRedirect), words.end());
    return words;
}

} // namespace

json planStart(const std::string &library, const Config &config, bool fresh) {
    return tap::inDryRun(
        [&] {
            Host host(loadModule(library), config, platformVerifier());
            return host.planBringUp(fresh);
        },
        kPlanTime);
}

json warningsBeforeStart(const std::string &library, const Config &config) {
    return tap::inDryRun(
        [&]() -> json {
            const Module *module = nullptr;
            try {
                module = &loadModule(library);
            } catch (const Failure &) { // a machine that is no gateway
            }
            return module && !module->radios.empty() ? warningsOfRadios(*module, devicePlatform(), config)
                                                     : json::array();
        },
        kPlanTime);
}

std::set<std::string> adoptedBy(const json &plan) {
    std::set<std::string> names;
    for (const json &radio : plan["radios"])
        if (radio["operation"] == "none")
            names.insert(radio["radio"].get<std::string>());
    return names;
}

std::unique_ptr<Host> startHost(const std::string &library, Config config, const std::set<std::string> &adopted) {
    if (adopted.empty())
        return std::make_unique<Host>(loadRecorded(library), std::move(config), platformVerifier());
    tap::goDry();
    auto host = std::make_unique<Host>(loadRecorded(library), std::move(config), platformVerifier());
    const tap::Effects held = tap::takeEffects();
    host->adopt(adopted);
    tap::goLive();
    for (const tap::Write &write : held.writes)
        if (write.value && write.value != tap::storedReally(write.key))
            tap::run("wlModuleInit", {"nvram", "set", write.key + "=" + *write.value});
    for (const tap::Command &command : held.commands)
        if (auto words = wordsForOthers(command.command, adopted); !words.empty())
            tap::run("wlModuleInit", words);
    return host;
}

} // namespace wlhost
