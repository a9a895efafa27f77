// Processes by name.
#include <cstdio>
#include <cstdlib>
#include <dirent.h>

#include <wlbrcm/bringup.h>

#include "module/text.h"

using namespace wlbrcm;

namespace {

// Process id when the process's command name is `name`, else -1. A process that has just ended is none.
int matchProcess(int number, const char *name) {
    const Text<32> path("/proc/%d/stat", number);
    FILE *file = fopen(path.c_str(), "r");
    if (file == nullptr) {
        printf("could not open %s\n", path.c_str());
        return -1;
    }
    int pid = -1;
    char command[256] = "";
    const bool read = fscanf(file, "%d (%255s", &pid, command) == 2;
    fclose(file);
    const size_t length = strlen(command);
    if (!read || length == 0)
        return -1;
    if (command[length - 1] == ')')
        command[length - 1] = '\0';
    return strcmp(command, name) == 0 ? pid : -1;
}

} // namespace

int prctl_getPidByName(const char *name) {
    DIR *directory = opendir("/proc");
    if (directory == nullptr) {
        printf("%s : could not open /proc\n", "prctl_getPidByName");
        return -1;
    }
    int pid = -1;
    for (const dirent *entry = nullptr; name != nullptr && pid == -1 && (entry = readdir(directory)) != nullptr;) {
        const auto number = static_cast<int>(strtol(entry->d_name, nullptr, 10));
        if (entry->d_type == DT_DIR && number != 0)
            pid = matchProcess(number, name);
    }
    closedir(directory);
    return pid;
}
