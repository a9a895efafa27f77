// The control socket, and texts at the edge.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/failure.h"
#include "host/base/word_lists.h"
#include "host/control/control_socket.h"
#include "host/control/gateway_lock.h"
#include "host/show/tables.h"
#include "host/show/units.h"
#include "host/state/loaded_module.h"

namespace wlhost {
namespace {

TEST(HostText, ForeignBytesAreEscaped) {
    struct {
        const char *bytes, *shown;
    } cases[] = {
        {"home", "home"},
        {"caf\xc3\xa9 \xe2\x98\x95", "caf\xc3\xa9 \xe2\x98\x95"},
        {"\x1b[2J\n", "\\x1b[2J\\x0a"},
        {"a\\x41", "a\\x5cx41"},
        {"\xff\xc3", "\\xff\\xc3"},
        {"\xc0\xaf", "\\xc0\\xaf"},                   // overlong
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},          // surrogate
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"}, // beyond Unicode
        {"\xc2\x9bm", "\\xc2\\x9bm"},                 // C1 control
        {"\xe2\x80\xaegpj", "\\xe2\\x80\\xaegpj"},    // turns the writing direction
        {"\xf0\x9f\x8d\x95", "\xf0\x9f\x8d\x95"},
    };
    for (const auto &row : cases)
        EXPECT_EQ(escapeBytes(row.bytes), row.shown);
}

TEST(HostText, NamesAndAddresses) {
    EXPECT_EQ(formatMac(*parseMac("00-10-18-AA-bb-cC")), "00:10:18:aa:bb:cc");
    for (const char *bad : {"", "00:10:18:aa:bb", "00:10:18:aa:bb:cg", "00:10-18:aa:bb:cc",
                            "00:10:18:aa:bb:cc:", "0010.18aa.bbcc...", " 0:10:18:aa:bb:cc"})
        EXPECT_FALSE(parseMac(bad)) << bad;
    EXPECT_TRUE(isInterfaceName("wl0.1"));
    EXPECT_TRUE(isInterfaceName("a23456789012345"));
    for (const char *bad : {"", "a234567890123456", "-wl0", "wl0;", "wl 0", "wl/0"})
        EXPECT_FALSE(isInterfaceName(bad)) << bad;
    EXPECT_EQ(nearestName("chanel", {"country", "channel"}), "channel");
    EXPECT_EQ(nearestName("xyz", {"key", "band"}), std::nullopt);
    EXPECT_EQ(nearestName("sta", {"scan", "stations", "status"}), "status") << "what was begun";
}

TEST(HostText, TablesAlign) {
    json rows = {{{"a", "caf\xc3\xa9"}, {"b", 5}}, {{"a", nullptr}, {"b", json::array()}}};
    EXPECT_EQ(table({{"NAME", "a"}, {"N", "b", true}}, rows), "NAME  N\ncaf\xc3\xa9  5\n-     -\n");
}

TEST(HostText, TablesFitTheTerminal) {
    const std::vector<Column> columns = {
        {"IF", "if"}, {"SSID", "ssid", false, nullptr, true}, {"CHAN", "chan", true}, {"LAST", "last"}};
    json rows = {{{"if", "wl0"}, {"ssid", escapeBytes(std::string(32, '\xff'))}, {"chan", 36}, {"last", "x"}},
                 {{"if", "wl0"}, {"ssid", "\xe5\xae\xb6\xe5\xae\xb6"}, {"chan", 6}, {"last", "x"}}};
    struct {
        size_t width;
        const char *text;
    } cases[] = {
        {26, "IF   SSID       CHAN  LAST\nwl0  \\xff\\xff\xe2\x80\xa6    36  x\n"
             "wl0  \xe5\xae\xb6\xe5\xae\xb6          6  x\n"},
        {21, "IF   SSID    CHAN\nwl0  \\xff\\\xe2\x80\xa6    36\nwl0  \xe5\xae\xb6\xe5\xae\xb6       6\n"
             "--wide shows more: L\xe2\x80\xa6\n"},
    };
    for (const auto &row : cases) {
        tableStyle().width = row.width;
        EXPECT_EQ(table(columns, rows), row.text) << row.width;
    }
    tableStyle() = {};
    EXPECT_NE(table(columns, rows).find(rows[0]["ssid"]), std::string::npos) << "no limit";
}

TEST(HostText, RowsAreSortedByAColumn) {
    const std::vector<Column> columns = {{"IF", "if"}, {"SIGNAL", "signal", true, dbm}, {"CHAN ", "chan"}, {"", "bar"}};
    json rows = {{{"if", "wl0.10"}, {"signal", -70}, {"chan", 149}},
                 {{"if", "wl0.2"}, {"signal", nullptr}, {"chan", 36}},
                 {{"if", "wl0.02"}, {"signal", -40}, {"chan", 6}}};
    struct {
        const char *column, *order;
    } cases[] = {{"if", "wl0.2 wl0.02 wl0.10"}, {"Signal", "wl0.02 wl0.10 wl0.2"}, {"chan", "wl0.02 wl0.2 wl0.10"}};
    for (const auto &row : cases) {
        json sorted = rows, order = json::array();
        sortRows(sorted, *columnOf(columns, row.column));
        for (const json &one : sorted)
            order.push_back(one["if"]);
        EXPECT_EQ(cell(order), row.order) << row.column;
    }
    EXPECT_EQ(columnOf(columns, ""), nullptr);
    EXPECT_EQ(columnNames(columns), (std::vector<std::string>{"if", "signal", "chan"}));
}

TEST(HostText, ARefusalForWantOfPermissionNamesTheUser) {
    Failure refused = systemFailure(Status::kUsage, "x", EACCES, "choose another", "/proc/1/exe/none");
    EXPECT_EQ(refused.status, Status::kEnvironment);
    EXPECT_EQ(std::string(refused.what()).rfind("no permission for user ", 0), 0u) << refused.what();
    EXPECT_EQ(refused.hint, "run wlhost as root, or choose another");
    EXPECT_EQ(systemFailure(Status::kUsage, "x", ENOENT, "").status, Status::kUsage);
}

TEST(HostText, ReplacesEveryOccurrenceOnce) {
    char text[64] = "&a&&";
    EXPECT_EQ(qvUtilStrReplace(text, "&", "&amp;"), 3);
    EXPECT_STREQ(text, "&amp;a&amp;&amp;");
    EXPECT_EQ(qvUtilStrReplace(text, "&amp;", ""), 3);
    EXPECT_STREQ(text, "a");
    EXPECT_EQ(qvUtilStrReplace(text, "", "x"), 0);
}

// A server that answers "<request>!" in a thread of its own.
class HostControl : public testing::Test {
  protected:
    HostControl() : folder_("/tmp/wlhost-test.XXXXXX") {
        EXPECT_NE(mkdtemp(folder_.data()), nullptr);
        path_ = folder_ + "/socket";
    }
    ~HostControl() override {
        stop();
        unlink(path_.c_str());
        rmdir(folder_.c_str());
    }

    void start() {
        server_ = std::make_unique<ControlServer>(
            path_, [](const std::string &request) { return ControlServer::Reply(request + "!", request == "follow"); });
        thread_ = std::thread([this] {
            while (!stop_) {
                if (published_.exchange(0) == 1)
                    server_->publish("news");
                std::vector<pollfd> fds;
                server_->addTo(fds);
                poll(fds.data(), fds.size(), 10);
                server_->serve();
            }
        });
    }
    void stop() {
        stop_ = true;
        if (thread_.joinable())
            thread_.join();
        server_.reset();
    }
    Fd rawConnection(decltype(connect) *attach = connect) {
        Fd fd(socket(AF_UNIX, SOCK_STREAM, 0));
        sockaddr_un address{AF_UNIX, {}};
        path_.copy(address.sun_path, path_.size());
        EXPECT_EQ(attach(fd.get(), reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        return fd;
    }
    Status statusOf(const std::string &path, int seconds) {
        try {
            callHost(path, "x", seconds);
            return Status::kDone;
        } catch (const Failure &failure) {
            return failure.status;
        }
    }

    std::string folder_, path_;
    std::unique_ptr<ControlServer> server_;
    std::thread thread_;
    std::atomic<bool> stop_{false};
    std::atomic<int> published_{0};
};

TEST_F(HostControl, AnswersItsOwnerOnly) {
    start();
    struct stat entry;
    ASSERT_EQ(stat(path_.c_str(), &entry), 0);
    EXPECT_EQ(entry.st_mode & 0777, 0600u);
    EXPECT_EQ(callHost(path_, "hello", 5), "hello!");
    std::string large(60000, 'x');
    EXPECT_EQ(callHost(path_, large, 5), large + "!");
}

TEST_F(HostControl, OddClientsHurtThemselvesOnly) {
    start();
    Fd silent = rawConnection(), half = rawConnection(), gone = rawConnection();
    EXPECT_EQ(write(half.get(), "{\"command\"", 10), 10);
    EXPECT_EQ(write(gone.get(), "x\n", 2), 2);
    gone = Fd();
    EXPECT_EQ(statusOf(path_, 5), Status::kDone);
    EXPECT_EQ(write(half.get(), ":1}\n", 4), 4);
    char answer[32] = "";
    EXPECT_EQ(read(half.get(), answer, sizeof answer), 15);
    EXPECT_STREQ(answer, "{\"command\":1}!\n");
    EXPECT_THROW(callHost(path_, std::string(70000, 'x'), 5), Failure);
    EXPECT_EQ(statusOf(path_, 5), Status::kDone);
}

TEST_F(HostControl, OneHostAPath) {
    EXPECT_EQ(statusOf(path_, 1), Status::kEnvironment);
    start();
    try {
        ControlServer second(path_, nullptr);
        ADD_FAILURE();
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.status, Status::kEnvironment);
    }
    EXPECT_EQ(statusOf(path_, 5), Status::kDone) << "the first host lost its socket";
    stop();
    EXPECT_NE(access(path_.c_str(), F_OK), 0) << "the socket stayed behind";
}

TEST_F(HostControl, DeadHostsSocketIsReplacedAndOtherFilesAreNot) {
    rawConnection(bind); // nobody listens there, and nobody will
    start();
    EXPECT_EQ(statusOf(path_, 5), Status::kDone);
    stop();
    Fd file(creat(path_.c_str(), 0600));
    EXPECT_THROW(ControlServer(path_, nullptr), Failure);
    EXPECT_EQ(access(path_.c_str(), F_OK), 0);
}

TEST_F(HostControl, SubscribersGetWhatIsPublished) {
    start();
    ControlClient follower(path_, "follow", 5), other(path_, "follow", 5);
    EXPECT_EQ(follower.nextLine(5), "follow!");
    EXPECT_EQ(other.nextLine(5), "follow!");
    for (int i = 0; i < 3; ++i) {
        published_ = 1;
        EXPECT_EQ(follower.nextLine(5), "news");
        EXPECT_EQ(other.nextLine(5), "news");
    }
    EXPECT_THROW(follower.nextLine(1), Failure) << "nothing was published";
    EXPECT_EQ(callHost(path_, "hello", 5), "hello!") << "a plain answer among subscribers";
}

TEST_F(HostControl, SlowSubscriberIsToldWhatItMissed) {
    server_ = std::make_unique<ControlServer>(
        path_, [](const std::string &request) { return ControlServer::Reply(request, true, "events", json(request)); });
    auto turn = [&] {
        server_->serve();
        return server_->hasSubscribers();
    };
    ControlClient slow(path_, "slow", 5), other(path_, "other", 5);
    ASSERT_TRUE(turn());
    EXPECT_EQ(other.nextLine(5), "other");
    const std::string line(20000, 'x');
    for (int i = 0; i < 200; ++i) {
        server_->publish(line, "events", [](const json &asked) { return asked == "slow"; });
        server_->serve();
    }
    server_->publish("after the gap has begun");
    turn();
    EXPECT_EQ(other.nextLine(5), "after the gap has begun") << "the others wait for it, or get what it asked for";
    EXPECT_EQ(slow.nextLine(5), "slow");
    int seen = 0;
    std::string next;
    for (; (next = slow.nextLine(5)) == line; ++seen)
        turn();
    EXPECT_LT(seen, 100) << "what is kept for it has a limit";
    EXPECT_EQ(next, json({{"event", "dropped"}, {"count", 201 - seen}}).dump());
    server_->publish("last words");
    server_.reset();
    EXPECT_EQ(slow.nextLine(5), "last words") << "what was queued when the host ends";
}

// Whether the host closed it.
bool isClosed(const Fd &fd) {
    char byte;
    return recv(fd.get(), &byte, 1, MSG_DONTWAIT) == 0;
}

TEST_F(HostControl, TheOldestSilentOneGoesFirst) {
    start();
    ControlClient follower(path_, "follow", 5);
    EXPECT_EQ(follower.nextLine(5), "follow!");
    std::vector<Fd> silent;
    for (int i = 0; i < 300; ++i)
        silent.push_back(rawConnection());
    EXPECT_EQ(statusOf(path_, 1), Status::kDone);
    EXPECT_TRUE(isClosed(silent[0]) && isClosed(silent[100]));
    EXPECT_FALSE(isClosed(silent[150]) || isClosed(silent[299]));
    published_ = 1;
    EXPECT_EQ(follower.nextLine(5), "news") << "the silent ones took a subscriber's place";
}

TEST_F(HostControl, SubscribersBeyondTheirPlacesAreRefused) {
    start();
    std::vector<std::unique_ptr<ControlClient>> followers;
    for (int i = 0; i < 192; ++i) {
        followers.push_back(std::make_unique<ControlClient>(path_, "follow", 5));
        ASSERT_EQ(followers.back()->nextLine(5), "follow!");
    }
    EXPECT_EQ(json::parse(callHost(path_, "follow", 5))["status"], 7);
    followers.pop_back();
    EXPECT_EQ(statusOf(path_, 5), Status::kDone);
    EXPECT_EQ(callHost(path_, "follow", 5), "follow!");
}

TEST_F(HostControl, OneProcessHoldsTheGateway) {
    auto problem = [&](const std::string &socket = {}) -> std::string {
        try {
            GatewayLock lock(socket, path_, std::chrono::milliseconds(20));
            return "";
        } catch (const Failure &failure) {
            EXPECT_EQ(failure.status, Status::kEnvironment);
            return failure.what();
        }
    };
    const std::string pid = "pid " + std::to_string(getpid());
    auto host = std::make_unique<GatewayLock>("/run/a socket", path_);
    EXPECT_EQ(problem(), "a host serves this gateway already: " + pid + ", socket /run/a socket");
    ASSERT_EQ(system("sleep 1 >&- 2>&- &"), 0); // does not inherit it
    host = nullptr;
    EXPECT_EQ(problem("/run/b"), "");
    GatewayLock reader({}, path_);
    EXPECT_EQ(problem(), pid + " looks at the radios");
    std::string link = folder_ + "/link";
    ASSERT_EQ(symlink(path_.c_str(), link.c_str()), 0);
    EXPECT_THROW(GatewayLock({}, link), Failure);
    unlink(link.c_str());
}

TEST_F(HostControl, SilentHostIsATimeout) {
    server_ = std::make_unique<ControlServer>(path_, nullptr); // nobody serves it
    EXPECT_EQ(statusOf(path_, 1), Status::kTimeout);
}

} // namespace
} // namespace wlhost
