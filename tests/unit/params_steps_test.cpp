// The setters with steps of their own: wireless mode, network name, security, rate, protection, coexistence.
#include "tests/unit/fake_platform.h"

// Before any test or fixture has touched it.
static const std::vector<int> kInitialState = {brcm_gmode, brcm_nmode, brcm_vhtmode, brcm_nreqd, nonly5G,
                                               brcm_bw,    mcs_index,  wepkeyid[0],  wepkeyid[3]};

class ParamSteps : public PlatformTest {
  protected:
    Lines done() {
        Lines lines = platform.journal;
        platform.forget();
        return lines;
    }
};

TEST_F(ParamSteps, RadioModeStateStartsAsDocumented) {
    EXPECT_EQ((std::vector<int>{0, -1, -1, 0, 0, 20, -1, 1, 1}), kInitialState);
}

TEST_F(ParamSteps, WirelessModesSetTheRadioModeState) {
    constexpr int kKeep = 5;
    const struct {
        const char *value, *band, *message;
        int gmode, nmode, vhtmode, nreqd, only5G;
    } rows[] = {
        {"0", "5G", "802.11 G only\n", 4, 0, kKeep, 0, 0},   {"1", "", "802.11 B only\n", 0, 0, kKeep, 0, 0},
        {"2", "", "802.11 B/G mixed\n", 1, 0, kKeep, 0, 0},  {"3", "5G", "802.11 N only (5G)\n", 1, -1, 0, 1, 1},
        {"3", "2.4G", "802.11 N only\n", 1, -1, 0, 1, 0},    {"4", "5G", "802.11 B/G/N mixed\n", 1, -1, kKeep, 0, 0},
        {"5", "", "802.11 A only\n", 1, 0, 0, 0, 0},         {"6", "", "802.11 A/N mixed\n", 1, -1, 0, 0, 0},
        {"7", "", "802.11 AC only\n", 1, -1, -1, 0, 0},      {"8", "5G", "802.11 N/AC mixed\n", 1, -1, -1, 1, 0},
        {"9", "", "802.11 A/N/AC mixed\n", 1, -1, -1, 0, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.message);
        platform.forget();
        brcm_gmode = brcm_nmode = brcm_vhtmode = brcm_nreqd = nonly5G = kKeep;
        EXPECT_EQ(0, qvWlanSetWirelessMode(Arg("wl0", row.value, row.band)));
        EXPECT_EQ(Lines{row.message}, platform.logged(WLBRCM_LOG_INFO));
        EXPECT_EQ((std::vector<int>{row.gmode, row.nmode, row.vhtmode, row.nreqd, row.only5G}),
                  (std::vector<int>{brcm_gmode, brcm_nmode, brcm_vhtmode, brcm_nreqd, nonly5G}));
        EXPECT_EQ(Lines{}, done());
    }
    for (const char *unknown : {"10", "-1", "2147483648"}) {
        brcm_gmode = brcm_nmode = brcm_vhtmode = brcm_nreqd = nonly5G = kKeep;
        EXPECT_EQ(-14, qvWlanSetWirelessMode(Arg("wl0", unknown)));
        EXPECT_EQ(Lines{"Error 802.11 mode\n"}, platform.logged(WLBRCM_LOG_ERR));
        EXPECT_EQ((std::vector<int>{kKeep, kKeep, kKeep, 0, 0}),
                  (std::vector<int>{brcm_gmode, brcm_nmode, brcm_vhtmode, brcm_nreqd, nonly5G}));
        platform.forget();
    }
}

TEST_F(ParamSteps, SsidIsQuotedByteByByte) {
    std::string longest(32, '"'), quoted;
    for (int i = 0; i < 32; ++i)
        quoted += "'\"'";
    const struct {
        std::string ssid, write, quoted;
    } rows[] = {
        {"a'b", "set wl0.1_ssid=a'b", "'a'\"'\"'b'"},
        {"a ", "set wl0.1_ssid=a ", "'a'' '"},
        {"", "unset wl0.1_ssid", ""},
        {"\xc3\xbc\n", "set wl0.1_ssid=\xc3\xbc\n", "'\xc3''\xbc''\n'"},
        {longest, "set wl0.1_ssid=" + longest, quoted},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(0, qvWlanSetSSID(Arg("wl0.1", row.ssid, "wl0", 1)));
        EXPECT_EQ((Lines{row.write, "wlctl wlctl -i wl0 ssid -C 1 " + row.quoted}), done());
    }
    EXPECT_EQ(-14, qvWlanSetSSID(Arg("wl0.1", longest + "x", "wl0", 1)));
    EXPECT_EQ(Lines{}, done());
}

TEST_F(ParamSteps, ApMacIsCopiedWithinItsRoom) {
    char mac[19];
    platform.nvram["wl0_hwaddr"] = "00:11:22:33:44:55";
    platform.nvram["wl1_hwaddr"] = "00:11:22:33:44:55:66:77";
    memset(mac, 'x', sizeof mac);
    EXPECT_EQ(0, qvWlanGetApMAC(Arg("wl0", "", "", 0, mac)));
    EXPECT_STREQ("00:11:22:33:44:55", mac);
    EXPECT_EQ(0, qvWlanGetApMAC(Arg("wl1", "", "", 0, mac)));
    EXPECT_EQ('x', mac[18]);
    EXPECT_EQ(0, qvWlanGetApMAC(Arg("wl2", "", "", 0, mac)));
    EXPECT_STREQ("", mac);
    EXPECT_EQ(-14, qvWlanGetApMAC(Arg("wl0")));
}

TEST_F(ParamSteps, AuthenticationModes) {
    const struct {
        const char *word;
        Lines effect;
    } rows[] = {
        {"wpa2psk", {"set wl0_akm=psk2", "set wl0_auth=0", "set wl0_auth_mode=none"}},
        {"wpa2", {"set wl0_akm=wpa2", "set wl0_auth=0", "set wl0_auth_mode=none"}},
        {"wpapskmix", {"set wl0_akm=psk psk2", "set wl0_auth=0", "set wl0_auth_mode=none"}},
        {"open", {"unset wl0_auth_mode", "unset wl0_akm", "set wl0_auth=0"}},
        {"shared", {"set wl0_auth=1"}},
        {"wepauto", {"set wl0_auth=2"}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(0, qvWlanSetAuthMode(Arg("wl0", row.word))) << row.word;
        EXPECT_EQ(row.effect, done());
    }
    EXPECT_EQ("Invalid Authentication Mode WPA2\nPossible Mode is : open\n\t\t   shared\n"
              "                   wepauto\n                   wpa2\n                   wpa2psk\n"
              "                   wpapskmix\n",
              printed([] { EXPECT_EQ(-14, qvWlanSetAuthMode(Arg("wl0", "WPA2"))); }));
    EXPECT_EQ(Lines{}, done());
}

TEST_F(ParamSteps, CiphersUnsetTheOldOneFirst) {
    const struct {
        const char *word, *crypto;
    } rows[] = {{"none", nullptr}, {"wep", nullptr}, {"aes", "aes"}, {"tkipaes", "tkip+aes"}};
    for (const auto &row : rows) {
        EXPECT_EQ(0, qvWlanSetEncrypType(Arg("wl0", row.word)));
        Lines effect = {"unset wl0_crypto"};
        if (row.crypto != nullptr)
            effect.push_back(std::string("set wl0_crypto=") + row.crypto);
        EXPECT_EQ(effect, done()) << row.word;
    }
    EXPECT_EQ("Invalid Encryption Type WEP\nPossible Type is : none\n                   wep\n"
              "                   aes\n                   tkipaes\n",
              printed([] { EXPECT_EQ(-14, qvWlanSetEncrypType(Arg("wl0", "WEP"))); }));
    EXPECT_EQ(Lines{"unset wl0_crypto"}, done());
}

TEST_F(ParamSteps, DefaultWepKeyIsKeptPerBss) {
    EXPECT_EQ(0, qvWlanSetDefaultKeyID(Arg("wl0.1", "3", "", 1)));
    EXPECT_EQ(0, qvWlanSetWepKey(Arg("wl0.1", "abcde", "", 1)));
    EXPECT_EQ(0, qvWlanSetDefaultKeyID(Arg("wl0.3", "4", "", 3)));
    EXPECT_EQ(0, qvWlanSetWepKey(Arg("wl0", "fghij", "", 0)));
    EXPECT_EQ((Lines{"set wl0.1_key=3", "set wl0.1_key3=abcde", "set wl0.3_key=4", "set wl0_key1=fghij"}), done());
    for (const char *bad : {"0", "5", "-1"})
        EXPECT_EQ(-14, qvWlanSetDefaultKeyID(Arg("wl0.1", bad, "", 1)));
    for (const int index : {-1, 4}) {
        EXPECT_EQ(-14, qvWlanSetDefaultKeyID(Arg("wl0", "2", "", index)));
        EXPECT_EQ(-14, qvWlanSetWepKey(Arg("wl0", "abcde", "", index)));
    }
    EXPECT_EQ((Lines{}), done());
    EXPECT_EQ((std::vector<int>{1, 3, 1, 4}), std::vector<int>(wepkeyid, wepkeyid + 4));
}

TEST_F(ParamSteps, RateFollowsTheFixedMcs) {
    const struct {
        const char *mcs;
        int nmode, bandwidth;
        Lines effect;
        int mcsAfter;
    } rows[] = {
        {"-1", -1, 20, {"set wl0_rate=0"}, -1},  {"0", -1, 40, {"set wl0_rate=54", "set wl0_nmcsidx=0"}, 0},
        {"7", 0, 20, {"set wl0_rate=54"}, 7},    {"32", -1, 20, {"set wl0_rate=54"}, -1},
        {"32", -1, 40, {"set wl0_rate=54"}, 32}, {"-2", -1, 40, {"set wl0_rate=54"}, -2},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.mcs);
        brcm_nmode = row.nmode;
        brcm_bw = row.bandwidth;
        EXPECT_EQ(0, qvWlanSetMCS(Arg("wl0", row.mcs)));
        EXPECT_EQ(0, qvWlanSetRate(Arg("wl0", "54")));
        EXPECT_EQ(row.effect, done());
        EXPECT_EQ(row.mcsAfter, mcs_index);
    }
}

TEST_F(ParamSteps, CoexistenceIsFor40MHzAt2GHz) {
    const struct {
        const char *value, *aux, *written;
    } rows[] = {{"1", "2,40", "1"}, {"0", "2,40", "0"}, {"1", "1,40", "0"}, {"1", "2,20", "0"},
                {"1", "", "0"},     {"1", "40", "1"},   {"1", "40,2", "1"}, {"1", "2,40,20", "0"}};
    for (const auto &row : rows) {
        EXPECT_EQ(0, qvWlanSetApCoex(Arg("wl0", row.value, row.aux)));
        EXPECT_EQ(Lines{std::string("set wl0_obss_coex=") + row.written}, done()) << row.aux;
    }
    for (const char *bad : {"2", "-1"})
        EXPECT_EQ(-14, qvWlanSetApCoex(Arg("wl0", bad, "2,40")));
    EXPECT_EQ(Lines{}, done());
}

TEST_F(ParamSteps, FlowCacheExcludesALimitedBss) {
    const std::string remove = "run ebtables -t broute -D SKIP_FCACHE -i wl0.2 -j SKIPLOG";
    EXPECT_EQ(0, qvWlanFlowCacheSetup(Arg("wl0.2", "0"), 1));
    EXPECT_EQ(0, qvWlanFlowCacheSetup(Arg("wl0.2", "1"), 1));
    EXPECT_EQ(0, qvWlanFlowCacheSetup(Arg("wl0.2", "0"), 0));
    EXPECT_EQ(
        (Lines{remove, "run ebtables -t broute -A SKIP_FCACHE -i wl0.2 -j SKIPLOG",
               "run wlctl -i wl0.2 fcache 0 > /dev/null", remove, "run wlctl -i wl0.2 fcache 1 > /dev/null", remove}),
        done());
}
