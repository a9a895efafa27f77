// The ways in which the host asks the platform: its tools, its files, its processes. Nothing here changes anything.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace wlhost {

// What a tool answered.
struct ToolAnswer {
    int status = -1;  // its exit status; -1 when it could not be run, was killed or did not end in time
    std::string out;  // what it printed, as far as that is bounded
    std::string said; // why there is no answer: what it complained about; empty with status 0
    bool late = false;

    explicit operator bool() const { return status == 0; }
};

// A device; tests put another one in its place.
class Platform {
  public:
    virtual ~Platform() = default;

    // Runs a tool without a shell and waits for it, a few seconds at most.
    virtual ToolAnswer run(const std::vector<std::string> &words) const;
    // A regular file that is not too long, links not followed.
    virtual std::optional<std::string> readFile(const std::string &path) const;
    virtual bool exists(const std::string &path) const;
    // The last name of what a link leads to.
    virtual std::optional<std::string> linkedName(const std::string &path) const;
    // Names of all processes.
    virtual std::vector<std::string> processes() const;
    virtual void pause(int milliseconds) const;
};

const Platform &devicePlatform();

} // namespace wlhost
