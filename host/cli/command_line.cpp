#include "host/cli/command_line.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "host/base/word_lists.h"
#include "host/cli/calls.h"
#include "host/cli/messages.h"
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
        option = app.add_option_function<std::string>(
            row.name, [to](const std::string &text) { to(splitWords(text, ',')); }, row.about);
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

// What is wrong with the words that did not parse.
Failure usageFailure(const CLI::App &app, const CLI::ParseError &error) {
    std::string group;
    for (const CLI::App *sub : app.get_subcommands())
        group = sub->get_name();
    for (const std::string &word : app.remaining(true))
        if (word[0] != '-' && dynamic_cast<const CLI::RequiredError *>(&error))
            return Failure(Status::kUsage, word, "is no command", suggestion(word, namesIn(group)));
    return Failure(Status::kUsage, "arguments", error.what(), "see wlhost --help");
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
    Call call;
    json common = {{"socket", ""}, {"timeout", 120}, {"json", false}};
    for (const Option &option : commonOptions())
        addOption(app, option, common);
    addCommands(app, call);
    try {
        app.parse(argc, argv);
        call.socket = socketPath(common["socket"]);
        call.timeout = common["timeout"];
        call.asJson = common["json"];
        return call.command->run(call);
    } catch (const CLI::CallForHelp &help) {
        app.exit(help);
        return Status::kDone;
    } catch (const CLI::ParseError &error) {
        printError(usageFailure(app, error), asksForJson(argc, argv));
        return Status::kUsage;
    } catch (const Failure &failure) {
        printError(failure, call.asJson);
        return failure.status;
    } catch (const std::exception &error) {
        printError(Failure(Status::kFailed, "internal", error.what()), call.asJson);
        return Status::kFailed;
    }
}

} // namespace wlhost
