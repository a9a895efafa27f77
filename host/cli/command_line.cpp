#include "host/cli/command_line.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "host/base/word_lists.h"
#include "host/cli/calls.h"
#include "host/cli/messages.h"
#include "host/cli/typed_words.h"
#include "host/commands/host_commands.h"
#include "host/control/control_socket.h"

namespace wlhost {
namespace {

// Makes the option of a row; its value goes into `args`.
void addOption(CLI::App &app, const Option &row, json &args) {
    auto to = [&args, &row](auto value) { args[row.key] = value; };
    using Words = std::vector<std::string>;
    CLI::Option *option = nullptr;
    switch (row.value) {
    case Value::kFlag:
        option = app.add_flag_function(
            row.name, [to](int64_t count) { to(count > 0); }, row.about);
        break;
    case Value::kNumber:
        option = app.add_option_function<int>(row.name, to, row.about);
        if (row.most)
            option->check(CLI::Range(1, row.most));
        else
            option->check(CLI::PositiveNumber);
        break;
    case Value::kItems:
        option = app.add_option_function<Words>(row.name, to, row.about)->delimiter(',')->allow_extra_args(false);
        break;
    case Value::kTexts:
    case Value::kStations:
        option = app.add_option_function<Words>(row.name, to, row.about);
        break;
    default:
        option = app.add_option_function<std::string>(row.name, to, row.about);
    }
    option->required(row.required);
    if (!row.words.empty())
        option->check(CLI::IsMember(row.words));
}

// "wps pin" is the subcommand pin of wps.
CLI::App *addCommand(CLI::App &app, const Command &row) {
    std::string name = row.name;
    for (const Group &group : groups()) {
        std::string start = std::string(group.name) + " ";
        if (name.compare(0, start.size(), start) != 0)
            continue;
        auto known = app.get_subcommands([&](const CLI::App *one) { return one->get_name() == group.name; });
        CLI::App *sub = known.empty() ? nullptr : known.front();
        if (!sub) {
            sub = app.add_subcommand(group.name, group.about);
            sub->require_subcommand(1);
            sub->fallthrough();
        }
        return sub->add_subcommand(name.substr(start.size()), row.about);
    }
    return app.add_subcommand(name, row.about);
}

void addCommands(CLI::App &app, Call &call) {
    for (const Command &row : commands()) {
        CLI::App *sub = addCommand(app, row);
        for (const Option &option : row.options)
            addOption(*sub, option, call.args);
        sub->callback([&call, &row] { call.command = &row; });
    }
}

bool asksForJson(const std::vector<std::string> &words) { return std::count(words.begin(), words.end(), "--json") > 0; }

// Before anything is asked or done: a column that the command's table does not have.
void setStyle(const Command &command, const json &common) {
    std::string sortBy = common["sort"];
    std::vector<std::string> names = columnNames(command.columns);
    if (!sortBy.empty() && !columnOf(command.columns, sortBy))
        throw Failure(Status::kUsage, "--sort", inQuotes(sortBy) + " is no column of " + command.name,
                      "columns: " + joined(names));
    tableStyle() = {common["wide"] ? 0 : outputWidth(), sortBy};
}

Status runCommand(CLI::App &app, Call &call, const json &common, const std::vector<std::string> &words) {
    try {
        // The library takes the words from the end.
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
        call.socket = socketPath(common["socket"]);
        call.timeout = common["timeout"];
        call.asJson = common["json"];
        setStyle(*call.command, common);
        return call.command->run(call);
    } catch (const CLI::CallForHelp &) {
        std::fputs(app.help().c_str(), stdout);
        return Status::kDone;
    } catch (const CLI::CallForVersion &) {
        showVersion(asksForJson(words));
        return Status::kDone;
    } catch (const CLI::ParseError &error) {
        printError(usageFailure(words, error.what()), asksForJson(words));
        return Status::kUsage;
    } catch (const Failure &failure) {
        printError(failure, call.asJson, call.command && call.command->follows);
        return failure.status;
    } catch (const std::exception &error) {
        printError(Failure(Status::kFailed, "internal", error.what()), call.asJson);
        return Status::kFailed;
    }
}

} // namespace

Status commandLine(int argc, char **argv) {
    prepareStreams();
    CLI::App app{"Reference host of the Wi-Fi driver adaptation module"};
    app.name("wlhost");
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", kHostVersion, "Version of this program");
    Call call;
    json common = {{"socket", ""}, {"timeout", 120}, {"json", false}, {"sort", ""}, {"wide", false}};
    for (const Option &option : commonOptions())
        addOption(app, option, common);
    addCommands(app, call);
    return afterOutput(runCommand(app, call, common, {argv + 1, argv + argc}));
}

} // namespace wlhost
