#include "host/base/failure.h"

namespace wlhost {

const char *statusWord(int status) {
    switch (status) {
    case kUsage:
        return "usage";
    case kNotFound:
        return "not-found";
    case kTimeout:
        return "timeout";
    case kEnvironment:
        return "environment";
    default:
        return "failed";
    }
}

json errorOf(const Failure &failure) {
    auto known = [](const std::string &text) { return text.empty() ? json() : json(text); };
    return {{"code", statusWord(failure.status)},
            {"where", known(failure.where)},
            {"text", failure.what()},
            {"hint", known(failure.hint)}};
}

} // namespace wlhost
