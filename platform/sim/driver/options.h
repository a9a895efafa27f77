// Command line words sorted into plain words and options.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace wlsim {

struct Options {
    std::vector<std::string> plain;
    std::map<std::string, std::string> given; ///< flags have the value "1"
    std::string error;                        ///< names the option that is unknown or lacks its value

    bool has(const std::string &name) const { return given.count(name) != 0; }
    std::string text(const std::string &name, const std::string &otherwise = "") const;
    /** A number within bounds; sets `error` when it is none. */
    long number(const std::string &name, long otherwise, long lowest, long highest);
};

/** @param flags,valued  names with their dashes, separated by blanks. */
Options readOptions(const std::vector<std::string> &words, const std::string &flags, const std::string &valued);

} // namespace wlsim
