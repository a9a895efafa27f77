#include "target.h"

#include <algorithm>

namespace fuzz {

std::vector<Target> &targets() {
    static std::vector<Target> all;
    return all;
}

bool add(Target target) {
    targets().push_back(target);
    return true;
}

void violated(const char *property, int line) {
    throw std::logic_error("line " + std::to_string(line) + " does not hold: " + property);
}

int reads(const std::string &text, size_t longest) {
    int count = 0;
    for (size_t at = 0; at < text.size(); ++count)
        at += std::min(std::min(text.find('\n', at), text.size() - 1) - at + 1, longest);
    return count;
}

bool onlyKnownCommands(const FakePlatform &platform, const Lines &starts) {
    const auto isKnown = [&starts](const std::string &entry) {
        const auto begins = [&entry](const std::string &start) { return entry.compare(0, start.size(), start) == 0; };
        const auto start = std::find_if(starts.begin(), starts.end(), begins);
        return start != starts.end() && entry.find_first_of(";|&$`\\'\"()\n", start->size()) == std::string::npos;
    };
    return std::all_of(platform.journal.begin(), platform.journal.end(), isKnown);
}

bool isNumberList(const std::string &list) {
    for (size_t at = 0; at < list.size();) {
        const size_t end = std::min(list.find(',', at), list.size());
        const std::string entry = list.substr(at, end - at);
        if (entry.empty() || entry.find_first_not_of("-.0123456789") != std::string::npos || end + 1 == list.size())
            return false;
        at = end + 1;
    }
    return true;
}

} // namespace fuzz
