// The driver model: what wlconf makes of the store, and who may join.
#include "platform/sim/driver/event_message.h"
#include "platform/sim/driver/scenario.h"
#include "platform/sim/driver/sim_driver.h"
#include "platform/sim/nvram/nvram_store.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>

namespace wlsim {
namespace {

struct FakeProcesses : Processes {
    bool running(const std::string &name) const override { return names.count(name) != 0; }
    std::set<std::string> names = {"nas", "eapd"};
};

struct RecordingEvents : EventSink {
    void send(const std::string &datagram) override { sent.push_back(datagram); }
    std::vector<std::string> sent;
};

struct HandClock : Clock {
    int64_t nowMs() const override { return now; }
    int64_t now = 1000;
};

std::string makeDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "wlsim-test-XXXXXX").string();
    return mkdtemp(pattern.data());
}

/** A driver of the default hardware, and a store with one WPA2 network and one open guest network on wl0. */
class SimDriver : public ::testing::Test {
  protected:
    SimDriver() {
        setenv("WLSIM_NVRAM", (directory + "/nvram").c_str(), 1);
        store({"wl0_radio=1", "wl0_country_code=DE", "wl0_country_rev=3", "wl0_bw_cap=7", "wl0_chanspec=36/80",
               "wl0_vifs=wl0.1", "wl0_bss_enabled=1", "wl0_ssid=Home Net", "wl0_akm=psk2", "wl0_crypto=aes",
               "wl0_wpa_psk=correct horse", "wl0.1_bss_enabled=1", "wl0.1_ssid=guest", "lan_ifnames=eth0 wl0",
               "mevent_enable=1"});
        EXPECT_EQ(driver.start(), "");
    }
    ~SimDriver() override { std::filesystem::remove_all(directory); }

    static void store(const std::vector<std::string> &pairs) {
        for (const std::string &pair : pairs) {
            size_t equal = pair.find('=');
            ASSERT_EQ(nvram_set(pair.substr(0, equal).c_str(), pair.c_str() + equal + 1), 0);
        }
    }
    /** Runs a command line; double quotes keep blanks together. */
    Reply run(const std::string &line) {
        std::vector<std::string> words;
        for (size_t at = 0; at < line.size();) {
            bool quoted = line[at] == '"';
            size_t end = std::min(line.find(quoted ? '"' : ' ', at + 1), line.size());
            words.push_back(line.substr(at + quoted, end - at - quoted));
            at = line.find_first_not_of(' ', end + quoted);
        }
        return driver.run(words);
    }
    /** Brings the radio up with one variable changed; the store is as before after the check. */
    template <typename Check> void bringUpWith(const std::string &setting, Check check) {
        std::string key = setting.substr(0, setting.find('='));
        const char *before = nvram_get(key.c_str());
        std::string old = before ? before : "";
        store({setting});
        bringUp();
        check();
        ASSERT_EQ(before ? nvram_set(key.c_str(), old.c_str()) : nvram_unset(key.c_str()), 0);
    }
    void bringUp() {
        run("wlconf wl0 down");
        configured = run("wlconf wl0 up").status + run("wlconf wl0 security").status + run("wlconf wl0 start").status;
        for (auto &[name, interface] : net.interfaces) {
            interface.up = true;
        }
    }
    /** "" when joined, else the reason. */
    std::string join(const std::string &arguments) {
        Reply reply = run("wlsim join " + arguments);
        return reply.status == 0 ? "" : reply.err.substr(0, reply.err.find_last_not_of('\n') + 1).substr(7);
    }
    std::string output(const std::string &line) { return run(line).out; }
    unsigned eventNumber(size_t index) { return static_cast<unsigned char>(events.sent.at(index)[31]); }

    std::string directory = makeDirectory();
    MemoryNet net;
    FakeProcesses processes;
    RecordingEvents events;
    HandClock clock;
    Driver driver{defaultModel(), {net, processes, events, clock}};
    int configured = 0;
};

constexpr char kGood[] = "wl0 --passphrase \"correct horse\"";

TEST_F(SimDriver, JoinIsRefusedForTheReasonThatHolds) {
    const struct {
        const char *setting, *arguments, *reason;
    } cases[] = {
        {"wl0_ssid=Home Net", "--ssid \"home net\" --passphrase \"correct horse\"", "no such network"},
        {"wl0_ssid=Home Net", "--ssid \"Home Net\" --band 2 --passphrase \"correct horse\"", "no such network"},
        {"wl0_ssid=Home Net", "wl0 --passphrase \"Correct horse\"", "wrong passphrase"},
        {"wl0_ssid=Home Net", "wl0", "security mismatch: the BSS is wpa2psk aes"},
        {"wl0_ssid=Home Net", "wl0 --passphrase \"correct horse\" --cipher tkip",
         "security mismatch: the BSS does not offer tkip"},
        {"wl0_crypto=", kGood, "security mismatch: akm without crypto"},
        {"wl0_wpa_psk=seven77", "wl0 --passphrase seven77", "security mismatch: no usable wpa_psk"},
        {"wl0_akm=psk3", kGood, "security mismatch: unknown akm psk3"},
        {"wl0_akm=", kGood, "security mismatch: the BSS is open"},
        {"wl0_auth=1", kGood, "security mismatch: shared-key authentication with akm"},
        {"wl0_wep=enabled", kGood, "security mismatch: WEP together with akm"},
        {"wl0.1_wep=enabled", "wl0.1 --security wep --passphrase abcde",
         "security mismatch: WEP without a usable default key"},
        {"wl0_mfp=2", "wl0 --passphrase \"correct horse\" --no-pmf", "security mismatch: frame protection is required"},
        {"wl0_bss_enabled=0", kGood, "BSS is down: not started"},
        {"lan_ifnames=eth0 wl0.1 wl00", kGood, "authenticator not running: no LAN group lists wl0"},
        {"wl0_maclist=02:00:00:00:00:01", kGood, ""},
        {"wl0_nmode=-1", "wl0.1 --phy b", "no common 802.11 mode: the station is b, the radio speaks ac n a at 5 GHz"},
        {"wl0_nmode=-1", "wl0.1 --phy g", "no common 802.11 mode: the station is g, the radio speaks ac n a at 5 GHz"},
        {"wl0_nmode=-1", "wl0.1 --phy n", ""},
    };
    for (const auto &one : cases) {
        bringUpWith(one.setting,
                    [&] { EXPECT_EQ(join(one.arguments), one.reason) << one.setting << " " << one.arguments; });
    }
}

TEST_F(SimDriver, StationLimitsCountOthersOnly) {
    store({"wl0.1_bss_maxassoc=2", "wl0_maxassoc=3"});
    bringUp();
    EXPECT_EQ(join("wl0.1 --mac 02:00:00:00:00:01 --count 2"), "");
    EXPECT_EQ(join("wl0.1 --mac 02:00:00:00:00:02"), "") << "a station that is in already may come again";
    EXPECT_EQ(join(kGood + std::string(" --mac 02:00:00:00:00:04")), "");
    EXPECT_EQ(join(kGood + std::string(" --mac 02:00:00:00:00:05")), "station limit reached");
}

TEST_F(SimDriver, InvalidRadioConfigurationStaysDown) {
    for (const char *setting :
         {"wl0_chanspec=36/160", "wl0_chanspec=149/80", "wl0_chanspec=40l", "wl0_nband=2", "wl0_country_code=XX",
          "wl0_bw_cap=1", "wl0_nmode=0", "wl0_bcn=19", "wl0_frameburst=1", "wl0_reg_mode=x", "wl0_chanspec=6"}) {
        bringUpWith(setting, [&] {
            EXPECT_NE(configured, 0) << setting;
            EXPECT_EQ(output("wlctl -i wl0 isup"), "0\n") << setting;
            EXPECT_EQ(join(kGood), "BSS is down: the radio is down") << setting;
        });
    }
}

TEST_F(SimDriver, WlconfWantsItsOrder) {
    EXPECT_NE(run("wlconf wl0 start").status, 0);
    EXPECT_NE(run("wlconf wl0 security").status, 0);
    EXPECT_EQ(run("wlconf wl0 up").status, 0);
    EXPECT_NE(run("wlconf wl0 start").status, 0);
    EXPECT_EQ(run("wlconf wl0 security").status, 0);
    EXPECT_EQ(run("wlconf wl0 start").status, 0);
    EXPECT_NE(run("wlconf wl0.1 up").status, 0) << "a BSS is no radio";
    EXPECT_NE(run("wlconf wl0 sideways").status, 0);
    store({"wl0_radio=0"});
    EXPECT_EQ(run("wlconf wl0 up").status, 0);
    EXPECT_EQ(output("wlctl -i wl0 isup"), "0\n") << "switched off is no error";
}

TEST_F(SimDriver, VirtualInterfacesFollowTheList) {
    EXPECT_NE(run("wlctl -i wl0.1 macmode 1").status, 0);
    EXPECT_EQ(run("wlctl -i wl0 ssid -C 1 guest").status, 0) << "naming a BSS creates its interface";
    EXPECT_EQ(run("wlctl -i wl0 ssid -C 2 other").status, 0);
    EXPECT_EQ(run("wlctl -i wl0.1 macmode 1").status, 0);
    bringUp();
    EXPECT_TRUE(net.exists("wl0.1"));
    EXPECT_FALSE(net.exists("wl0.2"));
    run("wlconf wl0 down");
    EXPECT_TRUE(net.exists("wl0.1")) << "down leaves the interfaces for their bridges";
    store({"wl0_vifs=wl0.2 wl1.1 wl0.16"});
    EXPECT_NE(run("wlconf wl0 up").status, 0) << "wl1.1 and wl0.16 are not this radio's";
    EXPECT_FALSE(net.exists("wl0.1"));
    EXPECT_TRUE(net.exists("wl0.2"));
    EXPECT_NE(run("wlctl -i wl0.1 isup").status, 0);
}

TEST_F(SimDriver, TwoBssesCannotShareAnAddress) {
    store({"wl0.1_hwaddr=00:10:18:AA:BB:C0"});
    bringUp();
    EXPECT_NE(configured, 0);
    EXPECT_EQ(join("wl0.1"), "BSS is down: not started");
}

TEST_F(SimDriver, StationsLeaveWithTheirInterface) {
    bringUp();
    ASSERT_EQ(join(kGood), "");
    net.interfaces["wl0"].up = false;
    EXPECT_EQ(output("wlctl -i wl0 assoclist"), "");
    EXPECT_EQ(join(kGood), "BSS is down: its interface is down");
}

TEST_F(SimDriver, EventsTellWhatStationsDid) {
    bringUp();
    ASSERT_EQ(join("wl0.1"), "");
    EXPECT_EQ(run("wlctl -i wl0.1 deauthenticate 02:00:00:00:00:01").status, 0);
    EXPECT_NE(run("wlctl -i wl0.1 deauthenticate 02:00:00:00:00:01").status, 0) << "it is gone";
    ASSERT_EQ(events.sent.size(), 3u);
    EXPECT_EQ(eventNumber(0), 4u);
    EXPECT_EQ(eventNumber(1), 8u);
    EXPECT_EQ(eventNumber(2), 6u);
    const std::string &message = events.sent[1];
    EXPECT_EQ(message.substr(22, 2), std::string("\0\1", 2));
    EXPECT_EQ(message.substr(48, 6), std::string("\2\0\0\0\0\1", 6));
    EXPECT_EQ(message.substr(54, 16), "wl0.1" + std::string(11, '\0'));
    processes.names.erase("eapd");
    join("wl0.1");
    EXPECT_EQ(events.sent.size(), 3u) << "nobody passes events on without the event daemon";
}

TEST_F(SimDriver, AnnouncedChannelSwitchTakesItsTime) {
    bringUp();
    EXPECT_EQ(configured, 0);
    EXPECT_EQ(output("wlctl -i wl0 country"), "DE (DE/3) GERMANY\n");
    EXPECT_EQ(run("wl -i wl0 csa 0 20 44/80").status, 0);
    clock.now += 2047;
    EXPECT_EQ(output("wlctl -i wl0 chanspec"), "36/80 (0xe02a)\n");
    clock.now += 1;
    EXPECT_EQ(output("wlctl -i wl0 chanspec"), "44/80 (0xe22a)\n");
    EXPECT_NE(run("wl -i wl0 csa 0 20 149/80").status, 0) << "not allowed in this country";
}

TEST_F(SimDriver, UnknownWordsAreErrors) {
    for (const char *line :
         {"wlctl -i wl0 frobnicate", "wlctl -i wl7 isup", "wlctl wl0 isup", "wlctl -i wl0 isup now",
          "wlctl -i wl0 ssid -C 16 x", "wlctl -i wl0 pwr_percent 0", "wlctl -i wl0 pwr_percent 101",
          "wlctl -i wl0 interference_override 5", "wlctl -i wl0 mac 02:00:00:00:00:zz", "wlctl -i wl0 macmode 3",
          "dhdctl -i wl1 version", "wlsim jump", "wlsim join wl0 --colour red", "wl -i wl0.1 bss up",
          "wlctl -i wl0 chanspecs -b 2", "wlctl -i wl0 scanresults"}) {
        Reply reply = run(line);
        EXPECT_NE(reply.status, 0) << line;
        EXPECT_FALSE(reply.err.empty()) << line;
    }
}

TEST_F(SimDriver, FaultsSpoilSoManyAnswers) {
    size_t whole = output("wlctl -i wl0 revinfo").size();
    EXPECT_EQ(run("wlsim fail revinfo 2 --mode cut").status, 0);
    EXPECT_EQ(run("wlsim fail \"wlctl -i wl1 *\"").status, 0);
    EXPECT_EQ(output("wlctl -i wl0 revinfo").size(), whole / 2);
    EXPECT_NE(run("wlctl -i wl1 isup").status, 0);
    EXPECT_EQ(run("wlctl -i wl1 isup").status, 0);
    EXPECT_EQ(output("wlctl -i wl0 revinfo").size(), whole / 2);
    EXPECT_EQ(output("wlctl -i wl0 revinfo").size(), whole);
    EXPECT_EQ(run("wlsim fail revinfo --mode sing").status, 2);
}

TEST_F(SimDriver, FaultsThatCannotHappenAreRefused) {
    for (const char *pattern : {"wlctl", "wl *", "wlctl * chanspec 36/80", "*sta_info*", "wlconf wl0 up", "dhdctl*",
                                "acs_cli -i wl0 acs_policy 1", "acs_cli*", "chanspec 36/80", "wl0.1"}) {
        EXPECT_EQ(run(std::string("wlsim fail \"") + pattern + "\"").status, 0) << pattern;
    }
    for (const char *pattern : {"nvram", "nvram set *", "brctl*", "ifconfig", "wlsim", "wlconf wl0 sideways",
                                "wlctl wl0", "dhdctl -i wl0 isup", "acs_cli -i wl0 scan", "wlctl -i wl9 isup"}) {
        Reply reply = run(std::string("wlsim fail \"") + pattern + "\"");
        EXPECT_EQ(reply.status, 1) << pattern;
        EXPECT_NE(reply.err.find("those of wlctl, wl, dhdctl, wlconf and acs_cli can"), std::string::npos) << reply.err;
    }
}

TEST(SimScenario, RefusesWhatItDoesNotKnow) {
    const struct {
        const char *text, *error;
    } cases[] = {
        {R"({"radios":[{"name":"wl0","txchian":15}]})", "scenario.radios[0]: unknown key 'txchian'"},
        {R"({"radios":[{"name":"wl0","txchain":16}]})", "scenario.radios[0].txchain: 16 is not within 1..15"},
        {R"({"radios":[{"band":2}]})", "scenario.radios[0]: a radio has a name"},
        {R"({"radios":{}})", "scenario.radios: an array is expected"},
        {R"({"radios":[{"name":"wl0","counters":{"txframes":1}}]})",
         "scenario.radios[0].counters: 'txframes' is not one of: txframe txbyte txretrans txerror rxframe rxbyte "
         "rxerror rxcrc txnoassoc rxbadda txphyerr rxnobuf"},
        {R"({"bridges":[{"name":"br0","ports":["a b"]}]})",
         "scenario.bridges[0].ports[0]: 'a b' is no name of 1 to 15 characters"},
        {R"({"threads":["sixteen-letters-"]})",
         "scenario.threads[0]: 'sixteen-letters-' is no name of 1 to 15 characters"},
        {R"({"faults":[{"match":"brctl"}]})", "scenario.faults[0].match: no command that can fail fits 'brctl'; those "
                                              "of wlctl, wl, dhdctl, wlconf and acs_cli "
                                              "can"},
        {R"({"faults":[{"match":"x","mode":"odd"}]})",
         "scenario.faults[0].mode: 'odd' is not one of: fail empty garbage cut slow"},
        {R"({"radios":[{"name":"wl1","band":2,"neighbours":[{"chanspec":"36"}]}]})",
         "scenario.radios[0].neighbours[0].chanspec: no channel of this band"},
    };
    for (const auto &one : cases) {
        Model model;
        std::string error;
        EXPECT_FALSE(readScenario(one.text, &model, &error)) << one.text;
        EXPECT_EQ(error, one.error);
    }
    Model none;
    std::string error;
    EXPECT_TRUE(readScenario(R"({"radios":[]} // nothing plugged in)", &none, &error)) << error;
    EXPECT_TRUE(none.radios.empty());
}

} // namespace
} // namespace wlsim
