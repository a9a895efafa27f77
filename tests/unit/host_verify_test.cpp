// What the platform's tools print, as the checks read it; and what is found when they print something else.
#include "tests/unit/host_fixture.h"

#include "host/verify/checks.h"
#include "host/verify/readers.h"
#include "host/verify/verification.h"

namespace wlhost {
namespace {

std::string shownValue(std::optional<Chanspec> value) { return value ? value->text() : "?"; }
std::string shownValue(const std::optional<std::string> &value) { return value ? escapeBytes(*value) : "?"; }
std::string shownValue(std::optional<bool> value) { return !value ? "?" : *value ? "yes" : "no"; }
template <typename Number> std::string shownValue(std::optional<Number> value) {
    return value ? std::to_string(*value) : "?";
}

TEST(HostReaders, TakeWhatToolsPrintAndNothingElse) {
    constexpr char kQueues[] = "qdisc noqueue 0: dev lo root refcnt 2\n"
                               "qdisc tbf 8001: dev wl0.1 root refcnt 2 rate 20Mbit burst 60Kb lat 50ms\n"
                               "qdisc ingress ffff: dev wl0.1 parent ffff:fff1 ----------------\n"
                               "qdisc add dev wl1 root tbf rate 1500kbit latency 50ms burst 10kb\n"
                               "qdisc tbf 8002: dev wl2 root refcnt 2 rate plenty burst 60Kb\n";
    const std::string police = "filter parent ffff: protocol all pref 49152 u32 chain 0\n"
                               "\tpolice 0x1 rate 5Mbit burst 100Kb mtu 2Kb action drop overhead 0b\n";
    const std::string rules = "Bridge chain: SKIP_FCACHE, entries: 1, policy: RETURN\n-i wl0.1 -j SKIPLOG\n";
    const struct {
        std::string found;
        const char *expected;
    } rows[] = {
        {shownValue(readChanspec("36/80 (0xe02a)\n")), "36/80"},
        {shownValue(readChanspec("6l (0x1908)")), "6l"},
        {shownValue(readChanspec("11 (0x100b)")), "11"},
        {shownValue(readChanspec("149/160")), "149/160"},
        {shownValue(readChanspec("36/81")), "?"},
        {shownValue(readChanspec("0")), "?"},
        {shownValue(readChanspec("256")), "?"},
        {shownValue(readChanspec("36x (0xe02a)")), "?"},
        {shownValue(readChanspec("")), "?"},
        {shownValue(readCountry("DE (DE/3) GERMANY\n")), "DE/3"},
        {shownValue(readCountry("DE ()")), "?"},
        {shownValue(readCountry(") DE/3 (")), "?"},
        {shownValue(readNetworkName("Current SSID: \"caf\\xe9 \\\\ \"x\"\"\n")), "caf\\xe9 \\x5c \"x\""},
        {shownValue(readNetworkName("Current SSID: \"\"")), ""},
        {shownValue(readNetworkName("Current SSID: \"bad\\x4\"")), "?"},
        {shownValue(readNetworkName("Current SSID: \"")), "?"},
        {shownValue(firstNumber(" 16 (0x10)")), "16"},
        {shownValue(firstNumber("99999999999")), "?"},
        {shownValue(firstNumber("\n")), "?"},
        {shownValue(readUp("up\n")), "yes"},
        {shownValue(readUp("down")), "no"},
        {shownValue(readUp("driver")), "?"},
        {shownValue(readShaper(kQueues, "wl0.1")), "20000"},
        {shownValue(readShaper(kQueues, "wl1")), "1500"},
        {shownValue(readShaper(kQueues, "wl0")), "0"},
        {shownValue(readShaper(kQueues, "wl2")), "?"},
        {shownValue(std::optional<bool>(hasIngress(kQueues, "wl0.1"))), "yes"},
        {shownValue(std::optional<bool>(hasIngress(kQueues, "wl1"))), "no"},
        {shownValue(readPolicer(police)), "5000"},
        {shownValue(readPolicer("filter add dev wl1 police rate 800kbit burst 50kb")), "800"},
        {shownValue(readPolicer("")), "0"},
        {shownValue(std::optional<bool>(skipsFlowCache(rules, "wl0.1"))), "yes"},
        {shownValue(std::optional<bool>(skipsFlowCache(rules, "wl0"))), "no"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(row.found, row.expected);
    EXPECT_EQ(readStations("mac 02:00:00:00:00:0A\nassoclist 02-00-00-00-00-0b x\n"),
              (std::set<std::string>{"02:00:00:00:00:0a", "02:00:00:00:00:0b"}));
    EXPECT_FALSE((Chanspec{6, 40, 'l'}.sameAs({6, 40, 'u'})));
    EXPECT_TRUE((Chanspec{6, 40, 0}.sameAs({6, 40, 'u'})));
}

TEST(HostChecks, AreAllInTheGuide) {
    std::ifstream file(WLHOST_EXAMPLES "/../docs/verify.md");
    const std::string guide((std::istreambuf_iterator<char>(file)), {});
    for (const Check &check : checks())
        EXPECT_TRUE(guide.find(std::string("| ") + check.name) != std::string::npos ||
                    guide.find(std::string(", ") + check.name) != std::string::npos)
            << check.name;
}

TEST_F(HostCommands, DemandTellsEveryDifferenceOnALine) {
    toolSays["wl0 chanspec"] = "44/80";
    toolSays.erase("country");
    try {
        demand(examine(*host_, intfs_[0], kOfRadio));
        FAIL() << "nothing was demanded";
    } catch (const Failure &failure) {
        EXPECT_STREQ(failure.what(), "2 checks do not hold:\n  wl0 country: wanted DE/3, no answer: wlctl failed\n"
                                     "  wl0 channel: wanted 36, found 44/80");
        EXPECT_EQ(failure.details["differences"].size(), 2u);
        expectHas(failure.details["differences"][1], {{"check", "channel"}, {"cure", "wlhost reload wl0"}});
    }
    EXPECT_NO_THROW(demand({}));
}

TEST(HostPlatform, RunsToolsWithinBounds) {
    ToolAnswer failed = devicePlatform().run({"sh", "-c", "echo out; echo '\x1b[2J why' >&2; exit 3"});
    EXPECT_EQ(failed.status, 3);
    EXPECT_EQ(failed.out, "out\n");
    EXPECT_EQ(failed.said, "\\x1b[2J why");
    EXPECT_EQ(devicePlatform().run({"/no/such/tool"}).said, "/no/such/tool: No such file or directory");
    EXPECT_EQ(devicePlatform().run({"sh", "-c", "kill -9 $$"}).said, "ended by signal 9");
    ToolAnswer endless = devicePlatform().run({"head", "-c", "1000000", "/dev/zero"});
    EXPECT_TRUE(endless);
    EXPECT_EQ(endless.out.size(), 262144u);
}

TEST_F(HostCommands, AToolThatHangsIsWaitedForOnce) {
    static int runs;
    struct Hanging : ScriptedPlatform {
        ToolAnswer run(const std::vector<std::string> &) const override {
            ++runs;
            return {-1, "", "wlctl did not answer in time", true};
        }
    } hanging;
    host_->platform = &hanging;
    runs = 0;
    EXPECT_EQ(examine(*host_, intfs_[0])[0].said, "wlctl did not answer in time");
    EXPECT_EQ(runs, 2) << "wlctl and tc";
    host_->platform = &kScriptedPlatform;
}

// A filter of both sides, as the module merges them.
TEST_F(HostCommands, FilterOfBothSides) {
    const char *user = "02:00:00:00:00:0A", *both = "02:00:00:00:00:0a", *ban = "02:00:00:00:00:0b";
    const struct {
        const char *mode, *list;
        std::set<std::string> bans;
        const char *wanted;
    } rows[] = {{"", "", {}, "off"},
                {"", user, {ban}, "deny 02:00:00:00:00:0b"},
                {"DENY", user, {ban}, "deny 02:00:00:00:00:0a 02:00:00:00:00:0b"},
                {"DENY", "", {}, "off"},
                {"DENY", "02:00:00:00:00:0A x", {}, "off"},
                {"ALLOW", "02:00:00:00:00:0A 02:00:00:00:00:0C", {both, ban}, "allow 02:00:00:00:00:0c"},
                {"ALLOW", user, {both}, "off"}};
    for (const auto &row : rows) {
        copyText(intfs_[0].bss[0].macFilterMode, row.mode);
        copyText(intfs_[0].bss[0].macFilterList, row.list);
        host_->bans["wl0"] = row.bans;
        Findings findings = examine(*host_, intfs_[0], kOfFilter, "wl0");
        ASSERT_EQ(findings.size(), 1u);
        EXPECT_EQ(findings[0].wanted, row.wanted);
        EXPECT_EQ(findings[0].holds, std::string(row.wanted) == "off");
    }
}

} // namespace
} // namespace wlhost
