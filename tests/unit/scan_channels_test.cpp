// Forced scans, the dump of scanned channels, and the report of both lists.
#include "tests/unit/fake_platform.h"

#include <memory>

#include "scan/readers.h"

using namespace wlbrcm;

namespace {

constexpr char kFive[] = "36 2 0 0 0\n";
constexpr char kThirteen[] = "6 1 2 3 4 5 6 7 8 9 10 11 12\n";

template <class T> using Block = std::unique_ptr<T, decltype(&free)>;

class Channels : public PlatformTest {
  protected:
    Channels() : intf(new WlIntf()) {
        strcpy(intf->radio.ifName, "wl0");
        intf->radio.radioIndex = 1;
        intf->radio.band = WLBRCM_BAND_5G;
    }

    void dump(const std::string &lines) { platform.answer("acs_cli -i wl0 dump bss", lines); }
    void scanned(int aps) {
        platform.answer("wlctl -i wl0 scanresults", "SSID: \"a\"\n");
        platform.answer("cat /tmp/wl0scanresults", std::to_string(aps) + "\n");
    }
    // qvWlanDumpCSRes(), which must leave its outputs alone when it fails.
    int readDump(int band) {
        WlChanScanInfo *list = nullptr;
        count = -1;
        Arg arg("wl0", "", "", 0, &list);
        arg.record.value = reinterpret_cast<char *>(&band);
        arg.record.aux = reinterpret_cast<char *>(&count);
        const int result = qvWlanDumpCSRes(arg);
        records.reset(list);
        EXPECT_EQ(result == 0, list != nullptr);
        EXPECT_EQ(result == 0, count != -1);
        return result;
    }

    std::unique_ptr<WlIntf> intf;
    Block<WlChanScanInfo> records{nullptr, free};
    int count = -1;
};

} // namespace

TEST_F(Channels, LinesOfTheDump) {
    const struct {
        const char *line;
        int band;
        int channel; // -1: skipped
        uint32_t bssNum;
    } rows[] = {
        {kFive, 1, 36, 2},
        {kFive, 2, 36, 2},
        {kThirteen, 2, 6, 14},
        {kThirteen, 1, 6, 44},
        {kThirteen, 0, 6, 44},
        {"\t 36\t2 0 0 0 end", 1, 36, 2},
        {"6 1 2 3 4 5 6 7 8 9 10 11 12 13 14", 2, 6, 14},
        {"36 2 0 0", 1, -1, 0},
        {"36 2 0 0 0 0", 1, -1, 0},
        {"6 1 2 3 4 5 6 7 8 9 10 11", 1, -1, 0},
        {"channel 36 2 0 0 0", 1, -1, 0},
        {"", 1, -1, 0},
        {"65535 1 0 0 0", 1, 65535, 1},
        {"65536 1 0 0 0", 1, -1, 0},
        {"0 1 0 0 0", 1, 0, 1},
        {"-1 1 0 0 0", 1, -1, 0},
        {"1 -1 0 0 0", 1, 1, 0xffffffff},
        {"1 0 99999999999 99999999999 2 0 0 0 0 0 0 0 0", 2, 1, 0},
    };
    for (const auto &row : rows) {
        WlChanScanInfo expected = {};
        if (row.channel >= 0) {
            expected.chanspec = expected.channel = static_cast<uint16_t>(row.channel);
            expected.bandwidth = 20;
            expected.band = row.band == 2 ? 2 : 5;
            expected.valid = 1;
            expected.bssNum = row.bssNum;
        }
        WlChanScanInfo channel = {};
        EXPECT_EQ(row.channel >= 0, readChannelLine(row.line, row.band, &channel)) << row.line;
        EXPECT_EQ(0, memcmp(&expected, &channel, sizeof channel)) << row.line;
    }
}

TEST_F(Channels, SkippedLinesLeaveEmptyRecordsAtTheEnd) {
    dump(std::string("1 1 1 1 1\n") + kFive + "garbage\n" + kThirteen + std::string(300, ' ') + "7 1 1 1 1\n");
    ASSERT_EQ(0, readDump(1));
    ASSERT_EQ(5, count); // the line of 310 characters counts twice
    const int channels[] = {36, 6, 7, 0, 0};
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(channels[i], records.get()[i].channel);
        EXPECT_EQ(channels[i] != 0, records.get()[i].valid == 1);
    }
    ASSERT_EQ(0, readDump(2));
    EXPECT_EQ(14U, records.get()[1].bssNum);
    EXPECT_EQ(Lines(2, "run acs_cli -i wl0 dump bss > /tmp/wl0_acs_dump_res"), platform.journal);
    EXPECT_EQ(Lines(2, "cmd = acs_cli -i wl0 dump bss > /tmp/wl0_acs_dump_res\n"), platform.logged(WLBRCM_LOG_DEBUG));
}

TEST_F(Channels, ADumpWithoutChannelsFails) {
    for (const char *report : {"", "header", "header\n"}) {
        dump(report);
        EXPECT_EQ(-5, readDump(1)) << report;
    }
    dump(std::string("header\n") + kFive);
    platform.failAllocation(0);
    EXPECT_EQ(-5, readDump(1));
    EXPECT_EQ(Lines{}, platform.leftFiles());
    platform.loseOutput("acs_cli -i wl0 dump bss");
    EXPECT_EQ(-5, readDump(1));
}

TEST_F(Channels, AForcedScanWaitsForItsEnd) {
    const struct {
        std::string answer;
        int result;
    } rows[] = {
        {"Request submitted\nRequest finished\n", 0},
        {"acs: Request finished", 0},
        {"Request submitted\n", -5},
        {"", -5},
        {std::string(250, 'x') + "Request finished\n", -5}, // cut in two by the line buffer
        {std::string(255, 'x') + "Request finished\n", 0},
    };
    for (const auto &row : rows) {
        platform.forget();
        platform.answer("acs_cli -i wl0 csscan_force", row.answer);
        EXPECT_EQ(row.result, qvbrcm_ChannelScan(intf.get())) << row.answer;
        EXPECT_EQ(Lines{"pipe acs_cli -i wl0 csscan_force"}, platform.journal);
        EXPECT_EQ(Lines{"Enter.\n"}, platform.logged(WLBRCM_LOG_DEBUG));
        EXPECT_EQ(row.result == 0 ? Lines{} : Lines{"Channel scan fail on wl0......\n"},
                  platform.logged(WLBRCM_LOG_ERR));
    }
    platform.failPipe("acs_cli -i wl0 csscan_force");
    EXPECT_EQ(-5, qvbrcm_ChannelScan(intf.get()));
}

TEST_F(Channels, NamesAreCheckedBeforeACommand) {
    for (const char *name : {"wl0;reboot", "$(id)", "", "wl0 wl1"}) {
        strcpy(intf->radio.ifName, name);
        WlChanScanInfo *list = nullptr;
        WlScanAp *aps = nullptr;
        int apCount = 0;
        EXPECT_EQ(-5, qvbrcm_ChannelScan(intf.get()));
        EXPECT_EQ(-14, qvbrcm_GetChanScanRpt(intf.get(), &list, &count, &aps, &apCount));
        EXPECT_EQ(-5, qvbrcm_GetChanScanApRpt(intf.get(), &aps, &apCount));
        EXPECT_EQ(Lines{}, platform.journal) << name;
    }
}

TEST_F(Channels, TheReportFillsThePairsThatAreComplete) {
    dump(std::string("header\n") + kFive);
    scanned(1);
    for (int given = 0; given < 16; ++given) {
        WlChanScanInfo *list = nullptr;
        WlScanAp *aps = nullptr;
        int apCount = 0;
        count = 0;
        platform.forget();
        const bool wantsChannels = (given & 3) == 3, wantsAps = (given & 12) == 12;
        EXPECT_EQ(wantsChannels || wantsAps ? 0 : -5,
                  qvbrcm_GetChanScanRpt(intf.get(), given & 1 ? &list : nullptr, given & 2 ? &count : nullptr,
                                        given & 4 ? &aps : nullptr, given & 8 ? &apCount : nullptr));
        EXPECT_EQ(wantsChannels ? 1 : 0, count) << given;
        EXPECT_EQ(wantsAps ? 1 : 0, apCount) << given;
        EXPECT_EQ(wantsChannels, list != nullptr && list->channel == 36);
        EXPECT_EQ(wantsAps, aps != nullptr && strcmp("a", aps->ssid) == 0);
        EXPECT_EQ(wantsChannels ? 1U : 0U, platform.did("run acs_cli").size());
        EXPECT_EQ(wantsAps ? 1U : 0U, platform.did("run wlctl").size());
        EXPECT_EQ(wantsChannels || wantsAps ? Lines{} : Lines{"Invalid parameter.\n"}, platform.logged(WLBRCM_LOG_ERR));
        free(list);
        free(aps);
    }
}

TEST_F(Channels, AReportThatFailsHandsOutNothing) {
    auto *untouched = reinterpret_cast<WlChanScanInfo *>(1);
    const struct {
        const char *dump;
        int aps;
        Lines errors;
        WlChanScanInfo *list; // what stands in the channel outputs afterwards
        int count;
    } rows[] = {
        {"header\n", 1, {"Error to dump scan channel result\n"}, untouched, 55},
        {"header\n36 2 0 0 0\n", 0, {"WDS scan fail on wl0......\n", "Error to dump scan ap result\n"}, nullptr, 0}};
    for (const auto &row : rows) {
        platform.forget();
        dump(row.dump);
        scanned(row.aps);
        auto *list = untouched;
        auto *aps = reinterpret_cast<WlScanAp *>(1);
        int apCount = 77;
        count = 55;
        EXPECT_EQ(-14, qvbrcm_GetChanScanRpt(intf.get(), &list, &count, &aps, &apCount));
        EXPECT_EQ(row.errors, platform.logged(WLBRCM_LOG_ERR));
        EXPECT_EQ(row.list, list);
        EXPECT_EQ(row.count, count);
        EXPECT_EQ(reinterpret_cast<WlScanAp *>(1), aps);
        EXPECT_EQ(77, apCount);
    }
}
