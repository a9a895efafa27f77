#include "options.h"

#include "text.h"

#include <algorithm>

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

Options readOptions(const std::vector<std::string> &words, const std::string &flags, const std::string &valued) {
    auto listed = [](const std::string &list, const std::string &word) {
        auto names = splitWords(list);
        return std::find(names.begin(), names.end(), word) != names.end();
    };
    Options options;
    for (size_t i = 0; i < words.size() && options.error.empty(); i++) {
        const std::string &word = words[i];
        if (word.compare(0, 2, "--") != 0) {
            options.plain.push_back(word);
        } else if (listed(flags, word)) {
            options.given[word] = "1";
        } else if (listed(valued, word) && i + 1 < words.size()) {
            options.given[word] = words[++i];
        } else {
            options.error = listed(valued, word) ? word + " takes a value" : "unknown option " + word;
        }
    }
    return options;
}

} // namespace wlsim
