// What a command shows: tables for people, one JSON document for programs.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/base/failure.h"

namespace wlhost {

using nlohmann::json;

struct Column {
    const char *title;
    const char *key;
    bool rightAligned = false;
    std::string (*format)(const json &value) = nullptr; // instead of cell()
};

// Rows as aligned columns under their titles; unknown values are "-".
std::string table(const std::vector<Column> &columns, const json &rows);
// One value as a person reads it.
std::string cell(const json &value);
// Columns that a text takes on a terminal: code points of its UTF-8.
size_t displayWidth(const std::string &text);

// What is under way, on stderr: one line that changes on a terminal, else a line every ten seconds.
class Progress {
  public:
    Progress() = default;
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    void tell(int seconds, const std::string &text);

  private:
    bool shown_ = false;
};

// Prints an error: the document on stdout with `asJson`, else lines on stderr.
void printError(const json &error, bool asJson);
void printError(const Failure &failure, bool asJson);

} // namespace wlhost
