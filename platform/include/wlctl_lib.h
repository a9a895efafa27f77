/** @file
 * The driver's command tool as a library.
 */
#ifndef WLCTL_LIB_H
#define WLCTL_LIB_H

#ifdef __cplusplus
extern "C" {
#endif

/** Runs one wlctl command line, such as "wlctl -i wl0 nreqd 1", without a shell. Arguments are split at blanks; single
 * and double quotes group and vanish, as in a shell; the text may be changed on the way.
 * @return the command's status, 0 for success. */
int wlctl_cmd(char *line);

#ifdef __cplusplus
}
#endif

#endif
