#include "host/base/failure.h"

namespace wlhost {

const char *statusWord(Status status) {
    switch (status) {
    case Status::kUsage:
        return "usage";
    case Status::kNotFound:
        return "not-found";
    case Status::kTimeout:
        return "timeout";
    case Status::kEnvironment:
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
