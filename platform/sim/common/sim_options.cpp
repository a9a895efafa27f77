#include "platform/sim/common/sim_options.h"

namespace wlsim {

std::string Options::text(const std::string &name, const std::string &otherwise) const {
    auto found = given.find(name);
    return found == given.end() ? otherwise : found->second;
}

long Options::number(const std::string &name, long otherwise, long lowest, long highest) {
    if (!has(name)) {
        return otherwise;
    }
    auto value = parseNumber(given[name]);
    if (!value || *value < lowest || *value > highest) {
        error = format("%s takes %ld to %ld, not '%s'", name.c_str(), lowest, highest, given[name].c_str());
        return otherwise;
    }
    return *value;
}

Options readOptions(const Words &words, const std::string &flags, const std::string &valued) {
    const Words flagNames = splitWords(flags), valuedNames = splitWords(valued);
    Options options;
    for (size_t i = 0; i < words.size() && options.error.empty(); i++) {
        const std::string &word = words[i];
        if (word.compare(0, 2, "--") != 0) {
            options.plain.push_back(word);
        } else if (contains(flagNames, word)) {
            options.given[word] = "1";
        } else if (contains(valuedNames, word) && i + 1 < words.size()) {
            options.given[word] = words[++i];
        } else {
            options.error = contains(valuedNames, word) ? word + " takes a value" : "unknown option " + word;
        }
    }
    return options;
}

} // namespace wlsim
