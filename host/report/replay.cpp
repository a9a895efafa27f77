#include "host/report/replay.h"

#include <dlfcn.h>
#include <unistd.h>

#include <climits>

#include "host/base/failure.h"
#include "host/base/log.h"
#include "host/base/word_lists.h"
#include "host/report/archive.h"
#include "host/report/operations.h"
#include "host/report/replayer.h"
#include "host/tap/tap.h"

namespace wlhost {
namespace {

// Where the stand-ins for the platform's libraries lie, from the folder of this program: in the build, installed.
constexpr const char *kStandInFolders[] = {"stand-ins", "../" WLHOST_LIBDIR "/wlhost"};
constexpr const char *kStandIns[] = {"libnvram.so", "libwlctl.so"};

std::string programFolder() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    const std::string program(path, length < 0 ? 0 : static_cast<size_t>(length));
    return program.substr(0, program.rfind('/') + 1);
}

// Loaded first, a library of the same soname is the one that the loader gives the module.
void loadStandIns() {
    for (const char *name : kStandIns) {
        std::vector<std::string> tried;
        void *handle = nullptr;
        for (const char *folder : kStandInFolders) {
            tried.push_back(programFolder() + folder + "/" + name);
            handle = handle ? handle : dlopen(tried.back().c_str(), RTLD_NOW | RTLD_GLOBAL);
        }
        if (!handle)
            throw Failure(Status::kEnvironment, name, "the stand-in that replay needs is missing",
                          "it belongs to one of: " + joined(tried));
    }
}

json known(const std::string &text) { return text.empty() ? json() : json(text); }

json differenceRow(const Difference &one) {
    return {{"number", one.number},           {"operation", one.operation},
            {"radio", known(one.radio)},      {"call", one.position},
            {"archive", known(one.expected)}, {"archive_function", known(one.expectedFunction)},
            {"module", known(one.got)},       {"module_function", known(one.gotFunction)}};
}

// Operations that the host's memory had lost.
json gapsOf(const ReadArchive &archive) {
    json gaps = json::array();
    uint64_t next = 0;
    auto close = [&](uint64_t number) {
        if (number > next)
            gaps.push_back({{"from", next}, {"to", number - 1}});
        next = number + 1;
    };
    for (const Operation &operation : archive.operations)
        close(operation.number);
    const json begun = archive.about.value("operations_begun", json());
    if (begun.is_number_unsigned())
        close(begun);
    return gaps;
}

} // namespace

json replay(const std::string &bytes, const std::string &library) {
    const ReadArchive archive = readArchive(bytes);
    loadStandIns();
    Script script;
    Replayer replayer(script);
    tap::setHandler(&replayer);
    muteLog();
    script.begin(archive.operations.front());
    Module &module = loadModule(library);
    script.end(0);
    for (size_t i = 1; i < archive.operations.size(); ++i) {
        const Operation &operation = archive.operations[i];
        tap::Operation scope(operation.name);
        script.begin(operation);
        script.end(runAgain(module, operation.name, inputOf(operation)));
    }
    tap::setHandler(nullptr);
    json differences = json::array();
    for (const Difference &one : script.differences())
        differences.push_back(differenceRow(one));
    return {{"same", script.differenceCount() == 0},
            {"operations", archive.operations.size()},
            {"calls", script.matched()},
            {"differences", std::move(differences)},
            {"difference_count", script.differenceCount()},
            {"gaps", gapsOf(archive)},
            {"archive", archive.about}};
}

} // namespace wlhost
