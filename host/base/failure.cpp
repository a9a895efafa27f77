#include "host/base/failure.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace wlhost {
namespace {

std::string userName(uid_t user) {
    const passwd *entry = getpwuid(user);
    return entry ? entry->pw_name : "of number " + std::to_string(user);
}

} // namespace

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

Failure systemFailure(Status status, const std::string &where, int error, const std::string &hint,
                      const std::string &path) {
    if (error != EACCES && error != EPERM)
        return {status, where, std::strerror(error), hint};
    struct stat entry {};
    std::string owner = !path.empty() && lstat(path.c_str(), &entry) == 0 && entry.st_uid != geteuid()
                            ? "it belongs to user " + userName(entry.st_uid) + "; run wlhost as that user"
                            : "run wlhost as root";
    return {Status::kEnvironment, where, "no permission for user " + userName(geteuid()),
            hint.empty() ? owner : owner + ", or " + hint};
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
