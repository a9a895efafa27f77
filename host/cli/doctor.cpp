#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "host/base/word_lists.h"
#include "host/cli/calls.h"
#include "host/control/control_socket.h"
#include "host/state/loaded_module.h"

namespace wlhost {
namespace {

struct Tool {
    const char *name; // looked up in PATH unless it is a path
    bool required;
    const char *hint;
};

constexpr const char *kVendor = "part of the radio platform; or start with: wlhost run CONFIG --sim";
constexpr Tool kTools[] = {
    {"wlctl", true, kVendor},
    {"wl", true, kVendor},
    {"/bin/wlconf", true, kVendor},
    {"/bin/eapd", true, kVendor},
    {"/bin/nas", true, kVendor},
    {"/bin/wps_monitor", false, kVendor},
    {"/bin/acsd", false, kVendor},
    {"acs_cli", false, kVendor},
    {"/bin/lld2d", false, kVendor},
    {"dhdctl", false, kVendor},
    {"brctl", true, "apt-get install bridge-utils, or busybox's applet"},
    {"ifconfig", true, "apt-get install net-tools, or busybox's applet"},
    {"killall", true, "apt-get install psmisc, or busybox's applet"},
    {"awk", true, "apt-get install mawk, or busybox's applet"},
    {"grep", true, "apt-get install grep"},
    {"tc", false, "apt-get install iproute2; rate limits need it"},
    {"ebtables", false, "apt-get install ebtables; rate limits need it"},
};

json row(const std::string &check, bool found, bool required, const std::string &hint) {
    return {{"check", check},
            {"result", found ? "ok" : "missing"},
            {"required", required},
            {"hint", found ? json() : json(hint)}};
}

bool runnable(const std::string &name) {
    if (name.find('/') != std::string::npos)
        return access(name.c_str(), X_OK) == 0;
    const char *path = getenv("PATH");
    for (const std::string &folder : splitWords(path ? path : "", ':'))
        if (access((folder + "/" + name).c_str(), X_OK) == 0)
            return true;
    return false;
}

json libraryRow(const std::string &library) {
    void *handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    std::string reason = handle ? "" : dlerror();
    bool module = handle && dlsym(handle, "wlModuleInit");
    if (handle)
        dlclose(handle);
    return row("module " + library, module, true, reason.empty() ? "has no wlModuleInit" : reason);
}

json hostRow(const std::string &socket) {
    try {
        callHost(socket, R"({"command":"version"})", 5);
        return row("host at " + socket, true, false, "");
    } catch (const Failure &failure) {
        return row("host at " + socket, false, false, std::string(failure.what()) + "; " + failure.hint);
    }
}

} // namespace

bool hasRadioInterface() {
    std::ifstream devices("/proc/net/dev");
    for (std::string line; std::getline(devices, line);)
        if (line.find("wl") != std::string::npos)
            return true;
    return false;
}

json machineRows(const std::string &library) {
    json rows = json::array({libraryRow(library)});
    for (const Tool &tool : kTools)
        rows.push_back(row(tool.name, runnable(tool.name), tool.required, tool.hint));
    rows.push_back(
        row("radio interfaces", hasRadioInterface(), true, "no wlN in /proc/net/dev; is the driver loaded?"));
    return rows;
}

Status examineMachine(const Call &call) {
    json rows = machineRows(libraryName(call.args.value("library", "")));
    rows.push_back(hostRow(call.socket));
    showResult(call, rows);
    bool lacking = std::any_of(rows.begin(), rows.end(),
                               [](const json &one) { return one["required"] == true && one["result"] != "ok"; });
    return lacking ? Status::kEnvironment : Status::kDone;
}

} // namespace wlhost
