// The loaded module: what it registered with this host.
#pragma once

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <wlbrcm/wlbrcm.h>

namespace wlhost {

struct Free {
    void operator()(void *block) const { std::free(block); }
};
// A block that the module handed out.
template <typename Record> using Block = std::unique_ptr<Record, Free>;

// An array that the module hands out, with its count.
template <typename Record> class List {
  public:
    List() = default;
    ~List() { std::free(records_); }
    List(const List &) = delete;
    List &operator=(const List &) = delete;

    Record **place() { return &records_; }
    int *countPlace() { return &count_; }
    const Record *begin() const { return records_; }
    const Record *end() const { return records_ + size(); }
    size_t size() const { return records_ && count_ > 0 ? static_cast<size_t>(count_) : 0; }

  private:
    Record *records_ = nullptr;
    int count_ = 0; // meaningful only with records
};

struct Module {
    WlModuleOps *ops = nullptr;
    std::vector<WlIntf *> radios;
    WlEvtHandler *events = nullptr;
    const char *(*phyType)(const char *ifname) = nullptr; // null when the library does not export it
    int (*checkPin)(const char *pin) = nullptr;           // null when the library does not export it
    // Setters of a BSS that act at once: limits in kbit/s, 0 for none. Null when the library does not export them.
    int (*setUpstreamRate)(const char *ifname, int kbit) = nullptr;
    int (*setDownstreamRate)(const char *ifname, int kbit) = nullptr;
    int (*setFlowCache)(const char *ifname, int use) = nullptr;
    const char *(*nvramGet)(const char *key) = nullptr; // the platform's own, past anything that stands before it
    void *handle = nullptr;                             // of the library
    std::string library;

    WlIntf *find(const std::string &radio) const;
    // Names of the radios that exist.
    std::vector<std::string> names() const;
};

// Loads the library and lets it register. The module stays loaded for the life of the process, as its ABI wants.
// Throws a Failure with status 7 when there is no such library or it is no module.
Module &loadModule(const std::string &library);

// Library by option, else by environment, else by its soname.
std::string libraryName(const std::string &option);

} // namespace wlhost

extern "C" {
// For the module: replaces every occurrence of `from` in place. The caller's buffer has room for the growth.
// The number of replacements.
__attribute__((visibility("default"))) int qvUtilStrReplace(char *text, const char *from, const char *to);
}
