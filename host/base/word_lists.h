// Lists of words: joined for a message, split, and searched for what was meant.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wlhost {

// The candidate that begins so, else the one that differs in the fewest places, when it is near enough to be a typing
// mistake.
std::optional<std::string> nearestName(std::string_view name, const std::vector<std::string> &candidates);
// What a message offers for a name that is not known: the nearest one, or all.
std::string suggestion(const std::string &name, const std::vector<std::string> &known);
std::string inQuotes(const std::string &text);
// Items joined by ", ", or `none` when there is none.
std::string joined(const std::vector<std::string> &items, const char *none = "none");
// The words between separators, none of them empty.
std::vector<std::string> splitWords(std::string_view text, char separator = ' ');

} // namespace wlhost
