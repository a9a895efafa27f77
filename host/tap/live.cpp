#include "host/tap/live.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "host/base/fd.h"
#include "host/base/log.h"
#include "host/base/masking.h"
#include "host/tap/shell_line.h"
#include "host/tap/spawn.h"
#include "host/tap/tap.h"

namespace wlhost::tap {
namespace {

// What is wanted gone may well be gone already.
constexpr std::string_view kNoise[] = {"ebtables -t broute -D ", "killall ", "rm ", "tc qdisc del ", "brctl delif "};
constexpr std::string_view kDaemons[] = {"acsd", "eapd", "lld2d", "nas", "wps_monitor"};
constexpr size_t kLongestWhat = 4096, kLongestSaid = 4096;

Entry begun(Kind kind, const std::string &what, std::string function) {
    const Operation &operation = Operation::current();
    Entry entry;
    entry.kind = kind;
    entry.what = what.substr(0, kLongestWhat);
    entry.function = std::move(function);
    entry.operation = operation.number();
    entry.request = operation.request();
    entry.time = std::chrono::system_clock::now();
    return entry;
}

void end(Entry &entry, int status) {
    entry.duration =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now() - entry.time);
    entry.status = status;
}

// Up to a limit; the rest is read and dropped, so that who writes can end.
void copyAll(int from, int to) {
    constexpr size_t kMost = 4UL * 1024 * 1024;
    char buffer[16384];
    ssize_t count;
    for (size_t total = 0; (count = read(from, buffer, sizeof buffer)) != 0;) {
        if (count < 0 && errno != EINTR)
            break;
        if (count > 0 && total < kMost)
            total += static_cast<size_t>(std::max<ssize_t>(::write(to, buffer, static_cast<size_t>(count)), 0));
    }
    lseek(to, 0, SEEK_SET);
}

// While it lives, what is written on stderr is kept.
class CapturedErrors {
  public:
    // A daemon keeps the host's stderr: what it says later would be lost in a file that nobody reads any more.
    explicit CapturedErrors(bool daemon)
        : kept_(daemon ? -1 : memoryFile()), own_(kept_.get() < 0 ? -1 : fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
        if (own_.get() >= 0)
            dup2(kept_.get(), STDERR_FILENO);
    }
    std::string take() {
        if (own_.get() < 0)
            return "";
        dup2(own_.get(), STDERR_FILENO);
        return takeText(kept_.get()).substr(0, kLongestSaid);
    }

  private:
    Fd kept_, own_;
};

void tell(const Entry &entry) {
    if (entry.said.empty())
        return;
    const std::string tool = entry.what.substr(0, entry.what.find(' '));
    logText(isNoise(entry.what) ? LogLevel::kDebug : LogLevel::kError, tool.substr(tool.rfind('/') + 1).c_str(),
            entry.said.substr(0, entry.said.find_last_not_of('\n') + 1) + " (" + entry.what + ")");
}

} // namespace

bool isNoise(const std::string &command) {
    return std::any_of(std::begin(kNoise), std::end(kNoise),
                       [&](std::string_view start) { return command.compare(0, start.size(), start) == 0; });
}

bool startsDaemon(const std::string &command) {
    const std::string word = command.substr(0, command.find_first_of(" &"));
    return std::count(std::begin(kDaemons), std::end(kDaemons), word.substr(word.rfind('/') + 1)) != 0;
}

void LiveHandler::note(const Entry &entry) {
    settle();
    tell(entry);
    sink_(entry);
}

void LiveHandler::settle() {
    if (write_)
        sink_(*write_);
    write_.reset();
}

void LiveHandler::heard(const char *function, const std::string &text) {
    if (!write_)
        return;
    const std::string start =
        (write_->removes ? "nvram unset " : "nvram set ") + write_->what.substr(0, write_->what.find('='));
    const char next = text.size() > start.size() ? text[start.size()] : ' ';
    if (text.compare(0, start.size(), start) == 0 && next == ' ')
        write_->function = function;
    settle();
}

int LiveHandler::runForHost(const std::string &function, const Words &argv, std::string *output, std::string *error) {
    Entry entry = begun(Kind::kCommand, quotedLine(argv), function);
    std::string said;
    end(entry, Handler::runForHost(function, argv, output, &said));
    entry.said = said.substr(0, kLongestSaid);
    const int status = entry.status;
    note(entry);
    if (error)
        *error = said;
    return status;
}

int LiveHandler::system(const char *command) {
    Entry entry = begun(Kind::kCommand, command, functionOf(command));
    CapturedErrors errors(startsDaemon(command));
    const int rc = Handler::system(command);
    end(entry, rc < 0 ? rc : exitStatus(rc));
    entry.said = errors.take();
    note(entry);
    return rc;
}

// The command runs to its end here, so that its time is its own, and hands its output on from memory.
FILE *LiveHandler::popen(const char *command, const char *type) {
    Fd output(memoryFile());
    if (output.get() < 0)
        return Handler::popen(command, type);
    Entry entry = begun(Kind::kCommand, command, functionOf(command));
    CapturedErrors errors(startsDaemon(command));
    FILE *pipe = Handler::popen(command, type);
    const int reason = errno;
    if (pipe)
        copyAll(platform().fileno(pipe), output.get());
    const int rc = pipe ? Handler::pclose(pipe) : -1;
    end(entry, rc < 0 ? rc : exitStatus(rc));
    entry.said = errors.take();
    note(entry);
    errno = reason;
    FILE *stream = pipe ? fdopen(output.release(), "r") : nullptr;
    if (stream)
        ended_[stream] = rc;
    return stream;
}

int LiveHandler::pclose(FILE *stream) {
    auto known = ended_.find(stream);
    if (known == ended_.end())
        return Handler::pclose(stream);
    const int rc = known->second;
    ended_.erase(known);
    fclose(stream);
    return rc;
}

int LiveHandler::wlctlCmd(char *line) {
    Entry entry = begun(Kind::kDriver, line, functionOf(line)); // before the line is changed
    CapturedErrors errors(false);
    const int rc = Handler::wlctlCmd(line);
    end(entry, rc);
    std::fflush(stderr);
    entry.said = errors.take();
    note(entry);
    return rc;
}

char *LiveHandler::nvramGet(const char *key) {
    char *value = Handler::nvramGet(key);
    if (value && isSecretKey(key))
        learnSecret(value);
    return value;
}

int LiveHandler::write(const char *key, const char *value, const std::function<int()> &act) {
    settle();
    if (value && isSecretKey(key))
        learnSecret(value);
    Entry entry = begun(Kind::kNvram, key + (value ? std::string("=") + value : ""), Operation::current().name());
    entry.removes = !value;
    const int rc = act();
    end(entry, rc);
    write_ = std::move(entry);
    return rc;
}

int LiveHandler::nvramSet(const char *key, const char *value) {
    return write(key, value, [&] { return Handler::nvramSet(key, value); });
}

int LiveHandler::nvramUnset(const char *key) {
    return write(key, nullptr, [&] { return Handler::nvramUnset(key); });
}

ssize_t LiveHandler::sendto(int fd, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length) {
    Entry entry =
        begun(Kind::kDatagram, std::string(static_cast<const char *>(data), size), Operation::current().name());
    const ssize_t rc = Handler::sendto(fd, data, size, flags, to, length);
    const int reason = errno;
    end(entry, rc < 0 ? reason : 0);
    note(entry);
    errno = reason;
    return rc;
}

int LiveHandler::nanosleep(const timespec *wanted, timespec *left) {
    char seconds[32];
    snprintf(seconds, sizeof seconds, "%g",
             static_cast<double>(wanted->tv_sec) + static_cast<double>(wanted->tv_nsec) / 1e9);
    Entry entry = begun(Kind::kPause, seconds, Operation::current().name());
    const int rc = Handler::nanosleep(wanted, left);
    const int reason = errno;
    end(entry, rc == 0 ? 0 : reason);
    note(entry);
    errno = reason;
    return rc;
}

bool LiveHandler::print(FILE *, const char *text, size_t length) {
    logText(LogLevel::kError, "module", std::string(text, length));
    return true;
}

} // namespace wlhost::tap
