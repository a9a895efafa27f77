#include "host/state/loaded_module.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/base/failure.h"
#include "host/base/log.h"
#include "host/tap/dry_run.h"
#include "host/tap/tap.h"

namespace wlhost {
namespace {

// The registration callbacks carry no context for radios and events, so there is one module in a process.
Module theModule;

int registerModule(WlModuleOps *ops, void *arg) {
    static_cast<Module *>(arg)->ops = ops;
    return 0;
}

int registerIntf(WlIntf *intf, const char *) {
    theModule.radios.push_back(intf);
    return 0;
}

int registerEvents(const char *, WlEvtHandler *handler) {
    theModule.events = handler;
    return 0;
}

__attribute__((format(printf, 5, 6))) void printLog(int level, const char *module, const char *function, int line,
                                                    const char *format, ...) {
    char message[2048];
    va_list args;
    va_start(args, format);
    int length = vsnprintf(message, sizeof message, format, args);
    va_end(args);
    std::string_view text(message, length < 0 ? 0 : strlen(message));
    while (!text.empty() && text.back() == '\n')
        text.remove_suffix(1);
    tap::heard(function, std::string(text));
    const LogLevel ours = level <= WLBRCM_LOG_ERR    ? LogLevel::kError
                          : level <= WLBRCM_LOG_INFO ? LogLevel::kInfo
                                                     : LogLevel::kDebug;
    logText(tap::isDry() ? LogLevel::kDebug : ours, tap::isDry() ? "module, dry run" : "module",
            std::string(module) + " " + function + ":" + std::to_string(line) + ": " + std::string(text));
}

template <typename Function> Function *symbol(void *library, const char *name) {
    return reinterpret_cast<Function *>(dlsym(library, name));
}

// Setters take a record of texts that they do not change.
int (*upstreamRate)(WlanParamArg *), (*downstreamRate)(WlanParamArg *), (*flowCache)(WlanParamArg *, int);

template <typename Setter, typename... More> int set(Setter *setter, const char *ifname, int value, More... more) {
    std::string prefix = ifname, text = std::to_string(value);
    WlanParamArg arg{};
    arg.prefix = prefix.data();
    arg.value = text.data();
    return setter(&arg, more...);
}
int setUpstreamRate(const char *ifname, int kbit) { return set(upstreamRate, ifname, kbit); }
int setDownstreamRate(const char *ifname, int kbit) { return set(downstreamRate, ifname, kbit); }
int setFlowCache(const char *ifname, int use) { return set(flowCache, ifname, use, 1); }

} // namespace

WlIntf *Module::find(const std::string &radio) const {
    for (WlIntf *intf : radios)
        if (radio == intf->intfName)
            return intf;
    return nullptr;
}

std::vector<std::string> Module::names() const {
    std::vector<std::string> all;
    for (const WlIntf *intf : radios)
        all.push_back(intf->intfName);
    return all;
}

std::string libraryName(const std::string &option) {
    const char *environment = getenv("WLHOST_LIBRARY");
    if (!option.empty())
        return option;
    return environment && *environment ? environment : "libwlbrcm.so." + std::to_string(WLBRCM_ABI_VERSION);
}

Module &loadModule(const std::string &library) {
    void *handle = dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!handle)
        throw Failure(Status::kEnvironment, "module", dlerror(), "name the module with --library or WLHOST_LIBRARY");
    auto *init = symbol<decltype(wlModuleInit)>(handle, "wlModuleInit");
    if (!init)
        throw Failure(Status::kEnvironment, library, "has no wlModuleInit", "this library is no module");
    tap::attach(handle, reinterpret_cast<const void *>(init));
    theModule.library = library;
    theModule.handle = handle;
    theModule.nvramGet = symbol<const char *(const char *)>(handle, "nvram_get");
    theModule.phyType = symbol<decltype(qvWlanGetPhyType)>(handle, "qvWlanGetPhyType");
    theModule.checkPin = symbol<decltype(qvWlanWscPincheck)>(handle, "qvWlanWscPincheck");
    upstreamRate = symbol<decltype(qvWlanSetUpstreamRate)>(handle, "qvWlanSetUpstreamRate");
    downstreamRate = symbol<decltype(qvWlanSetDownstreamRate)>(handle, "qvWlanSetDownstreamRate");
    flowCache = symbol<decltype(qvWlanFlowCacheSetup)>(handle, "qvWlanFlowCacheSetup");
    theModule.setUpstreamRate = upstreamRate ? setUpstreamRate : nullptr;
    theModule.setDownstreamRate = downstreamRate ? setDownstreamRate : nullptr;
    theModule.setFlowCache = flowCache ? setFlowCache : nullptr;
    static WlModuleHostOps hostOps = {registerModule, registerIntf, registerEvents, printLog};
    if (int rc = init(&hostOps, &theModule); rc != 0 || !theModule.ops)
        throw Failure(Status::kFailed, library, "wlModuleInit returned " + std::to_string(rc),
                      "see its log with --log-level debug");
    return theModule;
}

} // namespace wlhost

int qvUtilStrReplace(char *text, const char *from, const char *to) {
    if (!text || !from || !to || !*from)
        return 0;
    int count = 0;
    size_t fromLength = strlen(from), toLength = strlen(to);
    for (char *at = text; (at = strstr(at, from)) != nullptr; at += toLength, ++count) {
        memmove(at + toLength, at + fromLength, strlen(at + fromLength) + 1);
        std::copy_n(to, toLength, at);
    }
    return count;
}
