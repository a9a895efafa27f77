// What is told beside a result.
#pragma once

#include <cstdio>
#include <string>

#include "host/base/failure.h"

namespace wlhost {

// What is under way, on stderr: one line that changes on a terminal, else a line every ten seconds.
class Progress {
  public:
    Progress() = default;
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    void tell(int seconds, const std::string &text);
    // A line of its own, on a terminal only: where others print too.
    static void step(const std::string &text);

  private:
    bool shown_ = false;
};

// Before anything is opened or printed: a closed pipe becomes an error of writing instead of an end without a word, and
// a stream that the caller closed stays one that cannot be used, whatever file would have got its number.
void prepareStreams();
// The exit status of a command: what it printed must have gone out, else this tells so and is status 1.
Status afterOutput(Status status, FILE *out = stdout);

// Columns that a table on stdout may have: the terminal's, else COLUMNS; 0 for any number, where nobody looks.
size_t outputWidth();

// Prints an error: the document on stdout with `asJson`, in one line where others stood before it, else lines on
// stderr.
void printError(const Failure &failure, bool asJson, bool oneLine = false);

} // namespace wlhost
