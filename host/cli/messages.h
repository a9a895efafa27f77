// What is told beside a result.
#pragma once

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

  private:
    bool shown_ = false;
};

// Prints an error: the document on stdout with `asJson`, else lines on stderr.
void printError(const Failure &failure, bool asJson);

} // namespace wlhost
