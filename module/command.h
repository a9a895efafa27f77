// Everything that the module runs, and how it reads the output back.
#ifndef WLBRCM_MODULE_COMMAND_H
#define WLBRCM_MODULE_COMMAND_H

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "module/files.h"
#include "module/names.h"

extern "C" {

// Runs a shell command, logged as `function`. 0, WLBRCM_EFAILED, or WLBRCM_EINVAL for a null command.
int __qvWlanSystemEx(const char *function, int line, const char *command);

// Runs "wlctl -i <ifname> <args>" in-process, logged as `function`. Always 0: the driver's answer is not known, and a
// line that does not fit 255 characters is logged and not run.
int __qvWlanCmdExec(const char *function, int line, const char *ifname, const char *args);

} // extern "C"

// A command's format as a type of its own, so that the compiler sees its text and checks the arguments against it:
// runCommand(here, WLBRCM_COMMAND("wlctl -i %s up"), ifname).
#define WLBRCM_COMMAND(literal)                                                                                        \
    [] {                                                                                                               \
        struct Format {                                                                                                \
            static constexpr const char *text() { return literal; }                                                    \
        };                                                                                                             \
        return Format{};                                                                                               \
    }()

namespace wlbrcm {

// What may stand in a command: checked names, result paths, numbers, and words of our own. A bare text cannot; a word
// of our own is written "up"_word.
class Word {
  public:
    constexpr const char *c_str() const { return text_; }

  private:
    friend constexpr Word operator""_word(const char *literal, size_t length);
    explicit constexpr Word(const char *literal) : text_(literal) {}

    const char *text_;
};
constexpr Word operator""_word(const char *literal, size_t /*length*/) { return Word(literal); }

template <size_t Size> class CheckedText;
// A file that a command writes and the module reads.
using ResultPath = CheckedText<64>;

inline const char *commandArg(const CheckedName &name) { return name.c_str(); }
const char *commandArg(const ResultPath &path);
inline const char *commandArg(Word word) { return word.c_str(); }
inline int commandArg(int number) { return number; }
inline unsigned commandArg(unsigned number) { return number; }
inline unsigned commandArg(uint8_t number) { return number; }

// Whether a conversion takes what commandArg() makes of an argument.
constexpr bool converts(char conversion, const char *) { return conversion == 's'; }
constexpr bool converts(char conversion, int) { return conversion == 'd'; }
constexpr bool converts(char conversion, unsigned) { return conversion == 'u' || conversion == 'x'; }

// The conversion behind the next "%" of a format, which moves behind it; 0 at the end. A precision has one digit.
constexpr char takeConversion(const char **format) {
    while (**format != '\0') {
        if (*(*format)++ != '%')
            continue;
        if (**format == '.' && (*format)[1] >= '0' && (*format)[1] <= '9')
            *format += 2;
        return **format != '\0' ? *(*format)++ : '%';
    }
    return '\0';
}

// Whether a format has one conversion for each of the arguments, of its kind and in this order.
template <class... Args> constexpr bool formatTakes(const char *format) {
    return (converts(takeConversion(&format), Args{}) && ...) && takeConversion(&format) == '\0';
}

template <class Format, class... Args> constexpr const char *checkedFormat() {
    static_assert(formatTakes<decltype(commandArg(std::declval<const Args &>()))...>(Format::text()),
                  "a conversion of the command does not fit its argument");
    return Format::text();
}

// How a command is run: logged as `here`, unless unlogged() says otherwise.
struct Run {
    // NOLINTNEXTLINE(google-explicit-constructor): a place in the source is what most commands are run with
    Run(Here from) : here(from) {}
    Here here;
    bool logged = true;
};
inline Run unlogged(Here here) {
    Run run(here);
    run.logged = false;
    return run;
}

// A command line or a path that holds checked parts only. Most are short; the MAC filter's list of 85 addresses is the
// longest.
template <size_t Size> class CheckedText {
  public:
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security" // Clang sees no literal when there are no arguments
    template <class Format, class... Args>
    explicit CheckedText(Format, const Args &...args) : text_(checkedFormat<Format, Args...>(), commandArg(args)...) {}
#pragma GCC diagnostic pop
    const char *c_str() const { return text_.c_str(); }

  private:
    Text<Size> text_;
};
inline const char *commandArg(const ResultPath &path) { return path.c_str(); }

// A command that did not fit is refused, never run cut.
bool commandFits(Here here, bool fits, const char *command);

// Runs a command with system(). 0 or WLBRCM_EFAILED.
class CommandRun {
    template <class Format, class... Args> friend int runCommand(Run run, Format, const Args &...args);
    static int formatted(Run run, const char *format, ...);
};
template <class Format, class... Args> int runCommand(Run run, Format, const Args &...args) {
    return CommandRun::formatted(run, checkedFormat<Format, Args...>(), commandArg(args)...);
}

// The output of a command in a file: what stands at the file's name is removed, the command is run, the file is opened.
// However a function returns, the file is closed and gone.
class Report {
  public:
    // The format's last conversion is the file.
    template <class Format, class... Args>
    Report(Run run, const ResultPath &path, Format, const Args &...args) : Report(path, nullptr) {
        runAndOpen(run, checkedFormat<Format, Args..., ResultPath>(), commandArg(args)..., path_.c_str());
    }
    // A report that an earlier command left.
    explicit Report(const ResultPath &path) : Report(path, nullptr) { open(); }
    ~Report();
    Report(const Report &) = delete;
    Report &operator=(const Report &) = delete;

    // Leaves the file in place afterwards.
    void keep() { keep_ = true; }

    explicit operator bool() const { return descriptor_ >= 0; }
    LineReader &lines() { return lines_; }
    template <size_t Size> bool next(char (&line)[Size]) { return lines_.next(line); }
    template <size_t Longest> bool next(std::string_view *line) { return lines_.next<Longest>(line); }

  private:
    Report(const ResultPath &path, std::nullptr_t notYetOpen);
    void runAndOpen(Run run, const char *format, ...);
    void open();

    ResultPath path_;
    bool keep_ = false;
    int descriptor_ = -1;
    LineReader lines_;
};

// The output of a command, read through a pipe.
class CommandOutput {
  public:
    template <class Format, class... Args> explicit CommandOutput(Format, const Args &...args) {
        run(checkedFormat<Format, Args...>(), commandArg(args)...);
    }
    ~CommandOutput();
    CommandOutput(const CommandOutput &) = delete;
    CommandOutput &operator=(const CommandOutput &) = delete;

    explicit operator bool() const { return pipe_ != nullptr; }
    LineReader &lines() { return lines_; }
    template <size_t Size> bool next(char (&line)[Size]) { return lines_.next(line); }

  private:
    void run(const char *format, ...);

    FILE *pipe_ = nullptr;
    LineReader lines_;
};

} // namespace wlbrcm

#endif
