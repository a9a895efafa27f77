// Tables as a person reads them.
#pragma once

#include <string>
#include <vector>

#include "host/base/json.h"

namespace wlhost {

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

} // namespace wlhost
