// What runs where a command is typed. Each gives the exit status, or throws a Failure.
#pragma once

#include <cstdio>
#include <functional>

#include "host/command_table.h"

namespace wlhost {

// Asks the host and shows what it answers.
Status ask(const Call &call);
// The same, and tells meanwhile that it takes its time.
Status askAndWait(const Call &call);
// The same, and counts the checks that do not hold.
Status askForVerification(const Call &call);
// A WPS session; with --wait until it ends, or is cancelled by a signal.
Status askForSession(const Call &call);
// Shows events until there were --count of them, or for ever; over the end of the host too, when another one comes
// within the time-out.
Status askForEvents(const Call &call);
// A plan; without a host that of a first start. Status 10 when something would change.
Status askForPlan(const Call &call);
// The same with --dry-run.
Status askForReload(const Call &call);
// `run --dry-run`.
Status planTheRun(const Call &call);
// Journal entries, with --follow for ever.
Status askForJournal(const Call &call);
// Without a host, the version of this program.
Status askForVersion(const Call &call);
void showVersion(bool asJson);

// `run`: brings the configured radios up and serves until a signal ends it.
Status beTheHost(const Call &call);
// `run --sim`: the same command in a simulated gateway whose control socket appears at the call's path; gives its exit
// status. Nothing of it is left behind.
Status runInGateway(const Call &call);

// Whether this machine has an interface that the module would take for a radio.
bool hasRadioInterface();
Status examineMachine(const Call &call);
// What `doctor` says of this machine, without the host.
json machineRows(const std::string &library);
// Has the host make an archive of itself and writes it.
Status askForReport(const Call &call);
// Runs the operations of an archive again and compares.
Status replayArchive(const Call &call);
Status checkConfiguration(const Call &call);
Status printSchema(const Call &call);
Status complete(const Call &call);

// The result of an answer; throws what the host could not do.
json resultOf(const std::string &line);
// Prints a result in the form that was asked for.
void showResult(const Call &call, const json &result, FILE *out = stdout);
// A request with this call's command and arguments, as a host takes it.
json requestOf(const Call &call);
// The result of a command that a host at this socket carries out.
json resultFrom(const std::string &socket, const json &request, int timeout, const std::function<void(int)> &tick = {});
// A path as a host finds it, which has its own working directory.
std::string absolutePath(const std::string &path);

} // namespace wlhost
