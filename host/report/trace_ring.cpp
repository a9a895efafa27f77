#include "host/report/trace_ring.h"

namespace wlhost {

namespace {

// A deque has blocks of 512 bytes, the first one before there is any entry: most operations are events with one or two.
constexpr size_t kDequeBlock = 512 + 16, kFirstRoom = kDequeBlock + 80, kInBlock = 512 / sizeof(Entry);

} // namespace

void TraceRing::begin(Operation operation) {
    if (open_)
        end(0);
    operation.number = next_++;
    operation.bytes += sizeof operation + kFirstRoom + operation.input.size();
    used_ += operation.bytes;
    if (operation.name == "initWlan" || operation.name == "reloadWlan")
        bringUps_[operation.radio] = operation.number;
    operations_.push_back(std::move(operation));
    open_ = true;
    makeRoom();
}

void TraceRing::end(int64_t result) {
    operations_.back().result = result;
    open_ = false;
    makeRoom();
}

Entry &TraceRing::add(Entry entry) {
    std::deque<Entry> &entries = operations_.back().entries;
    grew(entry.textBytes() + (entries.size() < kInBlock ? 0 : kDequeBlock / kInBlock));
    entries.push_back(std::move(entry));
    return entries.back();
}

void TraceRing::grew(size_t bytes) {
    operations_.back().bytes += bytes;
    used_ += bytes;
}

bool TraceRing::isKept(const Operation &operation) const {
    auto bringUp = bringUps_.find(operation.radio);
    return operation.number == 0 || (bringUp != bringUps_.end() && bringUp->second == operation.number) ||
           &operation == &operations_.back();
}

void TraceRing::makeRoom() {
    for (auto one = operations_.begin(); used_ > limit_ && one != operations_.end();) {
        if (isKept(*one)) {
            ++one;
        } else {
            used_ -= one->bytes;
            one = operations_.erase(one);
        }
    }
}

} // namespace wlhost
