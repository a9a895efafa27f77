// What is wrong with a configuration.
#pragma once

#include <string>
#include <vector>

#include "host/config/document.h"

namespace wlhost {

struct Problem {
    Path path;
    int line;
    std::string text;    // the whole line of a message: file, line, path, what is wrong, what would do
    json value;          // what stands there; null for lists, objects and names that are not known, a mask for secrets
    std::string allowed; // may be empty
};

// As programs get it: `path`, `line`, `value`, `allowed`.
json problemRow(const Problem &problem);
// The same and its `text`.
json warningRow(const Problem &problem);

// Everything that is wrong with one document, so that the user mends it in one go; and what is allowed, but surely a
// mistake. What is beyond the first fifty is only counted.
class Problems {
  public:
    explicit Problems(const Document &document) : document_(document) {}
    void add(const Path &path, const std::string &what, const std::string &allowed = {});
    void warn(const Path &path, const std::string &what);
    bool empty() const { return errors_.empty(); }
    bool full() const;
    // Counts one that nobody will read.
    void addUnread() { ++unread_; }
    // The failure's details are `{"errors": [...]}`.
    void throwIfAny() const;
    const std::vector<Problem> &warnings() const { return warnings_; }

  private:
    Problem problemAt(const Path &path, const char *mark, const std::string &what, const std::string &allowed) const;

    const Document &document_;
    std::vector<Problem> errors_, warnings_;
    size_t unread_ = 0;
};

} // namespace wlhost
