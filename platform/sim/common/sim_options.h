// Command line words sorted into plain words and options.
#pragma once

#include "platform/sim/common/sim_text.h"

#include <map>

namespace wlsim {

struct Options {
    Words plain;
    // Flags have the value "1".
    std::map<std::string, std::string> given;
    // Names the option that is unknown or lacks its value.
    std::string error;

    bool has(const std::string &name) const { return given.count(name) != 0; }
    std::string text(const std::string &name, const std::string &otherwise = "") const;
    // A number within bounds; sets `error` when it is none.
    long number(const std::string &name, long otherwise, long lowest, long highest);
};

// `flags` and `valued` are names with their dashes, separated by blanks.
Options readOptions(const Words &words, const std::string &flags, const std::string &valued);

} // namespace wlsim
