// What the simulated configuration store offers beside the platform's three calls.
//
// The store is the text file that WLSIM_NVRAM names (default /var/sim/nvram), one escaped key=value a line. Values
// written are seen by every process at once, but survive a reboot only when committed: `<store>.committed` is what a
// new boot starts from.
#pragma once

#include <bcmnvram.h>

#include <string>

// Longest key and value the store takes, in characters.
constexpr size_t kNvramKeyMax = 255, kNvramValueMax = 4095;

extern "C" {
// Makes the present values those of the next boot. Returns 0, or -1 with the reason on stderr.
int nvram_commit(void);

// Forgets what was not committed, as a power cycle does. Returns 0, or -1 with the reason on stderr.
int nvram_reboot(void);

// Calls `visit` for every variable in key order until it returns non-zero. Returns that result, or 0.
int nvram_each(int (*visit)(const char *key, const char *value, void *arg), void *arg);
}

namespace wlsim {

// A variable, empty when it is not set.
inline std::string stored(const std::string &key) {
    const char *value = nvram_get(key.c_str());
    return value ? value : "";
}
inline std::string stored(const std::string &prefix, const std::string &key) { return stored(prefix + "_" + key); }

} // namespace wlsim
