/* The store's library in replay, where the module's calls are answered before they come here. */
#include <bcmnvram.h>
#include <stddef.h>

char *nvram_get(const char *name) {
    (void)name;
    return NULL;
}

int nvram_set(const char *name, const char *value) {
    (void)name;
    (void)value;
    return -1;
}

int nvram_unset(const char *name) {
    (void)name;
    return -1;
}
