#include "host/base/word_lists.h"

#include <algorithm>
#include <numeric>

namespace wlhost {
namespace {

size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            size_t change = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({change, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[b.size()];
}

} // namespace

std::optional<std::string> nearestName(std::string_view name, const std::vector<std::string> &candidates) {
    constexpr size_t kLongest = 64; // what is far longer than any candidate is not worth comparing
    std::optional<std::string> nearest;
    if (name.size() > kLongest)
        return nearest;
    // What was begun goes before what was mistyped; of several the shortest.
    for (const std::string &candidate : candidates)
        if (name.size() > 1 && candidate.compare(0, name.size(), name) == 0 &&
            (!nearest || candidate.size() < nearest->size()))
            nearest = candidate;
    if (nearest)
        return nearest;
    size_t best = std::max<size_t>(2, name.size() / 3) + 1;
    for (const std::string &candidate : candidates) {
        size_t distance = editDistance(name, candidate);
        // A name of which nothing is left is no typing mistake.
        if (distance < best && distance < std::max(name.size(), candidate.size())) {
            best = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string suggestion(const std::string &name, const std::vector<std::string> &known) {
    auto nearest = nearestName(name, known);
    return nearest ? "did you mean " + inQuotes(*nearest) + "?" : "known here: " + joined(known);
}

std::string inQuotes(const std::string &text) { return "\"" + text + "\""; }

std::string joined(const std::vector<std::string> &items, const char *none) {
    std::string text;
    for (const std::string &item : items)
        text += (text.empty() ? "" : ", ") + item;
    return text.empty() ? none : text;
}

std::vector<std::string> splitWords(std::string_view text, char separator) {
    std::vector<std::string> words;
    for (size_t at = 0; (at = text.find_first_not_of(separator, at)) != std::string::npos;) {
        size_t end = std::min(text.find(separator, at), text.size());
        words.emplace_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

} // namespace wlhost
