#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "host/cli/calls.h"
#include "host/control/runtime_folder.h"

namespace wlhost {
namespace {

std::string realPath(const std::string &path) {
    char resolved[PATH_MAX];
    if (!realpath(path.c_str(), resolved))
        throw Failure(Status::kUsage, path, std::strerror(errno));
    return resolved;
}

std::string folderOf(const std::string &path) { return path.substr(0, path.rfind('/')); }

std::string launcher() {
    const char *environment = getenv("WLHOST_GATEWAY");
    std::string path = environment && *environment ? environment : WLHOST_GATEWAY;
    if (access(path.c_str(), X_OK) != 0)
        throw Failure(Status::kEnvironment, path, "the simulated gateway is not there",
                      "name its launcher with WLHOST_GATEWAY");
    return path;
}

// The gateway's own socket lives in a folder that both sides see; the usual path points there.
std::string shareSocket(const std::string &socket) {
    secureRuntimeFolder(socket);
    std::string folder = socket + ".sim";
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        throw Failure(Status::kEnvironment, folder, std::strerror(errno));
    struct stat entry;
    if (lstat(folder.c_str(), &entry) != 0 || !S_ISDIR(entry.st_mode) || entry.st_uid != geteuid())
        throw Failure(Status::kEnvironment, folder, "is not this user's folder", "choose a path with --socket");
    std::string target = realPath(folder) + "/wlhost.sock";
    if (lstat(socket.c_str(), &entry) == 0 && S_ISLNK(entry.st_mode))
        unlink(socket.c_str());
    if (symlink(target.c_str(), socket.c_str()) != 0)
        throw Failure(Status::kEnvironment, socket, std::strerror(errno), "choose a path with --socket");
    return folderOf(target);
}

// The folder with the configuration stands at its own place inside, so that a reload may name its neighbours. A folder
// that the gateway has itself stays the gateway's; then only the file is shown.
std::string configBinding(const std::string &config) {
    std::string folder = folderOf(config);
    std::string shown = folder.find('/', 1) == std::string::npos ? config : folder;
    return shown + ":" + shown + ":ro";
}

} // namespace

void runInGateway(const Call &call) {
    std::string config = realPath(call.args["config"]), self = realPath("/proc/self/exe");
    std::string shared = shareSocket(call.socket);
    std::string run = shared + "/run";
    std::fprintf(stderr, "wlhost: enter this gateway with: %s enter --run %s -- sh\n", launcher().c_str(), run.c_str());
    std::vector<std::string> words = {launcher(),
                                      "--build",
                                      folderOf(folderOf(self)),
                                      "--run",
                                      run,
                                      "--bind",
                                      configBinding(config),
                                      "--bind",
                                      shared + ":/var/run/wlhost",
                                      "--",
                                      "wlhost",
                                      "run",
                                      config,
                                      "--socket",
                                      "/var/run/wlhost/wlhost.sock",
                                      "--log-level",
                                      call.args.value("log_level", "error")};
    if (call.asJson)
        words.push_back("--json");
    if (call.args.value("once", false))
        words.push_back("--once");
    if (call.args.contains("library"))
        words.insert(words.end(), {"--library", call.args["library"]});
    std::vector<char *> arguments;
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    throw Failure(Status::kEnvironment, words[0], std::strerror(errno));
}

} // namespace wlhost
