#include "host/cli/completion.h"

#include "host/cli/calls.h"
#include "host/cli/typed_words.h"
#include "host/control/control_socket.h"

namespace wlhost {
namespace {

using Ask = std::function<json(const std::string &socket, const json &request)>;

std::vector<std::string> columnOf(const json &rows, const char *key) {
    std::vector<std::string> words;
    for (const json &row : rows)
        if (json value = row.value(key, json()); value.is_string())
            words.push_back(value);
    return words;
}

std::vector<std::string> valuesOf(const Option &option, const TypedWords &line, const Ask &ask) {
    const std::string socket = line.valueOf("socket");
    switch (option.value) {
    case Value::kFile:
        return {kFileNames};
    case Value::kRadio:
        return columnOf(ask(socket, {{"command", "status"}}), "radio");
    case Value::kInterface:
        return columnOf(ask(socket, {{"command", "ssids"}}), "interface");
    case Value::kStation:
    case Value::kStations:
        return columnOf(ask(socket, {{"command", "stations"}, {"args", {{"interface", line.valueOf("interface")}}}}),
                        "mac");
    case Value::kColumn:
        return line.command ? columnNames(line.command->columns) : std::vector<std::string>();
    default:
        return option.words;
    }
}

} // namespace

std::vector<std::string> candidatesFor(const std::vector<std::string> &words, const Ask &ask) {
    TypedWords line;
    std::vector<std::string> found;
    try {
        for (size_t i = 0; i + 1 < words.size(); ++i)
            line.take(words[i]);
    } catch (const Failure &) { // behind a word that is not known nothing is
        return {"--help"};
    }
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
    for (const Option *named : namedOptions(line.command))
        found.emplace_back(named->name);
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
