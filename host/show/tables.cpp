#include "host/show/tables.h"

#include <algorithm>

namespace wlhost {
namespace {

// What differs from what was asked for is marked.
const char *markOf(const json &row, const char *key) {
    json differs = row.value("differs", json::array());
    return std::count(differs.begin(), differs.end(), key) > 0 ? "*" : "";
}

} // namespace

size_t displayWidth(const std::string &text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xc0) != 0x80; }));
}

std::string cell(const json &value) {
    if (value.is_null() || value == "")
        return "-";
    if (value.is_boolean())
        return value.get<bool>() ? "yes" : "no";
    if (value.is_array()) {
        std::string text;
        for (const json &element : value)
            text += (text.empty() ? "" : " ") + cell(element);
        return text.empty() ? "-" : text;
    }
    return value.is_string() ? value.get<std::string>() : dumped(value);
}

std::string table(const std::vector<Column> &columns, const json &rows) {
    std::vector<std::vector<std::string>> lines(1);
    for (const Column &column : columns)
        lines[0].push_back(column.title);
    for (const json &row : rows) {
        lines.emplace_back();
        for (const Column &column : columns)
            lines.back().push_back((column.format ? column.format : cell)(row.value(column.key, json())) +
                                   markOf(row, column.key));
    }
    std::string text;
    for (const auto &line : lines) {
        std::string shown;
        for (size_t c = 0; c < columns.size(); ++c) {
            size_t width = 0;
            for (const auto &other : lines)
                width = std::max(width, displayWidth(other[c]));
            std::string padding(width - displayWidth(line[c]), ' ');
            shown += (c ? "  " : "") + (columns[c].rightAligned ? padding + line[c] : line[c] + padding);
        }
        shown.erase(shown.find_last_not_of(' ') + 1);
        text += shown + "\n";
    }
    return text;
}

} // namespace wlhost
