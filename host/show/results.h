// Results of commands as a person reads them, each in the columns of its command.
#pragma once

#include <string>
#include <vector>

#include "host/show/tables.h"

namespace wlhost {

std::string showRows(const json &result, const std::vector<Column> &columns);
std::string showStatus(const json &result, const std::vector<Column> &columns);
std::string showRadios(const json &result, const std::vector<Column> &columns);
// Checks, "ok" for none.
std::string showFindings(const json &result, const std::vector<Column> &columns);
std::string showWhy(const json &result, const std::vector<Column> &columns);
std::string showReload(const json &result, const std::vector<Column> &columns);
std::string showPlan(const json &result, const std::vector<Column> &columns);
std::string showFilter(const json &result, const std::vector<Column> &columns);
std::string showLan(const json &result, const std::vector<Column> &columns);
std::string showSurvey(const json &result, const std::vector<Column> &columns);
std::string showRates(const json &result, const std::vector<Column> &columns);
std::string showBeacon(const json &result, const std::vector<Column> &columns);
std::string showSession(const json &result, const std::vector<Column> &columns);
// An object as lines of name and value.
std::string showMembers(const json &result, const std::vector<Column> &);
// Each difference with both sides, then a line that counts.
std::string showReplay(const json &result, const std::vector<Column> &);
std::string showJournal(const json &result, const std::vector<Column> &columns);
// One line, without its end.
std::string showEntry(const json &entry);
std::string showEvent(const json &event, const std::vector<Column> &);

} // namespace wlhost
