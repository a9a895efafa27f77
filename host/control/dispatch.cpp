#include "host/control/dispatch.h"

#include <algorithm>
#include <climits>

#include "host/base/masking.h"
#include "host/base/word_lists.h"
#include "host/command_table.h"
#include "host/config/document.h"
#include "host/tap/shell_line.h"
#include "host/tap/tap.h"

namespace wlhost {
namespace {

bool inRange(const json &number, int most) {
    const auto highest = static_cast<uint64_t>(most > 0 ? most : INT_MAX);
    return number.is_number_unsigned() && number.get<uint64_t>() >= 1 && number.get<uint64_t>() <= highest;
}

const char *typeProblem(const Option &option, const json &value) {
    auto isText = [](const json &one) { return one.is_string(); };
    switch (option.value) {
    case Value::kFlag:
        return value.is_boolean() ? nullptr : "is not true or false";
    case Value::kNumber:
        return !value.is_number_integer()    ? "is not a whole number"
               : inRange(value, option.most) ? nullptr
                                             : "is out of range";
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
        for (const json &word : value.is_array() ? value : json::array({value}))
            if (!option.words.empty() && std::count(option.words.begin(), option.words.end(), word) == 0)
                throw Failure(Status::kUsage, option.name, inQuotes(word) + " is not known here",
                              suggestion(word, option.words));
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

uid_t currentUser = geteuid();

// One word of a command line; a PIN is not kept.
std::string wordOf(const Option &option, const json &value) {
    if (isSecretKey(option.key))
        return kMask;
    return tap::quoted(value.is_string() ? value.get<std::string>() : value.dump());
}

// What a client asked for, as it was typed.
std::string textOf(const Request &request) {
    std::string text = request.command->name;
    for (const Option &option : request.command->options) {
        const json value = request.args.value(option.key, json());
        if (value.is_null() || value == false)
            continue;
        if (!option.isPlaced())
            text += std::string(" ") + option.name;
        if (value == true)
            continue;
        for (const json &one : value.is_array() ? value : json::array({value}))
            text += " " + wordOf(option, one);
    }
    return text.substr(0, 512);
}

} // namespace

Request readRequest(const std::string &text) {
    const json request = Document::parse("request", text).root;
    if (!request.is_object())
        throw Failure(Status::kUsage, "request", "is not an object");
    const json name = request.value("command", json()), args = request.value("args", json::object());
    if (!name.is_string())
        throw Failure(Status::kUsage, "command", name.is_null() ? "is missing" : "is not a text");
    if (!args.is_object())
        throw Failure(Status::kUsage, "args", "is not an object");
    const Command &command = commandOf(name);
    return {&command, checkedArguments(command, args)};
}

std::string topicOf(const std::string &request) {
    try {
        const Request checked = readRequest(request);
        const char *topic = checked.command->follows ? checked.command->follows(checked.args) : nullptr;
        return topic ? topic : "";
    } catch (const Failure &) {
        return "";
    }
}

uid_t askingUser() { return currentUser; }

json answer(Host &host, const std::string &request, uid_t user) {
    auto refused = [](const Failure &failure) { return json{{"status", failure.status}, {"error", errorOf(failure)}}; };
    try {
        const Request checked = readRequest(request);
        currentUser = user;
        tap::Operation operation(checked.command->name, textOf(checked));
        json result = checked.command->answer(host, checked.args);
        Status status = checked.command->meaning ? checked.command->meaning(result) : Status::kDone;
        return {{"status", status}, {"result", std::move(result)}};
    } catch (const Failure &failure) {
        return refused(failure);
    } catch (const std::exception &error) {
        return refused(Failure(Status::kFailed, "internal", error.what()));
    }
}

} // namespace wlhost
