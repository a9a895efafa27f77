// What a trace expects of an operation's calls, and where the module does otherwise.
#pragma once

#include <vector>

#include "host/report/trace.h"

namespace wlhost {

// One place where the two part. An empty side: there was no such call.
struct Difference {
    uint64_t number; // of the operation
    std::string operation, radio;
    size_t position;                           // of the call within the operation, from 1
    std::string expected, got;                 // what the archive has, and what this module does
    std::string expectedFunction, gotFunction; // of the module, as far as its log tells
};

// Follows one operation after the other. Behind a difference it goes on at the next equal entry.
class Script {
  public:
    void begin(const Operation &operation);
    // The entry that answers this call; null when the operation has none left that is equal.
    const Entry *next(const Entry &call);
    // Calls that are still expected now will not come.
    void end(int64_t result);

    const std::vector<Difference> &differences() const { return differences_; } // the first ones
    size_t differenceCount() const { return differenceCount_; }
    size_t matched() const { return matched_; }

  private:
    void note(const Entry *expected, const Entry *got);
    size_t search(const Entry &call) const;

    const Operation *operation_ = nullptr;
    std::vector<bool> used_, told_; // entries that were matched, and those named as missed
    size_t at_ = 0;
    size_t matched_ = 0, differenceCount_ = 0;
    std::vector<Difference> differences_;
};

} // namespace wlhost
