// The lightest operation for a change of a radio's records.
#include <gtest/gtest.h>

#include "host/base/escape.h"
#include "host/state/change.h"

namespace wlhost {
namespace {

RadioRecords sample() {
    RadioRecords records{};
    records.radio.radioOn = 1;
    for (size_t i = 0; i < 3; ++i) {
        copyText(records.bss[i].ifName, i == 0 ? "wl0" : "wl0." + std::to_string(i));
        records.bss[i].enable = i < 2;
        copyText(records.bss[i].bridge, "br0");
    }
    return records;
}

TEST(HostChange, TheLightestOperationThatDoesIt) {
    struct {
        const char *what;
        void (*change)(RadioRecords &records);
        ChangeKind operation;
    } const cases[] = {
        {"nothing", [](RadioRecords &) {}, ChangeKind::kNone},
        {"filter", [](RadioRecords &r) { copyText(r.bss[1].macFilterMode, "DENY"); }, ChangeKind::kFilter},
        {"limits", [](RadioRecords &r) { r.bss[0].upstreamRate = 500; }, ChangeKind::kFilter},
        {"preset", [](RadioRecords &r) { r.bss[1].presetRole = WLBRCM_PRESET_ON_DEMAND; }, ChangeKind::kPreset},
        {"announcer", [](RadioRecords &r) { r.bss[1].presetRole = WLBRCM_PRESET_ANNOUNCER; }, ChangeKind::kNone},
        {"bridge", [](RadioRecords &r) { copyText(r.bss[0].bridge, ""); }, ChangeKind::kLan},
        {"bridge of an SSID that is off", [](RadioRecords &r) { copyText(r.bss[2].bridge, "br1"); }, ChangeKind::kNone},
        {"bridge and filter",
         [](RadioRecords &r) { copyText(r.bss[0].bridge, "br1"), copyText(r.bss[1].macFilterMode, "DENY"); },
         ChangeKind::kLan},
        {"filter and channel", [](RadioRecords &r) { copyText(r.bss[1].macFilterMode, "DENY"), r.radio.channel = 44; },
         ChangeKind::kReload},
        {"SSID switched on", [](RadioRecords &r) { r.bss[2].enable = 1; }, ChangeKind::kReload},
        {"radio switched off", [](RadioRecords &r) { r.radio.radioOn = 0; }, ChangeKind::kReload},
    };
    for (const auto &row : cases) {
        RadioRecords next = sample();
        row.change(next);
        Change change = changeBetween(sample(), next);
        EXPECT_EQ(change.operation, row.operation) << row.what;
        EXPECT_EQ(takesDown(change.operation), row.operation == ChangeKind::kReload);
    }
}

TEST(HostChange, NamesSettingsAndWhatIsUndone) {
    json now = {{"channel", 36}, {"ssids", {{{"key", "one"}}, {{"ssid", "a"}}}}};
    json next = {{"channel", 44}, {"ssids", {{{"key", "two"}}, {{"ssid", "a"}}}}};
    EXPECT_EQ(changedSettings(now, next), "channel, ssids[0].key");

    RadioRecords given = sample(), changed = sample();
    copyText(changed.bss[1].macFilterMode, "ALLOW");
    copyText(changed.bss[0].wpaPsk, "agreed upon");
    EXPECT_EQ(undoneBetween(given, changed, given),
              (json{{{"interface", "wl0"}, {"what", "wps"}}, {{"interface", "wl0.1"}, {"what", "filter"}}}));
    EXPECT_EQ(undoneBetween(given, changed, changed), json::array()) << "the file was brought into line";
}

} // namespace
} // namespace wlhost
