// nvram: shows and changes the configuration store from a shell.
#include "platform/sim/nvram/nvram_store.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

int get(const char *key) {
    const char *value = nvram_get(key);
    if (!value) {
        return 1;
    }
    puts(value);
    return 0;
}

int set(const char *pair) {
    const char *equal = strchr(pair, '=');
    if (!equal) {
        fprintf(stderr, "nvram: set takes key=value, not '%s'\n", pair);
        return 2;
    }
    return nvram_set(std::string(pair, equal).c_str(), equal + 1) == 0 ? 0 : 1;
}

int unset(const char *key) { return nvram_unset(key) == 0 ? 0 : 1; }

int show(const char *) {
    auto print = [](const char *key, const char *value, void *) { return printf("%s=%s\n", key, value) < 0 ? 1 : 0; };
    return nvram_each(print, nullptr);
}

int commit(const char *) { return nvram_commit() == 0 ? 0 : 1; }

constexpr struct {
    const char *name;
    int (*run)(const char *argument);
    int arguments;
    const char *usage;
} kCommands[] = {
    {"get", get, 1, "get KEY        exit status 1 when it is not set"},
    {"set", set, 1, "set KEY=VALUE"},
    {"unset", unset, 1, "unset KEY"},
    {"show", show, 0, "show           every variable"},
    {"commit", commit, 0, "commit         keep the present values over a reboot"},
};

int usage() {
    for (const auto &command : kCommands) {
        fprintf(stderr, "usage: nvram %s\n", command.usage);
    }
    return 2;
}

} // namespace

int main(int argc, char **argv) {
    for (const auto &command : kCommands) {
        if (argc == command.arguments + 2 && strcmp(argv[1], command.name) == 0) {
            return command.run(argv[2]);
        }
    }
    return usage();
}
