// The driver's MAC filter of one interface, and the nvram variables that repeat it.
#include <wlbrcm/macfilter.h>

#include "module/argument.h"
#include "module/command.h"
#include "module/nvram.h"

using namespace wlbrcm;

namespace {

// Command text of a mode, and what nvram calls it. The row is the driver's number.
struct FilterMode {
    const char *command;
    const char *stored;
};
constexpr FilterMode kModes[] = {{"DISABLE", "disable"}, {"DENY", "deny"}, {"ALLOW", "allow"}};

int modeOf(const char *command) {
    for (int mode = WLBRCM_FILTER_DENY; mode <= WLBRCM_FILTER_ALLOW; ++mode) {
        if (strcmp(command, kModes[mode].command) == 0)
            return mode;
    }
    return WLBRCM_FILTER_OFF;
}

constexpr size_t kLongestList = 1535;

// Addresses separated by blanks.
bool isMacList(std::string_view text) {
    if (text.size() > kLongestList)
        return false;
    Words words(text);
    for (std::string_view word; words.next(&word);) {
        if (!isMacText(word))
            return false;
    }
    return true;
}

// A list that may stand in a command. Made from any other text it is invalid, and the text was logged at level 4.
class MacListText {
  public:
    MacListText(Here here, const char *text) : text_(isMacList(text) ? text : nullptr) {
        if (text_ == nullptr)
            WLBRCM_LOG_AT(here, LOG_ERR, "invalid MAC list \"%s\".\n", Shown({text, strnlen(text, 64)}).c_str());
    }
    explicit operator bool() const { return text_ != nullptr; }
    const char *c_str() const { return text_; }

  private:
    const char *text_;
};

const char *commandArg(const MacListText &list) { return list.c_str(); }

using ListCommand = CheckedText<kLongestList + sizeof "wlctl -i 123456789012345 mac ">;

} // namespace

int qvWlanSetMacAuthMode(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!name)
        return WLBRCM_EINVAL;
    int mode = 0;
    memcpy(&mode, arg->value, sizeof mode);
    if (mode < WLBRCM_FILTER_OFF || mode > WLBRCM_FILTER_ALLOW)
        return WLBRCM_EINVAL;
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("wlctl -i %s macmode %d"), name, mode);
    writeText(WLBRCM_HERE, name, "macmode", kModes[mode].stored);
    return WLBRCM_OK;
}

int qvWlanClearMacAuthList(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg);
    if (!name)
        return WLBRCM_EINVAL;
    runCommand(WLBRCM_HERE, WLBRCM_COMMAND("wlctl -i %s mac none"), name);
    writeText(WLBRCM_HERE, name, "maclist", "");
    return WLBRCM_OK;
}

int qvWlanSetMacAuthList(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!name)
        return WLBRCM_EINVAL;
    const MacListText list(WLBRCM_HERE, arg->value);
    if (!list)
        return WLBRCM_EINVAL;
    const ListCommand command(WLBRCM_COMMAND("wlctl -i %s mac %s"), name, list);
    __qvWlanSystemEx(__func__, __LINE__, command.c_str());
    writeText(WLBRCM_HERE, name, "maclist", list.c_str());
    return WLBRCM_OK;
}

int qvWlanGetMacAuthList(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg);
    if (!name)
        return WLBRCM_EINVAL;
    Report report(WLBRCM_HERE, ResultPath(WLBRCM_COMMAND("/tmp/%s_mac_filter_list"), name),
                  WLBRCM_COMMAND("wlctl -i %s mac > %s"), name);
    for (char line[100]; report.next(line);) {
    }
    return WLBRCM_OK;
}

int qvWifiStaFilter(const char *ifname, const char *cmd, const char *list) {
    if (ifname == nullptr || cmd == nullptr)
        return WLBRCM_EFAILED;
    int mode = modeOf(cmd);
    // Refused as a whole: a mode with a part of its list would lock stations out, or let them in.
    const bool listUsed = mode != WLBRCM_FILTER_OFF;
    if (!InterfaceName(WLBRCM_HERE, ifname) || (listUsed && (list == nullptr || !MacListText(WLBRCM_HERE, list))))
        return WLBRCM_EINVAL;

    // The setters read their argument and write nothing through it.
    WlanParamArg arg = {};
    arg.prefix = const_cast<char *>(ifname);
    arg.value = reinterpret_cast<char *>(&mode);
    qvWlanSetMacAuthMode(&arg);
    const int cleared = qvWlanClearMacAuthList(&arg);
    if (mode == WLBRCM_FILTER_OFF)
        return cleared;
    arg.value = const_cast<char *>(list);
    return qvWlanSetMacAuthList(&arg);
}
