// `report`, as far as the client makes it: the archive becomes a file; and `replay`.
#include <fcntl.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "host/base/escape.h"
#include "host/base/fd.h"
#include "host/base/regular_file.h"
#include "host/cli/calls.h"
#include "host/report/archive.h"
#include "host/report/replay.h"
#include "host/state/loaded_module.h"

namespace wlhost {
namespace {

std::string defaultName() {
    char host[HOST_NAME_MAX + 1] = "", time[32] = "";
    gethostname(host, sizeof host - 1);
    std::string name = "wlhost-";
    for (const char *c = host; *c; ++c)
        name += std::isalnum(static_cast<unsigned char>(*c)) || *c == '-' || *c == '.' ? *c : '_';
    const std::time_t now = std::time(nullptr);
    std::strftime(time, sizeof time, "-%Y%m%d-%H%M%S", std::localtime(&now));
    return name + time + ".tar.gz";
}

[[noreturn]] void refuseFile(const std::string &file) {
    throw Failure(Status::kFailed, file, std::string("cannot be written: ") + std::strerror(errno),
                  "name a file in a folder of your own");
}

// Whole or not at all: a new file beside it, of mode 0600, takes its name. A link there is replaced, not followed.
void writeFile(const std::string &file, const std::string &bytes) {
    std::string fresh = file + ".XXXXXX";
    Fd fd(mkostemp(fresh.data(), O_CLOEXEC));
    if (fd.get() < 0)
        refuseFile(file);
    size_t written = 0;
    for (ssize_t count; written < bytes.size(); written += static_cast<size_t>(count < 0 ? 0 : count)) {
        count = write(fd.get(), bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno != EINTR)
            break;
    }
    if (written == bytes.size() && fsync(fd.get()) == 0 && rename(fresh.c_str(), file.c_str()) == 0)
        return;
    const int saved = errno;
    unlink(fresh.c_str());
    errno = saved;
    refuseFile(file);
}

} // namespace

Status askForReport(const Call &call) {
    const std::string file = call.args.value("file", defaultName());
    json result = resultFrom(call.socket, {{"command", call.command->name}}, call.timeout);
    const auto bytes = fromHex(result.at("archive").get<std::string>());
    if (!bytes)
        throw Failure(Status::kFailed, "report", "the host's answer is no archive");
    writeFile(file, *bytes);
    result.erase("archive");
    result["file"] = file;
    result["bytes"] = bytes->size();
    showResult(call, result);
    return Status::kDone;
}

Status replayArchive(const Call &call) {
    const json result =
        replay(readRegularFile(call.args["file"], kLargestArchive), libraryName(call.args.value("library", "")));
    showResult(call, result);
    return result["same"] == true ? Status::kDone : Status::kFailed;
}

} // namespace wlhost
