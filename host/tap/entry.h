// One thing that the module did to the world.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace wlhost::tap {

enum class Kind { kCommand, kDriver, kNvram, kPause, kDatagram };
const char *wordOf(Kind kind);

struct Entry {
    Kind kind = Kind::kCommand;
    // The command; KEY=VALUE or, for a removal, KEY; the seconds of a pause; what a datagram carried.
    std::string what;
    bool removes = false;   // of a variable
    int status = 0;         // exit status; errno of a datagram that was not sent
    std::string said;       // on stderr, the first 4 KiB
    std::string function;   // the module's
    uint64_t operation = 0; // its number
    std::string request;    // of the client that caused it
    std::chrono::system_clock::time_point time;
    std::chrono::microseconds duration{0};
};

} // namespace wlhost::tap
