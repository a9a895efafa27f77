// What the module was asked to do, and each of its calls into the world meanwhile with the answer it got: the part of
// an archive that replay follows. Nothing in it depends on a processor's word size or byte order.
#pragma once

#include <cstdint>
#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/json.h"

namespace wlhost {

// One call of a function of the platform. `what` and `value` say what the module wanted, and are compared; the rest is
// what it got.
struct Entry {
    std::string call;  // "system"
    std::string what;  // command, variable, file, address
    std::string value; // what is written or sent
    int64_t result = 0;
    std::string error;                 // name of errno, when it failed
    std::optional<std::string> answer; // output, content, value, datagram; none is not the same as empty
    std::string function;              // of the module, as far as its log tells

    bool wantsSameAs(const Entry &other) const {
        return call == other.call && what == other.what && value == other.value;
    }
    // What its texts take of the heap, about.
    size_t textBytes() const {
        constexpr size_t kInPlace = 15, kOfBlock = 16;
        size_t bytes = answer ? answer->size() + kOfBlock : 0;
        for (const std::string *text : {&what, &value, &error, &function})
            bytes += text->capacity() > kInPlace ? text->capacity() + kOfBlock : 0;
        return bytes;
    }
};

// One operation of the module's table, with its arguments by name.
struct Operation {
    uint64_t number = 0; // counted from the module's start, which is 0
    std::string name;
    std::string radio;        // empty when it concerns none
    std::string request;      // of the client that caused it, without secrets
    double time = 0;          // seconds since 1970
    bool dry = false;         // its commands and writes were held back
    std::string input = "{}"; // arguments as JSON; a text, since it is kept much longer than it is used
    // The radio's record as JSON, when it is an argument; shared by the operations between two changes of it.
    std::shared_ptr<const std::string> record;
    int64_t result = 0;
    std::deque<Entry> entries;
    size_t bytes = 0;
};

json entryToJson(const Entry &entry);
// A record that an earlier operation had stands there alone: {"as_in": its number}.
std::vector<json> operationsToJson(const std::list<Operation> &operations);
// Behind those that were read before. Throws a Failure when a member is missing or of another kind.
Operation operationFromJson(json from, const std::deque<Operation> &before);
// All arguments.
json inputOf(const Operation &operation);

// Name of an errno value and back; numbers differ between processors.
std::string errorName(int number);
int errorNumber(std::string_view name);

// "system wlctl -i wl0 up", for a person.
std::string describe(const Entry &entry);

} // namespace wlhost
