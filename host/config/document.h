// A JSON file with comments, and where in it a value stands.
#pragma once

#include <string>
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

struct Document {
    std::string file;
    std::string text;
    json root;

    // Throws a Failure that names file, line and column when the file is missing or no JSON, or a name stands twice.
    static Document load(const std::string &file);
    static Document parse(const std::string &file, const std::string &text);
    // Line of the value at `path`, or of the nearest thing around it that exists.
    int lineOf(const Path &path) const;
};

// Everything that is wrong with one document, so that the user mends it in one go.
class Problems {
  public:
    explicit Problems(const Document &document) : document_(document) {}
    void add(const Path &path, const std::string &text);
    bool empty() const { return lines_.empty(); }
    void throwIfAny() const;

  private:
    const Document &document_;
    std::vector<std::string> lines_;
};

} // namespace wlhost
