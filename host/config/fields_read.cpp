#include <algorithm>
#include <cstring>

#include "host/base/addresses.h"
#include "host/base/masking.h"
#include "host/base/word_lists.h"
#include "host/config/fields.h"

namespace wlhost {
namespace {

std::vector<std::string> namesOf(const std::vector<Word> &words) {
    std::vector<std::string> names;
    for (const Word &word : words)
        names.push_back(inQuotes(word.name));
    return names;
}

const Word *findWord(const Field &field, const json &value) {
    if (value.is_string())
        for (const Word &word : field.words)
            if (value == word.name)
                return &word;
    return nullptr;
}

void storeNumber(const Field &field, void *record, long value) {
    char *place = static_cast<char *>(record) + field.offset;
    auto put = [&](auto number) { std::memcpy(place, &number, sizeof number); };
    if (field.size == 1)
        put(static_cast<int8_t>(value));
    else if (field.size == 2)
        put(static_cast<int16_t>(value));
    else if (field.size == 4)
        put(static_cast<int32_t>(value));
    else
        throw std::logic_error(std::string("size of ") + field.name);
}

void storeText(const Field &field, void *record, const std::string &text) {
    if (text.size() >= field.size)
        throw std::logic_error(std::string("rule of ") + field.name + " lets too long a text through");
    std::memcpy(static_cast<char *>(record) + field.offset, text.c_str(), text.size() + 1);
}

// Reads one value into its place and returns what is wrong with it ("is out of range"), or an empty text.
std::string readFlag(const Field &field, const json &value, void *record) {
    if (!value.is_boolean())
        return "is not true or false";
    storeNumber(field, record, value.get<bool>() != field.inverted);
    return "";
}

std::string readNumber(const Field &field, const json &value, void *record) {
    if (const Word *word = findWord(field, value)) {
        storeNumber(field, record, word->value);
        return "";
    }
    bool wordsOnly = field.low > field.high;
    if (!value.is_number_integer() || wordsOnly)
        return value.is_string() && !field.words.empty() ? "is not known"
               : wordsOnly                               ? "is not a word"
                                                         : "is not a whole number";
    bool fits = value.is_number_unsigned() ? value.get<uint64_t>() <= static_cast<uint64_t>(std::max(field.high, 0L))
                                           : value.get<int64_t>() <= field.high;
    if (!fits || value.get<int64_t>() < field.low)
        return "is out of range";
    storeNumber(field, record, value.get<long>());
    return "";
}

std::string readChoice(const Field &field, const json &value, void *record) {
    const Word *word = findWord(field, value);
    if (!word)
        return value.is_string() ? "is not known" : "is not a word";
    storeText(field, record, word->text);
    return "";
}

std::string readText(const Field &field, const json &value, void *record) {
    if (!value.is_string())
        return "is not a text";
    std::string text = value.get<std::string>();
    std::string problem = field.rule->problem(text);
    if (!problem.empty())
        return problem;
    if (field.kind == Kind::kMac)
        std::memcpy(static_cast<char *>(record) + field.offset, parseMac(text)->data(), sizeof(MacBytes));
    else
        storeText(field, record, text);
    return "";
}

// One element as it stands in the list, or what is wrong with it.
std::string readElement(const Field &field, const json &value, std::string &element) {
    if (field.rule) {
        if (!value.is_string())
            return "is not a text";
        element = value.get<std::string>();
        return field.rule->problem(element);
    }
    bool channel = value.is_number_integer() && value.get<int64_t>() >= 1 && value.get<int64_t>() <= 165;
    element = dumped(value);
    return channel ? "" : "is no channel number";
}

const char *elementAllowed(const Field &field) { return field.rule ? field.rule->allowed : "1 to 165"; }

void readList(const Field &field, const json &value, const Path &path, void *record, Problems &problems) {
    if (!value.is_array() || value.size() > static_cast<size_t>(field.high)) {
        problems.add(path,
                     value.is_array() ? "has " + std::to_string(value.size()) + " elements"
                                      : shown(value) + " is not a list",
                     allowedText(field));
        return;
    }
    std::string joint;
    std::vector<std::string> seen;
    for (size_t i = 0; i < value.size(); ++i) {
        std::string element;
        std::string problem = readElement(field, value[i], element);
        if (problem.empty() && std::find(seen.begin(), seen.end(), element) != seen.end())
            problem = "stands twice in the list";
        if (!problem.empty())
            problems.add(path / i, shown(value[i]) + " " + problem, elementAllowed(field));
        joint += (joint.empty() ? "" : std::string(1, field.separator)) + element;
        seen.push_back(element);
    }
    if (joint.size() < field.size)
        storeText(field, record, joint);
    else if (problems.empty())
        problems.add(path, "is " + std::to_string(joint.size()) + " characters when joined",
                     "at most " + std::to_string(field.size - 1));
}

void setInitial(const std::vector<Field> &fields, void *record) {
    for (const Field &field : fields) {
        if (field.kind == Kind::kFlag)
            storeNumber(field, record, (field.initial != 0) != field.inverted);
        else if (field.kind == Kind::kNumber)
            storeNumber(field, record, field.initial);
        else if (field.kind == Kind::kChoice || field.kind == Kind::kText)
            storeText(field, record, field.initialText);
        else if (field.kind == Kind::kGroup)
            setInitial(*field.children, record);
    }
}

void readMembers(const json &node, const Path &path, const std::vector<Field> &fields, void *record,
                 Problems &problems);

void readValue(const Field &field, const json &value, const Path &path, void *record, Problems &problems) {
    std::string problem;
    switch (field.kind) {
    case Kind::kFlag:
        problem = readFlag(field, value, record);
        break;
    case Kind::kNumber:
        problem = readNumber(field, value, record);
        break;
    case Kind::kChoice:
        problem = readChoice(field, value, record);
        break;
    case Kind::kText:
    case Kind::kMac:
        problem = readText(field, value, record);
        break;
    case Kind::kList:
        return readList(field, value, path, record, problems);
    case Kind::kGroup:
        return readMembers(value, path, *field.children, record, problems);
    case Kind::kRecords:
        if (!value.is_array() || value.size() > static_cast<size_t>(field.high) ||
            value.size() < static_cast<size_t>(field.low))
            problem = value.is_array() ? "has " + std::to_string(value.size()) + " entries" : "is not a list";
        break;
    case Kind::kIgnored:
        break;
    }
    if (problem.empty())
        return;
    const std::string found = value.is_array() ? "" : field.secret ? kMask : shown(value);
    problems.add(path, found + (found.empty() ? "" : " ") + problem, allowedText(field));
}

void readMembers(const json &node, const Path &path, const std::vector<Field> &fields, void *record,
                 Problems &problems) {
    if (!node.is_object()) {
        problems.add(path, shown(node) + " is not an object");
        return;
    }
    std::vector<std::string> names;
    for (const Field &field : fields) {
        names.push_back(field.name);
        auto member = node.find(field.name);
        if (member != node.end())
            readValue(field, *member, path / field.name, record, problems);
        else if (field.required)
            problems.add(path, std::string(field.name) + " is missing", allowedText(field));
    }
    for (const auto &[name, value] : node.items()) {
        if (std::find(names.begin(), names.end(), name) != names.end())
            continue;
        if (problems.full())
            problems.addUnread();
        else
            problems.add(path / name, "unknown name", suggestion(name, names));
    }
}

} // namespace

std::string shown(const json &value) {
    constexpr size_t kLongest = 60;
    if (value.is_structured() && !value.empty())
        return value.is_array() ? "[...]" : "{...}";
    std::string text = value.dump(-1, ' ', true);
    return text.size() <= kLongest ? text : text.substr(0, kLongest) + "...";
}

std::string allowedText(const Field &field) {
    switch (field.kind) {
    case Kind::kFlag:
        return "true or false";
    case Kind::kNumber: {
        std::string words = joined(namesOf(field.words), "");
        if (field.low > field.high)
            return "one of " + words;
        std::string range = std::to_string(field.low) + " to " + std::to_string(field.high);
        return words.empty() ? range : range + ", or " + words;
    }
    case Kind::kChoice:
        return "one of " + joined(namesOf(field.words));
    case Kind::kText:
    case Kind::kMac:
        return field.rule->allowed;
    case Kind::kList:
    case Kind::kRecords:
        return "a list of " + (field.low > 0 ? std::to_string(field.low) + " to " : "at most ") +
               std::to_string(field.high);
    default:
        return "an object";
    }
}

void readRecord(const json &node, const Path &path, const std::vector<Field> &fields, void *record, size_t size,
                Problems &problems) {
    if (size > 0)
        std::memset(record, 0, size);
    setInitial(fields, record);
    readMembers(node, path, fields, record, problems);
}

} // namespace wlhost
