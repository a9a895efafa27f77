// What the module did, kept in memory: the last 10,000 entries, at most 8 MiB.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/base/json.h"
#include "host/base/times.h"
#include "host/tap/entry.h"

namespace wlhost {

class Journal {
  public:
    static constexpr size_t kMostEntries = 10000, kMostBytes = 8UL * 1024 * 1024;

    void add(const tap::Entry &entry);
    const std::deque<tap::Entry> &entries() const { return entries_; }
    size_t bytes() const { return bytes_; }

    // Called with each entry when it is added; one for files, one for followers.
    std::vector<std::function<void(const tap::Entry &)>> listeners;

  private:
    std::deque<tap::Entry> entries_;
    size_t bytes_ = 0;
};

// Of this process, as there is one module in it.
Journal &journal();

struct JournalFilter {
    bool failed = false;
    std::optional<uint64_t> operation;
    std::optional<WallTime> since;

    bool admits(const tap::Entry &entry) const;
};

// {"time","operation","request","function","kind","what","status","ms","stderr"}; secrets masked unless they are asked
// for.
json journalRow(const tap::Entry &entry, bool secrets = false);
// A line of a shell script that does the same again; what carries a secret is a comment without it.
std::string shellLine(const tap::Entry &entry, bool secrets);

} // namespace wlhost
