// The archive of `report`: a tar.gz of JSON documents, masked; read back by `replay`.
#pragma once

#include <string>
#include <vector>

#include "host/report/trace.h"

namespace wlhost {

constexpr int kArchiveFormat = 1; // of the whole; a reader refuses a later one
constexpr int kTapVersion = 1;    // of how calls are told; likewise

constexpr size_t kLargestArchive = 16 << 20; // bytes of the tar.gz
constexpr size_t kLargestContent = 64 << 20; // bytes of what it holds

// What the module did and what stands beside it.
struct Archive { // NOLINT(bugprone-exception-escape): what json declares not to throw
    json about;  // versions, the time, what was lost
    json configuration, nvram, verify, doctor;
    std::vector<json> operations; // of operationsToJson()
    std::vector<json> journal;    // rows
};

// `moduleText`: the bytes of the module's library, whose own words are no secrets.
std::string packArchive(Archive archive, const std::string &moduleText, long time);

struct ReadArchive {
    json about;
    std::deque<Operation> operations;
};
// Throws a Failure with status 2 when it is no archive, is cut, or was made by a later version.
ReadArchive readArchive(const std::string &bytes);

} // namespace wlhost
