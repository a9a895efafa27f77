// The parts of the tap and the journal that need no module: which commands only ask, what is held back, what is masked.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <fstream>

#include "host/base/failure.h"
#include "host/base/masking.h"
#include "host/journal/journal.h"
#include "host/journal/journal_file.h"
#include "host/tap/dry_run.h"
#include "host/tap/handler.h"
#include "host/tap/live.h"
#include "host/tap/overlay.h"
#include "host/tap/queries.h"
#include "host/tap/tap.h"

namespace wlhost {
namespace {

struct Case {
    const char *line, *radio;
    bool query;
};

TEST(Queries, AreKnownByTheirVerbAndArguments) {
    const Case cases[] = {
        {"wlctl -i wl0 revinfo > /tmp/wl0_ChipInfo", "wl0", true},
        {"wlctl -i wl0 chanspecs -b 5 -w 80 > /tmp/wl0chspeclist", "wl0", true},
        {"wlctl -i wl0.1 mac > /tmp/x", "wl0", true},
        {"wlctl -i wl0.1 mac none", "wl0", false},
        {"wlctl -i wl0 chanspec", "wl0", true},
        {"wlctl -i wl0 chanspec 36/80", "wl0", false},
        {"wl -i wl0 sta_info 00:11:22:33:44:55 > /tmp/.sta_result", "wl0", true},
        {"wl -i wl0 bss down", "wl0", false},
        {"wlctl -i wl0 up", "wl0", false},
        {"wlctl -i wl0 ver | grep WLTEST", "wl0", true},
        {"wlctl -i wl0 status | grep \"noise:\" | awk '{sub(/.*noise:/,\"\");print $1}' > /tmp/n", "wl0", true},
        {"/bin/cat /proc/net/dev | /bin/grep wl | awk '{ print substr($1, 0, length($1)-1); }'", "", true},
        {"wlctl -i wl0 ver | tee /etc/passwd", "wl0", false},
        {"dhdctl -i wl0 version &> /dev/null", "wl0", true},
        {"acs_cli -i wl0 csscan_force", "wl0", false},
        {"acs_cli -i wl0 dump bss > /tmp/wl0_acs_dump_res", "wl0", true},
        {"acs_cli -i wl0 acs_policy 1 &", "wl0", false},
        {"wlctl -i wl0 revinfo >> /tmp/all", "wl0", false},
        {"ifconfig wl0 up 2>/dev/null", "", false},
    };
    for (const Case &one : cases) {
        auto line = tap::parseLine(one.line);
        ASSERT_TRUE(line) << one.line;
        EXPECT_EQ(tap::isQuery(*line), one.query) << one.line;
        EXPECT_EQ(tap::askedRadio(*line), one.radio) << one.line;
    }
    for (const char *more : {"wlctl -i wl0 ver; reboot", "wlctl -i wl0 ver && reboot", "cat $(reboot)", "cat `reboot`",
                             "cat x || reboot", "cat x\nreboot", "cat x | ", "cat \"$HOME\"", "cat x & reboot", ""})
        EXPECT_FALSE(tap::parseLine(more)) << more;
}

TEST(Overlay, HoldsFilesInMemoryOverThoseThatThereAre) {
    char folder[] = "/tmp/overlay-XXXXXX";
    ASSERT_TRUE(mkdtemp(folder));
    const std::string real = std::string(folder) + "/real", fresh = std::string(folder) + "/fresh";
    std::ofstream(real) << "outside";
    {
        tap::FileOverlay files;
        auto open = [&](const std::string &path, int flags) {
            return files.open(path, flags, [&] { return ::open(path.c_str(), flags | O_CLOEXEC); });
        };
        char text[16] = "";
        Fd before(open(real, O_RDONLY));
        EXPECT_EQ(read(before.get(), text, sizeof text), 7);
        EXPECT_LT(open(real, O_WRONLY | O_CREAT | O_EXCL), 0);
        EXPECT_EQ(files.remove(real), 0);
        EXPECT_EQ(files.remove(real), -1);
        EXPECT_LT(open(real, O_RDONLY), 0);
        for (const std::string &path : {real, fresh}) {
            Fd out(open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW));
            ASSERT_EQ(write(out.get(), "inside", 6), 6);
            Fd in(open(path, O_RDONLY | O_NOFOLLOW));
            EXPECT_EQ(lseek(in.get(), 0, SEEK_END), 6);
        }
        files.setMode(fresh, 0400);
        EXPECT_NE(access(fresh.c_str(), F_OK), 0);
        files.writeOut();
    }
    std::string left, made;
    std::getline(std::ifstream(real), left);
    std::getline(std::ifstream(fresh), made);
    EXPECT_EQ(left + " " + made, "outside inside");
    unlink(real.c_str());
    unlink(fresh.c_str());
    rmdir(folder);
}

TEST(DryMode, HoldsBackAndSkipsTime) {
    tap::goDry();
    tap::Operation operation("reloadWlan", "reload wl0");
    tap::Handler &dry = tap::handler();
    timespec before{}, after{};
    const timespec pause{3, 500000000};
    dry.clockGettime(CLOCK_MONOTONIC, &before);
    tap::heard("qvWlanReset", "cmd = exit 7");
    EXPECT_EQ(dry.system("exit 7"), 0);
    EXPECT_EQ(dry.nanosleep(&pause, nullptr), 0);
    EXPECT_EQ(tap::run("host", {"brctl", "delif", "br 0"}), 0);
    dry.nvramSet("wl0_ssid", "home");
    EXPECT_EQ(tap::storedNow("wl0_ssid"), "home");
    dry.nvramUnset("wl0_ssid");
    EXPECT_EQ(tap::storedNow("wl0_ssid"), std::nullopt);
    EXPECT_EQ(dry.pclose(dry.popen("acs_cli -i wl0 csscan_force", "r")), 0);
    EXPECT_EQ(dry.recv(-1, nullptr, 0, 0), -1);
    dry.clockGettime(CLOCK_MONOTONIC, &after);
    EXPECT_GE(after.tv_sec - before.tv_sec, 3);
    const tap::Effects effects = tap::takeEffects();
    std::string told;
    for (const tap::Command &one : effects.commands)
        told += one.function + ": " + one.command + " " + std::to_string(one.pauseMs) + "\n";
    EXPECT_EQ(told,
              "qvWlanReset: exit 7 3500\nhost: brctl delif 'br 0' 0\nreloadWlan: acs_cli -i wl0 csscan_force 0\n");
    EXPECT_EQ(effects.writes.size(), 2U);
    EXPECT_TRUE(tap::takeEffects().commands.empty());
    tap::goLive();
    EXPECT_FALSE(tap::isDry());
}

TEST(DryMode, AChildAnswersFailsOrIsEnded) {
    using std::chrono::seconds;
    int touched = 0;
    auto steps = [&]() -> json { return {{"dry", tap::isDry()}, {"touched", ++touched}}; };
    EXPECT_EQ(tap::inDryRun(steps, seconds(10)), json({{"dry", true}, {"touched", 1}}));
    EXPECT_EQ(touched, 0);
    auto statusOf = [](const std::function<json()> &what, std::chrono::milliseconds limit) {
        try {
            tap::inDryRun(what, limit);
        } catch (const Failure &failure) {
            return failure.status;
        }
        return Status::kDone;
    };
    EXPECT_EQ(statusOf([]() -> json { throw Failure(Status::kNotFound, "wl7", "is not there"); }, seconds(10)),
              Status::kNotFound);
    EXPECT_EQ(statusOf([]() -> json { _exit(0); }, seconds(10)), Status::kFailed);
    EXPECT_EQ(statusOf([]() -> json { return pause(); }, std::chrono::milliseconds(20)), Status::kTimeout);
}

TEST(Attaching, IsRefusedWhereCallsGoPastTheTap) {
    // This program exports nothing, so the C++ library's calls are the C library's.
    const auto *place = reinterpret_cast<const void *>(&std::set_terminate);
    try {
        tap::attach(nullptr, place);
        FAIL() << "attached";
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.status, Status::kEnvironment);
        EXPECT_TRUE(tap::isTapped(failure.where.c_str())) << failure.where;
    }
    EXPECT_EQ(&tap::handlerFor(place), &tap::handler());
}

TEST(Masking, CoversKnownSecretsAndTheValuesOfTheirKeys) {
    for (const char *key : {"wl0.1_wpa_psk", "wl0_key1", "wl1_key4", "wl0_radius_key", "wps_device_pin", "wps_sta_pin"})
        EXPECT_TRUE(isSecretKey(key)) << key;
    for (const char *key : {"wl0_key", "wl0_key5", "wl0_akm", "wps_enable_stapin", "wpa_psk_x", ""})
        EXPECT_FALSE(isSecretKey(key)) << key;
    learnSecret("it's in");
    learnSecret("hush");
    learnSecret("");
    const std::pair<const char *, const char *> cases[] = {
        {"say it's in here", "say ******** here"},
        {"wlctl key 'h''u''s''h'", "wlctl key ********"},
        {"it's inside", "it's inside"},
        {"nvram set wl0_wpa_psk = two words", "nvram set wl0_wpa_psk = ********"},
        {"SET wps_method=1 wps_sta_pin=12345670 wps_action=3", "SET wps_method=1 wps_sta_pin=******** wps_action=3"},
        {"wl0_key=1 wl0_akm=psk", "wl0_key=1 wl0_akm=psk"},
        {"wl0_wpa_psk=", "wl0_wpa_psk="},
    };
    for (const auto &[text, shown] : cases)
        EXPECT_EQ(masked(text), shown);
}

tap::Entry written(const std::string &what) {
    tap::Entry entry;
    entry.kind = tap::Kind::kNvram;
    entry.what = what;
    return entry;
}

TEST(Journal, KeepsTheLastEntriesWithinItsBounds) {
    Journal kept;
    for (size_t i = 0; i < Journal::kMostEntries + 5; ++i)
        kept.add(written(std::to_string(i)));
    EXPECT_EQ(kept.entries().size(), Journal::kMostEntries);
    EXPECT_EQ(kept.entries().front().what, "5");
    for (int i = 0; i < 3000; ++i)
        kept.add(written(std::string(4096, 'x')));
    EXPECT_LE(kept.bytes(), Journal::kMostBytes);
    EXPECT_GT(kept.bytes(), Journal::kMostBytes - 8192);
}

TEST(Journal, ScriptsKeepEveryByte) {
    const std::pair<const char *, const char *> cases[] = {
        {"wl0_ssid=a'b", "nvram set 'wl0_ssid=a'\\''b'"},
        {"wl0_ssid=\xe9", "nvram set \"$(printf %b '\\0167\\0154\\0060\\0137\\0163\\0163\\0151\\0144\\0075\\0351')\""},
        {"wl0_wpa_psk=two words", "# with a secret: set wl0_wpa_psk=********"},
    };
    for (const auto &[what, line] : cases)
        EXPECT_EQ(shellLine(written(what), false), line);
    EXPECT_EQ(shellLine(written("wl0_wpa_psk=two words"), true), "nvram set 'wl0_wpa_psk=two words'");
}

TEST(Journal, FilesAreTurnedOverAndNeverALink) {
    char folder[] = "/tmp/journal-XXXXXX";
    ASSERT_TRUE(mkdtemp(folder));
    const std::string path = std::string(folder) + "/file", link = std::string(folder) + "/link";
    {
        JournalFile file(path, 400);
        for (int i = 0; i < 4; ++i)
            file.add(written("k=" + std::to_string(i)));
    }
    struct stat now {
    }, old{};
    ASSERT_EQ(stat(path.c_str(), &now) + stat((path + ".1").c_str(), &old), 0);
    EXPECT_TRUE(now.st_size > 0 && now.st_size <= 400 && old.st_size > 0 && old.st_size <= 400);
    EXPECT_EQ(now.st_mode & 0777, 0600U);
    ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);
    EXPECT_THROW(JournalFile{link}, Failure);
    EXPECT_THROW(JournalFile{folder}, Failure);
    for (const std::string &one : {path, path + ".1", link})
        unlink(one.c_str());
    rmdir(folder);
}

TEST(Live, NotesTheCauseBehindAWriteAndBeforeACommand) {
    std::vector<tap::Entry> noted;
    tap::LiveHandler live([&](const tap::Entry &entry) { noted.push_back(entry); });
    tap::setHandler(&live);
    {
        tap::Operation operation("reloadWlan", "reload wl0");
        tap::heard("qvWlanStop", "cmd = echo gone >&2; exit 3");
        live.system("echo gone >&2; exit 3");
        live.system("exit 0");
    }
    tap::setHandler(nullptr);
    ASSERT_EQ(noted.size(), 2U);
    EXPECT_EQ(noted[0].function + " " + noted[0].said + std::to_string(noted[0].status), "qvWlanStop gone\n3");
    EXPECT_EQ(noted[1].function + " " + noted[1].request, "reloadWlan reload wl0");
    EXPECT_EQ(noted[0].operation, noted[1].operation);
    EXPECT_TRUE(tap::startsDaemon("/bin/wps_monitor&") && tap::startsDaemon("/bin/nas") &&
                !tap::startsDaemon("killall nas"));
}

TEST(Times, AreReadAsDatesOrAsHowLongAgo) {
    const WallTime now = timeOf("2026-01-31T10:00:00.250Z");
    EXPECT_EQ(utcText(now), "2026-01-31T10:00:00.250Z");
    for (const auto &[text, seconds] : {std::pair{"90", 90}, {"90s", 90}, {"10m", 600}, {"2h", 7200}, {"1d", 86400}})
        EXPECT_EQ(timeOf(text, now), now - std::chrono::seconds(seconds)) << text;
    EXPECT_EQ(timeOf("10:00:00.250", now), now);
    for (const char *text : {"", "m", "1w", "yesterday", "-5", "2026-01-31", "2026-01-31T10:00:00+1", "999999999999"})
        EXPECT_THROW(timeOf(text, now), Failure) << text;
}

} // namespace
} // namespace wlhost
