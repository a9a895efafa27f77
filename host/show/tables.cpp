#include "host/show/tables.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "host/control/dispatch.h"

namespace wlhost {
namespace {

bool coloured(FILE *stream) {
    const char *off = getenv("NO_COLOR");
    return isatty(fileno(stream)) && !(off && *off);
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
    return value.is_string() ? value.get<std::string>() : value.dump();
}

std::string table(const std::vector<Column> &columns, const json &rows) {
    std::vector<std::vector<std::string>> lines(1);
    for (const Column &column : columns)
        lines[0].push_back(column.title);
    for (const json &row : rows) {
        lines.emplace_back();
        for (const Column &column : columns)
            lines.back().push_back((column.format ? column.format : cell)(row.value(column.key, json())));
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

void Progress::tell(int seconds, const std::string &text) {
    bool terminal = isatty(STDERR_FILENO);
    if (terminal)
        std::fprintf(stderr, "\r%s\033[K", text.c_str());
    else if (seconds % 10 == 0)
        std::fprintf(stderr, "%s\n", text.c_str());
    shown_ = terminal;
}

Progress::~Progress() {
    if (shown_)
        std::fprintf(stderr, "\r\033[K");
}

void printError(const json &error, bool asJson) {
    if (asJson) {
        std::printf("%s\n", json{{"error", error}}.dump(2).c_str());
        return;
    }
    // Errors about a file begin with its name and line, as editors like them.
    std::string where =
        error.value("where", json()).is_string() ? "wlhost: " + error["where"].get<std::string>() + ": " : "";
    const char *red = coloured(stderr) ? "\033[31m" : "", *plain = coloured(stderr) ? "\033[0m" : "";
    std::fprintf(stderr, "%s%s%s%s\n", red, where.c_str(), error["text"].get<std::string>().c_str(), plain);
    if (error.value("hint", json()).is_string())
        std::fprintf(stderr, "  %s\n", error["hint"].get<std::string>().c_str());
}

void printError(const Failure &failure, bool asJson) { printError(errorOf(failure), asJson); }

} // namespace wlhost
