// WPS sessions over the control protocol, against a peer on the daemon's port.
#include "tests/unit/fake_platform.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <fstream>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr char kStop[] = "SET wps_config_command=2 wps_action=0";
const std::string kQuery("GET\0", 4);
const std::string kEnd = "end of test";

// The address that a UDP port is bound to.
in_addr_t boundTo(unsigned port) {
    std::ifstream table("/proc/self/net/udp");
    for (std::string line; std::getline(table, line);) {
        unsigned address = 0, number = 0;
        if (sscanf(line.c_str(), " %*d: %8x:%4x", &address, &number) == 2 && number == port)
            return address;
    }
    return INADDR_NONE;
}

// Keeps every datagram it receives and answers queries with `reply`, or not at all.
class Peer {
  public:
    explicit Peer(std::string reply = "", bool silent = false) : reply_(std::move(reply)), silent_(silent) {
        address_.sin_family = AF_INET;
        address_.sin_port = htons(40500);
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (bind(socket_, reinterpret_cast<sockaddr *>(&address_), sizeof address_) != 0)
            ADD_FAILURE() << "UDP port 40500 is in use: " << strerror(errno);
        else
            thread_ = std::thread([this] { serve(); });
    }
    ~Peer() {
        received();
        close(socket_);
    }

    // What came so far; the peer has then ended.
    const Lines &received() {
        if (thread_.joinable()) {
            sendto(socket_, kEnd.data(), kEnd.size(), 0, reinterpret_cast<sockaddr *>(&address_), sizeof address_);
            thread_.join();
        }
        return received_;
    }

  private:
    void serve() {
        std::vector<char> datagram(65536);
        for (;;) {
            sockaddr_in from = {};
            socklen_t length = sizeof from;
            const ssize_t size =
                recvfrom(socket_, datagram.data(), datagram.size(), 0, reinterpret_cast<sockaddr *>(&from), &length);
            const std::string text(datagram.data(), size > 0 ? static_cast<size_t>(size) : 0);
            if (size < 0 || text == kEnd)
                return;
            received_.push_back(text);
            if (text == kQuery && !silent_) {
                // The daemon's is not the only answer.
                const int foreign = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
                sendto(foreign, "wps_action=9", 12, 0, reinterpret_cast<sockaddr *>(&from), length);
                close(foreign);
                EXPECT_EQ(htonl(INADDR_LOOPBACK), boundTo(ntohs(from.sin_port)));
                sendto(socket_, reply_.data(), reply_.size(), 0, reinterpret_cast<sockaddr *>(&from), length);
            }
        }
    }

    std::string reply_;
    bool silent_;
    sockaddr_in address_ = {};
    int socket_ = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    Lines received_;
    std::thread thread_;
};

} // namespace

class WpsSession : public PlatformTest {
  protected:
    static std::unique_ptr<WlIntf> radio(const char *ifname, int band) {
        auto intf = std::make_unique<WlIntf>();
        strcpy(intf->radio.ifName, ifname);
        intf->radio.band = band;
        intf->radio.radioOn = intf->caps.wpsCapable = intf->bss[0].wpsEnable = intf->bss[0].wpsPbcEnable = 1;
        return intf;
    }
    static void preset() {
        wps_config_command = 1;
        wps_action = 2;
        wps_method = 3;
        strcpy(wps_uuid, "old");
        strcpy(wps_autho_sta_mac, "00:00:00:00:00:01");
    }
    static std::string variables() {
        return std::to_string(wps_config_command) + " " + std::to_string(wps_action) + " " +
               std::to_string(wps_method) + " " + wps_uuid + " " + wps_autho_sta_mac;
    }
};

TEST_F(WpsSession, Replies) {
    std::string many;
    for (int i = 0; i < 30; ++i)
        many += "k" + std::to_string(i) + "=v ";
    const struct {
        std::string reply, variables;
    } rows[] = {
        {"wps_config_command=1 wps_action=3 wps_method=2", "1 3 2 old "},
        {"wps_ifname=wl0 wps_action=3 wps_uuid=new wps_autho_sta_mac=AA:BB:CC:DD:EE:01", "0 3 0 new AA:BB:CC:DD:EE:01"},
        {"wps_method=1  wps_action=3   wps_config_command=1 wps_uuid=u", "0 0 1 u "},
        {" wps_action=3", "0 0 0 old "},
        {"wps_method wps_action=3 =7 wps_method=", "0 3 0 old "},
        {"wps_action=3 wps_action=4x wps_uuid=a=b wps_autho_sta_mac=1", "0 4 0 a=b 1"},
        {"wps_action=99999999999 wps_method=-5 wps_uuid=", "0 2147483647 -5  "},
        {"wps_uuid=" + std::string(36, 'u') + " wps_autho_sta_mac=" + std::string(18, 'm'),
         "0 0 0 " + std::string(35, 'u') + " " + std::string(17, 'm')},
        {"xwps_action=1 wps_actionx=1 WPS_ACTION=1 ", "0 0 0 old "},
        {many + "wps_action=31 wps_method=32", "0 31 0 old "}, // 31 tokens are read
        {"", "0 0 0 old "},
    };
    for (const auto &row : rows) {
        preset();
        std::vector<char> reply(row.reply.c_str(), row.reply.c_str() + row.reply.size() + 1);
        EXPECT_EQ(0, parse_wps_env(reply.data()));
        EXPECT_EQ(row.variables, variables()) << row.reply;
    }
}

TEST_F(WpsSession, QueriesTakeOneReplyOver) {
    const struct {
        std::string reply, variables;
    } rows[] = {
        {"wps_config_command=1 wps_uuid=u", "1 0 0 u "},
        {std::string(256, 'x'), "0 0 0 old "},
        {"x", "0 0 0 old "},
        {"wps_action=3 " + std::string(60000, ' '), "0 3 0 old "},
        {std::string("wps_action=3\0 wps_method=2", 26), "0 3 0 old "},
        {std::string(240, '#') + " wps_action=3333", "0 333 0 old "}, // the 255th byte is the last
    };
    for (const auto &row : rows) {
        preset();
        platform.forget();
        Peer peer(row.reply);
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(0, get_wps_env());
        EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
        EXPECT_EQ(Lines{kQuery}, peer.received());
        EXPECT_EQ(row.variables, variables()) << row.reply.substr(0, 40);
        const size_t length = std::min<size_t>(255, row.reply.find('\0'));
        EXPECT_EQ(Lines{row.reply.substr(0, length) + "\n"}, platform.logged(64));
        EXPECT_EQ(Lines{"sleep 1"}, platform.journal);
    }
}

TEST_F(WpsSession, WithoutAReplyNothingChanges) {
    for (const char *kind : {"nobody", "silent", "empty"}) {
        preset();
        platform.forget();
        std::unique_ptr<Peer> peer;
        if (strcmp(kind, "nobody") != 0)
            peer = std::make_unique<Peer>("", strcmp(kind, "silent") == 0);
        EXPECT_EQ(0, get_wps_env()) << kind;
        EXPECT_EQ("1 2 3 old 00:00:00:00:00:01", variables()) << kind;
        EXPECT_EQ((Lines{"read_from_wps() failure\n"}), platform.logged(64)) << kind;
    }
    EXPECT_EQ(0, set_wps_env("SET nobody=listens"));
}

TEST_F(WpsSession, CommandsGoOutWhole) {
    const std::string command(200, 'c');
    Peer peer;
    EXPECT_EQ(0, set_wps_env(command.c_str()));
    EXPECT_EQ(-1, set_wps_env(std::string(66000, 'c').c_str())); // no datagram is that long
    platform.failing["sendto"] = 1;
    EXPECT_EQ(-1, set_wps_env("SET sent=short"));
    EXPECT_EQ((Lines{command, "SET sent=short"}), peer.received());
    EXPECT_EQ(Lines{"sleep 1"}, platform.journal);
    EXPECT_EQ(command + "\n", platform.logged(64)[0]);
    EXPECT_EQ("Error set WPS environment.\n", platform.logged(64).back());
}

TEST_F(WpsSession, StartCommands) {
    const std::string pbc = "SET wps_method=2 wps_sta_pin=00000000 wps_action=3 wps_config_command=1 wps_pbc_method=";
    const std::string pin = "SET wps_method=1 wps_sta_pin=31415927 wps_action=3 wps_config_command=1 wps_pbc_method=2 ";
    const std::map<std::string, std::string> old,
        v2 = {{"wps_version2", "enabled"}, {"wps_autho_sta_mac", "AA:BB"}}, bare = {{"wps_version2", "enabled"}},
        wild = {{"wps_version2", "enabled"}, {"wps_autho_sta_mac", std::string(300, 'm')}};
    const std::string cut = "wps_autho_sta_mac=" + std::string(31, 'm') + " ";
    const struct {
        const char *mode, *arg;
        std::map<std::string, std::string> nvram;
        std::string command;
    } rows[] = {
        {"client-pbc-hw", "u-1", old, pbc + "1 wps_ifname=wl0 wps_uuid=u-1 "},
        {"client-pbc-hw", "u-1", v2, pbc + "1 wps_ifname=wl0 wps_autho_sta_mac=AA:BB wps_uuid=u-1 "},
        {"client-pbc", nullptr, old, pbc + "2 wps_ifname=wl0 "},
        {"client-pbc", nullptr, bare, pbc + "2 wps_ifname=wl0 wps_autho_sta_mac= "},
        {"client-pbc", nullptr, wild, pbc + "2 wps_ifname=wl0 " + cut},
        {"client-pin", "31415927", old, pin + "wps_ifname=wl0 "},
        {"client-pin", "31415927", v2, pin + "wps_ifname=wl0 wps_autho_sta_mac=AA:BB "},
    };
    for (const auto &row : rows) {
        platform.forget();
        platform.nvram = row.nvram;
        Peer peer;
        EXPECT_EQ(0, qvWlanActionWpsCmd("wl0", row.mode, row.arg));
        EXPECT_EQ(Lines{row.command}, peer.received());
        EXPECT_EQ(std::string("Enter, ifname = wl0, cfg = ") + row.mode + ".\n", platform.logs[0].text);
    }
}

TEST_F(WpsSession, RefusedStartsSendNothing) {
    const size_t room = 255 - strlen("SET wps_method=2 wps_sta_pin=00000000 wps_action=3 wps_config_command=1 "
                                     "wps_pbc_method=1 wps_ifname=wl0 wps_uuid= ");
    const std::string longest(room, 'u');
    const struct {
        const char *ifname, *mode, *arg;
        int result;
    } rows[] = {
        {"wl0", "client", "", -5},
        {"wl0", "client-pbc-hw", nullptr, -14},
        {"wl0", "client-pbc-hw", "", -14},
        {"wl0", "client-pin", nullptr, -14},
        {"wl0", "client-pin", "", -14},
        {"wl0", "client-pin", "12345678", -14},
        {"wl0", "client-pbc-hw", "u wps_action=0", -14},
        {"wl0", "client-pbc-hw", "u\n", -14},
        {"wl0", "client-pin", "1 2=", -14},
        {"wl0 wps_action=0", "client-pbc", nullptr, -14},
        {"", "client-pbc", nullptr, -14},
    };
    Peer peer;
    for (const auto &row : rows)
        EXPECT_EQ(row.result, qvWlanActionWpsCmd(row.ifname, row.mode, row.arg)) << &row - rows;
    platform.nvram = {{"wps_version2", "enabled"}, {"wps_autho_sta_mac", "m wps_action=0"}};
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanActionWpsCmd("wl0", "client-pbc", nullptr));
    platform.nvram.clear();
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanActionWpsCmd("wl0", "client-pbc-hw", (longest + "u").c_str()));
    EXPECT_EQ(0, qvWlanActionWpsCmd("wl0", "client-pbc-hw", longest.c_str()));
    ASSERT_EQ(1U, peer.received().size());
    EXPECT_EQ(255U, peer.received()[0].size());
}

TEST_F(WpsSession, TheHardwareButtonPicksARadio) {
    auto first = radio("wl0", WLBRCM_BAND_2G), second = radio("wl1", WLBRCM_BAND_5G), third = radio("wl2", 0);
    const struct {
        int firstBand, secondBand;
        const char *chosen;
    } rows[] = {{2, 1, "wl1"}, {1, 2, "wl0"}, {2, 2, "wl0"}, {1, 1, "wl1"}};
    for (const auto &row : rows) {
        first->radio.band = row.firstBand;
        second->radio.band = row.secondBand;
        WlIntf *both[] = {nullptr, first.get(), second.get()};
        platform.forget();
        EXPECT_EQ(0, qvbrcm_WPSHWPushButton(both, 3, "u"));
        EXPECT_EQ(std::string("Enter, ifname = ") + row.chosen + ", cfg = client-pbc-hw.\n", platform.logs[1].text);
    }
    WlIntf *one[] = {third.get()};
    EXPECT_EQ(WLBRCM_EINVAL, qvbrcm_WPSHWPushButton(one, 1, nullptr));
    for (uint8_t *flag :
         {&third->radio.radioOn, &third->caps.wpsCapable, &third->bss[0].wpsEnable, &third->bss[0].wpsPbcEnable}) {
        *flag = 0;
        EXPECT_EQ(WLBRCM_EFAILED, qvbrcm_WPSHWPushButton(one, 1, "u"));
        *flag = 1;
    }
    EXPECT_EQ(WLBRCM_EFAILED, qvbrcm_WPSHWPushButton(one, 0, "u"));
}

TEST_F(WpsSession, OperationsOfOneRadio) {
    auto intf = radio("wl1", WLBRCM_BAND_5G);
    intf->radio.radioOn = intf->bss[0].wpsPbcEnable = 0; // only the hardware button minds
    {
        Peer peer("wps_config_command=0");
        EXPECT_EQ(0, qvbrcm_WPSSWPushButton(intf.get()));
        EXPECT_EQ(0, qvbrcm_WPSStartStaPin(intf.get(), "1234"));
        EXPECT_EQ(WLBRCM_EINVAL, qvbrcm_WPSStartStaPin(intf.get(), "12345678"));
        EXPECT_EQ(0, qvbrcm_WPSCancel(intf.get()));
        const Lines &sent = peer.received();
        ASSERT_EQ(3U, sent.size());
        EXPECT_NE(std::string::npos, sent[0].find("wps_pbc_method=2 wps_ifname=wl1 "));
        EXPECT_NE(std::string::npos, sent[1].find("wps_method=1 wps_sta_pin=1234 "));
        EXPECT_EQ(kQuery, sent[2]);
    }
    platform.forget();
    for (uint8_t *flag : {&intf->caps.wpsCapable, &intf->bss[0].wpsEnable}) {
        *flag = 0;
        EXPECT_EQ(0, qvbrcm_WPSSWPushButton(intf.get()));
        EXPECT_EQ(0, qvbrcm_WPSStartStaPin(intf.get(), nullptr));
        EXPECT_EQ(0, qvbrcm_WPSCancel(intf.get()));
        *flag = 1;
    }
    EXPECT_EQ(Lines(6, "Enter.\n"), platform.logged(64));
    EXPECT_EQ(Lines{}, platform.journal);
}

TEST_F(WpsSession, StopPaths) {
    const Lines asked = {"sleep 1"}, stopped = {"sleep 1", "sleep 1", "sleep 2"},
                reset = {"sleep 1", "sleep 1", "sleep 2", "set wps_proc_status=0"},
                repeated = {"sleep 1", "sleep 1", "sleep 2", "sleep 1", "sleep 1", "set wps_proc_status=0"};
    const struct {
        const char *reply, *status; // status null for unset
        size_t stops;
        Lines journal;
    } rows[] = {
        {"wps_config_command=0", "1", 0, asked},    {"wps_config_command=1", nullptr, 1, reset},
        {"wps_config_command=1", "0", 1, stopped},  {"wps_config_command=1", "2", 1, stopped},
        {"wps_config_command=2", "4", 1, stopped},  {"wps_config_command=1", "busy", 1, stopped},
        {"wps_config_command=1", "1", 2, repeated}, {"wps_config_command=1", "3", 2, repeated},
    };
    for (const auto &row : rows) {
        platform.forget();
        platform.nvram.clear();
        if (row.status != nullptr)
            platform.nvram["wps_proc_status"] = row.status;
        Peer peer(row.reply);
        qvWlanStopWps();
        Lines expected(row.stops, kStop);
        expected.insert(expected.begin(), kQuery);
        EXPECT_EQ(expected, peer.received()) << &row - rows;
        EXPECT_EQ(row.journal, platform.journal) << &row - rows;
    }
}
