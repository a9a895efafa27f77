// The one way in which anything in the host reports that it could not do what it was asked to.
#pragma once

#include <stdexcept>
#include <string>

#include "host/base/json.h"

namespace wlhost {

// Exit statuses of every command; the control socket carries them too.
enum class Status {
    kDone = 0,
    kFailed = 1,
    kUsage = 2,
    kNotFound = 3,
    kTimeout = 5,
    kEnvironment = 7,
    kWouldChange = 10 // of plans
};

// Word for a status in machine-readable errors.
const char *statusWord(Status status);

struct Failure : std::runtime_error {
    Status status;
    std::string where; // radio, interface, file or operation; may be empty
    std::string hint;  // what to do about it; may be empty
    json details;      // further members of the error document, for programs; may be null

    Failure(Status code, std::string place, const std::string &text, std::string advice = {}, json more = {})
        : std::runtime_error(text),
          status(code),
          where(std::move(place)),
          hint(std::move(advice)),
          details(std::move(more)) {}
};

// What the system refused, by errno. A refusal for want of permission names the user and whom `path`, unless it is
// empty, belongs to.
Failure systemFailure(Status status, const std::string &where, int error, const std::string &hint,
                      const std::string &path = {});

// The error document of a failure: `code`, `where`, `text` and `hint`, then its details.
json errorOf(const Failure &failure);
// The failure that such a document tells of.
Failure failureOf(Status status, const json &error);

} // namespace wlhost
