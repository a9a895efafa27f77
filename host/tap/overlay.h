// What the store and the files would hold if what was held back had been done.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "host/base/fd.h"

namespace wlhost::tap {

// Variables that were set or unset, over those that are stored.
class StoreOverlay {
  public:
    using Value = std::optional<std::string>; // nothing when it is not stored

    void set(const std::string &key, Value value) { changed_[key] = std::move(value); }
    // Null when the overlay does not know the variable.
    const Value *find(const std::string &key) const {
        auto known = changed_.find(key);
        return known == changed_.end() ? nullptr : &known->second;
    }

  private:
    std::map<std::string, Value> changed_;
};

// Files that were written or removed, in memory; each stays itself until it is removed here.
class FileOverlay {
  public:
    // -1 with errno, or a descriptor; `real` opens a file that the overlay does not know.
    template <typename Real> int open(const std::string &path, int flags, Real real) {
        int fd = openKept(path, flags);
        return fd == kUnknown ? real() : fd;
    }
    // 0, or -1 with errno. The file itself stays.
    int remove(const std::string &path);
    bool exists(const std::string &path) const;
    void setMode(const std::string &path, int mode);
    // A new empty file in the place of what the path holds; its descriptor, which children inherit, or -1 with errno.
    int create(const std::string &path);
    // Makes the files that do not exist outside.
    void writeOut() const;

  private:
    static constexpr int kUnknown = -2;
    struct Kept {
        Fd fd; // none when the file was removed
        int mode = 0644;
    };
    int openKept(const std::string &path, int flags);

    std::map<std::string, Kept> files_;
};

} // namespace wlhost::tap
