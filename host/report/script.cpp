#include "host/report/script.h"

#include <algorithm>

namespace wlhost {

void Script::begin(const Operation &operation) {
    operation_ = &operation;
    used_.assign(operation.entries.size(), false);
    told_ = used_;
    at_ = 0;
}

void Script::note(const Entry *expected, const Entry *got) {
    constexpr size_t kMostKept = 100;
    if (++differenceCount_ > kMostKept)
        return;
    differences_.push_back({operation_->number, operation_->name, operation_->radio, at_ + 1,
                            expected ? describe(*expected) : "", got ? describe(*got) : "",
                            expected ? expected->function : "", got ? got->function : ""});
}

// The nearest equal entry that no call had yet: ahead, else among those that were passed over.
size_t Script::search(const Entry &call) const {
    const auto &entries = operation_->entries;
    auto fits = [&](size_t i) { return !used_[i] && entries[i].wantsSameAs(call); };
    for (size_t i = at_; i < entries.size(); ++i)
        if (fits(i))
            return i;
    for (size_t i = at_; i-- > 0;)
        if (fits(i))
            return i;
    return entries.size();
}

const Entry *Script::next(const Entry &call) {
    const auto &entries = operation_->entries;
    while (at_ < entries.size() && used_[at_])
        ++at_;
    const size_t found = search(call);
    const bool none = found == entries.size();
    // The entry that this call stands in the place of. One that a difference has named is not missed again.
    size_t missed = at_;
    while (!none && missed < found && (used_[missed] || told_[missed]))
        ++missed;
    if (none || missed != found) {
        const bool expects = missed < entries.size() && !told_[missed];
        note(expects ? &entries[missed] : nullptr, &call);
        if (expects)
            told_[missed] = true;
    }
    if (none)
        return nullptr;
    used_[found] = true;
    at_ = found + 1;
    ++matched_;
    return &entries[found];
}

void Script::end(int64_t result) {
    for (at_ = 0; at_ < used_.size(); ++at_)
        if (!used_[at_] && !told_[at_])
            note(&operation_->entries[at_], nullptr);
    if (result != operation_->result) {
        Entry expected, got;
        expected.call = "returns " + std::to_string(operation_->result);
        got.call = "returns " + std::to_string(result);
        note(&expected, &got);
    }
}

} // namespace wlhost
