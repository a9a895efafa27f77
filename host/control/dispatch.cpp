#include "host/control/dispatch.h"

#include <algorithm>

#include "host/base/word_lists.h"
#include "host/command_table.h"

namespace wlhost {
namespace {

const char *typeProblem(const Option &option, const json &value) {
    auto isText = [](const json &one) { return one.is_string(); };
    switch (option.value) {
    case Value::kFlag:
        return value.is_boolean() ? nullptr : "is not true or false";
    case Value::kNumber:
        return value.is_number_integer() ? nullptr : "is not a whole number";
    case Value::kItems:
    case Value::kTexts:
    case Value::kStations:
        return value.is_array() && std::all_of(value.begin(), value.end(), isText) ? nullptr : "is not a list of texts";
    default:
        return isText(value) ? nullptr : "is not a text";
    }
}

// The arguments that a command takes, each of them what its row says: whoever can open the control socket may send
// anything. An optional argument that is an empty text counts as one that is not given.
json checkedArguments(const Command &command, const json &args) {
    json known = json::object();
    for (const Option &option : command.options) {
        const json value = args.value(option.key, json());
        if (option.required && value.is_null())
            throw Failure(Status::kUsage, option.key, "is missing", option.about);
        if (value.is_null() || (value == "" && !option.required))
            continue;
        if (const char *problem = typeProblem(option, value))
            throw Failure(Status::kUsage, option.key, problem);
        if (!option.words.empty() && std::count(option.words.begin(), option.words.end(), value) == 0)
            throw Failure(Status::kUsage, value.get<std::string>(), "is not known here", joined(option.words));
        known[option.key] = value;
    }
    return known;
}

const Command &commandOf(const std::string &name) {
    const Command *command = findCommand(name);
    if (command && command->answer)
        return *command;
    std::vector<std::string> names;
    for (const Command &one : commands())
        if (one.answer)
            names.emplace_back(one.name);
    throw Failure(Status::kUsage, name, "is no command", suggestion(name, names));
}

json run(Host &host, const json &request) {
    const json args = request.value("args", json::object());
    if (!args.is_object())
        throw Failure(Status::kUsage, "args", "is not an object");
    const Command &command = commandOf(request.at("command"));
    json result = command.answer(host, checkedArguments(command, args));
    Status status = command.meaning ? command.meaning(result) : Status::kDone;
    return {{"status", status}, {"result", std::move(result)}};
}

} // namespace

bool subscribes(const std::string &request) {
    json parsed = json::parse(request, nullptr, false);
    json name = parsed.is_object() ? parsed.value("command", json()) : json();
    const Command *command = name.is_string() ? findCommand(name) : nullptr;
    return command && command->follows;
}

json answer(Host &host, const std::string &request) {
    try {
        return run(host, json::parse(request));
    } catch (const Failure &failure) {
        return {{"status", failure.status}, {"error", errorOf(failure)}};
    } catch (const json::exception &error) {
        return {{"status", Status::kUsage}, {"error", errorOf(Failure(Status::kUsage, "request", error.what()))}};
    }
}

} // namespace wlhost
