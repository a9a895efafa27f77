// Commands that look at a configuration file alone.
#include "host/cli/calls.h"
#include "host/config/configuration.h"
#include "host/config/fields.h"

namespace wlhost {

namespace {

// With --json the one document for what is wrong and what is suspicious.
void printFindings(const json &error, const std::vector<Problem> &warnings) {
    json rows = json::array();
    for (const Problem &problem : warnings) {
        json row = problemRow(problem);
        row["text"] = problem.text;
        rows.push_back(row);
    }
    std::printf("%s\n", dumped({{"error", error}, {"warnings", rows}}, 2).c_str());
}

} // namespace

Status checkConfiguration(const Call &call) {
    const std::string file = call.args["config"];
    try {
        const Config config = Config::load(file);
        for (const Problem &problem : config.warnings)
            if (!call.asJson)
                std::fprintf(stderr, "%s\n", problem.text.c_str());
        if (call.asJson)
            printFindings(nullptr, config.warnings);
        else
            showResult(call, {{"config", file}, {"radios", config.radios.size()}});
        return Status::kDone;
    } catch (const Failure &failure) {
        if (!call.asJson)
            throw;
        json error = errorOf(failure);
        error.emplace("errors", json::array());
        printFindings(error, {});
        return failure.status;
    }
}

Status printSchema(const Call &) {
    std::printf("%s\n", dumped(configSchema(), 2).c_str());
    return Status::kDone;
}

} // namespace wlhost
