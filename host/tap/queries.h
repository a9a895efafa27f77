// Which commands only ask.
#pragma once

#include <string>

#include "host/tap/shell_line.h"

namespace wlhost::tap {

// Whether every part of the line is known to only ask, whatever becomes of its output. A line that is not known is not.
bool isQuery(const ShellLine &line);

// What a command is about: the radio of an interface's name.
std::string radioOf(const std::string &interface);
// The radio whose tool a query asks, empty when it names none.
std::string askedRadio(const ShellLine &line);

} // namespace wlhost::tap
