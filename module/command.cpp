#include "module/command.h"

#include <fcntl.h>
#include <unistd.h>

#include <wlctl_lib.h>

using namespace wlbrcm;

namespace {

int runText(Run run, const char *command) {
    if (run.logged)
        return __qvWlanSystemEx(run.here.function, run.here.line, command);
    return system(command) == 0 ? WLBRCM_OK : WLBRCM_EFAILED;
}

using CommandLine = char[256];

// False, with a message, when the command does not fit.
bool formatCommand(Here here, CommandLine &command, const char *format, va_list args) {
    size_t used = 0;
    const bool fits = appendFormat(command, sizeof command, &used, format, args);
    return commandFits(here, fits, command);
}

} // namespace

int __qvWlanSystemEx(const char *function, int line, const char *command) {
    if (command == nullptr)
        return WLBRCM_EINVAL;
    WLBRCM_LOG_AT((Here{function, line}), LOG_DEBUG, "cmd = %s\n", command);
    return system(command) == 0 ? WLBRCM_OK : WLBRCM_EFAILED;
}

int __qvWlanCmdExec(const char *function, int line, const char *ifname, const char *args) {
    const Here here{function, line};
    if (ifname == nullptr || args == nullptr)
        return WLBRCM_OK;
    Text<256> command("wlctl -i %s %s", ifname, args);
    if (!commandFits(here, command.fits(), command.c_str()))
        return WLBRCM_OK;
    WLBRCM_LOG_AT(here, LOG_DEBUG, "cmd = %s\n", command.c_str());
    wlctl_cmd(command.data());
    return WLBRCM_OK;
}

namespace wlbrcm {

bool commandFits(Here here, bool fits, const char *command) {
    if (!fits)
        WLBRCM_LOG_AT(here, LOG_ERR, "command is too long: %s...\n", Shown(command).c_str());
    return fits;
}

int CommandRun::formatted(Run run, const char *format, ...) {
    CommandLine command = "";
    va_list args;
    va_start(args, format);
    const bool ready = formatCommand(run.here, command, format, args);
    va_end(args);
    return ready ? runText(run, command) : WLBRCM_EFAILED;
}

Report::Report(const ResultPath &path, std::nullptr_t) : path_(path) {}

void Report::runAndOpen(Run run, const char *format, ...) {
    CommandLine command = "";
    va_list args;
    va_start(args, format);
    const bool ready = formatCommand(run.here, command, format, args);
    va_end(args);
    if (!ready || !clearPlace(run.here, path_.c_str(), command))
        return;
    runText(run, command);
    open();
}

void Report::open() {
    descriptor_ = openOwnFile(path_.c_str());
    lines_.readFrom(descriptor_);
}

Report::~Report() {
    if (descriptor_ >= 0)
        close(descriptor_);
    if (!keep_)
        remove(path_.c_str());
}

void CommandOutput::run(const char *format, ...) {
    CommandLine command = "";
    va_list args;
    va_start(args, format);
    const bool ready = formatCommand(WLBRCM_HERE, command, format, args);
    va_end(args);
    pipe_ = ready ? popen(command, "r") : nullptr;
    lines_.readFrom(pipe_);
    // Commands that are run meanwhile do not inherit the pipe.
    if (pipe_ != nullptr && fileno(pipe_) >= 0)
        fcntl(fileno(pipe_), F_SETFD, FD_CLOEXEC);
}

CommandOutput::~CommandOutput() {
    if (pipe_ != nullptr)
        pclose(pipe_);
}

} // namespace wlbrcm
