// The world as one look finds it: each question is asked once, however many checks need its answer.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/verify/platform.h"

namespace wlhost {

class Host;

class World {
  public:
    explicit World(const Host &host);

    // A tool that did not answer in time once is not waited for again.
    const ToolAnswer &tool(const std::vector<std::string> &words);
    // A driver command without arguments: "wlctl -i wl0 isup".
    const ToolAnswer &driver(const std::string &ifname, const char *command) {
        return tool({"wlctl", "-i", ifname, command});
    }
    // Whether the configuration store can be read at all.
    bool hasStore() const { return nvramGet_ != nullptr; }
    // A stored value; one that is not stored is empty.
    std::string stored(const std::string &key) const;

    bool hasInterface(const std::string &ifname) const { return platform_.exists("/sys/class/net/" + ifname); }
    bool isUp(const std::string &ifname) const;
    // The bridge that an interface belongs to, or empty.
    std::string bridgeOf(const std::string &ifname) const;
    bool runs(const std::string &daemon);

    const Platform &platform() const { return platform_; }

  private:
    const Platform &platform_;
    const char *(*nvramGet_)(const char *key);
    std::map<std::vector<std::string>, ToolAnswer> answers_;
    std::map<std::string, ToolAnswer> late_; // by tool
    std::optional<std::vector<std::string>> processes_;
};

} // namespace wlhost
