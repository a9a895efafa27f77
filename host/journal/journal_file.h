// The journal as a file of JSON lines, readable by its owner alone.
#pragma once

#include <string>

#include "host/base/fd.h"
#include "host/tap/entry.h"

namespace wlhost {

// A file that has grown to its limit becomes FILE.1, in the place of the one before.
class JournalFile {
  public:
    static constexpr size_t kLimit = 16UL * 1024 * 1024;

    // Goes on behind what the file holds. Throws a Failure with status 7 when it cannot be written.
    explicit JournalFile(std::string path, size_t limit = kLimit);
    // A full disk costs the entries that do not fit, and one line of the log.
    void add(const tap::Entry &entry);

  private:
    void open();
    void rotate();

    std::string path_;
    size_t limit_, size_ = 0;
    Fd fd_;
    bool failed_ = false;
};

} // namespace wlhost
