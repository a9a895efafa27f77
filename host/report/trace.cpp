#include "host/report/trace.h"

#include <cerrno>

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

[[noreturn]] void refuse(const std::string &what) {
    throw Failure(Status::kUsage, "archive", what, "it is damaged or made by hand");
}

std::string textAt(const json &from, const char *name) {
    auto found = from.find(name);
    return found == from.end() ? "" : bytesFromJson(*found);
}

int64_t numberAt(const json &from, const char *name) {
    auto found = from.find(name);
    if (found == from.end())
        return 0;
    if (!found->is_number_integer())
        refuse(std::string(name) + " is not a whole number");
    return found->get<int64_t>();
}

Entry entryFromJson(const json &from) {
    if (!from.is_object())
        refuse("an entry is not an object");
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

json operationToJson(const Operation &operation) {
    json entries = json::array();
    for (const Entry &entry : operation.entries)
        entries.push_back(entryToJson(entry));
    json input = json::parse(operation.input);
    if (operation.record)
        input["intf"] = json::parse(*operation.record);
    return {{"number", operation.number}, {"operation", operation.name}, {"radio", operation.radio},
            {"time", operation.time},     {"input", std::move(input)},   {"result", operation.result},
            {"entries", std::move(entries)}};
}

Operation operationFromJson(const json &from) {
    if (!from.is_object() || !from.value("entries", json()).is_array() || !from.value("input", json()).is_object())
        refuse("an operation lacks its input or its entries");
    Operation operation;
    operation.number = static_cast<uint64_t>(numberAt(from, "number"));
    operation.name = textAt(from, "operation");
    operation.radio = textAt(from, "radio");
    operation.input = from["input"].dump();
    operation.result = numberAt(from, "result");
    for (const json &entry : from["entries"])
        operation.entries.push_back(entryFromJson(entry));
    return operation;
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
