#include <algorithm>
#include <cctype>

#include "host/show/tables.h"

namespace wlhost {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The digits at this place without leading zeros.
std::string_view digitsAt(std::string_view text, size_t *at) {
    size_t end = *at;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    std::string_view digits = text.substr(*at, end - *at);
    *at = end;
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

// wl0.2 stands before wl0.10.
bool before(std::string_view a, std::string_view b) {
    for (size_t i = 0, k = 0; i < a.size() && k < b.size();) {
        if (isDigit(a[i]) && isDigit(b[k])) {
            std::string_view left = digitsAt(a, &i), right = digitsAt(b, &k);
            if (left.size() != right.size())
                return left.size() < right.size();
            if (left != right)
                return left < right;
        } else if (a[i++] != b[k++]) {
            return static_cast<unsigned char>(a[i - 1]) < static_cast<unsigned char>(b[k - 1]);
        }
    }
    return a.size() < b.size();
}

std::string nameOf(const Column &column) {
    std::string name;
    for (const char *c = column.title; *c && *c != ' '; ++c)
        name += static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
    return name;
}

} // namespace

const Column *columnOf(const std::vector<Column> &columns, const std::string &title) {
    std::string wanted = nameOf({title.c_str(), ""});
    auto found = std::find_if(columns.begin(), columns.end(),
                              [&](const Column &one) { return !wanted.empty() && nameOf(one) == wanted; });
    return found == columns.end() ? nullptr : &*found;
}

std::vector<std::string> columnNames(const std::vector<Column> &columns) {
    std::vector<std::string> names;
    for (const Column &column : columns)
        if (std::string name = nameOf(column); !name.empty())
            names.push_back(name);
    return names;
}

void sortRows(json &rows, const Column &column) {
    auto goesBefore = [&](const json &left, const json &right) {
        json a = left.value(column.key, json()), b = right.value(column.key, json());
        if (a.is_null() || b.is_null())
            return b.is_null() && !a.is_null();
        if (a.is_number() && b.is_number())
            return column.format ? b < a : a < b;
        return before(cell(a), cell(b));
    };
    std::stable_sort(rows.begin(), rows.end(), goesBefore);
}

} // namespace wlhost
