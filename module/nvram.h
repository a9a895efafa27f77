// Reads and writes of the platform's configuration store.
#ifndef WLBRCM_MODULE_NVRAM_H
#define WLBRCM_MODULE_NVRAM_H

#include <bcmnvram.h>

#include "module/names.h"
#include "module/text.h"

extern "C" {

// Writes the int or the text behind `value`, for the kinds "int" and "string". An empty text removes the variable. One
// trailing blank of a text is cut off in the caller's buffer, unless the key contains "ssid" or "wpa_psk". 0, or
// WLBRCM_EINVAL when nothing was written.
int __qvWlanSetVarToNvram(const char *function, int line, void *value, const char *key, const char *type);

// The same with the key "<prefix>_<suffix>"; the prefix is an interface name.
int __qvWlanSetVarToNvram2(const char *function, int line, void *value, const char *prefix, const char *suffix,
                           const char *type);

// 1 when the variable is set to exactly this text, else 0.
int nvram_match(const char *key, const char *value);

} // extern "C"

namespace wlbrcm {

// A variable's name. One that does not fit is never written.
using Key = Text<256>;

// Longest text that is written: the driver's MAC list of 1535 characters is the longest of ours.
constexpr size_t kLongestValue = 2047;

// The variable's text, empty when it is not set. Holds until the next store call.
std::string_view nvramText(const char *key);

// Whether a text may be written; one that is too long is logged.
bool valueFits(Here here, const char *key, std::string_view value);

// Writes of a whole variable. Results as for __qvWlanSetVarToNvram(); the caller's text is never changed.
int writeInt(Here here, const Key &key, int value);
int writeText(Here here, const Key &key, std::string_view value);

// A variable of a radio or a BSS, "<prefix>_<suffix>".
inline Key keyOf(const InterfaceName &prefix, const char *suffix) { return Key("%s_%s", prefix.c_str(), suffix); }

// Writes of such a variable. A prefix that is no interface name was logged when it was made; nothing is written then.
int writeInt(Here here, const InterfaceName &prefix, const char *suffix, int value);
int writeText(Here here, const InterfaceName &prefix, const char *suffix, std::string_view value);

} // namespace wlbrcm

#endif
