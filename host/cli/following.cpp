// `events`: what comes after the answer, over the host's end too.
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/cli/calls.h"
#include "host/cli/messages.h"
#include "host/control/control_socket.h"

namespace wlhost {
namespace {

// A reader that went away is noticed even when nothing happens.
void demandReader() {
    pollfd entry{STDOUT_FILENO, 0, 0};
    if (poll(&entry, 1, 0) > 0 && (entry.revents & (POLLERR | POLLNVAL)))
        throw Failure(Status::kFailed, "output", std::string("cannot be written: ") + std::strerror(EPIPE));
}

class Following {
  public:
    explicit Following(const Call &call) : call_(call), left_(call.args.value("count", 0)) { subscribe(); }

    // Shows what comes until there was enough; false when the host ended.
    bool show() {
        for (std::string line; nextLine(&line);) {
            json event = json::parse(line);
            std::printf("%s\n", call_.asJson ? line.c_str() : call_.command->show(event, {}).c_str());
            if (afterOutput(Status::kDone) != Status::kDone)
                throw Failure(Status::kFailed, "output", "cannot be written");
            // Those two are not what was asked for.
            if (event["event"] != "host-ended" && event["event"] != "dropped" && left_ > 0 && --left_ == 0)
                return true;
        }
        return false;
    }

    // Until a host is there again, at most the time that a command waits.
    void reconnect() {
        Progress progress;
        for (int waited = 0;; ++waited) {
            demandReader();
            try {
                subscribe();
                std::fprintf(stderr, "wlhost: following the next host\n");
                return;
            } catch (const Failure &failure) {
                if (failure.status != Status::kEnvironment)
                    throw;
            }
            if (waited >= call_.timeout)
                throw Failure(Status::kEnvironment, call_.socket,
                              "the host ended, and none came within " + std::to_string(call_.timeout) + " s",
                              "start one with: wlhost run CONFIG; --timeout waits longer");
            progress.tell(waited, "the host ended; waiting for the next one, " + std::to_string(waited) + " s");
            sleep(1);
        }
    }

  private:
    void subscribe() {
        client_ = std::make_unique<ControlClient>(call_.socket, requestOf(call_).dump(), call_.timeout);
        resultOf(client_->nextLine(call_.timeout));
    }

    bool nextLine(std::string *line) {
        try {
            *line = client_->nextLine(-1, [](int) { demandReader(); });
            return true;
        } catch (const Failure &failure) {
            if (failure.where != call_.socket)
                throw;
            return false;
        }
    }

    const Call &call_;
    int left_; // 0 for any number
    std::unique_ptr<ControlClient> client_;
};

} // namespace

Status askForEvents(const Call &call) {
    Following following(call);
    while (!following.show()) {
        if (call.args.value("no_reconnect", false))
            throw Failure(Status::kEnvironment, call.socket, "the host ended");
        following.reconnect();
    }
    return Status::kDone;
}

} // namespace wlhost
