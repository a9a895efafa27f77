// What the host is given at start: tables, radios and their capabilities, on usual and odd systems.
#include "tests/unit/fake_platform.h"

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

#include "macfilter/pool.h"

namespace {

constexpr char kList[] = "/bin/cat /proc/net/dev | /bin/grep wl | awk '{ print substr($1, 0, length($1)-1); }'";

void closeHandler(WlEvtHandler *handler) {
    close(static_cast<int>(handler->sock));
    close(fenra_rpe_sock);
    fenra_rpe_sock = 0;
    free(handler);
}

// A host that keeps what it accepts, and can be told to refuse.
struct Host {
    std::unique_ptr<WlModuleOps, decltype(&free)> ops{nullptr, free};
    std::vector<std::unique_ptr<WlIntf, decltype(&free)>> radios;
    std::unique_ptr<WlEvtHandler, decltype(&closeHandler)> handler{nullptr, closeHandler};
    int answer = 0; // to registerIntf and registerEvtHandler
};
Host *host = nullptr;

int takeOps(WlModuleOps *ops, void *arg) {
    EXPECT_EQ(&host->answer, arg);
    host->ops.reset(ops);
    return 0;
}
int refuseOps(WlModuleOps *, void *) { return 1; }
int takeRadio(WlIntf *intf, const char *module) {
    EXPECT_STREQ("BRCM", module);
    if (host->answer == 0)
        host->radios.emplace_back(intf, free);
    return host->answer;
}
int takeHandler(const char *module, WlEvtHandler *handler) {
    EXPECT_STREQ("BRCM", module);
    if (host->answer == 0)
        host->handler.reset(handler);
    return host->answer;
}

} // namespace

class Discovery : public PlatformTest {
  protected:
    Discovery() { host = &host_; }
    ~Discovery() override { host = nullptr; }

    void addRadio(const std::string &name, const std::string &deviceId, const std::string &caps) {
        listing_ += name + "\n";
        platform.answer(kList, listing_);
        platform.answer("wlctl -i " + name + " revinfo", "vendorid 0x14e4\ndeviceid " + deviceId + "\ncorerev 0x41\n");
        platform.answer("wlctl -i " + name + " cap ", caps);
        platform.answer("wlctl -i " + name + " txchain", "15\n");
    }
    int init() {
        WlModuleHostOps ops = {takeOps, takeRadio, withHandler ? takeHandler : nullptr, brcm_print_fn};
        return wlModuleInit(&ops, &host_.answer);
    }

    Host host_;
    std::string listing_;
    bool withHandler = false;
};

TEST_F(Discovery, TwoRadiosInOrderWithTheirCapabilities) {
    addRadio("wl0", "0x43c5", "ap mbss16 wme ampdu amsdutx radio_pwrsave multi-user\nrxchain_pwrsave\n");
    listing_ += "wl0.1\n";
    addRadio("wl1", "0x43bb", "ap mbss4 wmf wds ampdu_tx\n");
    platform.addresses["wl0"] = {0x00, 0x10, 0x18, 0xaa, 0xbb, 0xce};
    platform.answer("dhdctl -i wl1 version", "", 1);
    ASSERT_EQ(0, init());
    EXPECT_EQ(2, act_wl_cnt);
    ASSERT_EQ(2U, host_.radios.size());

    const WlIntf &five = *host_.radios[0];
    EXPECT_STREQ("wl0", five.intfName);
    EXPECT_EQ(WLBRCM_BANDCODE_5G, five.bandCode);
    EXPECT_EQ(0, five.state);
    EXPECT_EQ(0, memcmp(five.macAddr, platform.addresses["wl0"].data(), 6));
    const WlCaps expected5 = {1, 1, 1, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1, {}, 6, {}, {}};
    EXPECT_EQ(0, memcmp(&five.caps, &expected5, offsetof(WlCaps, vifNames)));
    EXPECT_STREQ("wl0.1", five.caps.vifNames[0]);
    EXPECT_STREQ("wl0.5", five.caps.vifNames[4]);
    EXPECT_STREQ("", five.caps.vifNames[5]);

    const WlIntf &two = *host_.radios[1];
    EXPECT_EQ(WLBRCM_BANDCODE_2G, two.bandCode);
    const WlCaps expected2 = {0, 0, 1, 1, 0, 1, 0, 0, 1, 1, 1, 0, 0, 0, {}, 4, {}, {}};
    EXPECT_EQ(0, memcmp(&two.caps, &expected2, offsetof(WlCaps, vifNames)));
    EXPECT_STREQ("wl1.3", two.caps.vifNames[2]);
    EXPECT_STREQ("", two.caps.vifNames[3]);
}

TEST_F(Discovery, CommandsOfOneRadioInOrder) {
    addRadio("wl0", "0x43c5", "1ssid\n");
    ASSERT_EQ(0, init());
    EXPECT_EQ((Lines{std::string("pipe ") + kList, "run wlctl -i wl0 revinfo > /tmp/wl0_ChipInfo",
                     "run wlctl -i wl0 cap > /tmp/wl0_cap", "chmod 400 /tmp/wl0_cap",
                     "run wlctl -i wl0 revinfo > /tmp/wl0_revinfo", "run wlctl -i wl0 txchain > /tmp/wl0_txchain",
                     "run wlctl -i wl0 up", "run wlctl -i wl0 leddc 0 2>/dev/null", "run wlctl -i wl0 down",
                     "run dhdctl -i wl0 version &> /dev/null"}),
              platform.journal);
    EXPECT_EQ("enter.\n", platform.logs.front().text);
    EXPECT_EQ("wlModuleInit", platform.logs.front().function);
    EXPECT_EQ(1, host_.radios[0]->caps.maxBss);
    EXPECT_EQ(0, host_.radios[0]->caps.mbss);
}

TEST_F(Discovery, TheTableHasItsOperationsAndItsGaps) {
    ASSERT_EQ(0, init());
    ASSERT_NE(nullptr, host_.ops);
    EXPECT_STREQ("BRCM", host_.ops->name);
#define SLOT(operation) reinterpret_cast<WlEmptySlot>(operation)
    const WlEmptySlot expected[] = {SLOT(qvbrcm_InitWlan),
                                    SLOT(qvbrcm_ReloadWlan),
                                    SLOT(qvbrcm_StatusUpdate),
                                    SLOT(qvbrcm_SetWlanMacAddr),
                                    SLOT(qvbrcm_UpdateLaninfo),
                                    SLOT(qvbrcm_ChannelScan),
                                    SLOT(qvbrcm_GetChanScanRpt),
                                    nullptr,
                                    SLOT(qvbrcm_WPSReload),
                                    SLOT(qvbrcm_WPSSWPushButton),
                                    SLOT(qvbrcm_WPSHWPushButton),
                                    SLOT(qvbrcm_WPSStartStaPin),
                                    SLOT(qvbrcm_WPSCancel),
                                    SLOT(qvbrcm_WPSUpdateConfg),
                                    SLOT(qvbrcm_StationFilter),
                                    SLOT(qvbrcm_GetAssocDevList),
                                    SLOT(qvbrcm_BsaMacFilter),
                                    nullptr,
                                    SLOT(qvbrcm_DisassociateSTA),
                                    SLOT(qvbrcm_GetGenIntfInfo),
                                    SLOT(qvbrcm_GetFatIntfInfo),
                                    nullptr,
                                    SLOT(qvbrcm_EnablePresetSSID),
                                    SLOT(qvbrcm_EnableFenraEvt),
                                    nullptr};
    const auto *slots = reinterpret_cast<const WlEmptySlot *>(&host_.ops->initWlan);
    for (size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(expected[i], slots[i]) << "slot " << i + 1;
}

TEST_F(Discovery, OddInterfacesAreSkippedAndNamed) {
    addRadio("wlan0", "0x4360", "mbss4\n");
    listing_ += "wl0.1\nwl;reboot\nwl01234567890123\nxwl\x1b\n";
    addRadio("wl1", "0x43bb", "");
    ASSERT_EQ(0, init());
    ASSERT_EQ(1U, host_.radios.size());
    EXPECT_STREQ("wl1", host_.radios[0]->intfName);
    EXPECT_EQ(1, act_wl_cnt);
    Lines expected;
    for (const std::string name : {"wlan0", "wl;reboot", "wl01234567890123", "xwl\\x1b"}) {
        if (name[2] == ';' || name.size() > 15)
            expected.push_back("invalid interface name \"" + name + "\".\n");
        expected.push_back("Cannot identify interface " + name + " is 2.4G or 5G... determine interface " + name +
                           " fail.\n");
    }
    EXPECT_EQ(expected, platform.logged(WLBRCM_LOG_ERR));
    EXPECT_EQ(Lines{}, platform.did("run wlctl -i wl;"));
}

TEST_F(Discovery, HostsThatRefuseOrLackCallbacks) {
    addRadio("wl0", "0x43c5", "");
    WlModuleHostOps refusing = {refuseOps, takeRadio, takeHandler, nullptr};
    EXPECT_EQ(-1, wlModuleInit(&refusing, nullptr));
    EXPECT_EQ(Lines{}, platform.journal);

    host_.answer = 1; // radios and handler refused: both freed (the sanitizer build checks), the count stays
    WlModuleHostOps silent = {takeOps, takeRadio, takeHandler, nullptr};
    EXPECT_EQ(0, wlModuleInit(&silent, &host_.answer));
    EXPECT_EQ(1, act_wl_cnt);
    EXPECT_EQ(0, fenra_rpe_sock);
    EXPECT_TRUE(platform.logs.empty());
}

TEST_F(Discovery, WordsTellHowManyNetworksARadioHas) {
    const std::pair<const char *, int> rows[] = {
        {"", 1}, {"1ssid", 1}, {"mbss4", 4}, {"mbss8", 6}, {"1ssid mbss16", 6}};
    for (const auto &[words, most] : rows) {
        platform.files.clear();
        listing_.clear();
        addRadio("wl0", "0x43c5", words);
        ASSERT_EQ(0, init());
        EXPECT_EQ(most, host_.radios.back()->caps.maxBss) << words;
    }
}

TEST_F(Discovery, AHostThatIgnoresItsChildrenIsTold) {
    const sighandler_t before = signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(0, init());
    EXPECT_EQ(Lines{"SIGCHLD is ignored: every command will count as failed.\n"}, platform.logged(WLBRCM_LOG_ERR));
    signal(SIGCHLD, before);
    platform.forget();
    EXPECT_EQ(0, init());
    EXPECT_EQ(Lines{}, platform.logged(WLBRCM_LOG_ERR));
}

TEST_F(Discovery, WithoutAMacFilterTheStartFails) {
    _mac_filter_ready = 0;
    platform.failing["mutex"] = 1;
    EXPECT_EQ(-1, init());
    EXPECT_EQ("fail to qvbrcm_MacFilter_init\n", platform.logged(WLBRCM_LOG_ERR).back());
    EXPECT_NE(nullptr, host_.ops);
}

TEST_F(Discovery, EveryAllocationMayFail) {
    for (int n = 0; n < 3; ++n) {
        addRadio("wl0", "0x43c5", "");
        withHandler = true;
        platform.failAllocation(n); // operations, handler, radio
        const int result = init();
        EXPECT_TRUE(platform.allocationFailed) << n;
        EXPECT_EQ(n == 0 ? -1 : 0, result) << n;
        EXPECT_EQ(n >= 1, host_.ops != nullptr) << n;
        EXPECT_EQ(n == 2, host_.handler != nullptr) << n;
        if (n == 2) {
            EXPECT_EQ(qvbrcm_EvtInit, host_.handler->init);
            EXPECT_EQ(qvbrcm_EvtReceive, host_.handler->receive);
            EXPECT_GE(fcntl(static_cast<int>(host_.handler->sock), F_GETFD), 0);
        }
        host_ = Host();
        listing_.clear();
    }
}

TEST_F(Discovery, Band) {
    const struct {
        const char *report;
        int band;
    } rows[] = {
        {"deviceid 0x43c5\n", 1},  {"deviceid 0x43bb\n", 2}, {"deviceid 0x43ba\n", 0},
        {"chipnum 0x43bb\n", 0},   {"deviceid 43bb\n", 0},   {"", 0},
        {"deviceid 0x43bb0\n", 0}, {"\xff\xfe\n", 0},        {"deviceid 0x1\ndeviceid 0x43c5\n", 1},
    };
    for (const auto &row : rows) {
        platform.answer("wlctl -i wl0 revinfo", row.report);
        EXPECT_EQ(row.band, qvWlanGetBandType("wl0")) << row.report;
    }
    platform.loseOutput("wlctl -i wl0 revinfo");
    EXPECT_EQ(0, qvWlanGetBandType("wl0"));
    platform.forget();
    for (const char *bad : {"eth0", "", "wl0;id", "wl0 "})
        EXPECT_EQ(0, qvWlanGetBandType(bad));
    EXPECT_EQ(Lines{}, platform.journal);
}

TEST_F(Discovery, PhyLetters) {
    const char *letters[] = {"a", "b", "g", "b", "n", "g", "b", "n", "n", "b", "b", "v", "b"};
    for (int phy = 0; phy <= 12; ++phy) {
        platform.answer("wlctl -i wl0 phytype", std::to_string(phy) + "\n");
        EXPECT_STREQ(letters[phy], qvWlanGetPhyType("wl0")) << phy;
    }
    platform.answer("wlctl -i wl0 phytype", "");
    EXPECT_STREQ("b", qvWlanGetPhyType("wl0"));
    platform.answer("wlctl -i wl0 phytype", "00000011\n"); // only six characters count
    EXPECT_STREQ("a", qvWlanGetPhyType("wl0"));
    EXPECT_EQ(nullptr, qvWlanGetPhyType("eth0"));
}

TEST_F(Discovery, Beamforming) {
    const struct {
        const char *revinfo, *chains;
        int capable;
        bool asksChains;
    } rows[] = {
        {"corerev 0x27\n", "3\n", 0, false},
        {"corerev 0x28\n", "3\n", 1, true},
        {"corerev 0x28\n", "1\n", 0, true},
        {"corerev 0x41\n", "8\n", 0, true},
        {"corerev 0x41\n", "", 0, true},
        {"vendor 0x50\n", "3\n", 0, false},
        {"a b c\ncorerev 0x41 x", "15", 1, true},
        {"corerev\n", "3\n", 0, false},
        {"", "3\n", 0, false},
    };
    for (const auto &row : rows) {
        platform.forget();
        platform.answer("wlctl -i wl0 revinfo", row.revinfo);
        platform.answer("wlctl -i wl0 txchain", row.chains);
        EXPECT_EQ(row.capable, checkWlanTxBFCap("wl0")) << row.revinfo;
        EXPECT_EQ(row.asksChains ? 2U : 1U, platform.did("run ").size()) << row.revinfo;
        EXPECT_EQ(row.capable ? "wl0 support transform beamforming.\n" : "wl0 not support transform beamforming.\n",
                  platform.logs.back().text);
        EXPECT_EQ("checkWlanTxBFCap", platform.logs.back().function);
    }
}

TEST_F(Discovery, TheCapabilityListingIsACache) {
    platform.answer("wlctl -i wl0 cap", "wme mbss8\n");
    char path[64];
    EXPECT_EQ(0, qvWlanDumpWlCap("wl0", path));
    EXPECT_STREQ("/tmp/wl0_cap", path);
    EXPECT_EQ(0, qvWlanDumpWlCap("wl0", path));
    EXPECT_EQ(1U, platform.did("run ").size());
    platform.files[path] = ""; // an empty listing is asked for again
    EXPECT_EQ(0, qvWlanDumpWlCap("wl0", path));
    EXPECT_EQ(2U, platform.did("run ").size());
    platform.files[path] = "x";
    EXPECT_EQ(0, qvWlanDumpWlCap("wl0", path));
    EXPECT_EQ(2U, platform.did("run ").size());
    platform.files[path] = "mbss16"; // as is one that somebody else left
    platform.foreign = {path};
    EXPECT_EQ(1, qvWlanGetMaxMbss("wl0"));
    EXPECT_EQ(3U, platform.did("run ").size());

    EXPECT_EQ(1, qvWlanGetMaxMbss("wl0"));
    platform.files[path] = "mbss16";
    EXPECT_EQ(4, qvWlanGetMaxMbss("wl0"));
    EXPECT_EQ(WLBRCM_EFAILED, qvWlanDumpWlCap("wl0|id", path));
    EXPECT_EQ("qvWlanDumpWlCap : error input wireless interface name\n",
              printed([&] { EXPECT_EQ(WLBRCM_EFAILED, qvWlanDumpWlCap("eth0", path)); }));
    platform.loseOutput("wlctl -i wl0 cap");
    platform.files.clear();
    EXPECT_EQ(0, qvWlanDumpWlCap("wl0", path)); // whatever the command did
}

TEST_F(Discovery, WmmSupport) {
    char result[2] = "x";
    Arg arg("", "wl0", "", 0, result);
    platform.answer("wlctl -i wl0 cap", "ap wme\n");
    EXPECT_EQ(0, qvWlanGetWmmSupport(arg));
    EXPECT_STREQ("1", result);
    platform.failing["open /tmp/wl0_cap"] = 1;
    EXPECT_EQ("qvWlanGetWmmSupport : Can not open /tmp/wl0_cap\n",
              printed([&] { EXPECT_EQ(WLBRCM_EFAILED, qvWlanGetWmmSupport(arg)); }));
    EXPECT_STREQ("0", result);
    EXPECT_EQ("qvWlanGetMaxMbss : Can not open /tmp/wl0_cap\n",
              printed([&] { EXPECT_EQ(1, qvWlanGetMaxMbss("wl0")); }));
}

TEST_F(Discovery, BoardDevices) {
    EXPECT_EQ("Unable to open device /dev/chipinfo", printed([] { EXPECT_EQ(-1, qvWlanReadChipInfoStbc()); }));
    platform.devices["/dev/chipinfo"] = [](unsigned long, void *block) {
        auto *words = static_cast<uint32_t *>(block);
        EXPECT_EQ(1U, words[2]);
        EXPECT_EQ(UINT32_MAX, words[3]);
        words[3] = 0;
        return 0;
    };
    EXPECT_EQ(0, qvWlanReadChipInfoStbc());
    platform.devices["/dev/chipinfo"] = [](unsigned long, void *) { return -1; };
    EXPECT_EQ("qvWlanReadChipInfoStbc@60 Read CHIP INFO Failure\n",
              printed([] { EXPECT_EQ(-1, qvWlanReadChipInfoStbc()); }));

    WlRadioCfg radio = {};
    radio.gpioOverlays = 5;
    qvWlanGetGPIOverlays(&radio);
    EXPECT_EQ(5, radio.gpioOverlays);
    platform.devices["/dev/brcmboard"] = [](unsigned long, void *block) {
        **static_cast<uint32_t **>(block) = 0xabcd;
        return -1;
    };
    qvWlanGetGPIOverlays(&radio);
    EXPECT_EQ(0xabcd, radio.gpioOverlays);
    EXPECT_EQ((Lines{"ioctl /dev/chipinfo c0104300", "ioctl /dev/chipinfo c0104300", "ioctl /dev/brcmboard c0184232"}),
              platform.did("ioctl"));
    platform.devices["/dev/brcmboard"] = [](unsigned long, void *) { return -1; };
    qvWlanGetGPIOverlays(&radio);
    EXPECT_EQ(0, radio.gpioOverlays);
}
