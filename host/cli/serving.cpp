#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "host/base/log.h"
#include "host/cli/calls.h"
#include "host/cli/messages.h"
#include "host/cli/starting.h"
#include "host/commands/host_commands.h"
#include "host/commands/station_events.h"
#include "host/commands/wps_sessions.h"
#include "host/control/control_socket.h"
#include "host/control/dispatch.h"
#include "host/control/gateway_lock.h"
#include "host/journal/journal.h"
#include "host/journal/journal_file.h"
#include "host/report/recording.h"
#include "host/state/host.h"
#include "host/tap/live.h"
#include "host/tap/tap.h"

namespace wlhost {
namespace {

// Signals become bytes in a pipe. They are not blocked: the daemons that the module starts would inherit that.
int signalPipe[2] = {-1, -1};

void onSignal(int number) {
    int saved = errno;
    char byte = static_cast<char>(number);
    [[maybe_unused]] ssize_t ignored = write(signalPipe[1], &byte, 1);
    errno = saved;
}

void catchSignals() {
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        throw Failure(Status::kEnvironment, "pipe", std::strerror(errno));
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (int number : {SIGINT, SIGTERM, SIGHUP})
        sigaction(number, &action, nullptr);
}

// The module and the commands it runs print on stdout; from here on that is stderr, and stdout is the host's own.
FILE *takeStdout() {
    std::fflush(stdout);
    int own = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    FILE *stream = own < 0 ? nullptr : fdopen(own, "w");
    if (!stream || dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
        throw Failure(Status::kEnvironment, "stdout", std::strerror(errno));
    setvbuf(stdout, nullptr, _IOLBF, 0); // in order with the log
    return stream;
}

bool isReadable(int fd) {
    pollfd entry{fd, POLLIN, 0};
    return poll(&entry, 1, 0) > 0;
}

// A burst at a time: events queue in a socket buffer that does not hold many, and commands must get their turn. An
// association costs several driver commands, so the burst is bounded in time as well.
void receiveEvents(Host &host) {
    constexpr int kBurst = 64;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
    tap::Operation operation("receive", "driver event");
    const WlEvtHandler &handler = *host.module().events;
    int sock = static_cast<int>(handler.sock);
    for (int i = 0; i < kBurst && std::chrono::steady_clock::now() < end && isReadable(sock); ++i) {
        json event = nextEvent(handler);
        if (event.is_null())
            continue;
        noteEvent(host, event);
        host.tell(event);
    }
}

void reloadOnSignal(Host &host) {
    tap::Operation operation("reload", "SIGHUP");
    try {
        const std::string differences = Host::complaints(reload(host, json::object()));
        logText(LogLevel::kInfo, "reload", "took " + host.configFile() + " over");
        if (!differences.empty())
            logText(LogLevel::kError, "reload", differences);
    } catch (const Failure &failure) {
        logText(LogLevel::kError, "reload",
                (failure.where.empty() ? "" : failure.where + ": ") + std::string(failure.what()));
    } catch (const std::exception &error) {
        logText(LogLevel::kError, "reload", error.what());
    }
}

// Takes the signals that came in; false when one of them ends the host. Any number of the others is one reload.
bool takeSignals(Host &host) {
    bool reloads = false;
    for (char number; read(signalPipe[0], &number, 1) == 1;) {
        if (number != SIGHUP)
            return false;
        reloads = true;
    }
    if (reloads)
        reloadOnSignal(host);
    return true;
}

// What is not as it was asked for is told, and the host goes on with what came up.
Status tellDifferences(const json &result) {
    std::string text = Host::complaints(result);
    if (text.empty())
        return Status::kDone;
    printError(Failure(Status::kFailed, "", text, "see wlhost verify, wlhost why, and the log"), false);
    return Status::kFailed;
}

// The configuration before comes back when nobody confirmed the new one in time.
void rollBackWhenDue(Host &host) {
    if (!host.rollbackTime() || std::chrono::steady_clock::now() < *host.rollbackTime())
        return;
    tap::Operation operation("rollback", "not confirmed in time");
    try {
        rollBack(host);
        logText(LogLevel::kError, "rollback", "not confirmed in time; the configuration before is in force again");
    } catch (const std::exception &failure) {
        logText(LogLevel::kError, "rollback",
                std::string("not confirmed in time; not all is as before: ") + failure.what());
    }
}

int untilRollback(const Host &host) {
    using namespace std::chrono;
    auto due = host.rollbackTime();
    return due ? static_cast<int>(std::max<long>(ceil<milliseconds>(*due - steady_clock::now()).count(), 0)) : -1;
}

// The sooner of two times to wait; negative ones never come.
int sooner(int one, int other) { return one < 0 ? other : other < 0 ? one : std::min(one, other); }

// Milliseconds until there is something to do though nothing came; -1 for ever.
int patience(const Host &host, const ControlServer &server) {
    constexpr int kSecond = 1000;
    return sooner(sooner(server.timeout(), untilRollback(host)), sessionMayChange(host) ? kSecond : -1);
}

void serve(Host &host, ControlServer &server) {
    WlEvtHandler *events = host.module().events;
    for (;;) {
        std::vector<pollfd> fds = {{signalPipe[0], POLLIN, 0},
                                   {events ? static_cast<int>(events->sock) : -1, POLLIN, 0}};
        server.addTo(fds);
        if (poll(fds.data(), fds.size(), patience(host, server)) < 0 && errno != EINTR)
            throw Failure(Status::kFailed, "poll", std::strerror(errno));
        if (!takeSignals(host))
            return;
        if (fds[1].revents != 0)
            receiveEvents(host);
        if (sessionMayChange(host))
            watchSession(host);
        rollBackWhenDue(host);
        server.serve();
    }
}

// The answer to a request, and what it is to be followed by. The documents of a large one, an archive or the journal,
// were many times its size; the heap keeps such room otherwise.
ControlServer::Reply replyTo(const std::string &request, Host &host, const ControlServer &server) {
    constexpr size_t kLarge = 256UL * 1024;
    json reply = answer(host, request, server.askingUser());
    const std::string topic = reply["status"] == Status::kDone ? topicOf(request) : "";
    ControlServer::Reply text(dumped(reply), !topic.empty(), topic, topic.empty() ? json() : reply["result"]);
    if (text.line.size() > kLarge) {
        reply = nullptr;
#ifdef __GLIBC__
        malloc_trim(0);
#endif
    }
    return text;
}

// The journal's listeners: the file that was asked for, and the followers.
void keepJournal(const Call &call, ControlServer &server) {
    if (std::string path = call.args.value("journal", ""); !path.empty())
        journal().listeners.emplace_back(
            [file = std::make_shared<JournalFile>(path)](const tap::Entry &entry) { file->add(entry); });
    journal().listeners.emplace_back([&server](const tap::Entry &entry) {
        for (bool secrets : {false, true})
            if (const char *topic = journalTopic({{"follow", true}, {"secrets", secrets}});
                server.hasSubscribers(topic))
                server.publish(dumped(journalRow(entry, secrets)), topic);
    });
}

// What the module does is noted while this lives.
class LiveMode {
  public:
    explicit LiveMode(tap::Handler &handler) { tap::setHandler(&handler); }
    ~LiveMode() {
        tap::setHandler(nullptr);
        journal().listeners.clear();
    }
    LiveMode(const LiveMode &) = delete;
    LiveMode &operator=(const LiveMode &) = delete;
};

// Who lost the network: the module's start had taken the radios down before this host could ask them.
void takeDrops(json &result, const json &plan) {
    for (json &radio : result["radios"])
        for (const json &planned : plan["radios"])
            if (planned["radio"] == radio["radio"] && radio["action"] == "started")
                radio["drops"] = planned["drops"];
}

Status serveRadios(const Call &call) {
    // What the file alone can get wrong is known before the module touches a radio.
    Config config = Config::load(absolutePath(call.args["config"]));
    GatewayLock lock(call.socket);
    FILE *out = takeStdout();
    catchSignals();
    std::unique_ptr<Host> host;
    ControlServer server(call.socket, [&](const std::string &request) { return replyTo(request, *host, server); });
    tap::LiveHandler live([](const tap::Entry &entry) { journal().add(entry); });
    LiveMode mode(live);
    keepJournal(call, server);
    const std::string library = libraryName(call.args.value("library", ""));
    const bool fresh = call.args.value("fresh", false);
    // What the radios cannot do is known before the module takes any of them down, and so are those that need nothing.
    const json plan = planStart(library, config, fresh);
    const std::set<std::string> adopted = adoptedBy(plan);
    json result;
    {
        tap::Operation operation("run", "run");
        host = startHost(library, std::move(config), adopted);
        host->onEvent = [&](const json &event) {
            if (server.hasSubscribers())
                server.publish(dumped(event), "events",
                               [&](const json &subscription) { return isWanted(event, subscription); });
        };
        host->onStep = Progress::step;
        result = host->bringUp();
        takeDrops(result, plan);
    }
    result["socket"] = call.socket;
    showResult(call, result, out);
    // Told at once, though a host that serves goes on.
    const Status verified = tellDifferences(result), written = afterOutput(Status::kDone, out);
    const bool once = call.args.value("once", false);
    if (!once)
        serve(*host, server);
    host->tell({{"event", "host-ended"}});
    std::fclose(out);
    return written == Status::kDone && once ? verified : written;
}

} // namespace

Status beTheHost(const Call &call) {
    setLogLevel(logLevelOf(call.args.value("log_level", "error")));
    const bool sim = call.args.value("sim", false);
    for (const char *outside : {"journal", "syslog"})
        if (sim && call.args.contains(outside))
            throw Failure(Status::kUsage, std::string("--") + outside, "is not there in a simulated gateway",
                          "ask for it with wlhost journal");
    if (sim)
        return runInGateway(call);
    if (call.args.value("dry_run", false))
        return planTheRun(call);
    if (call.args.value("syslog", false))
        logToSystem();
    return serveRadios(call);
}

} // namespace wlhost
