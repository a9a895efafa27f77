// A command line of the module, as a shell reads it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wlhost::tap {

struct Redirect {
    size_t at, length; // of the file's name in the line
    std::string file;
    bool appends, reads;
};

struct ShellLine {
    std::vector<std::vector<std::string>> stages; // of the pipeline, in words
    std::vector<Redirect> redirects;
    bool background = false;
};

// Nothing when the line is more than one pipeline of plain words.
std::optional<ShellLine> parseLine(std::string_view line);

// A word that a shell takes as it is.
std::string quoted(const std::string &word);
std::string quotedLine(const std::vector<std::string> &words);

} // namespace wlhost::tap
