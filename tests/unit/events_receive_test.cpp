// One event received: what the host gets for it, what is logged, and what hostile datagrams do.
#include "tests/unit/data_lines.h"
#include "tests/unit/fake_platform.h"

#include <memory>
#include <sys/socket.h>
#include <unistd.h>

#include "events/decode.h"
#include "tests/unit/events_message.h"

using namespace wlbrcm;

namespace {

using Record = std::unique_ptr<WlEvent, decltype(&free)>;

class EventReceive : public PlatformTest {
  protected:
    EventReceive() {
        EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_DGRAM, 0, ends_));
        fenra_rpe_sock = 0;
    }
    ~EventReceive() override {
        close(ends_[0]);
        close(ends_[1]);
    }

    int receive(const std::string &datagram, Record *record) {
        EXPECT_EQ(static_cast<ssize_t>(datagram.size()), send(ends_[1], datagram.data(), datagram.size(), 0));
        auto *made = reinterpret_cast<WlEvent *>(1); // must not stay
        const int result = qvbrcm_EvtReceive(ends_[0], &made);
        record->reset(made);
        return result;
    }
    Record none{nullptr, free};

  private:
    int ends_[2];
};

std::string text(const char (&field)[16]) {
    EXPECT_LT(strnlen(field, sizeof field), sizeof field);
    return field;
}

WlStaInfo station(const WlEvent &event) {
    WlStaInfo sta;
    memcpy(&sta, event.sta, sizeof sta);
    return sta;
}

constexpr char kLogStart[] = "ifname=wl0.1, event_type=";
constexpr char kLogEnd[] = ", auth_type=61, STA ADDR: [00-1a-2b-3c-4d-ef]\n";

} // namespace

TEST_F(EventReceive, StationEventsMakeRecordsAndOthersDoNot) {
    const struct {
        uint32_t type, reason;
        int32_t code; // 0 for no record
    } rows[] = {{5, 0, 2},  {6, 0, 2},  {23, 1, 6}, {23, 0, 0},         {23, 2, 0},
                {3, 0, 0},  {11, 0, 0}, {12, 0, 0}, {7, 0, 0},          {9, 0, 0},
                {69, 0, 0}, {0, 0, 0},  {4, 1, 0},  {0x08000000, 0, 0}, {0xffffffff, 0, 0}};
    for (const auto &row : rows) {
        platform.forget();
        Record record{nullptr, free};
        EXPECT_EQ(row.code == 0 ? 1 : 0, receive(eventMessage(row.type, "wl0.1", row.reason), &record)) << row.type;
        const Lines logs = platform.logged(WLBRCM_LOG_DEBUG);
        ASSERT_EQ(1U, logs.size()) << row.type;
        char expected[200];
        snprintf(expected, sizeof expected, "%s%s(%u), usr_subtype=1, flags=1234, status=51, reason=%x%s", kLogStart,
                 bcmevent_get_name(row.type), row.type, row.reason, kLogEnd);
        EXPECT_EQ(expected, logs[0]);
        EXPECT_EQ(Lines{}, platform.journal); // the driver is asked for stations that joined only
        ASSERT_EQ(row.code != 0, record != nullptr) << row.type;
        if (!record)
            continue;
        WlEvent bytes = {};
        strcpy(bytes.radioName, "wl0");
        strcpy(bytes.ifName, "wl0.1");
        bytes.event = row.code;
        memcpy(bytes.sta + 16, kStation, 18);
        EXPECT_EQ(0, memcmp(&bytes, record.get(), sizeof bytes)) << row.type;
    }
}

TEST_F(EventReceive, AStationThatJoinedIsDescribed) {
    platform.answer("wlctl -i wl1.2 rssi 00:1A:2B:3C:4D:EF", "-45\n");
    platform.answer("wlctl -i wl1.2 sta_info 00:1A:2B:3C:4D:EF",
                    "\t flags 0x11e03b: VHT\n\t VHT caps 0x1e3: LDPC\n\t rate of last tx pkt: 866667 kbps\n"
                    "\t tx total pkts: 12\n");
    platform.answer("wlctl -i wl1.2 status", "-90\n");
    for (const auto &[type, code] : {std::pair(8U, 1), std::pair(10U, 3)}) {
        ASSERT_EQ(0, receive(eventMessage(type, "wl1.2"), &none));
        EXPECT_EQ(code, none->event);
        EXPECT_EQ("wl1", text(none->radioName));
        EXPECT_EQ("wl1.2", text(none->ifName));
        const WlStaInfo sta = station(*none);
        EXPECT_EQ("wl1.2", text(sta.ifName));
        EXPECT_STREQ(kStation, sta.macAddr);
        EXPECT_EQ(-45, sta.rssi);
        EXPECT_EQ(-90, sta.noise);
        EXPECT_EQ(45, sta.snr);
        EXPECT_EQ(16U, sta.phyMode);
        EXPECT_EQ(866667U, sta.txRate);
        EXPECT_EQ(12U, sta.txPkts);
        for (size_t i = sizeof sta; i < sizeof none->sta; ++i)
            ASSERT_EQ(0, none->sta[i]);
    }
}

TEST_F(EventReceive, AFailingQueryLeavesTheIdentity) {
    platform.loseOutput("wlctl");
    ASSERT_EQ(0, receive(eventMessage(8), &none));
    EXPECT_STREQ(kStation, station(*none).macAddr);
    EXPECT_EQ(0, station(*none).snr);

    platform.answer("wlctl -i wl0.1 rssi", "-2147483648\n"); // no arithmetic traps on absurd reports
    platform.answer("wlctl -i wl0.1 status", "2147483647\n");
    ASSERT_EQ(0, receive(eventMessage(8), &none));
    EXPECT_STREQ(kStation, station(*none).macAddr);
}

TEST_F(EventReceive, OnlyRadioInterfacesAreAsked) {
    const struct {
        std::string ifname, radio;
        bool asked;
    } rows[] = {
        {"wl0", "wl0", true},
        {"wl12.34", "wl12", true},
        {"wl0.12345678901", "wl0", true},   // 15 characters
        {"wl0.123456789012", "wl0", false}, // 16, no NUL; cut it would name another interface
        {"wl0123456789abcd", "wl0123456789abc", false},
        {"eth0", "eth0", false},
        {"wl", "wl", false},
        {"wl0.", "wl0", false},
        {"wl.1", "wl", false},
        {"wl0.1.2", "wl0", false},
        {"wl0;reboot", "wl0;reboot", false},
        {"wl0\nx", "wl0\nx", false},
        {"-i", "-i", false},
        {".", "", false},
        {"", "", false},
        {"%s%n%s%n", "%s%n%s%n", false},
    };
    for (const auto &row : rows) {
        platform.forget();
        ASSERT_EQ(0, receive(eventMessage(8, row.ifname), &none)) << row.ifname;
        EXPECT_EQ(row.radio, text(none->radioName));
        EXPECT_EQ(row.ifname.substr(0, 15), text(none->ifName));
        EXPECT_STREQ(kStation, station(*none).macAddr);
        EXPECT_EQ(row.asked, !platform.journal.empty()) << row.ifname;
        EXPECT_EQ(row.asked ? 0U : 1U, platform.logged(WLBRCM_LOG_ERR).size()) << row.ifname;
    }
}

TEST_F(EventReceive, OtherDatagramsAreConsumed) {
    const Lines ignored = {"Not BCM Event received. Ignore \n"};
    for (const std::string &datagram :
         {std::string(1, '\1'), std::string(23, '\0'), std::string(4096, '\0'), eventMessage(8, "wl0", 0, 0),
          eventMessage(8, "wl0", 0, 2), eventMessage(8, "wl0", 0, 0x0100), std::string(6000, '\xff')}) {
        platform.forget();
        EXPECT_EQ(1, receive(datagram, &none));
        EXPECT_EQ(nullptr, none);
        EXPECT_EQ(ignored, platform.logged(WLBRCM_LOG_DEBUG));
    }
    platform.forget();
    EXPECT_EQ(1, receive(eventMessage(137), &none));
    EXPECT_TRUE(platform.logs.empty());

    // What a short event lacks reads as zeros; behind 4096 bytes a long one is cut.
    EXPECT_EQ(0, receive(eventMessage(5).substr(0, 58), &none));
    EXPECT_EQ("wl0.", text(none->ifName));
    EXPECT_EQ(0, receive(eventMessage(5) + std::string(5000, 'x'), &none));
    EXPECT_EQ("wl0.1", text(none->ifName));
    EXPECT_EQ(1, receive(eventMessage(5).substr(0, 24), &none)); // event 0
}

TEST_F(EventReceive, NothingReadIsAnError) {
    EXPECT_EQ(-5, receive("", &none));
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ(-5, qvbrcm_EvtReceive(-1, nullptr));
    EXPECT_EQ((Lines{"Recv bytes Failure...\n", "Recv bytes Failure...\n"}), platform.logged(WLBRCM_LOG_ERR));
}

TEST_F(EventReceive, OnlyTakenEventsAllocate) {
    platform.failAllocation(0);
    EXPECT_EQ(1, receive(eventMessage(3), &none));
    EXPECT_EQ(1, receive(eventMessage(23, "wl0", 2), &none));
    int ends[2];
    ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_DGRAM, 0, ends));
    const std::string taken = eventMessage(8);
    ASSERT_EQ(static_cast<ssize_t>(taken.size()), send(ends[1], taken.data(), taken.size(), 0));
    EXPECT_EQ(1, qvbrcm_EvtReceive(ends[0], nullptr));
    close(ends[0]);
    close(ends[1]);
    EXPECT_FALSE(platform.allocationFailed);

    EXPECT_EQ(1, receive(taken, &none));
    EXPECT_TRUE(platform.allocationFailed);
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ(Lines{"Alloc memory (292 bytes) fail.\n"}, platform.logged(WLBRCM_LOG_ERR));
    EXPECT_EQ(Lines{}, platform.journal);
}

TEST(EventNames, FollowTheTable) {
    std::map<uint32_t, std::string> names;
    for (const std::string &line : readLines("event_names.txt"))
        names[static_cast<uint32_t>(std::stoul(line))] = line.substr(line.find(' ') + 1);
    ASSERT_EQ(76U, names.size()); // one number stands twice
    names[0xffffffff] = "Unknown Event";
    for (uint32_t event = 0; event < 300; ++event)
        names.emplace(event, "Unknown Event");
    for (const auto &[event, name] : names)
        EXPECT_EQ(name, bcmevent_get_name(event)) << event;
}
