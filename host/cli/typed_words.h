// The words of a command line by the table of commands: which option each is, and what is wrong with them.
#pragma once

#include <string>
#include <vector>

#include "host/command_table.h"

namespace wlhost {

// What the words so far say.
struct TypedWords {
    const Command *command = nullptr;
    std::string group;            // until the command is known
    size_t placed = 0;            // arguments given by their place
    const Option *open = nullptr; // an option that waits for its value
    std::vector<std::pair<const Option *, std::string>> values;

    // Takes one more word. Throws a Failure with status 2 for one that is not known.
    void take(const std::string &word);
    std::string valueOf(const char *key) const; // the last one given, or empty

  private:
    void takeOption(const std::string &word);
    void takeName(const std::string &word);
    bool placesOnly_ = false; // behind "--"
};

// The option that an argument at this place is the value of; the last one takes any number if its kind does.
const Option *optionAt(const Command &command, size_t place);
// Options by name that a command takes, those of every command too; with no command only the latter.
std::vector<const Option *> namedOptions(const Command *command);

// Why these words are no command line, in the words of the table; `otherwise` when they seem to be one.
Failure usageFailure(const std::vector<std::string> &words, const std::string &otherwise);

} // namespace wlhost
