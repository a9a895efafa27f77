// The store's library in replay, where the module's calls are answered before they come here.
#include <bcmnvram.h>

char *nvram_get(const char *) { return nullptr; }
int nvram_set(const char *, const char *) { return -1; }
int nvram_unset(const char *) { return -1; }
