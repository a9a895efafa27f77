// A JSON file with comments, and where in it a value stands.
#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "host/base/failure.h"

namespace wlhost {

// Way from the root of a document to one value.
class Path {
  public:
    struct Step {
        std::string key;
        int index = -1; // element of an array; negative for a member of an object
    };

    Path operator/(const std::string &key) const;
    Path operator/(size_t index) const;
    const std::vector<Step> &steps() const { return steps_; }
    // "radios[0].ssids[2].key"
    std::string text() const;

  private:
    std::vector<Step> steps_;
};

// Lines of a document's values. A value is known by the number of what it stands in, and its step from there.
class Lines {
  public:
    // Number of a value, and whether it is new; one that is there already keeps its line. The root has number 0.
    std::pair<size_t, bool> add(size_t parent, const Path::Step &step, int line);
    int at(size_t number) const { return lines_[number]; }
    // Line of the value at `path`, or of the nearest thing around it that exists.
    int find(const Path &path) const;

  private:
    std::map<std::tuple<size_t, int, std::string>, size_t> numbers_;
    std::vector<int> lines_ = {1};
};

// A file of at most 1 MiB of UTF-8, with at most 64 brackets inside each other.
struct Document {
    std::string file;
    json root;
    Lines lines;

    // Throws a Failure with status 2 that names file, line and column when the file is none that can be read, or no
    // JSON, or a name stands twice in one object. What it shows of the file is escaped, and is never a secret.
    static Document load(const std::string &file);
    static Document parse(const std::string &file, const std::string &text);
};

} // namespace wlhost
