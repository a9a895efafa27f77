// The base that everything stands on: names that may reach a shell, bounded text, nvram writes, commands.
#include "tests/unit/fake_platform.h"

#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <thread>
#include <unistd.h>

#include "module/command.h"
#include "module/nvram.h"
#include "module/waiting.h"

using namespace wlbrcm;

class Base : public PlatformTest {};

TEST_F(Base, InterfaceNamesAreCheckedBeforeTheyReachAShell) {
    const struct {
        const char *text;
        bool good;
    } rows[] = {
        {"wl0", true},
        {"wl0.1", true},
        {"br-lan_2", true},
        {"AZaz09", true},
        {"123456789012345", true},
        {"1234567890123456", false},
        {"", false},
        {"-f", false},
        {"wl0 ", false},
        {"br0; reboot", false},
        {"$(id)", false},
        {"a`b`", false},
        {"a\nb", false},
        {"a/b", false},
        {"wl\xff", false},
        {"a|b", false},
    };
    for (const auto &row : rows) {
        platform.forget();
        const InterfaceName name(WLBRCM_HERE, row.text);
        EXPECT_EQ(row.good, static_cast<bool>(name)) << row.text;
        EXPECT_STREQ(row.good ? row.text : "", name.c_str());
        EXPECT_EQ(row.good ? 0U : 1U, platform.logged(LOG_ERR).size()) << row.text;
    }
}

TEST_F(Base, MacTextsAreSixHexadecimalPairs) {
    EXPECT_TRUE(isMacText("00:1a:2B:ff:FF:09"));
    EXPECT_FALSE(isMacText("g0:1a:2B:ff:FF:09"));
    for (const char *bad : {"", "00:1a:2B:ff:FF:0", "00:1a:2B:ff:FF:099", "00-1a-2B-ff-FF-09", "0g:1a:2B:ff:FF:09",
                            "00:1a:2B:ff:FF:09 ", "00:1a:2B:ff:FF:;s", ":::::::::::::::::"})
        EXPECT_FALSE(isMacText(bad)) << bad;
}

TEST_F(Base, TextWritesFollowTheBlankRule) {
    const struct {
        const char *key, *value, *entry;
    } rows[] = {
        {"wl0_ssid", "home ", "set wl0_ssid=home "},
        {"wl0_akm", "psk2 ", "set wl0_akm=psk2"},
        {"wl0_akm", "psk psk2  ", "set wl0_akm=psk psk2 "},
        {"wl0.1_wpa_psk", "secret! ", "set wl0.1_wpa_psk=secret! "},
        {"wl0_akm", "", "unset wl0_akm"},
        {"wl0_akm", " ", "set wl0_akm="},
    };
    for (const auto &row : rows) {
        platform.forget();
        std::string value = row.value;
        EXPECT_EQ(0, __qvWlanSetVarToNvram("caller", 7, value.data(), row.key, "string"));
        EXPECT_EQ(Lines{row.entry}, platform.journal);
        ASSERT_EQ(1U, platform.logs.size());
        EXPECT_EQ("caller", platform.logs[0].function);
        EXPECT_EQ(LOG_DEBUG, platform.logs[0].level);
    }
}

TEST_F(Base, WritesLogTheirTextsAndRefuseWhatDoesNotFit) {
    int number = -7;
    EXPECT_EQ(0, __qvWlanSetVarToNvram2("f", 1, &number, "wl0.1", "radio", "int"));
    EXPECT_EQ(WLBRCM_EINVAL, __qvWlanSetVarToNvram("f", 1, nullptr, "key", "float"));
    EXPECT_EQ(WLBRCM_EINVAL, __qvWlanSetVarToNvram("f", 1, nullptr, "key", "int"));
    EXPECT_EQ(WLBRCM_EINVAL, __qvWlanSetVarToNvram2("f", 1, &number, nullptr, "radio", "int"));
    EXPECT_EQ(WLBRCM_EINVAL, __qvWlanSetVarToNvram2("f", 1, &number, "wl0", nullptr, "int"));
    EXPECT_EQ((Lines{"set wl0.1_radio=-7"}), platform.journal);
    EXPECT_EQ((Lines{"nvram set wl0.1_radio = -7\n"}), platform.logged(LOG_DEBUG));
    EXPECT_EQ((Lines{"type not found.\n"}), platform.logged(LOG_ERR));

    platform.forget();
    const Key longest("%s", std::string(255, 'k').c_str());
    EXPECT_EQ(0, writeText(WLBRCM_HERE, longest, std::string(2047, 'v')));
    EXPECT_EQ(WLBRCM_EINVAL, writeText(WLBRCM_HERE, longest, std::string(2048, 'v')));
    EXPECT_EQ(WLBRCM_EINVAL, writeInt(WLBRCM_HERE, Key("%s", std::string(256, 'k').c_str()), 1));
    // A store may take "key=value" apart.
    EXPECT_EQ(WLBRCM_EINVAL, __qvWlanSetVarToNvram2("f", 1, &number, "http_passwd=x", "radio", "int"));
    EXPECT_EQ(1U, platform.journal.size());
    ASSERT_EQ(3U, platform.logged(LOG_ERR).size());
    EXPECT_EQ("value of nvram " + std::string(255, 'k') + " is too long: " + std::string(32, 'v') + "...\n",
              platform.logged(LOG_ERR)[0]);

    // Fields of the host's record and literals keep their blank.
    const char field[] = "eth0 ";
    writeText(WLBRCM_HERE, Key("lan_ifnames"), field);
    EXPECT_STREQ("eth0 ", field);
    EXPECT_EQ("eth0", platform.nvram["lan_ifnames"]);
}

// Arguments that do not fit a command's conversions do not compile.
static_assert(formatTakes<const char *, int>("wlctl -i %s macmode %d") && formatTakes<unsigned>("%.2x"));
static_assert(!formatTakes<const char *>("macmode %d") && !formatTakes<int>("mac %s") && !formatTakes<int>("%x"));
static_assert(!formatTakes<>("wlctl -i %s up") && !formatTakes<int, int>("nreqd %d") && !formatTakes<int>("up"));
static_assert(!formatTakes<>("100%") && !formatTakes<int>("%d %") && !formatTakes<int>("%99d"));

TEST_F(Base, ForeignBytesAreShownEscaped) {
    EXPECT_STREQ("wl0 \\x0a\\x1b[2J\\x7f\\xff~\\x5c", Shown("wl0 \n\x1b[2J\x7f\xff~\\").c_str());
    EXPECT_EQ(1020U, strlen(Shown(std::string(300, '\n')).c_str()));
}

// Signals come as fast as bytes do, and every byte arrives.
TEST_F(Base, SignalsCutNoLineShort) {
    int ends[2];
    ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
    struct sigaction interrupt = {}, before;
    interrupt.sa_handler = [](int) {};
    sigaction(SIGUSR1, &interrupt, &before);
    std::thread writer([&, reader = pthread_self()] {
        for (const char c : std::string("one line\nand the next")) {
            for (int i = 0; i < 20; ++i) {
                pthread_kill(reader, SIGUSR1);
                std::this_thread::yield();
            }
            EXPECT_EQ(1, write(ends[1], &c, 1));
        }
        close(ends[1]);
    });
    LineReader lines;
    lines.readFrom(ends[0]);
    char line[20];
    EXPECT_TRUE(lines.next(line));
    EXPECT_STREQ("one line\n", line);
    char rest[20];
    EXPECT_EQ(12U, lines.rest(rest));
    EXPECT_STREQ("and the next", rest);
    EXPECT_FALSE(lines.next(line));
    EXPECT_STREQ("one line\n", line);
    writer.join();
    sigaction(SIGUSR1, &before, nullptr);
    close(ends[0]);
}

TEST_F(Base, ASignalDoesNotShortenAPause) {
    platform.failing["nanosleep"] = 1;
    pauseFor(3);
    EXPECT_EQ((Lines{"sleep 3", "sleep 2"}), platform.journal);
}

// A host that answers commands from memory hands out streams without a descriptor.
TEST_F(Base, StreamsWithoutADescriptorAreRead) {
    char text[] = "a\nb";
    FILE *stream = fmemopen(text, 3, "r");
    LineReader lines;
    lines.readFrom(stream);
    char line[8], rest[8];
    EXPECT_TRUE(lines.next(line));
    EXPECT_EQ(1U, lines.rest(rest));
    EXPECT_STREQ("b", rest);
    fclose(stream);
}

TEST_F(Base, WhatStandsAtAResultFilesNameIsNotBelieved) {
    const ResultPath path(WLBRCM_COMMAND("/tmp/x"));
    const auto read = [&] {
        char text[8] = "";
        Report(WLBRCM_HERE, path, WLBRCM_COMMAND("make > %s")).next(text);
        return std::string(text);
    };
    platform.answer("make", "made");
    platform.files[path.c_str()] = "planted";
    EXPECT_EQ("made", read());
    platform.loseOutput("make");
    platform.files[path.c_str()] = "planted";
    EXPECT_EQ("", read());
    platform.files[path.c_str()] = "foreign";
    platform.foreign = {path.c_str()};
    char text[8] = "old";
    EXPECT_FALSE(Report(path).next(text));
    EXPECT_STREQ("old", text);
    platform.forget();
    platform.failing["remove /tmp/x"] = 1;
    EXPECT_EQ("", read());
    EXPECT_EQ(Lines{}, platform.journal);
    EXPECT_EQ(Lines{"cannot remove /tmp/x (error 39), not done: make > /tmp/x\n"}, platform.logged(LOG_ERR));
}

TEST_F(Base, CommandsAreLoggedAndNeverRunCut) {
    platform.answer("false", "", 1);
    EXPECT_EQ(0, __qvWlanSystemEx("caller", 1, "true"));
    EXPECT_EQ(WLBRCM_EFAILED, __qvWlanSystemEx("caller", 1, "false"));
    EXPECT_EQ(WLBRCM_EINVAL, __qvWlanSystemEx("caller", 1, nullptr));
    EXPECT_EQ(0, __qvWlanCmdExec("caller", 1, "wl0", "nreqd 1"));
    EXPECT_EQ((Lines{"run true", "run false", "wlctl wlctl -i wl0 nreqd 1"}), platform.journal);
    EXPECT_EQ((Lines{"cmd = true\n", "cmd = false\n", "cmd = wlctl -i wl0 nreqd 1\n"}), platform.logged(LOG_DEBUG));

    platform.forget();
    const std::string longest(255 - strlen("wlctl -i wl0 "), 'x');
    EXPECT_EQ(0, __qvWlanCmdExec("caller", 1, "wl0", longest.c_str()));
    EXPECT_EQ(0, __qvWlanCmdExec("caller", 1, "wl0", (longest + "x").c_str()));
    EXPECT_EQ(1U, platform.journal.size());
    EXPECT_EQ(1U, platform.logged(LOG_ERR).size());
}
