// Checked texts: the only ones that may stand in a command or in the name of an nvram variable. A command line is run
// by a root shell, a store may take "key=value" apart, and names come from the host, from nvram, from driver reports
// and from datagrams of any local process.
#ifndef WLBRCM_MODULE_NAMES_H
#define WLBRCM_MODULE_NAMES_H

#include <string_view>

#include "module/log.h"

namespace wlbrcm {

// 1 to 15 characters of [A-Za-z0-9._-], not starting with '-': what Linux calls an interface and no shell reads twice.
bool isInterfaceName(std::string_view text);

// Six pairs of hexadecimal digits joined by colons.
bool isMacText(std::string_view text);

// A copy of a checked text. Made from any other text it is invalid and empty, and the text was logged at level 4.
class CheckedName {
  public:
    explicit operator bool() const { return text_[0] != '\0'; }
    const char *c_str() const { return text_; }

  protected:
    using Check = bool (*)(std::string_view);
    CheckedName() : text_{} {}
    [[gnu::noinline]] CheckedName(Here here, std::string_view text, Check check, const char *kind);

  private:
    char text_[18];
};

// Interface and bridge names.
class InterfaceName : public CheckedName {
  public:
    InterfaceName() = default; // no name
    InterfaceName(Here here, std::string_view text);
    InterfaceName(Here here, const char *text); // null like an empty text
};

// The name in a record for use in a command or a key. A missing one is nothing to report; one that is no interface name
// was logged. Either way it is invalid, what needs it is left out, and the bring-up goes on.
InterfaceName usableName(Here here, std::string_view text);

class MacText : public CheckedName {
  public:
    MacText(Here here, std::string_view text);
    MacText(Here here, const char *text);
};

} // namespace wlbrcm

#endif
