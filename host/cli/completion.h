// What the shell offers for the word that is being typed.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/base/json.h"

namespace wlhost {

// In place of words: the names of files.
constexpr const char *kFileNames = "<files>";

// What may stand in the place of the last word, whatever has been typed of it. `ask` gets a request for the host at a
// socket (empty for the usual one) and gives its result.
std::vector<std::string> candidatesFor(const std::vector<std::string> &line,
                                       const std::function<json(const std::string &socket, const json &request)> &ask);

} // namespace wlhost
