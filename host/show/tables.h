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
    bool cut = false;                                   // free text: may be shortened so that the table fits
};

// How all tables of this program are printed; the command line decides it once.
struct TableStyle {
    size_t width = 0;   // of the terminal; 0 for no limit
    std::string sortBy; // title of a column in any case, or empty
};
TableStyle &tableStyle();

// Rows as aligned columns under their titles; unknown values are "-". Where they are wider than the style allows, the
// widest free text is cut with an ellipsis; when that is not enough columns are left out from the right, and a last
// line names them.
std::string table(const std::vector<Column> &columns, const json &rows);
// One value as a person reads it.
std::string cell(const json &value);
// Columns that a text takes on a terminal.
size_t displayWidth(const std::string &text);

// The column with this title, or null.
const Column *columnOf(const std::vector<Column> &columns, const std::string &title);
// Their titles as --sort takes them.
std::vector<std::string> columnNames(const std::vector<Column> &columns);
// Values with a unit the largest first, others in their order with numbers in texts as numbers; unknown ones last.
void sortRows(json &rows, const Column &column);

} // namespace wlhost
