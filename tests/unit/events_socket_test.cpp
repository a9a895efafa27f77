// The two loopback sockets, the events forwarded through the second, and the steering agent's operations.
#include "tests/unit/fake_platform.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/unit/events_message.h"

namespace {

// Socket options as they are set, and one that is refused.
std::vector<std::array<int, 2>> optionsSet;
int refusedOption = -1;

} // namespace

extern "C" int setsockopt(int sock, int level, int option, const void *value, socklen_t size) noexcept {
    if (static_cast<int>(optionsSet.size()) == refusedOption)
        return -1;
    optionsSet.push_back({option, *static_cast<const int *>(value)});
    return static_cast<int>(syscall(SYS_setsockopt, sock, level, option, value, size));
}

namespace {

constexpr uint16_t kEvents = 44032, kForwarding = 13728, kAgent = 13727;

// A plain socket on the loopback interface; port 0 for any. A test socket is not shared with another.
int loopbackSocket(uint16_t port) {
    const int sock = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(sock, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0)
        return sock;
    close(sock);
    return -1;
}

// The ports are fixed, so tests of several processes take turns.
class PortLock {
  public:
    PortLock() : sock_(socket(AF_UNIX, SOCK_DGRAM, 0)) {
        sockaddr_un name = {};
        name.sun_family = AF_UNIX;
        strcpy(name.sun_path + 1, "wlbrcm event ports");
        for (int tries = 0; bind(sock_, reinterpret_cast<sockaddr *>(&name), sizeof name) != 0 && tries < 3000; ++tries)
            usleep(10000);
    }
    ~PortLock() { close(sock_); }

  private:
    int sock_;
};

class EventSockets : public PlatformTest {
  protected:
    void SetUp() override {
        for (const uint16_t port : {kEvents, kForwarding, kAgent}) {
            const int free = loopbackSocket(port);
            ASSERT_GE(free, 0) << "UDP port " << port << " of 127.0.0.1 is in use; this test needs it";
            close(free);
        }
        fenra_rpe_sock = 0;
        refusedOption = -1;
        optionsSet.clear();
    }
    void TearDown() override {
        if (events_ >= 0)
            close(events_);
        if (fenra_rpe_sock > 0)
            close(fenra_rpe_sock);
        refusedOption = -1;
    }

    PortLock lock_;
    int events_ = -1;
};

uint16_t portOf(int sock) {
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    EXPECT_EQ(0, getsockname(sock, reinterpret_cast<sockaddr *>(&address), &size));
    EXPECT_EQ(htonl(INADDR_LOOPBACK), address.sin_addr.s_addr);
    return ntohs(address.sin_port);
}

// What a socket received, "nothing" when there is no datagram.
std::string received(int sock) {
    char bytes[8192];
    const ssize_t size = recv(sock, bytes, sizeof bytes, MSG_DONTWAIT);
    return size < 0 ? "nothing" : std::string(bytes, static_cast<size_t>(size));
}

void sendTo(uint16_t port, const std::string &datagram) {
    const int sock = loopbackSocket(0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(static_cast<ssize_t>(datagram.size()), sendto(sock, datagram.data(), datagram.size(), 0,
                                                            reinterpret_cast<sockaddr *>(&address), sizeof address));
    close(sock);
}

std::string numbered(const char *format, int number) {
    char text[100];
    snprintf(text, sizeof text, format, number);
    return text;
}

} // namespace

TEST_F(EventSockets, SetUp) {
    ASSERT_EQ(0, qvbrcm_EvtInit(&events_));
    EXPECT_EQ(kEvents, portOf(events_));
    EXPECT_EQ(kForwarding, portOf(fenra_rpe_sock));
    for (const int sock : {events_, fenra_rpe_sock})
        EXPECT_EQ(FD_CLOEXEC, fcntl(sock, F_GETFD) & FD_CLOEXEC);
    const std::vector<std::array<int, 2>> options = {{SO_REUSEADDR, 1}, {SO_RCVBUF, 360448}, {SO_REUSEADDR, 1}};
    EXPECT_EQ(options, optionsSet);
    EXPECT_EQ(Lines{"set mevent_enable=1"}, platform.journal);
    EXPECT_EQ((Lines{"Enter.\n", "nvram set mevent_enable = 1\n", numbered("Opened loopback socket %d.\n", events_),
                     numbered("Opened loopback socket %d for Fenra RPE.\n", fenra_rpe_sock)}),
              platform.logged(WLBRCM_LOG_DEBUG));
    for (const LogLine &line : platform.logs)
        EXPECT_EQ("qvbrcm_EvtInit", line.function);

    // A second call replaces the forwarding socket and closes it; the event socket is the caller's.
    const int events = events_;
    ASSERT_EQ(0, qvbrcm_EvtInit(&events_));
    close(events);
}

TEST_F(EventSockets, SetUpFailures) {
    const int next = dup(0); // the number that the event socket will get
    close(next);
    const struct {
        int allowedSockets, refusedOption;
        uint16_t takenPort;
        std::string message;
        bool eventsOpen;
    } rows[] = {
        {0, -1, 0, "Unable to create socket.\n", false},
        {1, -1, 0, "Unable to create socket.\n", true},
        {2, 0, 0, numbered("Unable to setsockopt to loopback socket %d.\n", next), false},
        {2, 1, 0, numbered("Unable to setsockopt %d buffer size 360448.\n", next), false},
        {2, 2, 0, numbered("Unable to setsockopt to loopback socket %d.\n", next + 1), true},
        {2, -1, kEvents, numbered("Unable to bind to loopback socket %d.\n", next + 1), false},
        {2, -1, kForwarding, numbered("Unable to bind to loopback socket %d.\n", next + 2), true},
    };
    for (const auto &row : rows) {
        platform.forget();
        optionsSet.clear();
        refusedOption = row.refusedOption;
        fenra_rpe_sock = 0;
        int sock = -1;
        const int taken = row.takenPort != 0 ? loopbackSocket(row.takenPort) : -1;
        rlimit limit;
        ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &limit));
        const rlimit low = {static_cast<rlim_t>(next + row.allowedSockets), limit.rlim_max};
        if (row.allowedSockets < 2) {
            ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &low));
        }
        EXPECT_EQ(-5, qvbrcm_EvtInit(&sock));
        ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &limit));
        EXPECT_EQ((Lines{row.message, "Failure. Close socket.\n"}), platform.logged(WLBRCM_LOG_ERR));
        EXPECT_EQ(row.eventsOpen, sock >= 0) << row.message;
        EXPECT_EQ(row.eventsOpen ? -1 : 0, fenra_rpe_sock) << row.message;
        if (sock >= 0) {
            EXPECT_EQ(kEvents, portOf(sock));
        }
        close(taken);
        close(sock);
        const int after = dup(0);
        EXPECT_EQ(next, after) << "a socket stayed open";
        close(after);
    }
}

TEST_F(EventSockets, EventsAreForwardedWholeWhileForwardingIsOn) {
    const int agent = loopbackSocket(kAgent);
    ASSERT_EQ(0, qvbrcm_EvtInit(&events_));
    const auto deliver = [&](const std::string &datagram) {
        sendTo(kEvents, datagram);
        EXPECT_EQ(1, qvbrcm_EvtReceive(events_, nullptr));
        return received(agent);
    };
    EXPECT_EQ("nothing", deliver(eventMessage(8)));

    EXPECT_EQ(0, qvbrcm_EnableFenraEvt(1));
    for (const uint32_t type : {8U, 12U, 3U, 137U}) {
        std::string message = eventMessage(type);
        const std::string forwarded = deliver(message);
        message.resize(4096);
        EXPECT_EQ(message, forwarded) << type;
    }
    const std::string longer = eventMessage(3) + std::string(5000, 'x');
    EXPECT_EQ(longer.substr(0, 4096), deliver(longer));
    EXPECT_EQ("nothing", deliver(eventMessage(8, "wl0", 0, 2))); // no event of the driver

    platform.forget();
    EXPECT_EQ(4096U, deliver(eventMessage(137)).size());
    EXPECT_EQ((Lines{"Enter.\n", "event_type = 137\n"}), platform.logged(WLBRCM_LOG_DEBUG));

    EXPECT_EQ(0, qvbrcm_EnableFenraEvt(256));
    EXPECT_EQ(0, enable_fenra_evt);
    EXPECT_EQ("enable = 256\n", platform.logs.back().text);
    EXPECT_EQ("nothing", deliver(eventMessage(8)));

    // Without a forwarding socket: nothing before the set-up, one message after a set-up that failed.
    EXPECT_EQ(0, qvbrcm_EnableFenraEvt(-1));
    EXPECT_EQ(255, enable_fenra_evt);
    const int forwarding = fenra_rpe_sock;
    fenra_rpe_sock = 0;
    platform.forget();
    EXPECT_EQ("nothing", deliver(eventMessage(137)));
    EXPECT_TRUE(platform.logs.empty());
    fenra_rpe_sock = -1;
    EXPECT_EQ("nothing", deliver(eventMessage(137)));
    EXPECT_EQ(Lines{"fenra_rpe_sock not created\n"}, platform.logged(WLBRCM_LOG_ERR));
    fenra_rpe_sock = forwarding;
    close(agent);
}

TEST_F(EventSockets, SendingOneMessage) {
    const int agent = loopbackSocket(kAgent);
    const int sock = loopbackSocket(0);
    const std::string message = eventMessage(0x80000008);
    const auto send = [&](int from, int length) { return send_bcmevt_to_Fenra_RPE(from, message.data(), length); };
    EXPECT_EQ(0, send(sock, 32));
    EXPECT_EQ(message.substr(0, 32), received(agent));
    EXPECT_EQ(0, send(sock, 31));
    EXPECT_EQ(message.substr(0, 31), received(agent));
    EXPECT_EQ(-5, send(-1, 32));
    EXPECT_EQ((Lines{"Enter.\n", "event_type = -2147483640\n", "Enter.\n", "event_type = 0\n", "Enter.\n",
                     "event_type = -2147483640\n"}),
              platform.logged(WLBRCM_LOG_DEBUG));
    platform.forget();
    EXPECT_EQ(0, send(0x7fff, 32)); // no open descriptor
    EXPECT_EQ(Lines{"UDP send failed; sentBytes = -1\n"}, platform.logged(WLBRCM_LOG_ERR));
    EXPECT_EQ(0, send(sock, 0));
    EXPECT_EQ("", received(agent));
    EXPECT_EQ(0, send(0, 32)); // a descriptor, if no socket
    platform.failing["sendto"] = 1;
    EXPECT_EQ(0, send(sock, 32));
    EXPECT_EQ(message.substr(0, 32), received(agent));
    EXPECT_EQ("UDP send failed; sentBytes = 31\n", platform.logged(WLBRCM_LOG_ERR).back());
    EXPECT_EQ(-14, send(sock, -1));
    EXPECT_EQ("nothing", received(agent));
    close(sock);
    close(agent);
}

TEST_F(PlatformTest, AStationIsDeauthenticatedByCheckedNamesOnly) {
    platform.answer("wlctl", "", 1); // the result does not matter
    EXPECT_EQ(0, qvbrcm_DisassociateSTA("wl1", "00:11:22:33:44:55"));
    EXPECT_EQ(Lines{"run wlctl -i wl1 deauthenticate 00:11:22:33:44:55"}, platform.journal);
    EXPECT_TRUE(platform.logs.empty());
    const char *bad[][2] = {{"wl0;reboot", "00:11:22:33:44:55"},
                            {"wl0", "00:11:22:33:44:5"},
                            {"wl0", "$(reboot)"},
                            {nullptr, "00:11:22:33:44:55"},
                            {"wl0", nullptr},
                            {"eth0", "00:11:22:33:44:55"},
                            {"wl0.", "00:11:22:33:44:55"},
                            {"", ""}};
    for (const auto &names : bad) {
        platform.forget();
        EXPECT_EQ(-14, qvbrcm_DisassociateSTA(names[0], names[1]));
        EXPECT_EQ(Lines{}, platform.journal);
        EXPECT_FALSE(platform.logged(WLBRCM_LOG_ERR).empty());
    }
}
