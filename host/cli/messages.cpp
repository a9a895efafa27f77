#include "host/cli/messages.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

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
    else if (seconds > 0 && seconds % 10 == 0)
        std::fprintf(stderr, "%s\n", text.c_str());
    shown_ = terminal;
}

void Progress::step(const std::string &text) {
    if (isatty(STDERR_FILENO))
        std::fprintf(stderr, "wlhost: %s\n", text.c_str());
}

Progress::~Progress() {
    if (shown_)
        std::fprintf(stderr, "\r\033[K");
}

void prepareStreams() {
    for (int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(fd, F_GETFD) < 0)
            open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    // Ignored, the signal would stay so in every program that the module starts; a handler does not.
    struct sigaction action {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &action, nullptr);
}

Status afterOutput(Status status, FILE *out) {
    errno = 0;
    bool failed = std::fflush(out) != 0;
    if (!failed && !std::ferror(out))
        return status;
    printError(Failure(Status::kFailed, "output",
                       std::string("cannot be written") + (errno ? std::string(": ") + std::strerror(errno) : "")),
               false);
    return Status::kFailed;
}

size_t outputWidth() {
    constexpr int kUsual = 80;
    const char *columns = getenv("COLUMNS");
    winsize size{};
    bool terminal = isatty(STDOUT_FILENO);
    if (terminal && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    int width = columns ? std::atoi(columns) : 0;
    return static_cast<size_t>(width > 0 ? width : terminal ? kUsual : 0);
}

void printError(const Failure &failure, bool asJson, bool oneLine) {
    if (asJson) {
        std::printf("%s\n", dumped({{"error", errorOf(failure)}}, oneLine ? -1 : 2).c_str());
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
