#include "host/verify/world.h"

#include <algorithm>
#include <cstdlib>

#include "host/state/host.h"

namespace wlhost {

World::World(const Host &host) : platform_(*host.platform), nvramGet_(host.module().nvramGet) {}

const ToolAnswer &World::tool(const std::vector<std::string> &words) {
    auto known = answers_.find(words);
    if (known != answers_.end())
        return known->second;
    if (auto late = late_.find(words[0]); late != late_.end())
        return late->second;
    const ToolAnswer &answer = answers_.emplace(words, platform_.run(words)).first->second;
    if (answer.late)
        late_.emplace(words[0], answer);
    return answer;
}

std::string World::stored(const std::string &key) const {
    const char *value = nvramGet_ ? nvramGet_(key.c_str()) : nullptr;
    return value ? value : "";
}

bool World::isUp(const std::string &ifname) const {
    constexpr unsigned long kUp = 1; // IFF_UP
    auto flags = platform_.readFile("/sys/class/net/" + ifname + "/flags");
    return flags && (std::strtoul(flags->c_str(), nullptr, 16) & kUp) != 0;
}

std::string World::bridgeOf(const std::string &ifname) const {
    return platform_.linkedName("/sys/class/net/" + ifname + "/brport/bridge").value_or("");
}

bool World::runs(const std::string &daemon) {
    if (!processes_)
        processes_ = platform_.processes();
    return std::count(processes_->begin(), processes_->end(), daemon) > 0;
}

} // namespace wlhost
