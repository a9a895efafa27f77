#include "host/tap/tap.h"

#include <dlfcn.h>
#include <link.h>

#include <cstring>
#include <string>

#include "host/base/failure.h"

namespace wlhost::tap {
namespace {

using Address = ElfW(Addr);

Handler passOn;
Handler *inForce = &passOn;
Handler *recorder = nullptr;

Operation *innermost = nullptr;
uint64_t operations = 0;

// The last line of the module's log.
std::string lastFunction, lastText;

// Where the module's code lies.
Address textBegin = 0, textEnd = 0;

template <typename Record> size_t symbolOf(const Record &entry) {
    return entry.r_info >> (sizeof entry.r_info == 8 ? 32 : 8);
}

// A loaded library as the loader's tables describe it.
struct Library {
    Address base = 0;
    const ElfW(Dyn) *dynamic = nullptr;
    Address wanted = 0; // an address within

    bool contains(const dl_phdr_info &info) {
        bool found = false;
        for (int i = 0; i < info.dlpi_phnum; ++i) {
            const ElfW(Phdr) &part = info.dlpi_phdr[i];
            Address start = info.dlpi_addr + part.p_vaddr;
            if (part.p_type == PT_DYNAMIC)
                dynamic = reinterpret_cast<const ElfW(Dyn) *>(start);
            if (part.p_type != PT_LOAD || wanted < start || wanted >= start + part.p_memsz)
                continue;
            found = true;
            base = info.dlpi_addr;
            textBegin = start;
            textEnd = start + part.p_memsz;
        }
        return found;
    }

    // The entry of the dynamic section, as an address; the loader has added the base on some systems only.
    Address entry(ElfW(Sxword) tag) const {
        for (const ElfW(Dyn) *at = dynamic; at->d_tag != DT_NULL; ++at)
            if (at->d_tag == tag)
                return at->d_un.d_ptr;
        return 0;
    }
    template <typename Record> const Record *table(ElfW(Sxword) tag) const {
        Address at = entry(tag);
        return reinterpret_cast<const Record *>(at != 0 && at < base ? at + base : at);
    }

    // Calls back with the name and the bound address of every import in one table of relocations.
    template <typename Record, typename Each> void eachImport(ElfW(Sxword) tag, size_t bytes, Each each) const {
        const auto *symbols = table<ElfW(Sym)>(DT_SYMTAB);
        const char *names = table<char>(DT_STRTAB);
        const auto *records = table<Record>(tag);
        for (size_t i = 0; records && i < bytes / sizeof(Record); ++i) {
            const ElfW(Sym) &symbol = symbols[symbolOf(records[i])];
            if (symbolOf(records[i]) != 0 && symbol.st_shndx == SHN_UNDEF)
                each(names + symbol.st_name, *reinterpret_cast<const Address *>(base + records[i].r_offset));
        }
    }
    template <typename Each> void eachImport(Each each) const {
        if (entry(DT_PLTREL) == DT_RELA)
            eachImport<ElfW(Rela)>(DT_JMPREL, entry(DT_PLTRELSZ), each);
        else
            eachImport<ElfW(Rel)>(DT_JMPREL, entry(DT_PLTRELSZ), each);
        eachImport<ElfW(Rela)>(DT_RELA, entry(DT_RELASZ), each);
        eachImport<ElfW(Rel)>(DT_REL, entry(DT_RELSZ), each);
    }
};

// Whether something stands in this program itself, not in a library.
bool isOwn(Address address) {
    Dl_info found, own;
    return dladdr(reinterpret_cast<const void *>(address), &found) != 0 &&
           dladdr(reinterpret_cast<const void *>(&isOwn), &own) != 0 && found.dli_fbase == own.dli_fbase;
}

bool isTapped(const char *name) {
#define WLHOST_NAME(function) #function,
    static const char *const kNames[] = {WLHOST_TAPPED(WLHOST_NAME)};
#undef WLHOST_NAME
    for (const char *one : kNames)
        if (std::strcmp(one, name) == 0)
            return true;
    return false;
}

} // namespace

void attach(void *library, const void *symbol) {
    Library module;
    module.wanted = reinterpret_cast<Address>(symbol);
    auto visit = [](dl_phdr_info *info, size_t, void *data) {
        return static_cast<Library *>(data)->contains(*info) ? 1 : 0;
    };
    if (dl_iterate_phdr(visit, &module) == 0)
        throw Failure(Status::kEnvironment, "tap", "the module is not among the loaded libraries");
    module.eachImport([&](const char *name, Address bound) {
        if (isTapped(name) && !isOwn(bound))
            throw Failure(Status::kEnvironment, name, "the module's calls of this function go past the host",
                          "wlhost was built without exporting it, or another library stands before it");
    });
    takePlatform(library);
}

Handler &handler() { return *inForce; }
void setHandler(Handler *handler) { inForce = handler ? handler : &passOn; }
void setRecorder(Handler *outermost) { recorder = outermost; }

Handler &handlerFor(const void *returnAddress) {
    auto address = reinterpret_cast<Address>(returnAddress);
    if (address < textBegin || address >= textEnd)
        return passOn;
    return recorder ? *recorder : *inForce;
}

Operation::Operation(std::string name, std::string request)
    : around_(innermost), number_(++operations), name_(std::move(name)), request_(std::move(request)) {
    if (request_.empty())
        request_ = current().request_;
    innermost = this;
}

Operation::~Operation() {
    inForce->settle();
    innermost = around_;
}

const Operation &Operation::current() {
    static const Operation kNone{None{}};
    return innermost ? *innermost : kNone;
}

void heard(const char *function, const std::string &text) {
    lastFunction = function;
    lastText = text;
    if (recorder)
        recorder->heard(function, text);
    inForce->heard(function, text);
}

std::string functionOf(const std::string &command) {
    return lastText == "cmd = " + command ? lastFunction : Operation::current().name();
}

} // namespace wlhost::tap
