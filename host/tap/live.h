// Done, and noted.
#pragma once

#include <functional>
#include <map>
#include <optional>

#include "host/tap/entry.h"
#include "host/tap/handler.h"

namespace wlhost::tap {

class LiveHandler : public Handler {
  public:
    using Sink = std::function<void(const Entry &)>;
    explicit LiveHandler(Sink sink) : sink_(std::move(sink)) {}

    void heard(const char *function, const std::string &text) override;
    void settle() override;
    int runForHost(const std::string &function, const Words &argv, std::string *output, std::string *error) override;

    int system(const char *command) override;
    FILE *popen(const char *command, const char *type) override;
    int pclose(FILE *stream) override;
    int wlctlCmd(char *line) override;
    char *nvramGet(const char *key) override;
    int nvramSet(const char *key, const char *value) override;
    int nvramUnset(const char *key) override;
    ssize_t sendto(int fd, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length) override;
    int nanosleep(const timespec *wanted, timespec *left) override;
    bool print(FILE *stream, const char *text, size_t length) override;
    using Handler::print;

  private:
    int write(const char *key, const char *value, const std::function<int()> &act);
    void note(const Entry &entry);

    Sink sink_;
    std::optional<Entry> write_;  // waits for its line of the log
    std::map<FILE *, int> ended_; // statuses of the commands whose output is handed on
};

// Whether what a command says on stderr is no sign of anything wrong.
bool isNoise(const std::string &command);
// Whether a command leaves a daemon behind.
bool startsDaemon(const std::string &command);

} // namespace wlhost::tap
