#include "host/tap/library.h"

#include <dlfcn.h>

#include "host/base/failure.h"

namespace wlhost::tap {
namespace {

// The loader's tables tell places as numbers.
template <typename Record> const Record *at(ElfW(Addr) address) {
    return reinterpret_cast<const Record *>(address); // NOLINT(performance-no-int-to-ptr)
}

template <typename Record> size_t symbolOf(const Record &relocation) {
    return relocation.r_info >> (sizeof relocation.r_info == 8 ? 32 : 8);
}

} // namespace

LoadedLibrary::LoadedLibrary(const void *place) {
    auto visit = [&](const dl_phdr_info &info) { return take(info, place); };
    auto call = [](dl_phdr_info *info, size_t, void *data) {
        return (*static_cast<decltype(visit) *>(data))(*info) ? 1 : 0;
    };
    if (dl_iterate_phdr(call, &visit) == 0)
        throw Failure(Status::kEnvironment, "module", "is not among the loaded libraries");
}

bool LoadedLibrary::take(const dl_phdr_info &info, const void *place) {
    bool found = false;
    const ElfW(Dyn) *dynamic = nullptr;
    for (int i = 0; i < info.dlpi_phnum; ++i) {
        const ElfW(Phdr) &part = info.dlpi_phdr[i];
        const ElfW(Addr) start = info.dlpi_addr + part.p_vaddr;
        const CodeRange range{start, start + part.p_memsz};
        if (part.p_type == PT_DYNAMIC)
            dynamic = at<ElfW(Dyn)>(start);
        if (part.p_type != PT_LOAD || !range.contains(place))
            continue;
        found = true;
        code_ = range;
        base_ = info.dlpi_addr;
    }
    if (found)
        dynamic_ = dynamic;
    return found;
}

ElfW(Addr) LoadedLibrary::entry(int64_t tag) const {
    for (const ElfW(Dyn) *one = dynamic_; one && one->d_tag != DT_NULL; ++one)
        if (one->d_tag == tag)
            return one->d_un.d_ptr;
    return 0;
}

// Some loaders have added the base to the addresses in the tables, some have not.
template <typename Record> const Record *LoadedLibrary::table(int64_t tag) const {
    const ElfW(Addr) address = entry(tag);
    return at<Record>(address != 0 && address < base_ ? address + base_ : address);
}

template <typename Record, typename Each>
void LoadedLibrary::eachIn(int64_t tag, int64_t sizeTag, const Each &each) const {
    const auto *symbols = table<ElfW(Sym)>(DT_SYMTAB);
    const char *names = table<char>(DT_STRTAB);
    const auto *relocations = table<Record>(tag);
    for (size_t i = 0; relocations && i < entry(sizeTag) / sizeof(Record); ++i) {
        const ElfW(Sym) &symbol = symbols[symbolOf(relocations[i])];
        if (symbolOf(relocations[i]) != 0 && symbol.st_shndx == SHN_UNDEF)
            each(names + symbol.st_name, at<void>(*at<ElfW(Addr)>(base_ + relocations[i].r_offset)));
    }
}

void LoadedLibrary::eachImport(const std::function<void(const char *name, const void *bound)> &each) const {
    if (entry(DT_PLTREL) == DT_RELA)
        eachIn<ElfW(Rela)>(DT_JMPREL, DT_PLTRELSZ, each);
    else
        eachIn<ElfW(Rel)>(DT_JMPREL, DT_PLTRELSZ, each);
    eachIn<ElfW(Rela)>(DT_RELA, DT_RELASZ, each);
    eachIn<ElfW(Rel)>(DT_REL, DT_RELSZ, each);
}

bool isOwn(const void *place) {
    Dl_info found, own;
    return dladdr(place, &found) != 0 && dladdr(reinterpret_cast<const void *>(&isOwn), &own) != 0 &&
           found.dli_fbase == own.dli_fbase;
}

} // namespace wlhost::tap
