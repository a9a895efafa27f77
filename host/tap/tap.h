// The tap: the host sees what the module does to the world, holds it back or plays it back. It stands in front of the
// functions that the module imports, so the module is the one that ships.
#pragma once

#include <cstdint>
#include <string>

#include "host/tap/handler.h"

namespace wlhost::tap {

// Puts the tap in front of a module, after dlopen() and before its first call. `symbol` is any function of it. Throws a
// Failure with status 7 when an import of the module would go past the tap.
void attach(void *library, const void *symbol);
// Whether the tap stands before the function of this name.
bool isTapped(const char *name);

// The handler of the module's calls; the one that passes them on when none was set. It stays the caller's own.
Handler &handler();
void setHandler(Handler *handler);
// Sees each call of the module before the handler in force, whichever that is, and hands it on to it. Null for none.
void setRecorder(Handler *recorder);

// The handler for a call that returns to this address: the module's calls alone are handled, others are passed on.
Handler &handlerFor(const void *returnAddress);

// What the host is doing with the module while this object lives. The innermost one is the cause of what is done.
class Operation {
  public:
    // `request` is what the client asked for, such as "reload wl0"; without one it is that of the operation around it.
    explicit Operation(std::string name, std::string request = {});
    ~Operation();
    Operation(const Operation &) = delete;
    Operation &operator=(const Operation &) = delete;

    uint64_t number() const { return number_; }
    const std::string &name() const { return name_; }
    const std::string &request() const { return request_; }
    // The innermost; number 0 and no texts when there is none.
    static const Operation &current();

  private:
    struct None {};
    explicit Operation(None) {}

    Operation *around_ = nullptr;
    uint64_t number_ = 0;
    std::string name_, request_;
};

// The module's log callback tells each line, with the function that wrote it.
void heard(const char *function, const std::string &text);
// The function that runs a command: the one that has just logged it, else the operation.
std::string functionOf(const std::string &command);

} // namespace wlhost::tap
