// Processes by name.
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <wlbrcm/bringup.h>

#include "module/files.h"
#include "module/numbers.h"

using namespace wlbrcm;

namespace {

// Process id when the process's command name is `name`, else -1. A process that has just ended is none.
int matchProcess(int number, const char *name) {
    const Text<64> path("/proc/%d/stat", number);
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        printf("could not open %s\n", path.c_str());
        return -1;
    }
    LineReader lines;
    lines.readFrom(file);
    char text[512];
    std::string_view rest(text, lines.rest(text));
    close(file);
    int pid = -1;
    std::string_view command;
    if (!takeDecimal(&rest, &pid) || !takeText(&rest, " (") || !takeWord(&rest, 255, &command))
        return -1;
    if (command.back() == ')')
        command.remove_suffix(1);
    return command == name ? pid : -1;
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
