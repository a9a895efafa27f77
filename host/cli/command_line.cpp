#include "host/cli/command_line.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "host/cli/asking.h"
#include "host/cli/doctor.h"
#include "host/cli/serving.h"
#include "host/config/configuration.h"
#include "host/config/fields.h"
#include "host/control/control_socket.h"
#include "host/show/results.h"
#include "host/show/tables.h"
#include "host/state/loaded_module.h"

namespace wlhost {
namespace {

Status doctor(const Values &values) {
    json rows = examine(libraryName(values.library), values.socket);
    show(rows, values, [](const json &result) {
        return table({{"CHECK", "check"}, {"RESULT", "result"}, {"REQUIRED", "required"}, {"HINT", "hint"}}, result);
    });
    bool lacking = std::any_of(rows.begin(), rows.end(),
                               [](const json &row) { return row["required"] == true && row["result"] != "ok"; });
    return lacking ? Status::kEnvironment : Status::kDone;
}

Status run(const Values &values) {
    setLogLevel(values.logLevel == "debug"  ? WLBRCM_LOG_DEBUG
                : values.logLevel == "info" ? WLBRCM_LOG_INFO
                                            : WLBRCM_LOG_ERR);
    RunOptions options{absolutePath(values.config), values.library, values.socket, values.json, values.once};
    if (values.sim)
        runInGateway(options, values.logLevel);
    return runHost(options);
}

void addLocalCommands(CLI::App &app, Values &values, Action &action) {
    CLI::App *host = app.add_subcommand("run", "Be the host: bring the configured radios up and serve");
    host->add_option("CONFIG", values.config, "Configuration file")->required();
    host->add_flag("--sim", values.sim, "Run in a simulated gateway of its own");
    host->add_flag("--once", values.once, "Bring the radios up and end");
    host->add_option("--library", values.library, "The module (WLHOST_LIBRARY)");
    host->add_option("--log-level", values.logLevel, "Of the module's log on stderr")
        ->check(CLI::IsMember({"error", "info", "debug"}));
    host->callback([&] { action = [&] { return run(values); }; });

    CLI::App *examiner = app.add_subcommand("doctor", "What this machine lacks to be a gateway");
    examiner->add_option("--library", values.library, "The module (WLHOST_LIBRARY)");
    examiner->callback([&] { action = [&] { return doctor(values); }; });

    CLI::App *check = app.add_subcommand("check", "Check a configuration file and apply nothing");
    check->add_option("CONFIG", values.config, "Configuration file")->required();
    check->callback([&] {
        action = [&] {
            Config config = Config::load(values.config);
            return show({{"config", values.config}, {"radios", config.radios.size()}}, values, showMembers);
        };
    });

    CLI::App *schema = app.add_subcommand("schema", "Print the JSON schema of the configuration file");
    schema->callback([&] {
        action = [] {
            std::printf("%s\n", configSchema().dump(2).c_str());
            return Status::kDone;
        };
    });
}

bool asksForJson(int argc, char **argv) {
    return std::any_of(argv, argv + argc, [](const char *word) { return std::string(word) == "--json"; });
}

} // namespace

Status commandLine(int argc, char **argv) {
    CLI::App app{"Reference host of the Wi-Fi driver adaptation module"};
    app.name("wlhost");
    app.require_subcommand(1);
    app.fallthrough();
    Values values;
    Action action;
    app.add_option("--socket", values.socket, "Control socket (WLHOST_SOCKET, /tmp/wlhost.sock)");
    app.add_option("--timeout", values.timeout, "Seconds to wait for the host")->check(CLI::Range(1, 3600));
    app.add_flag("--json", values.json, "One JSON document on stdout, errors too");
    addLocalCommands(app, values, action);
    addClientCommands(app, values, action);
    try {
        app.parse(argc, argv);
        values.socket = socketPath(values.socket);
        return action();
    } catch (const CLI::CallForHelp &help) {
        app.exit(help);
        return Status::kDone;
    } catch (const CLI::ParseError &error) {
        printError(Failure(Status::kUsage, "arguments", error.what(), "see wlhost --help"), asksForJson(argc, argv));
        return Status::kUsage;
    } catch (const Failure &failure) {
        printError(failure, values.json);
        return failure.status;
    } catch (const std::exception &error) {
        printError(Failure(Status::kFailed, "internal", error.what()), values.json);
        return Status::kFailed;
    }
}

} // namespace wlhost
