#include "host/cli/completion.h"

#include "host/cli/calls.h"
#include "host/control/control_socket.h"

namespace wlhost {
namespace {

using Ask = std::function<json(const std::string &socket, const json &request)>;

// What the words before the last one say.
struct Line {
    const Command *command = nullptr;
    std::string group;            // until the command is known
    size_t placed = 0;            // arguments given by their place
    const Option *open = nullptr; // an option that waits for its value
    std::string socket, interface;
};

const Option *findOption(const Command *command, const std::string &name) {
    for (const auto *rows : {&commonOptions(), command ? &command->options : nullptr}) {
        if (rows)
            for (const Option &row : *rows)
                if (name == row.name)
                    return &row;
    }
    return nullptr;
}

// The option that an argument at this place is the value of; the last one takes any number if its kind does.
const Option *optionAt(const Command &command, size_t place) {
    const Option *last = nullptr;
    for (const Option &option : command.options) {
        if (!option.isPlaced())
            continue;
        last = &option;
        if (place-- == 0)
            return last;
    }
    return last && (last->value == Value::kStations || last->value == Value::kTexts) ? last : nullptr;
}

void take(Line &line, const Option *option, const std::string &word) {
    if (option && option->key == std::string("socket"))
        line.socket = word;
    if (option && option->value == Value::kInterface)
        line.interface = word;
}

Line lineOf(const std::vector<std::string> &words) {
    Line line;
    for (size_t i = 0; i + 1 < words.size(); ++i) {
        const std::string &word = words[i];
        if (line.open) {
            take(line, line.open, word);
            line.open = nullptr;
        } else if (word[0] == '-') {
            const Option *option = findOption(line.command, word);
            line.open = option && option->value != Value::kFlag ? option : nullptr;
        } else if (line.command) {
            take(line, optionAt(*line.command, line.placed++), word);
        } else {
            std::string name = line.group + (line.group.empty() ? "" : " ") + word;
            line.command = findCommand(name);
            line.group = name;
        }
    }
    return line;
}

std::vector<std::string> columnOf(const json &rows, const char *key) {
    std::vector<std::string> words;
    for (const json &row : rows)
        if (json value = row.value(key, json()); value.is_string())
            words.push_back(value);
    return words;
}

std::vector<std::string> valuesOf(const Option &option, const Line &line, const Ask &ask) {
    switch (option.value) {
    case Value::kFile:
        return {kFileNames};
    case Value::kRadio:
        return columnOf(ask(line.socket, {{"command", "status"}}), "radio");
    case Value::kInterface:
        return columnOf(ask(line.socket, {{"command", "ssids"}}), "interface");
    case Value::kStation:
    case Value::kStations:
        return columnOf(ask(line.socket, {{"command", "stations"}, {"args", {{"interface", line.interface}}}}), "mac");
    default:
        return option.words;
    }
}

} // namespace

std::vector<std::string> candidatesFor(const std::vector<std::string> &words, const Ask &ask) {
    Line line = lineOf(words);
    std::vector<std::string> found;
    const Option *option = line.open ? line.open : line.command ? optionAt(*line.command, line.placed) : nullptr;
    try {
        if (option)
            found = valuesOf(*option, line, ask);
    } catch (const std::exception &) { // without a host that answers there are no names to offer
    }
    if (line.open)
        return found;
    if (!line.command)
        found = namesIn(line.group);
    for (const auto *rows : {line.command ? &line.command->options : nullptr, &commonOptions()}) {
        if (rows)
            for (const Option &row : *rows)
                if (!row.isPlaced())
                    found.emplace_back(row.name);
    }
    found.emplace_back("--help");
    return found;
}

Status complete(const Call &call) {
    constexpr int kPatience = 2; // seconds, of who waits for a word
    auto words = candidatesFor(call.args.value("words", std::vector<std::string>()),
                               [](const std::string &socket, const json &request) {
                                   return resultFrom(socketPath(socket), request, kPatience);
                               });
    for (const std::string &word : words)
        std::printf("%s\n", word.c_str());
    return Status::kDone;
}

} // namespace wlhost
