/** @file
 * The platform's configuration store, as far as the module uses it.
 */
#ifndef BCMNVRAM_H
#define BCMNVRAM_H

#ifdef __cplusplus
extern "C" {
#endif

/** Value of a variable, or null when it is not set. The text belongs to the store and holds until the next call. */
char *nvram_get(const char *name);
/** Sets a variable, also to an empty text. @return 0, or a negative number when the store refuses it. */
int nvram_set(const char *name, const char *value);
/** Removes a variable; one that is not set is no error. @return 0, or a negative number. */
int nvram_unset(const char *name);

#ifdef __cplusplus
}
#endif

#endif
