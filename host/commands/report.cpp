// The archive of a running host.
#include <dlfcn.h>
#include <sys/utsname.h>

#include <ctime>
#include <fstream>
#include <sstream>

#include "host/base/escape.h"
#include "host/cli/calls.h"
#include "host/commands/host_commands.h"
#include "host/journal/journal.h"
#include "host/report/archive.h"
#include "host/report/operations.h"
#include "host/report/recording.h"
#include "host/report/records.h"
#include "host/state/host.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

// The library's bytes; empty when its file is gone.
std::string moduleText(const Module &module) {
    Dl_info info;
    void *start = dlsym(module.handle, kModuleStart);
    if (!start || dladdr(start, &info) == 0)
        return "";
    std::ifstream file(info.dli_fname, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

json versions(const Host &host) {
    utsname system{};
    uname(&system);
    return {{"made", std::time(nullptr)},
            {"host", kHostVersion},
            {"abi", WLBRCM_ABI_VERSION},
            {"module", host.module().ops->name},
            {"library", host.module().library},
            {"machine", system.machine},
            {"kernel", system.release},
            {"node", system.nodename},
            {"operations_begun", recording().begun()}};
}

// The variables that the module read or wrote, as they are now.
json storedVariables(const Module &module, const std::vector<json> &operations) {
    json variables = json::object();
    for (const json &operation : operations) {
        for (const json &entry : operation["entries"]) {
            const std::string call = entry["call"];
            if (call.rfind("nvram_", 0) != 0 || !entry["what"].is_string() || !module.nvramGet)
                continue;
            const std::string key = entry["what"];
            const char *value = variables.contains(key) ? nullptr : module.nvramGet(key.c_str());
            if (!variables.contains(key))
                variables[key] = value ? bytesToJson(value) : json();
        }
    }
    return variables;
}

json verifyRows(Host &host) {
    json rows = json::array();
    auto add = [&](const std::vector<Finding> &findings) {
        for (const Finding &finding : findings)
            rows.push_back(findingRow(finding));
    };
    for (WlIntf *intf : host.configuredRadios())
        add(examine(host, *intf));
    add(examineGateway(host));
    return rows;
}

// A variable stands apart from its value, which may be a secret with blanks in it.
std::vector<json> journalRows() {
    std::vector<json> rows;
    for (const tap::Entry &entry : journal().entries()) {
        json row = journalRow(entry, true);
        if (const size_t sign = entry.what.find('='); entry.kind == tap::Kind::kNvram && sign != std::string::npos) {
            row["what"] = escapeBytes(entry.what.substr(0, sign));
            row["value"] = escapeBytes(entry.what.substr(sign + 1));
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace

json report(Host &host, const json &) {
    Archive archive;
    archive.verify = verifyRows(host);
    archive.doctor = machineRows(host.module().library);
    archive.configuration = host.config().document.root;
    archive.operations = operationsToJson(recording().operations());
    archive.nvram = storedVariables(host.module(), archive.operations);
    archive.journal = journalRows();
    archive.about = versions(host);
    const size_t kept = archive.operations.size();
    const std::string bytes = packArchive(std::move(archive), moduleText(host.module()), std::time(nullptr));
    if (bytes.size() > kLargestArchive)
        throw Failure(Status::kFailed, "report", "the archive would have " + std::to_string(bytes.size()) + " bytes");
    return {{"archive", toHex(bytes)}, {"operations", kept}, {"lost_operations", recording().begun() - kept}};
}

} // namespace wlhost
