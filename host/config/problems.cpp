#include "host/config/problems.h"

#include "host/base/escape.h"
#include "host/base/masking.h"
#include "host/config/fields.h"

namespace wlhost {
namespace {

constexpr size_t kMostProblems = 50;

json valueAt(const json &root, const Path &path) {
    const json *value = &root;
    for (const Path::Step &step : path.steps()) {
        if (step.index >= 0 && value->is_array() && static_cast<size_t>(step.index) < value->size())
            value = &(*value)[static_cast<size_t>(step.index)];
        else if (step.index < 0 && value->is_object() && value->contains(step.key))
            value = &(*value)[step.key];
        else
            return nullptr;
    }
    return value->is_structured() ? json() : *value;
}

// The row that a path leads to; null when a name on the way is not known.
const Field *fieldOf(const Path &path) {
    const Field *field = nullptr;
    const std::vector<Field> *fields = &rootFields();
    for (const Path::Step &step : path.steps()) {
        if (step.index >= 0)
            continue;
        field = fields ? findField(*fields, step.key) : nullptr;
        if (!field)
            return nullptr;
        fields = field->children;
    }
    return field;
}

} // namespace

json warningRow(const Problem &problem) {
    json row = problemRow(problem);
    row["text"] = problem.text;
    return row;
}

json problemRow(const Problem &problem) {
    return {{"path", problem.path.text()},
            {"line", problem.line},
            {"value", problem.value},
            {"allowed", problem.allowed.empty() ? json() : json(problem.allowed)}};
}

Problem Problems::problemAt(const Path &path, const char *mark, const std::string &what,
                            const std::string &allowed) const {
    const std::string where = path.text();
    const int line = document_.lines.find(path);
    const Field *field = fieldOf(path);
    json value = field ? valueAt(document_.root, path) : json();
    if (field && field->secret && !value.is_null())
        value = kMask;
    const std::string text = escapeBytes(document_.file) + ":" + std::to_string(line) + ": " + mark + where +
                             (where.empty() ? "" : ": ") + what + (allowed.empty() ? "" : "; " + allowed);
    return {path, line, text, std::move(value), allowed};
}

bool Problems::full() const { return errors_.size() >= kMostProblems; }

void Problems::add(const Path &path, const std::string &what, const std::string &allowed) {
    if (full())
        return addUnread();
    errors_.push_back(problemAt(path, "", what, allowed));
}

void Problems::warn(const Path &path, const std::string &what) {
    if (warnings_.size() < kMostProblems)
        warnings_.push_back(problemAt(path, "warning: ", what, ""));
}

void Problems::throwIfAny() const {
    if (errors_.empty())
        return;
    std::string all;
    json rows = json::array();
    for (const Problem &problem : errors_) {
        all += (all.empty() ? "" : "\n") + problem.text;
        rows.push_back(problemRow(problem));
    }
    if (unread_ > 0)
        all += "\n... and " + std::to_string(unread_) + " more";
    throw Failure(Status::kUsage, "", all, "", {{"errors", rows}});
}

} // namespace wlhost
