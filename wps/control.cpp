// The WPS daemon's control protocol: text datagrams on the loopback interface, one socket for each exchange.
#include <wlbrcm/wps.h>

#include <cerrno>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

#include "module/log.h"
#include "module/loopback.h"
#include "module/text.h"
#include "module/waiting.h"

using namespace wlbrcm;

int32_t wps_config_command = 0;
int32_t wps_action = 0;
int32_t wps_method = 0;
char wps_uuid[36];
char wps_autho_sta_mac[18];

namespace {

constexpr uint16_t kDaemonPort = 40500;
constexpr unsigned kSettleSeconds = 1;
constexpr int kReplySeconds = 2;
constexpr int kMostTokens = 31;

class ControlSocket {
  public:
    ControlSocket() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP)) {
        // Only local processes can answer.
        const sockaddr_in own = loopback(0);
        if (socket_ >= 0 && bind(socket_, reinterpret_cast<const sockaddr *>(&own), sizeof own) != 0) {
            close(socket_);
            socket_ = -1;
        }
    }
    ~ControlSocket() {
        if (socket_ >= 0)
            close(socket_);
    }
    ControlSocket(const ControlSocket &) = delete;
    ControlSocket &operator=(const ControlSocket &) = delete;

    explicit operator bool() const { return socket_ >= 0; }

    // Whether all of it went out; nothing tells whether a daemon listens. Not connected, so that a missing daemon stays
    // the silence that callers expect.
    bool send(const char *data, size_t size) {
        const sockaddr_in daemon = loopback(kDaemonPort);
        const ssize_t sent = sendto(socket_, data, size, 0, reinterpret_cast<const sockaddr *>(&daemon), sizeof daemon);
        return sent >= 0 && static_cast<size_t>(sent) == size;
    }

    // The daemon's answer: its length, or -1 when a read failed. 0 when there was none in time; what others send is
    // passed over.
    ssize_t receive(char *data, size_t size) {
        const sockaddr_in daemon = loopback(kDaemonPort);
        const Deadline deadline(kReplySeconds);
        while (deadline.waitReadable(socket_)) {
            sockaddr_in from = {};
            socklen_t length = sizeof from;
            const ssize_t received =
                recvfrom(socket_, data, size, MSG_DONTWAIT, reinterpret_cast<sockaddr *>(&from), &length);
            // Readable is no promise: a datagram with a wrong checksum is dropped on reading.
            if (received < 0 && errno == EAGAIN)
                continue;
            if (received < 0 || (from.sin_port == daemon.sin_port && from.sin_addr.s_addr == daemon.sin_addr.s_addr))
                return received;
        }
        return 0;
    }

  private:
    int socket_;
};

struct NumberKey {
    const char *key;
    int32_t *variable;
};
constexpr NumberKey kNumbers[] = {
    {"wps_config_command", &wps_config_command}, {"wps_action", &wps_action}, {"wps_method", &wps_method}};

struct TextKey {
    const char *key;
    char *variable;
    size_t size;
};
constexpr TextKey kTexts[] = {{"wps_uuid", wps_uuid, sizeof wps_uuid},
                              {"wps_autho_sta_mac", wps_autho_sta_mac, sizeof wps_autho_sta_mac}};

void takeToken(char *token) {
    char *equals = strchr(token, '=');
    if (equals == nullptr)
        return;
    const std::string_view key(token, static_cast<size_t>(equals - token));
    const char *value = equals + 1;
    for (const NumberKey &number : kNumbers) {
        if (key == number.key)
            *number.variable = decimal(value);
    }
    for (const TextKey &text : kTexts) {
        if (key == text.key) {
            memset(text.variable, 0, text.size);
            copyText(text.variable, text.size, value);
        }
    }
}

bool readReply(Here here, ControlSocket *socket) {
    char reply[256];
    const ssize_t received = socket->receive(reply, sizeof reply - 1);
    if (received < 0)
        fprintf(stderr, "wps ui utility:recv failed, recvBytes = %d\n", static_cast<int>(received));
    if (received <= 0)
        return false;
    reply[received] = '\0';
    WLBRCM_LOG_AT(here, LOG_DEBUG, "%s\n", Shown(reply).c_str());
    parse_wps_env(reply);
    return true;
}

bool sendCommand(const char *command) {
    ControlSocket socket;
    if (!socket || !socket.send(command, strlen(command)))
        return false;
    pauseFor(kSettleSeconds);
    return true;
}

} // namespace

int set_wps_env(const char *command) {
    if (command != nullptr) {
        WLBRCM_LOG(LOG_DEBUG, "%s\n", Shown(command).c_str());
        if (sendCommand(command))
            return 0;
    }
    WLBRCM_LOG(LOG_DEBUG, "Error set WPS environment.\n");
    return -1;
}

int get_wps_env(void) {
    constexpr char kQuery[] = "GET";
    ControlSocket socket;
    if (!socket) {
        WLBRCM_LOG(LOG_DEBUG, "wps ui utility: failed to open loopback socket\n");
        return -1;
    }
    socket.send(kQuery, sizeof kQuery);
    pauseFor(kSettleSeconds);
    if (!readReply(WLBRCM_HERE, &socket))
        WLBRCM_LOG(LOG_DEBUG, "read_from_wps() failure\n");
    return 0;
}

int parse_wps_env(char *reply) {
    if (reply == nullptr)
        return WLBRCM_EINVAL;
    for (const NumberKey &number : kNumbers)
        *number.variable = 0;
    memset(wps_autho_sta_mac, 0, sizeof wps_autho_sta_mac);
    char *token = reply;
    for (int count = 0; token != nullptr && count < kMostTokens; ++count) {
        // One blank separates; further ones belong to the token, whose key is then unknown.
        char *blank = strchr(token + strspn(token, " "), ' ');
        if (blank != nullptr)
            *blank = '\0';
        takeToken(token);
        token = blank != nullptr ? blank + 1 : nullptr;
    }
    return 0;
}
