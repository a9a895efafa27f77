// Live values of one interface: up or down, noise, traffic, channel, beacon, channel load.
#include <climits>

#include "tests/unit/fake_platform.h"

#include "status/readers.h"

using namespace wlbrcm;

class StatusInterface : public PlatformTest {};

TEST_F(StatusInterface, NumbersComeFromTheFirstLine) {
    const struct {
        const char *report;
        int result, value;
    } rows[] = {{"1\n", 0, 1},
                {"0\n", 0, 0},
                {"", WLBRCM_EFAILED, 0},
                {"up\n", 0, 0},
                {"-91\r\nrest\n", 0, -91},
                {"\n-91\n", 0, 0},
                {"99999999999\n", 0, INT_MAX}};
    for (const auto &row : rows) {
        for (const auto get : {qvWlanGetRadioStatus, qvWlanGetNoise}) {
            platform.answer("wlctl -i wl1 ", row.report);
            int value = 77;
            EXPECT_EQ(row.result, get(Arg("wl1", "", "", 0, &value))) << row.report;
            EXPECT_EQ(row.value, value) << row.report;
        }
    }
}

TEST_F(StatusInterface, GettersRunTheirCommands) {
    int value = 0;
    EXPECT_EQ(WLBRCM_EFAILED, qvWlanGetRadioStatus(Arg("wl0.1", "", "", 0, &value)));
    EXPECT_EQ(WLBRCM_EFAILED, qvWlanGetNoise(Arg("wl0", "", "", 0, &value)));
    EXPECT_EQ((Lines{"run wlctl -i wl0.1 isup > /tmp/wl0.1_radio_st",
                     "run wlctl -i wl0 status | grep \"noise:\" | awk '{sub(/.*noise:/,\"\");print $1}' > "
                     "/tmp/.noise_result"}),
              platform.journal);
    // Only the first goes through the logging helper.
    EXPECT_EQ((Lines{"cmd = wlctl -i wl0.1 isup > /tmp/wl0.1_radio_st\n"}), platform.logged(WLBRCM_LOG_DEBUG));
    EXPECT_EQ("qvWlanGetRadioStatus", platform.logs[0].function);
    for (const auto get : {qvWlanGetRadioStatus, qvWlanGetNoise}) {
        platform.loseOutput("wlctl");
        value = 77;
        EXPECT_EQ(WLBRCM_EFAILED, get(Arg("wl0", "", "", 0, &value)));
        EXPECT_EQ(0, value);
    }
}

TEST_F(StatusInterface, BadArgumentsRunNothing) {
    int value = 5;
    WlTrafficCounters counters = {};
    WlIntfInfo info = {};
    WlChannelInfo channel = {};
    for (const auto get : {qvWlanGetRadioStatus, qvWlanGetNoise, qvWlanGetCurrentChannelInfo}) {
        EXPECT_EQ(WLBRCM_EINVAL, get(nullptr));
        EXPECT_EQ(WLBRCM_EINVAL, get(Arg("wl0")));
        EXPECT_EQ(WLBRCM_EINVAL, get(Arg("wl0;reboot", "", "", 0, &channel)));
    }
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanGetCurrentChannelInfo(Arg("eth1", "", "", 0, &channel)));
    EXPECT_EQ(-1, qvWlanGetCurrentCh(Arg("eth1")));
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanGetTrafficInfo("wl0|id", &counters));
    const size_t logged = platform.logged(WLBRCM_LOG_ERR).size();
    const struct {
        const char *ifname;
        int index;
        bool place;
    } rows[] = {{"$(id)", 0, true}, {"wl0 ", 2, true}, {"wl0", -1, true}, {nullptr, 0, true}, {"wl0", 0, false}};
    for (const auto &row : rows) {
        EXPECT_EQ(0, qvbrcm_GetGenIntfInfo(row.ifname, row.index, row.place ? &info : nullptr));
        EXPECT_EQ(0, qvbrcm_GetFatIntfInfo(row.ifname, row.index, row.place ? &value : nullptr));
    }
    EXPECT_EQ(Lines{}, platform.journal);
    EXPECT_EQ(logged + 10, platform.logged(WLBRCM_LOG_ERR).size());
    EXPECT_EQ(5, value);
}

TEST_F(StatusInterface, CountersAreFoundAnywhereUntilAllAreMet) {
    const char *complete = "txframe 10 txbyte 2000 txretrans 0 txerror 1\nrxframe 20 rxbyte 3000 rxerror 2\n"
                           "txnoassoc 3 rxbadda 4\n";
    const struct {
        std::string report;
        uint32_t values[8]; // in the record's order
    } rows[] = {{complete, {2000, 3000, 10, 1, 3, 20, 2, 4}},
                {std::string(complete) + "txframe 99\n", {2000, 3000, 10, 1, 3, 20, 2, 4}},
                {"txframe 1\ntxframe 2\ntxframe x\n", {0, 0, 2, 0, 0, 0, 0, 0}},
                {"txbyte 4294967295 rxbyte 4294967296", {UINT32_MAX, UINT32_MAX, 0, 0, 0, 0, 0, 0}},
                {"txbytes 5 rxbyte", {0, 0, 0, 0, 0, 0, 0, 0}},
                {std::string(249, ' ') + "txbyte 7\ntxerror 8\r\n", {0, 0, 0, 8, 0, 0, 0, 0}}, // cut behind its name
                {"", {}}};
    for (const auto &row : rows) {
        platform.answer("wlctl -i wl0.1 counters", row.report);
        WlTrafficCounters read = {1, 1, 1, 1, 1, 1, 1, 1};
        EXPECT_EQ(0, qvWlanGetTrafficInfo("wl0.1", &read));
        EXPECT_EQ(0, memcmp(row.values, &read, sizeof read)) << row.report;
    }
    EXPECT_EQ("pipe wlctl -i wl0.1 counters", platform.journal[0]);
    EXPECT_EQ(Lines(7, "enter\n"), platform.logged(WLBRCM_LOG_DEBUG));
    platform.failPipe("wlctl");
    platform.failPipe("wlctl -i wl0.1 counters");
    WlTrafficCounters kept = {9, 9, 9, 9, 9, 9, 9, 9};
    EXPECT_EQ(WLBRCM_EFAILED, qvWlanGetTrafficInfo("wl0.1", &kept));
    EXPECT_EQ(9U, kept.txbyte);
}

TEST_F(StatusInterface, ChanspecsAreDecoded) {
    using Fields = std::vector<uint32_t>; // chanspec, channel, bandwidth, band, sideband; none: refused
    const std::pair<const char *, Fields> rows[] = {{"36/80 (0xe02a)\n", {0xe02a, 36, 80, 5, 3}},
                                                    {"(e12a)", {0xe12a, 40, 80, 5, 4}},
                                                    {"(0xe22a)", {0xe22a, 44, 80, 5, 5}},
                                                    {"(0xe32a)", {0xe32a, 48, 80, 5, 6}},
                                                    {"(0xe42a)", {0xe42a, 36, 80, 5, 3}},
                                                    {"6 (0x1006)\n", {0x1006, 6, 20, 2, 0}},
                                                    {"(0x1803)", {0x1803, 1, 40, 2, 1}},
                                                    {"(0x1904)", {0x1904, 6, 40, 2, 2}},
                                                    {"(0x2806)", {0x2806, 6, 20, 2, 0}},
                                                    {"(0x4006)", {0x4006, 6, 20, 5, 0}},
                                                    {"no\n(0x1006)\n(0x1007)", {0x1006, 6, 20, 2, 0}},
                                                    {"(0xffff)", {0xffff, 255, 20, 5, 0}},
                                                    {"(0x1802)", {0x1802, 0, 40, 2, 1}},
                                                    {"(0x10000)", {}},
                                                    {"(0x1801)", {}},
                                                    {"(0xe005)", {}},
                                                    {"(0x0)\n(0x1006)", {}},
                                                    {"36/80\n", {}},
                                                    {"(-5)", {}},
                                                    {"", {}}};
    for (const auto &[report, fields] : rows) {
        platform.answer("wlctl -i wl0 chanspec", report);
        WlChannelInfo info = {1, 2, 3, 4, {5, 6}, 7};
        const bool good = !fields.empty();
        EXPECT_EQ(good ? 0 : WLBRCM_EFAILED, qvWlanGetCurrentChannelInfo(Arg("wl0", "", "", 0, &info))) << report;
        EXPECT_EQ(good ? static_cast<int>(fields[1]) : -1, qvWlanGetCurrentCh(Arg("wl0"))) << report;
        const Fields read = {info.chanspec, info.channel, info.bandwidth, info.band, info.sideband};
        EXPECT_EQ(good ? fields : (Fields{1, 2, 3, 4, 7}), read) << report;
    }
    EXPECT_EQ("run wlctl -i wl0 chanspec > /tmp/.cur_channel", platform.journal[0]);
    EXPECT_EQ(0U, platform.logs.size());
    platform.loseOutput("wlctl -i wl0 chanspec");
    EXPECT_EQ("qvWlanGetCurrentChannelInfo: error open file\n", printed([] { qvWlanGetCurrentCh(Arg("wl0")); }));
}

namespace {

// "Label: 01 02 ..."
std::string bytes(const char *label, int first, int count) {
    std::string text = label;
    for (int i = first; i < first + count; ++i)
        text += {' ', "01"[i / 16], "0123456789abcdef"[i % 16]};
    return text + "\n";
}

const std::string kElements = "Tag:45 Len:26 - HT Capabilities\n" + bytes("A:", 1, 16) + bytes("B:", 17, 10) +
                              "Tag:61 Len:22 - HT Information\n" + bytes("A:", 1, 16) + bytes("B:", 17, 6) +
                              "Tag:191 Len:12 - VHT\n" + bytes("", 1, 12) + "Tag:192 Len:5 - VHT\n" + bytes("", 1, 5);

} // namespace

TEST_F(StatusInterface, BeaconElementsAreCopied) {
    platform.answer("wlctl -i wl1.2 beacon_info", "Capabilities: 0x0431\n" + kElements);
    WlIntfInfo info;
    memset(&info, 0xA0, sizeof info);
    WlIntfInfo expected = info;
    EXPECT_EQ(0, qvbrcm_GetGenIntfInfo("wl1", 2, &info));
    expected.ieFlags = 0xA6;
    expected.capabilities = 0x431;
    const auto fill = [](uint8_t *header, uint8_t id, uint8_t length) {
        header[0] = id;
        for (uint8_t i = 0; i <= length; ++i)
            header[1 + i] = i == 0 ? length : i;
    };
    auto *record = reinterpret_cast<uint8_t *>(&expected);
    fill(record + offsetof(WlIntfInfo, htCapId), 45, 26);
    fill(record + offsetof(WlIntfInfo, htInfoId), 61, 22);
    fill(record + offsetof(WlIntfInfo, vhtCapId), 191, 12);
    fill(record + offsetof(WlIntfInfo, vhtOpId), 192, 5);
    EXPECT_EQ(0, memcmp(&expected, &info, sizeof info));
    EXPECT_EQ(Lines{"run wlctl -i wl1.2 beacon_info > /tmp/.intf_info_result"}, platform.journal);
    EXPECT_EQ(Lines{"enter.\n"}, platform.logged(WLBRCM_LOG_DEBUG));
    platform.loseOutput("wlctl -i wl1 beacon_info");
    EXPECT_EQ(0, qvbrcm_GetGenIntfInfo("wl1", 0, &info));
    EXPECT_EQ(0, memcmp(&expected, &info, sizeof info));
}

TEST_F(StatusInterface, BeaconLinesThatDoNotFitLeaveTheirFields) {
    // Flags, capability word, HT number, length and first byte of each line, VHT number; over a record of sevens.
    const std::pair<std::string, std::vector<uint32_t>> rows[] = {
        {"Capabilities: 0x04310000\n", {0, 0x431, 7, 7, 7, 7, 7}},
        {"Capabilities: 0xffff\n", {0, 0xffff, 7, 7, 7, 7, 7}},
        {"Capabilities: 0x10000\n", {0, 1, 7, 7, 7, 7, 7}},
        {"Capabilities: none\n", {0, 7, 7, 7, 7, 7, 7}},
        {" Capabilities: 0x431\n", {0, 7, 7, 7, 7, 7, 7}},
        {"Tag:45 Len:x HT Capabilities\n", {2, 7, 45, 7, 7, 7, 7}},
        {"HT Capabilities\nA: 1\nB: 2\n", {2, 7, 7, 7, 1, 2, 7}},
        {"HT Capabilities\nA 1\n: 2\n", {2, 7, 7, 7, 7, 7, 7}},
        {"HT Capabilities\nTag:191\nB: 1ff\n", {2, 7, 7, 7, 0x91, 0xff, 7}}, // the next lines, whatever they hold
        {"Tag:191 Len:12 - VHT Capabilities\nA: 5\n", {2, 7, 191, 12, 5, 7, 7}},
        {"Tag:447 Len:12\n5\n", {0, 7, 7, 7, 7, 7, 7}},
        {"Tag:191 \n", {4, 7, 7, 7, 7, 7, 191}},
        {"Tag:192\n", {4, 7, 7, 7, 7, 7, 7}},
    };
    for (const auto &[report, fields] : rows) {
        platform.answer("wlctl -i wl0 beacon_info", report);
        WlIntfInfo info;
        memset(&info, 7, sizeof info);
        info.ieFlags = 0;
        info.capabilities = 7;
        EXPECT_EQ(0, qvbrcm_GetGenIntfInfo("wl0", 0, &info));
        EXPECT_EQ(fields, (std::vector<uint32_t>{info.ieFlags, info.capabilities, info.htCapId, info.htCapLen,
                                                 info.htCap[0], info.htCap[16], info.vhtCapId}))
            << report;
    }
}

TEST_F(StatusInterface, ChannelLoadComesFromTheLineBehindTheHeader) {
    const std::string header = "chanspec tx inbss obss\n";
    const struct {
        std::string report;
        int fat;
    } rows[] = {{header + "0x1006 0 5 2 1 0 0 93 3 4\n", 85},
                {"version 2\n" + header + "0x1006\t9 5 2", 93},
                {header + "1006 0 5 2 1 0 0 93 3 4\n", 100},
                {header + "0x1006 0 5 2 1 0 0 93 3 4 50 60\n", 85},
                {header + "0x1006 0 200 0 0 0 0 0 0 -1\r\n", -99},
                {header + "0x1006 0 2147483647 2147483647 0 0 0 0 0 0", INT_MIN},
                {header, 1234},
                {"0x1006 0 5 2 1 0 0 93 3 4\n", 1234},
                {"", 1234}};
    for (const auto &row : rows) {
        platform.answer("wlctl -i wl0 chanim_stats", row.report);
        int fat = 1234;
        EXPECT_EQ(0, qvbrcm_GetFatIntfInfo("wl0", 0, &fat));
        EXPECT_EQ(row.fat, fat) << row.report;
    }
    platform.forget();
    platform.answer("wlctl -i wl0.1 chanim_stats", rows[0].report);
    int fat;
    EXPECT_EQ(0, qvbrcm_GetFatIntfInfo("wl0", 1, &fat));
    EXPECT_EQ(Lines{"run wlctl -i wl0.1 chanim_stats > /tmp/.fat_info"}, platform.journal);
    EXPECT_EQ((Lines{"enter.\n", "chanim_stats=> 0x1006 0 5 2 1 0 0 93 3 4\\x0a\n", "fat 85\n"}),
              platform.logged(WLBRCM_LOG_DEBUG));
}
