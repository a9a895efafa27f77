#include <unistd.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdlib>

#include <wlbrcm/wlbrcm.h>

#include "host/cli/calls.h"
#include "host/cli/messages.h"
#include "host/commands/host_commands.h"
#include "host/control/control_socket.h"
#include "host/show/results.h"

namespace wlhost {
namespace {

struct Answer {
    Status status;
    json result;
};

// A request as it is sent. Words that are no UTF-8 do not get through, and would name something else if they were
// mended.
std::string lineOf(const json &request) {
    try {
        return request.dump();
    } catch (const json::exception &) {
        throw Failure(Status::kUsage, "arguments", "hold bytes that are not UTF-8");
    }
}

// Throws what the host could not do.
Answer answerOf(const std::string &line) {
    json answer = json::parse(line);
    Status status = answer.at("status");
    if (!answer.contains("result"))
        throw failureOf(status, answer.at("error"));
    return {status, answer["result"]};
}

Answer askHost(const std::string &socket, const json &request, int timeout, const std::function<void(int)> &tick = {}) {
    ControlClient client(socket, lineOf(request), timeout);
    try {
        return answerOf(client.nextLine(timeout, tick));
    } catch (const Failure &failure) {
        if (failure.status != Status::kTimeout || failure.where != socket)
            throw;
        throw Failure(Status::kTimeout, socket,
                      "no answer within " + std::to_string(timeout) + " s; the operation goes on in the host",
                      "wlhost status answers once it has ended; --timeout waits longer");
    }
}

json askHost(const Call &call, const std::function<void(int)> &tick = {}) {
    return resultFrom(call.socket, requestOf(call), call.timeout, tick);
}

// What a session that ended means for who waited for it.
Status settle(const json &session, const Call &call) {
    const json &result = session["result"];
    if (result == "done") {
        showResult(call, session);
        return Status::kDone;
    }
    bool timedOut = result == "timed-out" || session["state"] == "running";
    throw Failure(timedOut ? Status::kTimeout : Status::kFailed,
                  session["radio"].is_string() ? session["radio"] : "wps",
                  result == "not-taken" ? "the WPS daemon did not take the session"
                  : timedOut            ? "no station came within the time of the session"
                                        : "the session ended without a station: " + cell(result));
}

volatile sig_atomic_t interrupted = 0;

// The first signal is noticed by who waits; the second one ends the program as ever.
void catchInterrupts() {
    struct sigaction action {};
    action.sa_handler = [](int) { interrupted = 1; };
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (int number : {SIGINT, SIGTERM, SIGHUP})
        sigaction(number, &action, nullptr);
}

[[noreturn]] void cancelSession(const Call &call, const std::string &radio) {
    constexpr int kPatience = 10; // seconds, of who wants to leave
    try {
        resultFrom(call.socket, {{"command", "wps cancel"}, {"args", {{"radio", radio}}}}, kPatience);
    } catch (const Failure &failure) {
        throw Failure(Status::kFailed, radio, std::string("interrupted, and the session goes on: ") + failure.what(),
                      "end it with: wlhost wps cancel " + radio);
    }
    throw Failure(Status::kFailed, radio, "interrupted; the session was cancelled");
}

} // namespace

json requestOf(const Call &call) {
    json args = call.args;
    for (const Option &option : call.command->options)
        if (option.value == Value::kFile && args.contains(option.key))
            args[option.key] = absolutePath(args[option.key]);
    return {{"command", call.command->name}, {"args", args}};
}

json resultOf(const std::string &line) { return answerOf(line).result; }

json resultFrom(const std::string &socket, const json &request, int timeout, const std::function<void(int)> &tick) {
    return askHost(socket, request, timeout, tick).result;
}

void showResult(const Call &call, const json &result, FILE *out) {
    if (!call.asJson) {
        std::fputs(call.command->show(result, call.command->columns).c_str(), out);
        return;
    }
    json sorted = result;
    const Column *column = columnOf(call.command->columns, tableStyle().sortBy);
    if (column && sorted.is_array())
        sortRows(sorted, *column);
    std::fprintf(out, "%s\n", dumped(sorted, 2).c_str());
}

std::string absolutePath(const std::string &path) {
    char resolved[PATH_MAX];
    return !path.empty() && realpath(path.c_str(), resolved) ? resolved : path;
}

Status ask(const Call &call) {
    Answer answer = askHost(call.socket, requestOf(call), call.timeout);
    showResult(call, answer.result);
    return answer.status;
}

Status askForVerification(const Call &call) {
    Answer answer = askHost(call.socket, requestOf(call), call.timeout);
    showResult(call, answer.result);
    const json &findings = answer.result["findings"];
    auto unmet = std::count_if(findings.begin(), findings.end(), [](const json &one) { return !one["holds"]; });
    if (unmet > 0 && !call.asJson)
        std::fprintf(stderr, "%zd %s not hold\n", unmet, unmet == 1 ? "check does" : "checks do");
    return answer.status;
}

Status askAndWait(const Call &call) {
    json result;
    {
        Progress progress;
        result = askHost(call, [&](int seconds) {
            if (!call.args.value("cached", false))
                progress.tell(seconds, "waiting for " + std::string(call.command->name) +
                                           (seconds ? ", " + std::to_string(seconds) + " s" : std::string()));
        });
    }
    showResult(call, result);
    return Status::kDone;
}

Status askForSession(const Call &call) {
    constexpr int kGrace = 10; // for a daemon whose time runs longer than the host's
    if (!call.args.value("wait", false))
        return ask(call);
    catchInterrupts();
    json session = askHost(call);
    {
        Progress progress;
        for (int waited = 0, over = 0; session["state"] == "running" && over < kGrace; ++waited) {
            progress.tell(waited, "waiting for a station, " + cell(session["seconds_left"]) + " s left");
            if (!interrupted)
                sleep(1);
            if (interrupted)
                cancelSession(call, session["radio"]);
            session = resultFrom(call.socket, {{"command", "wps status"}}, call.timeout);
            over += session["seconds_left"] == 0;
        }
    }
    return settle(session, call);
}

Status askForJournal(const Call &call) {
    if (call.args.value("shell", false) && !call.asJson) {
        std::fputs(askHost(call)["script"].get_ref<const std::string &>().c_str(), stdout);
        return Status::kDone;
    }
    if (!call.args.value("follow", false))
        return ask(call);
    ControlClient client(call.socket, lineOf(requestOf(call)), call.timeout);
    auto show = [&](const json &entry) {
        std::printf("%s\n", (call.asJson ? dumped(entry) : showEntry(entry)).c_str());
        return std::fflush(stdout) == 0;
    };
    for (const json &entry : resultOf(client.nextLine(call.timeout)))
        show(entry);
    for (;;) {
        const json entry = json::parse(client.nextLine(-1));
        const bool wanted = (!call.args.value("failed", false) || entry["status"] != 0) &&
                            entry["operation"] == call.args.value("operation", entry["operation"]);
        if (wanted && !show(entry))
            return Status::kFailed;
    }
}

Status askForVersion(const Call &call) {
    try {
        return ask(call);
    } catch (const Failure &failure) {
        if (failure.status != Status::kEnvironment)
            throw;
        showResult(call, {{"host", kHostVersion}, {"abi", WLBRCM_ABI_VERSION}, {"module", nullptr}});
        return Status::kDone;
    }
}

void showVersion(bool asJson) {
    if (asJson)
        std::printf("%s\n", json{{"host", kHostVersion}, {"abi", WLBRCM_ABI_VERSION}}.dump(2).c_str());
    else
        std::printf("wlhost %s, for modules of ABI %d\n", kHostVersion, WLBRCM_ABI_VERSION);
}

} // namespace wlhost
