/** @file
 * What the simulated configuration store offers beside the platform's three calls.
 *
 * The store is the text file that WLSIM_NVRAM names (default /var/sim/nvram), one escaped key=value a line. Values
 * written are seen by every process at once, but survive a reboot only when committed: `<store>.committed` is what a
 * new boot starts from.
 */
#ifndef WLSIM_NVRAM_STORE_H
#define WLSIM_NVRAM_STORE_H

#include "bcmnvram.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Longest key and value the store takes, in characters. */
enum { WLSIM_NVRAM_KEY_MAX = 255, WLSIM_NVRAM_VALUE_MAX = 4095 };

/** Makes the present values those of the next boot. @return 0, or -1 with the reason on stderr. */
int nvram_commit(void);

/** Forgets what was not committed, as a power cycle does. @return 0, or -1 with the reason on stderr. */
int nvram_reboot(void);

/** Calls `visit` for every variable in key order until it returns non-zero. @return that result, or 0. */
int nvram_each(int (*visit)(const char *key, const char *value, void *arg), void *arg);

#ifdef __cplusplus
}
#endif

#endif
