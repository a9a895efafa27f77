#include "module/names.h"

#include "module/text.h"

namespace wlbrcm {

namespace {

bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool isNameCharacter(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' || c == '_' || c == '-';
}

} // namespace

bool isInterfaceName(std::string_view text) {
    if (text.empty() || text.size() > 15 || text[0] == '-')
        return false;
    for (const char c : text) {
        if (!isNameCharacter(c))
            return false;
    }
    return true;
}

bool isMacText(std::string_view text) {
    if (text.size() != 17)
        return false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (i % 3 == 2 ? text[i] != ':' : !isHexDigit(text[i]))
            return false;
    }
    return true;
}

CheckedName::CheckedName(Here here, std::string_view text, Check check, const char *kind) : text_{} {
    if (check(text)) {
        copyText(text_, text);
        return;
    }
    // Foreign text may be long; the log need not be.
    const size_t shown = text.size() < 64 ? text.size() : 64;
    WLBRCM_LOG_AT(here, LOG_ERR, "invalid %s \"%s\".\n", kind, Shown({text.data(), shown}).c_str());
}

InterfaceName::InterfaceName(Here here, std::string_view text)
    : CheckedName(here, text, isInterfaceName, "interface name") {}

InterfaceName::InterfaceName(Here here, const char *text)
    : InterfaceName(here, std::string_view(text != nullptr ? text : "")) {}

InterfaceName usableName(Here here, std::string_view text) {
    return text.empty() ? InterfaceName() : InterfaceName(here, text);
}

MacText::MacText(Here here, std::string_view text) : CheckedName(here, text, isMacText, "MAC address") {}

MacText::MacText(Here here, const char *text) : MacText(here, std::string_view(text != nullptr ? text : "")) {}

} // namespace wlbrcm
