// Channel and regulatory setters, and the lists read back from the driver.
#include "tests/unit/fake_platform.h"

class ParamChannel : public PlatformTest {
  protected:
    Lines done() {
        Lines lines = platform.journal;
        platform.forget();
        return lines;
    }

    // The list that the driver's listing gives, with what the call wrote on stdout behind it.
    std::string listed(const char *request, const std::string &listing, const char *country = "DE/3") {
        platform.answer("wlctl -i wl0 chanspecs", listing);
        char list[WLBRCM_CHANNEL_LIST_SIZE] = "old";
        const std::string output =
            printed([&] { EXPECT_EQ(0, qvWlanChannelList(Arg("wl0", request, country, 0, list))); });
        return list + output;
    }
};

TEST_F(ParamChannel, DescriptorDecidesChannelAndBandwidth) {
    const struct {
        const char *descriptor;
        int nmode, vhtmode, only5G, bandwidth;
        const char *writes; // '|' is the driver command
    } rows[] = {
        {"5G,80,1,0,0,-1,-1,0,9", -1, -1, 0, 80,
         "nband=1 reg_mode=off bw_cap=7 nmode=-1 vhtmode=-1 | channel=36 chanspec=36/80"},
        {"5G,80,1,0,0,-1,-1,0,3", -1, 0, 1, 40,
         "nband=1 reg_mode=off bw_cap=7 nmode=-1 vhtmode=0 | channel=36 chanspec=36u"},
        {"2.4G,40,-1,0,0,-1,-1,0,2", 0, -1, 0, 20,
         "nband=2 reg_mode=off bw_cap=3 vht_features=-1 nmode=0 vhtmode=-1 | channel=36 chanspec=36"},
        {"2.4G,40,0,0,2,-1,-1,0,4", -1, -1, 0, 40,
         "nband=2 reg_mode=d bw_cap=3 vht_features=3 nmode=-1 vhtmode=-1 | channel=36 chanspec=36l"},
        {"2.4G,20,1,0,0,-1,-1,0,3", 1, 1, 1, 20,
         "nband=2 reg_mode=off bw_cap=1 vht_features=3 nmode=-1 vhtmode=-1 | channel=36 chanspec=36"},
        {"5G,20,1,0,1", -1, -1, 0, 20,
         "nband=1 dfs_preism=-1 dfs_postism=-1 tpc_db=0 reg_mode=h bw_cap=1 nmode=-1 vhtmode=-1 | channel=36 "
         "chanspec=36"},
        {"5G,20,1,1,1,60,70,3,9", -1, -1, 0, 20,
         "nband=1 dfs_preism=60 dfs_postism=70 tpc_db=3 reg_mode=h bw_cap=1 nmode=-1 vhtmode=-1 | channel=0 "
         "chanspec=0"},
        {",80,1,1,1", -1, -1, 0, 20, "nband=-1 reg_mode=off bw_cap=1 nmode=-1 vhtmode=-1 | channel=36 chanspec=36"},
        {"60GHz band,40,1", -1, -1, 0, 40,
         "nband=-1 reg_mode=off bw_cap=3 nmode=-1 vhtmode=-1 | channel=36 chanspec=36u"},
        {"5G,x,1,1", -1, -1, 0, 20, "nband=1 reg_mode=off bw_cap=1 nmode=-1 vhtmode=-1 | channel=36 chanspec=36"},
    };
    brcm_nreqd = 1;
    for (const auto &row : rows) {
        brcm_nmode = row.nmode;
        brcm_vhtmode = row.vhtmode;
        nonly5G = row.only5G;
        EXPECT_EQ(0, qvWlanSetChannel(Arg("wl0", "36", row.descriptor)));
        std::string writes;
        for (const std::string &entry : done()) {
            const bool isCommand = entry == "wlctl wlctl -i wl0 nreqd 1";
            EXPECT_TRUE(isCommand || entry.compare(0, 8, "set wl0_") == 0) << entry;
            writes += (writes.empty() ? "" : " ") + (isCommand ? "|" : entry.substr(8));
        }
        EXPECT_EQ(row.writes, writes) << row.descriptor;
        EXPECT_EQ(row.bandwidth, brcm_bw) << row.descriptor;
    }
    EXPECT_EQ(0, qvWlanSetChannel(Arg("wl0", "36", "5G,80", 1)));
    EXPECT_EQ(Lines{}, done());
}

TEST_F(ParamChannel, MissingPartsOfTheArgument) {
    char prefix[] = "wl0", automatic[] = "5G,20,1,1", fixed[] = "5G,20,1,0";
    WlanParamArg arg = {prefix, nullptr, automatic, nullptr, 0};
    EXPECT_EQ(0, qvWlanSetChannel(&arg)); // the channel is not read
    platform.forget();
    arg.aux = fixed;
    EXPECT_EQ(-14, qvWlanSetChannel(&arg));
    arg.aux = nullptr;
    for (const auto setter : {qvWlanSetChannel, qvWlanSetPerBandBw, qvWlanGetValidChannel})
        EXPECT_EQ(-14, setter(&arg));
    EXPECT_EQ(-14, qvWlanSetChannel(nullptr));
    qvWlanUpdateAutoChannel(nullptr);
    EXPECT_EQ(Lines{}, done());
}

TEST_F(ParamChannel, ListKeepsTheEntriesAskedFor) {
    const std::string wide = "36l (0xd826)\n40u (0xd826)\n44 l (0xd82e)\n48 u (0xd82e)\n";
    std::string binary("36 (0xd024)\n\0\1\xff 40", 18);
    const struct {
        const char *request;
        std::string listing, list; // with what is printed
    } rows[] = {
        {"5GHz,20,upper", "36 (0xd024)\n40 (0xd028)\n", "36,40"},
        {"5GHz,40,lower", wide, "36,44"},
        {"5GHz,40", wide, "40,48"},
        {"5GHz,40,both", wide, "36,40,44,48"},
        {"5GHz,80,lower", "36/80 (0xe02a)\n40/80 (0xe12a)\n", "36,40"},
        {"5GHz,10,upper", "36nu\n40nl\n", "36,40"},
        {"5GHz,160,both", "36/160 (0xe832)\n40/160 (0xe932)\n", "unknown bandwidth : 160\n"},
        {"5GHz,20,upper", "", ""},
        {"5GHz,20,upper", "36 (0xd024)\n40 ", "36"},                           // cut off
        {"5GHz,20,upper", "36 (0xd024)\nnot up\n40 (0xd028)\n", "36"},         // an error in between
        {"5GHz,20,upper", "36 " + std::string(5000, 'x') + "\n40 y", "36,40"}, // a chanspec of any length
        {"5GHz,80,upper", "36/80 (0xe02a)\n40/x (0xe12a)\n", "36"},
        {"5GHz,20,upper", binary, "36"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(row.list, listed(row.request, row.listing)) << row.request << ' ' << row.listing;
}

TEST_F(ParamChannel, ListAsksInTheCountry) {
    const struct {
        const char *request, *country, *wanted;
        bool valid;
    } rows[] = {{"5GHz,80,lower", "DE/3", "-b 5 -w 80", true},
                {"2.4GHz,40,lower", "", "-b 2 -w 40", true},
                {",80,lower", "AZaz09/#._-", "-b 2 -w 20", true},
                {"5GHz", "DE up", "-b 5 -w 20", false},
                {"5GHz", "../US", "-b 5 -w 20", false},
                {"5GHz", "US/..", "-b 5 -w 20", false},
                {"5GHz", "-1", "-b 5 -w 20", false}};
    for (const auto &row : rows) {
        platform.forget();
        listed(row.request, "", row.country);
        Lines effect = {std::string("wlctl wlctl -i wl0 country ") + row.country,
                        std::string("run wlctl -i wl0 chanspecs ") + row.wanted + " > /tmp/wl0chspeclist"};
        effect.erase(effect.begin(), effect.begin() + (row.valid ? 0 : 1));
        EXPECT_EQ(effect, platform.journal) << row.country;
        EXPECT_EQ(row.valid ? Lines{} : Lines{"invalid country \"" + std::string(row.country) + "\".\n"},
                  platform.logged(WLBRCM_LOG_ERR));
    }
    platform.loseOutput("wlctl -i wl0 chanspecs");
    char list[WLBRCM_CHANNEL_LIST_SIZE] = "old";
    EXPECT_EQ("can't open file",
              printed([&] { EXPECT_EQ(0, qvWlanChannelList(Arg("wl0", "5GHz,20,upper", "DE", 0, list))); }));
    EXPECT_STREQ("", list);
}

// A list that would not fit ends with the last whole number that does.
TEST_F(ParamChannel, ListEndsAtItsRoom) {
    std::string listing, expected;
    for (int channel = 100; channel < 900; ++channel) {
        listing += std::to_string(channel) + " (0xd024)\n";
        const std::string entry = (expected.empty() ? "" : ",") + std::to_string(channel);
        if (expected.size() + entry.size() < WLBRCM_CHANNEL_LIST_SIZE)
            expected += entry;
    }
    EXPECT_EQ(1023U, expected.size());
    EXPECT_EQ(expected, listed("5GHz,20,upper", listing));
    EXPECT_EQ("1" + expected.substr(3) + ",9",
              listed("5GHz,20,upper", "1 x\n" + listing.substr(13, 255UL * 13) + "9 x\n"));
}

TEST_F(ParamChannel, ValidChannelsOfTheDriver) {
    char list[WLBRCM_CHANNEL_LIST_SIZE] = "old";
    Arg arg("wl0", "", "", 0, list);
    platform.answer("wlctl -i wl0 channels", "36 40\n44 x 48\n");
    EXPECT_EQ(0, qvWlanGetValidChannel(arg));
    EXPECT_STREQ("36,40,44", list);
    EXPECT_EQ(Lines{"run wlctl -i wl0 channels > /var/wl0chlist"}, done());
    platform.answer("wlctl -i wl0 channels", "");
    EXPECT_EQ(0, qvWlanGetValidChannel(arg));
    EXPECT_STREQ("", list);
    platform.loseOutput("wlctl -i wl0 channels");
    EXPECT_EQ("Can't open /var/wl0chlist\n", printed([&] { EXPECT_EQ(-5, qvWlanGetValidChannel(arg)); }));
}

TEST_F(ParamChannel, ChannelInAList) {
    const std::string far = std::string(253, '1') + ",36"; // the 6 is the 256th character
    const struct {
        int channel;
        std::string list;
        int found;
    } rows[] = {{40, "36,40", 1}, {4, "36,40", 0}, {36, "", 0}, {44, "36,,44x", 1}, {36, far, 0}, {3, far, 1}};
    for (const auto &row : rows)
        EXPECT_EQ(row.found, qvWlanCheckChannelSideband(row.channel, row.list.c_str())) << row.channel << row.list;
}

TEST_F(ParamChannel, FixedWideChannelFallsBackToAutomatic) {
    const struct {
        int band, sideband, channel, automatic;
        const char *listing; // null when none is asked for
    } rows[] = {{1, 1, 40, 0, "-b 5 -w 40"},
                {1, -1, 40, 1, "-b 5 -w 40"},
                {2, 1, 36, 1, "-b 2 -w 40"},
                {1, 0, 1, 0, nullptr},
                {1, 2, 1, 0, nullptr}};
    platform.answer("wlctl -i wl0 chanspecs", "36l (0xd826)\n40u (0xd826)\n");
    for (const auto &row : rows) {
        WlRadioCfg radio = {};
        strcpy(radio.ifName, "wl0");
        memset(radio.countryCode, 'A', sizeof radio.countryCode); // not terminated
        radio.band = row.band;
        radio.sideband = static_cast<int8_t>(row.sideband);
        radio.channel = static_cast<uint16_t>(row.channel);
        qvWlanUpdateAutoChannel(&radio);
        EXPECT_EQ(row.automatic, radio.autoChannel);
        EXPECT_TRUE(row.channel == radio.channel && row.sideband == radio.sideband);
        Lines expected;
        if (row.listing != nullptr)
            expected = {"wlctl wlctl -i wl0 country AAAAAAAAAAA",
                        std::string("run wlctl -i wl0 chanspecs ") + row.listing + " > /tmp/wl0chspeclist"};
        EXPECT_EQ(expected, done());
    }
}

TEST_F(ParamChannel, SelectionDaemonSettings) {
    EXPECT_EQ("qvWlanSetAutoChPolicy: 0\nqvWlanSetAutoChPolicy: acs_cli -i wl1 acs_policy 0 &\n",
              printed([] { EXPECT_EQ(0, qvWlanSetAutoChPolicy(Arg("wl1", "0"))); }));
    EXPECT_EQ(Lines{"run acs_cli -i wl1 acs_policy 0 &"}, done());
    EXPECT_EQ("qvWlanSetAutoChPolicy: -1\n", printed([] { EXPECT_EQ(-14, qvWlanSetAutoChPolicy(Arg("wl1", "-1"))); }));
    EXPECT_EQ(Lines{}, done());
    EXPECT_EQ(0, qvWlanAutoChannelSkip(Arg("wl0", std::string(101, '7'))));
    EXPECT_EQ(0, qvWlanAutoChannelSkip(Arg("wl0", "")));
    EXPECT_EQ(0, qvWlanSetPerBandBw(Arg("wl0", "3", "7")));
    EXPECT_EQ(
        (Lines{"set wl0_acs_autoch_skip=" + std::string(100, '7'), "unset wl0_acs_autoch_skip", "set wl0_bw_cap=7"}),
        done());
}
