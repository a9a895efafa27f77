#include "host/config/fields.h"

namespace wlhost {
namespace {

json objectSchema(const std::vector<Field> &fields);

json wordList(const Field &field) {
    json words = json::array();
    for (const Word &word : field.words)
        words.push_back(word.name);
    return words;
}

// The word or number that stands for the initial value; null when the initial value is made from other settings.
json initialOf(const Field &field) {
    for (const Word &word : field.words)
        if (field.kind == Kind::kChoice ? std::string(word.text) == field.initialText : word.value == field.initial)
            return word.name;
    if (field.kind == Kind::kFlag)
        return field.initial != 0;
    bool inRange = field.kind == Kind::kNumber && field.low <= field.initial && field.initial <= field.high;
    return inRange ? json(field.initial) : json();
}

json numberSchema(const Field &field) {
    json range = {{"type", "integer"}, {"minimum", field.low}, {"maximum", field.high}};
    if (field.words.empty())
        return range;
    json words = {{"enum", wordList(field)}};
    return field.low > field.high ? words : json{{"anyOf", {range, words}}};
}

json textSchema(const Field &field) {
    json schema = {{"type", "string"}, {"pattern", field.rule->pattern}};
    if (field.rule->longest > 0)
        schema.update({{"minLength", field.rule->shortest}, {"maxLength", field.rule->longest}});
    return schema;
}

json listSchema(const Field &field) {
    json items = field.kind == Kind::kRecords ? objectSchema(*field.children)
                 : field.rule                 ? textSchema(field)
                                              : json{{"type", "integer"}, {"minimum", 1}, {"maximum", 165}};
    json schema = {{"type", "array"}, {"maxItems", field.high}, {"items", items}};
    if (field.low > 0)
        schema["minItems"] = field.low;
    if (field.kind == Kind::kList)
        schema["uniqueItems"] = true;
    return schema;
}

json fieldSchema(const Field &field) {
    switch (field.kind) {
    case Kind::kFlag:
        return {{"type", "boolean"}};
    case Kind::kNumber:
        return numberSchema(field);
    case Kind::kChoice:
        return {{"enum", wordList(field)}};
    case Kind::kText:
    case Kind::kMac:
        return textSchema(field);
    case Kind::kList:
    case Kind::kRecords:
        return listSchema(field);
    case Kind::kGroup:
        return objectSchema(*field.children);
    case Kind::kIgnored:
        break;
    }
    return json::object();
}

json objectSchema(const std::vector<Field> &fields) {
    json properties = json::object(), required = json::array();
    for (const Field &field : fields) {
        json schema = fieldSchema(field);
        schema["description"] = field.about;
        if (json initial = initialOf(field); !initial.is_null())
            schema["default"] = initial;
        properties[field.name] = schema;
        if (field.required)
            required.push_back(field.name);
    }
    json schema = {{"type", "object"}, {"additionalProperties", false}, {"properties", properties}};
    if (!required.empty())
        schema["required"] = required;
    return schema;
}

} // namespace

json configSchema() {
    json schema = objectSchema(rootFields());
    schema["$schema"] = "http://json-schema.org/draft-07/schema#";
    schema["title"] = "wlhost configuration";
    schema["description"] = "What a schema can say of the file. wlhost check also counts bytes, knows checksums and "
                            "addresses, and looks at settings beside each other.";
    return schema;
}

} // namespace wlhost
