#include "host/report/trace.h"

#include <algorithm>
#include <cerrno>
#include <map>

#include "host/base/escape.h"
#include "host/base/failure.h"
#include "host/report/records.h"

namespace wlhost {
namespace {

struct ErrorName {
    int number;
    const char *name;
};
constexpr ErrorName kErrors[] = {
    {EPERM, "EPERM"},
    {ENOENT, "ENOENT"},
    {ESRCH, "ESRCH"},
    {EINTR, "EINTR"},
    {EIO, "EIO"},
    {ENXIO, "ENXIO"},
    {EBADF, "EBADF"},
    {ECHILD, "ECHILD"},
    {EAGAIN, "EAGAIN"},
    {ENOMEM, "ENOMEM"},
    {EACCES, "EACCES"},
    {EFAULT, "EFAULT"},
    {EBUSY, "EBUSY"},
    {EEXIST, "EEXIST"},
    {ENODEV, "ENODEV"},
    {ENOTDIR, "ENOTDIR"},
    {EISDIR, "EISDIR"},
    {EINVAL, "EINVAL"},
    {ENFILE, "ENFILE"},
    {EMFILE, "EMFILE"},
    {ENOTTY, "ENOTTY"},
    {ENOSPC, "ENOSPC"},
    {EROFS, "EROFS"},
    {ENAMETOOLONG, "ENAMETOOLONG"},
    {ENOTEMPTY, "ENOTEMPTY"},
    {ELOOP, "ELOOP"},
    {EADDRINUSE, "EADDRINUSE"},
    {EADDRNOTAVAIL, "EADDRNOTAVAIL"},
    {ENETDOWN, "ENETDOWN"},
    {ENETUNREACH, "ENETUNREACH"},
    {ENOBUFS, "ENOBUFS"},
    {ECONNREFUSED, "ECONNREFUSED"},
    {EMSGSIZE, "EMSGSIZE"},
    {EOPNOTSUPP, "EOPNOTSUPP"},
};

std::string textAt(const json &from, const char *name) {
    auto found = from.find(name);
    return found == from.end() ? "" : bytesFromJson(*found);
}

int64_t numberAt(const json &from, const char *name) {
    auto found = from.find(name);
    if (found == from.end())
        return 0;
    if (!found->is_number_integer())
        refuseArchive("archive", std::string(name) + " is not a whole number");
    return found->get<int64_t>();
}

Entry entryFromJson(const json &from) {
    if (!from.is_object())
        refuseArchive("archive", "an entry is not an object");
    Entry entry;
    entry.call = textAt(from, "call");
    entry.what = textAt(from, "what");
    entry.value = textAt(from, "value");
    entry.result = numberAt(from, "result");
    entry.error = textAt(from, "error");
    entry.function = textAt(from, "function");
    if (from.contains("answer"))
        entry.answer = textAt(from, "answer");
    return entry;
}

} // namespace

json entryToJson(const Entry &entry) {
    json out = {{"call", entry.call}};
    auto add = [&](const char *name, const std::string &text) {
        if (!text.empty())
            out[name] = bytesToJson(text);
    };
    add("what", entry.what);
    add("value", entry.value);
    add("error", entry.error);
    add("function", entry.function);
    if (entry.result != 0)
        out["result"] = entry.result;
    if (entry.answer)
        out["answer"] = bytesToJson(*entry.answer);
    return out;
}

std::vector<json> operationsToJson(const std::list<Operation> &operations) {
    std::map<const std::string *, uint64_t> told; // by record, the operation that holds it
    std::vector<json> all;
    for (const Operation &operation : operations) {
        json input = json::parse(operation.input), entries = json::array();
        const auto known = told.find(operation.record.get());
        if (known != told.end())
            input["intf"] = {{"as_in", known->second}};
        else if (operation.record)
            input["intf"] = json::parse(*operation.record);
        if (operation.record)
            told.emplace(operation.record.get(), operation.number);
        for (const Entry &entry : operation.entries)
            entries.push_back(entryToJson(entry));
        json row = {{"number", operation.number},   {"operation", operation.name},  {"radio", operation.radio},
                    {"request", operation.request}, {"time", operation.time},       {"input", std::move(input)},
                    {"result", operation.result},   {"entries", std::move(entries)}};
        if (operation.dry)
            row["dry"] = true;
        all.push_back(std::move(row));
    }
    return all;
}

Operation operationFromJson(json from, const std::deque<Operation> &before) {
    if (!from.is_object() || !from.value("entries", json()).is_array() || !from.value("input", json()).is_object())
        refuseArchive("archive", "an operation lacks its input or its entries");
    Operation operation;
    operation.number = static_cast<uint64_t>(numberAt(from, "number"));
    if (!before.empty() && operation.number <= before.back().number)
        refuseArchive("archive", "operations are out of order");
    operation.name = textAt(from, "operation");
    operation.radio = textAt(from, "radio");
    operation.result = numberAt(from, "result");
    json &input = from["input"];
    if (const json intf = input.value("intf", json()); intf.is_object() && intf.contains("as_in")) {
        const auto number = static_cast<uint64_t>(numberAt(intf, "as_in"));
        auto same = std::lower_bound(before.begin(), before.end(), number,
                                     [](const Operation &one, uint64_t wanted) { return one.number < wanted; });
        if (same == before.end() || same->number != number || !same->record)
            refuseArchive("archive", "a record stands in an operation that there is not");
        operation.record = same->record;
    } else if (!intf.is_null()) {
        operation.record = std::make_shared<const std::string>(intf.dump());
    }
    input.erase("intf");
    operation.input = input.dump();
    for (const json &entry : from["entries"])
        operation.entries.push_back(entryFromJson(entry));
    return operation;
}

json inputOf(const Operation &operation) {
    json input = json::parse(operation.input);
    if (operation.record)
        input["intf"] = json::parse(*operation.record);
    return input;
}

std::string errorName(int number) {
    for (const ErrorName &row : kErrors)
        if (row.number == number)
            return row.name;
    return number == 0 ? "" : "EIO";
}

int errorNumber(std::string_view name) {
    for (const ErrorName &row : kErrors)
        if (name == row.name)
            return row.number;
    return name.empty() ? 0 : EIO;
}

std::string describe(const Entry &entry) {
    std::string text = entry.call;
    for (const std::string *part : {&entry.what, &entry.value})
        if (!part->empty())
            text += " " + escapeBytes(*part);
    return text;
}

} // namespace wlhost
