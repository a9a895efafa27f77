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
    json error = {{"code", statusWord(failure.status)},
                  {"where", known(failure.where)},
                  {"text", failure.what()},
                  {"hint", known(failure.hint)}};
    if (failure.details.is_object())
        error.update(failure.details);
    return error;
}

Failure failureOf(Status status, const json &error) {
    auto known = [&](const char *key) {
        json member = error.value(key, json());
        return member.is_string() ? member.get<std::string>() : std::string();
    };
    json details = error;
    for (const char *key : {"code", "where", "text", "hint"})
        details.erase(key);
    return {status, known("where"), known("text"), known("hint"), std::move(details)};
}

} // namespace wlhost
