// What the setters have in common: the checks of their argument, and one call for each kind of setting.
#ifndef WLBRCM_PARAMS_SETTING_H
#define WLBRCM_PARAMS_SETTING_H

#include <climits>

#include <wlbrcm/params.h>

#include "module/argument.h"
#include "module/command.h"
#include "module/nvram.h"

namespace wlbrcm {

// A number in a range. A refusal prints the usage text as it stands, with the line ends in it.
struct IntParam {
    const char *key;
    int lowest = INT_MIN;
    int highest = INT_MAX;
    const char *usage = "";
};

// A number that nvram holds as a word: `words` are those of the lowest number and of the ones after it.
struct WordParam {
    IntParam number;
    const char *const *words;
};

inline constexpr const char *kOffOn[] = {"off", "on"};
inline constexpr const char *kAutoOffOn[] = {"auto", "off", "on"};

// The value as a number of the parameter's range, and the interface that is set. The latter is invalid when either of
// them is missing or refused; a number out of range prints the usage.
InterfaceName readNumber(Here here, const WlanParamArg *arg, const IntParam &param, int *number);

// Setters of one variable: the value as a number, as the word for a number, or unconverted.
int setInt(Here here, const WlanParamArg *arg, const IntParam &param);
int setWord(Here here, const WlanParamArg *arg, const WordParam &param);
int setText(Here here, const WlanParamArg *arg, const char *key);

// Runs a driver command in-process on a checked interface; one that does not fit is refused.
using DriverArgs = Text<256>;
int runDriver(Here here, const InterfaceName &ifname, const DriverArgs &args);

// Splits a list at its first comma. False when the first field is empty: scanf's "%[^,]" then reads nothing at all, so
// that the fields behind it do not count either.
bool splitFirstField(const char *text, std::string_view *first, const char **rest);

} // namespace wlbrcm

#endif
