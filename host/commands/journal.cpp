#include "host/journal/journal.h"

#include "host/base/failure.h"
#include "host/base/log.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/control/dispatch.h"

namespace wlhost {
namespace {

JournalFilter filterOf(const json &args) {
    JournalFilter filter;
    filter.failed = flagArg(args, "failed");
    if (args.contains("operation"))
        filter.operation = args["operation"].get<uint64_t>();
    if (args.contains("since"))
        filter.since = timeOf(args["since"]);
    return filter;
}

} // namespace

json journalEntries(Host &, const json &args) {
    const bool secrets = flagArg(args, "secrets");
    if (secrets && askingUser() != 0)
        throw Failure(Status::kFailed, "--secrets", "permission denied: secrets are shown to root alone",
                      "ask as root, or without --secrets");
    const JournalFilter filter = filterOf(args);
    json rows = json::array();
    std::string script = "#!/bin/sh\n";
    for (const tap::Entry &entry : journal().entries()) {
        if (!filter.admits(entry))
            continue;
        if (flagArg(args, "shell"))
            script += shellLine(entry, secrets) + "\n";
        else if (!flagArg(args, "follow") || filter.since)
            rows.push_back(journalRow(entry, secrets));
    }
    return flagArg(args, "shell") ? json{{"script", script}} : rows;
}

const char *journalTopic(const json &args) {
    if (!flagArg(args, "follow") || flagArg(args, "shell"))
        return nullptr;
    return flagArg(args, "secrets") ? "journal with secrets" : "journal";
}

json changeLogLevel(Host &, const json &args) {
    setLogLevel(logLevelOf(textArg(args, "level")));
    return {{"level", wordOf(logLevel())}};
}

} // namespace wlhost
