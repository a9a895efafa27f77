#include "host/show/tables.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>

namespace wlhost {
namespace {

constexpr size_t kGap = 2;
constexpr size_t kNarrowest = 6; // of free text that was cut
constexpr const char *kEllipsis = "\xe2\x80\xa6";

// Code points that take no column, or two: marks that join what stands before them, East Asian letters, pictographs.
struct Widths {
    uint32_t first, last;
    size_t columns;
};
constexpr Widths kWidths[] = {
    {0x300, 0x36f, 0},    {0x483, 0x489, 0},     {0x591, 0x5bd, 0},     {0x610, 0x61a, 0},     {0x64b, 0x65f, 0},
    {0x1100, 0x115f, 2},  {0x1ab0, 0x1aff, 0},   {0x1dc0, 0x1dff, 0},   {0x20d0, 0x20ff, 0},   {0x231a, 0x231b, 2},
    {0x23e9, 0x23ec, 2},  {0x25fd, 0x25fe, 2},   {0x2614, 0x2615, 2},   {0x2648, 0x2653, 2},   {0x26a1, 0x26a1, 2},
    {0x26bd, 0x26be, 2},  {0x2705, 0x2705, 2},   {0x2728, 0x2728, 2},   {0x274c, 0x274c, 2},   {0x2753, 0x2757, 2},
    {0x2b50, 0x2b50, 2},  {0x2e80, 0x303e, 2},   {0x3041, 0xa4cf, 2},   {0xa960, 0xa97f, 2},   {0xac00, 0xd7a3, 2},
    {0xf900, 0xfaff, 2},  {0xfe00, 0xfe0f, 0},   {0xfe20, 0xfe2f, 0},   {0xfe30, 0xfe6f, 2},   {0xff00, 0xff60, 2},
    {0xffe0, 0xffe6, 2},  {0x1f300, 0x1f64f, 2}, {0x1f680, 0x1f6ff, 2}, {0x1f7e0, 0x1f7eb, 2}, {0x1f900, 0x1faff, 2},
    {0x20000, 0x3fffd, 2}};
constexpr bool ascending() {
    for (size_t i = 1; i < std::size(kWidths); ++i)
        if (kWidths[i].first <= kWidths[i - 1].last)
            return false;
    return true;
}
static_assert(ascending());

size_t columnsOf(uint32_t code) {
    const auto *row = std::lower_bound(std::begin(kWidths), std::end(kWidths), code,
                                       [](const Widths &one, uint32_t sought) { return one.last < sought; });
    return row != std::end(kWidths) && code >= row->first ? row->columns : 1;
}

bool continues(char c) { return (c & 0xc0) == 0x80; }

// The code point at this place, which moves behind it.
uint32_t nextCode(const std::string &text, size_t *at) {
    auto lead = static_cast<unsigned char>(text[(*at)++]);
    uint32_t code = lead < 0xc0 ? lead : lead & (lead < 0xe0 ? 0x1fU : lead < 0xf0 ? 0xfU : 0x7U);
    while (*at < text.size() && continues(text[*at]))
        code = code << 6 | (static_cast<unsigned char>(text[(*at)++]) & 0x3fU);
    return code;
}

// The text in at most `width` columns.
std::string shortened(const std::string &text, size_t width) {
    if (displayWidth(text) <= width)
        return text;
    size_t end = 0, taken = 0;
    for (size_t at = 0; at < text.size();) {
        taken += columnsOf(nextCode(text, &at));
        if (taken >= width) // the ellipsis takes one
            break;
        end = at;
    }
    return text.substr(0, end) + kEllipsis;
}

// What differs from what was asked for is marked.
const char *markOf(const json &row, const char *key) {
    json differs = row.value("differs", json::array());
    return std::count(differs.begin(), differs.end(), key) > 0 ? "*" : "";
}

using TextRows = std::vector<std::vector<std::string>>;

std::vector<size_t> widthsOf(const TextRows &lines) {
    std::vector<size_t> widths(lines[0].size());
    for (const auto &line : lines)
        for (size_t c = 0; c < widths.size(); ++c)
            widths[c] = std::max(widths[c], displayWidth(line[c]));
    return widths;
}

size_t total(const std::vector<size_t> &widths) {
    return std::accumulate(widths.begin(), widths.end(), widths.size() * kGap) - (widths.empty() ? 0 : kGap);
}

// Makes the widest free text narrower until the line fits, as far as that goes.
void cutFreeText(const std::vector<Column> &columns, std::vector<size_t> &widths, size_t limit) {
    while (total(widths) > limit) {
        size_t *widest = nullptr;
        for (size_t c = 0; c < widths.size(); ++c)
            if (columns[c].cut && widths[c] > std::max(kNarrowest, displayWidth(columns[c].title)) &&
                (!widest || widths[c] > *widest))
                widest = &widths[c];
        if (!widest)
            return;
        --*widest;
    }
}

// Leaves columns out from the right until the others fit; says which. What has no title belongs to the column before.
std::string leaveOut(const std::vector<Column> &columns, std::vector<size_t> &widths, size_t limit) {
    std::string left;
    while (widths.size() > 1 && total(widths) > limit && columns[widths.size() - 1].title[0] != '\0') {
        widths.pop_back();
        left = " " + std::string(columns[widths.size()].title) + left;
    }
    return left.empty() ? "" : shortened("--wide shows more:" + left, limit) + "\n";
}

std::string lineOf(const std::vector<Column> &columns, const std::vector<size_t> &widths,
                   const std::vector<std::string> &cells) {
    std::string line;
    for (size_t c = 0; c < widths.size(); ++c) {
        std::string text = columns[c].cut ? shortened(cells[c], widths[c]) : cells[c];
        std::string padding(widths[c] - std::min(displayWidth(text), widths[c]), ' ');
        line += (c ? std::string(kGap, ' ') : "") + (columns[c].rightAligned ? padding + text : text + padding);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

} // namespace

TableStyle &tableStyle() {
    static TableStyle style;
    return style;
}

size_t displayWidth(const std::string &text) {
    size_t width = 0;
    for (size_t at = 0; at < text.size();)
        width += columnsOf(nextCode(text, &at));
    return width;
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
    json sorted = rows;
    if (const Column *column = columnOf(columns, tableStyle().sortBy))
        sortRows(sorted, *column);
    TextRows lines(1);
    for (const Column &column : columns)
        lines[0].emplace_back(column.title);
    for (const json &row : sorted) {
        lines.emplace_back();
        for (const Column &column : columns)
            lines.back().push_back((column.format ? column.format : cell)(row.value(column.key, json())) +
                                   markOf(row, column.key));
    }
    std::vector<size_t> widths = widthsOf(lines);
    std::string left;
    if (size_t limit = tableStyle().width) {
        cutFreeText(columns, widths, limit);
        left = leaveOut(columns, widths, limit);
    }
    std::string text;
    for (const auto &line : lines)
        text += lineOf(columns, widths, line);
    return text + left;
}

} // namespace wlhost
