#include "host/cli/messages.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace wlhost {
namespace {

bool coloured(FILE *stream) {
    const char *off = getenv("NO_COLOR");
    return isatty(fileno(stream)) && !(off && *off);
}

} // namespace

void Progress::tell(int seconds, const std::string &text) {
    bool terminal = isatty(STDERR_FILENO);
    if (terminal)
        std::fprintf(stderr, "\r%s\033[K", text.c_str());
    else if (seconds % 10 == 0)
        std::fprintf(stderr, "%s\n", text.c_str());
    shown_ = terminal;
}

Progress::~Progress() {
    if (shown_)
        std::fprintf(stderr, "\r\033[K");
}

void printError(const Failure &failure, bool asJson) {
    if (asJson) {
        std::printf("%s\n", dumped({{"error", errorOf(failure)}}, 2).c_str());
        return;
    }
    // Errors about a file begin with its name and line, as editors like them.
    std::string where = failure.where.empty() ? "" : "wlhost: " + failure.where + ": ";
    const char *red = coloured(stderr) ? "\033[31m" : "", *plain = coloured(stderr) ? "\033[0m" : "";
    std::fprintf(stderr, "%s%s%s%s\n", red, where.c_str(), failure.what(), plain);
    if (!failure.hint.empty())
        std::fprintf(stderr, "  %s\n", failure.hint.c_str());
}

} // namespace wlhost
