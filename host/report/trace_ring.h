// What is kept of a host's life for a report: the module's start, each radio's last bring-up, and as much of the rest
// as fits, the latest first.
#pragma once

#include <list>
#include <map>

#include "host/report/trace.h"

namespace wlhost {

class TraceRing {
  public:
    static constexpr size_t kDefaultLimit = 8 << 20; // bytes

    explicit TraceRing(size_t limit = kDefaultLimit) : limit_(limit) {}

    // The operations that follow begin with the module's start. One that is not ended yet is ended by the next.
    void begin(Operation operation);
    void end(int64_t result);
    // Whether an operation runs: what the module does otherwise is nobody's.
    bool isOpen() const { return open_; }
    // The reference holds until the next operation begins.
    Entry &add(Entry entry);
    // An entry of the running operation got longer.
    void grew(size_t bytes);

    const std::list<Operation> &operations() const { return operations_; }
    uint64_t begun() const { return next_; }
    size_t bytes() const { return used_; }

  private:
    bool isKept(const Operation &operation) const;
    void makeRoom();

    size_t limit_, used_ = 0;
    uint64_t next_ = 0;
    bool open_ = false;
    std::list<Operation> operations_;
    std::map<std::string, uint64_t> bringUps_; // number of each radio's last one
};

} // namespace wlhost
