#include "host/cli/typed_words.h"

#include <algorithm>

#include "host/base/word_lists.h"

namespace wlhost {
namespace {

bool takesMany(const Option &option) { return option.value == Value::kStations || option.value == Value::kTexts; }

std::string helpOf(const std::string &command) {
    return "see wlhost " + (command.empty() ? "" : command + " ") + "--help";
}

std::string advice(const std::string &word, const std::vector<std::string> &known, const std::string &help) {
    std::string text = suggestion(word, known);
    return text + (text.back() == '?' ? " " : "; ") + help;
}

// The name of a word such as --timeout=5, and what follows it.
std::pair<std::string, std::string> split(const std::string &word) {
    size_t equals = std::min(word.find('='), word.size());
    return {word.substr(0, equals), word.substr(std::min(equals + 1, word.size()))};
}

bool isNumber(const std::string &word, int most) {
    bool digits = !word.empty() && word.size() <= 9 &&
                  std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
    int number = digits ? std::stoi(word) : 0;
    return number >= 1 && (most == 0 || number <= most);
}

void checkValue(const Option &option, const std::string &value, const std::string &help) {
    if (option.value == Value::kNumber && !isNumber(value, option.most)) {
        throw Failure(Status::kUsage, option.name,
                      inQuotes(value) + " is no number from 1" +
                          (option.most ? " to " + std::to_string(option.most) : " on"),
                      help);
    }
    if (option.words.empty())
        return;
    for (const std::string &word :
         option.value == Value::kItems ? splitWords(value, ',') : std::vector<std::string>{value})
        if (std::count(option.words.begin(), option.words.end(), word) == 0)
            throw Failure(Status::kUsage, option.name, inQuotes(word) + " is not known here",
                          advice(word, option.words, help));
}

void demandComplete(const TypedWords &line) {
    if (line.open)
        throw Failure(Status::kUsage, line.open->name, "has no value", helpOf(line.group));
    if (!line.command)
        throw Failure(Status::kUsage, line.group.empty() ? "command" : line.group,
                      (line.group.empty() ? "is missing: " : "needs one of ") + joined(namesIn(line.group)),
                      helpOf(line.group));
    size_t place = 0;
    for (const Option &option : line.command->options) {
        bool given = option.isPlaced() ? place++ < line.placed : !line.valueOf(option.key).empty();
        if (option.required && !given)
            throw Failure(Status::kUsage, option.name, std::string("is missing: ") + option.about, helpOf(line.group));
    }
}

} // namespace

const Option *optionAt(const Command &command, size_t place) {
    const Option *last = nullptr;
    for (const Option &option : command.options) {
        if (!option.isPlaced())
            continue;
        last = &option;
        if (place-- == 0)
            return last;
    }
    return last && takesMany(*last) ? last : nullptr;
}

std::vector<const Option *> namedOptions(const Command *command) {
    std::vector<const Option *> found;
    for (const auto *rows : {command ? &command->options : nullptr, &commonOptions()}) {
        if (rows)
            for (const Option &row : *rows)
                if (!row.isPlaced())
                    found.push_back(&row);
    }
    return found;
}

std::string TypedWords::valueOf(const char *key) const {
    auto found = std::find_if(values.rbegin(), values.rend(),
                              [&](const auto &one) { return std::string(key) == one.first->key; });
    return found == values.rend() ? "" : found->second;
}

void TypedWords::take(const std::string &word) {
    if (open) {
        values.emplace_back(open, word);
        open = nullptr;
        checkValue(*values.back().first, word, helpOf(group));
    } else if (word == "--") {
        placesOnly_ = true;
    } else if (word.size() > 1 && word[0] == '-' && !placesOnly_) {
        takeOption(word);
    } else if (!command) {
        takeName(word);
    } else if (const Option *option = optionAt(*command, placed)) {
        ++placed;
        values.emplace_back(option, word);
        checkValue(*option, word, helpOf(group));
    } else {
        throw Failure(Status::kUsage, word, "is one argument too many", helpOf(group));
    }
}

void TypedWords::takeOption(const std::string &word) {
    auto [name, value] = split(word);
    if (name == "--help" || name == "-h" || name == "--version")
        return;
    std::vector<std::string> known = {"--help", "--version"};
    for (const Option *option : namedOptions(command)) {
        known.emplace_back(option->name);
        if (name != option->name)
            continue;
        open = option->value == Value::kFlag ? nullptr : option;
        if (!open)
            values.emplace_back(option, "true");
        else if (word.size() > name.size())
            take(value);
        return;
    }
    throw Failure(Status::kUsage, name, "is no option here", advice(name, known, helpOf(group)));
}

void TypedWords::takeName(const std::string &word) {
    std::vector<std::string> known = namesIn(group);
    if (std::count(known.begin(), known.end(), word) == 0)
        throw Failure(Status::kUsage, word, "is no command", advice(word, known, helpOf(group)));
    group += (group.empty() ? "" : " ") + word;
    command = findCommand(group);
}

Failure usageFailure(const std::vector<std::string> &words, const std::string &otherwise) {
    TypedWords line;
    try {
        for (const std::string &word : words)
            line.take(word);
        demandComplete(line);
    } catch (const Failure &failure) {
        return failure;
    }
    return {Status::kUsage, "arguments", otherwise, helpOf(line.group)};
}

} // namespace wlhost
