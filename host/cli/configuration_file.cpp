// Commands that look at a configuration file.
#include <optional>

#include "host/cli/calls.h"
#include "host/cli/starting.h"
#include "host/config/configuration.h"
#include "host/config/fields.h"
#include "host/control/gateway_lock.h"

namespace wlhost {
namespace {

// What the radios of a running host say about it; null without one.
json warningsOfHost(const Call &call) {
    try {
        return resultFrom(call.socket, requestOf(call), call.timeout)["warnings"];
    } catch (const Failure &failure) {
        if (failure.status != Status::kEnvironment) // a host that cannot be reached leaves the file to be checked
            throw;
        return nullptr;
    }
}

// What those of this machine say.
json warningsOfMachine(const Call &call, const Config &config) {
    std::optional<GatewayLock> lock;
    try {
        lock.emplace();
    } catch (const Failure &failure) {
        const std::string text = std::string("warning: the radios were not asked: ") + failure.what();
        return {{{"path", ""}, {"line", nullptr}, {"value", nullptr}, {"allowed", ""}, {"text", text}}};
    }
    return warningsBeforeStart(libraryName(call.args.value("library", "")), config);
}

json warningsOnGateway(const Call &call, const Config &config) {
    json warnings = warningsOfHost(call);
    return !warnings.is_null() ? warnings : hasRadioInterface() ? warningsOfMachine(call, config) : json::array();
}

json warningsOf(const Call &call, const Config &config) {
    json rows = json::array();
    for (const Problem &problem : config.warnings)
        rows.push_back(warningRow(problem));
    for (json &row : warningsOnGateway(call, config))
        rows.push_back(std::move(row));
    return rows;
}

// With --json the one document for what is wrong and what is suspicious.
void printFindings(const json &error, const json &warnings) {
    std::printf("%s\n", dumped({{"error", error}, {"warnings", warnings}}, 2).c_str());
}

} // namespace

Status checkConfiguration(const Call &call) {
    const std::string file = call.args["config"];
    try {
        const Config config = Config::load(file);
        const json warnings = warningsOf(call, config);
        if (call.asJson) {
            printFindings(nullptr, warnings);
            return Status::kDone;
        }
        for (const json &warning : warnings)
            std::fprintf(stderr, "%s\n", warning["text"].get<std::string>().c_str());
        showResult(call, {{"config", file}, {"radios", config.radios.size()}});
        return Status::kDone;
    } catch (const Failure &failure) {
        if (!call.asJson)
            throw;
        json error = errorOf(failure);
        error.emplace("errors", json::array());
        printFindings(error, json::array());
        return failure.status;
    }
}

Status printSchema(const Call &) {
    std::printf("%s\n", dumped(configSchema(), 2).c_str());
    return Status::kDone;
}

} // namespace wlhost
