// Everything that the module runs, and how it reads the output back.
#ifndef WLBRCM_MODULE_COMMAND_H
#define WLBRCM_MODULE_COMMAND_H

#include <cstdio>
#include <cstdlib>

#include "module/names.h"
#include "module/text.h"

extern "C" {

// Runs a shell command, logged as `function`. 0, WLBRCM_EFAILED, or WLBRCM_EINVAL for a null command.
int __qvWlanSystemEx(const char *function, int line, const char *command);

// Runs "wlctl -i <ifname> <args>" in-process, logged as `function`. Always 0: the driver's answer is not known, and a
// line that does not fit 255 characters is logged and not run.
int __qvWlanCmdExec(const char *function, int line, const char *ifname, const char *args);

} // extern "C"

namespace wlbrcm {

// A file that a command writes and the module reads; its name is made by the module from checked names.
using ResultPath = Text<64>;

// What may stand in a command: checked names, result paths, numbers, and words of our own. A bare text cannot; a word
// of our own is passed as Word("up").
struct Word {
    template <size_t Size> explicit constexpr Word(const char (&literal)[Size]) : text(literal) {}
    const char *text;
};
inline const char *commandArg(const CheckedName &name) { return name.c_str(); }
inline const char *commandArg(const ResultPath &path) { return path.c_str(); }
inline const char *commandArg(Word word) { return word.text; }
inline int commandArg(int number) { return number; }
inline unsigned commandArg(unsigned number) { return number; }

// One command line. Most are short; the MAC filter's list of 85 addresses is the longest.
template <size_t Size> struct CommandText {
    template <class... Args> explicit CommandText(const char *format, const Args &...args) {
        text.append(format, commandArg(args)...);
    }
    Text<Size> text;
};
using Command = CommandText<256>;

// A command that did not fit is refused, never run cut.
bool commandFits(Here here, bool fits, const char *command);

// Formats a command and runs it, logged or not. Only called by the two below, which let no unchecked text through.
int runFormatted(Here here, bool logged, const char *format, ...);

// Runs a command through __qvWlanSystemEx(). 0 or WLBRCM_EFAILED.
template <class... Args> int runCommand(Here here, const char *format, const Args &...args) {
    return runFormatted(here, true, format, commandArg(args)...);
}

// Runs a command with system() and no log line. 0 or WLBRCM_EFAILED.
template <class... Args> int runUnlogged(Here here, const char *format, const Args &...args) {
    return runFormatted(here, false, format, commandArg(args)...);
}

// Reads lines of at most Size - 1 characters, newline included; a longer line comes in pieces.
template <size_t Size> bool readLine(FILE *file, char (&line)[Size]) {
    return fgets(line, static_cast<int>(Size), file) != nullptr;
}

// A result file, from its command to its removal. However a function returns, the file is closed and gone.
class ResultFile {
  public:
    // Opens for reading; the command that writes it must have run. `keep` leaves it in place afterwards.
    explicit ResultFile(const ResultPath &path, bool keep = false)
        : path_(path), keep_(keep), file_(fopen(path.c_str(), "r")) {}
    ~ResultFile() {
        if (file_ != nullptr)
            fclose(file_);
        if (!keep_)
            remove(path_.c_str());
    }
    ResultFile(const ResultFile &) = delete;
    ResultFile &operator=(const ResultFile &) = delete;

    explicit operator bool() const { return file_ != nullptr; }
    FILE *stream() { return file_; }
    template <size_t Size> bool next(char (&line)[Size]) { return file_ != nullptr && readLine(file_, line); }

  private:
    const ResultPath &path_;
    bool keep_;
    FILE *file_;
};

// The output of a command, read through a pipe.
class CommandOutput {
  public:
    explicit CommandOutput(const char *command) : pipe_(popen(command, "r")) {}
    ~CommandOutput() {
        if (pipe_ != nullptr)
            pclose(pipe_);
    }
    CommandOutput(const CommandOutput &) = delete;
    CommandOutput &operator=(const CommandOutput &) = delete;

    explicit operator bool() const { return pipe_ != nullptr; }
    FILE *stream() { return pipe_; }
    template <size_t Size> bool next(char (&line)[Size]) { return pipe_ != nullptr && readLine(pipe_, line); }

  private:
    FILE *pipe_;
};

} // namespace wlbrcm

#endif
