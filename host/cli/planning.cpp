// Plans, asked of a running host or made where there is none.
#include "host/cli/calls.h"
#include "host/cli/starting.h"
#include "host/control/gateway_lock.h"

namespace wlhost {
namespace {

Status showPlanned(Call call, const json &plan) {
    call.command = findCommand("plan");
    showResult(call, plan);
    return call.command->meaning(plan);
}

json planFirstStart(const Call &call) {
    Config config = Config::load(absolutePath(call.args["config"]));
    GatewayLock lock; // as one that serves nobody
    return planStart(libraryName(call.args.value("library", "")), config, call.args.value("fresh", false));
}

json planWithoutHost(const Call &call) {
    if (!call.args.contains("config"))
        throw Failure(Status::kEnvironment, call.socket, "no host, whose configuration could be planned again",
                      "name a configuration file, or start one with: wlhost run CONFIG");
    return planFirstStart(call);
}

} // namespace

Status askForPlan(const Call &call) {
    json plan;
    try {
        plan = resultFrom(call.socket, requestOf(call), call.timeout);
    } catch (const Failure &failure) {
        if (failure.status != Status::kEnvironment) // there is no host
            throw;
        plan = planWithoutHost(call);
    }
    return showPlanned(call, plan);
}

Status planTheRun(const Call &call) { return showPlanned(call, planFirstStart(call)); }

Status askForReload(const Call &call) {
    if (!call.args.value("dry_run", false))
        return askAndWait(call);
    return showPlanned(call, resultFrom(call.socket, requestOf(call), call.timeout));
}

} // namespace wlhost
