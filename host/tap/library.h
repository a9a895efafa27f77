// A loaded library as the loader's tables describe it.
#pragma once

#include <link.h>

#include <cstddef>
#include <functional>

namespace wlhost::tap {

struct CodeRange {
    uintptr_t begin = 0, end = 0;
    bool contains(const void *place) const {
        const auto address = reinterpret_cast<uintptr_t>(place);
        return address >= begin && address < end;
    }
};

class LoadedLibrary {
  public:
    // The one that a place lies in. Throws a Failure with status 7 when there is none.
    explicit LoadedLibrary(const void *place);

    // The part that the place lies in.
    const CodeRange &code() const { return code_; }
    // Calls back with the name of each import and what the loader has bound it to.
    void eachImport(const std::function<void(const char *name, const void *bound)> &each) const;

  private:
    bool take(const dl_phdr_info &info, const void *place);
    ElfW(Addr) entry(int64_t tag) const;
    template <typename Record> const Record *table(int64_t tag) const;
    template <typename Record, typename Each> void eachIn(int64_t tag, int64_t sizeTag, const Each &each) const;

    CodeRange code_;
    ElfW(Addr) base_ = 0;
    const ElfW(Dyn) *dynamic_ = nullptr;
};

// Whether something stands in this program itself, not in a library.
bool isOwn(const void *place);

} // namespace wlhost::tap
