#include "host/state/change.h"

#include <algorithm>
#include <cstring>

#include "host/base/escape.h"
#include "host/base/word_lists.h"

namespace wlhost {
namespace {

template <typename Type> bool differ(const Type &one, const Type &other) {
    return std::memcmp(&one, &other, sizeof one) != 0;
}

bool onDemand(const WlSsidCfg &bss) { return bss.presetRole == WLBRCM_PRESET_ON_DEMAND; }

bool filterDiffers(const WlSsidCfg &now, const WlSsidCfg &next) {
    return differ(now.macFilterMode, next.macFilterMode) || differ(now.macFilterList, next.macFilterList);
}

bool limitsDiffer(const WlSsidCfg &now, const WlSsidCfg &next) {
    return now.upstreamRate != next.upstreamRate || now.downstreamRate != next.downstreamRate;
}

// What a WPS session settles.
bool networkDiffers(const WlSsidCfg &now, const WlSsidCfg &next) {
    return differ(now.ssidName, next.ssidName) || differ(now.authMode, next.authMode) ||
           differ(now.encryption, next.encryption) || differ(now.wpaPsk, next.wpaPsk);
}

void takeLightSettings(WlSsidCfg &bss, const WlSsidCfg &from) {
    std::memcpy(bss.macFilterMode, from.macFilterMode, sizeof bss.macFilterMode);
    std::memcpy(bss.macFilterList, from.macFilterList, sizeof bss.macFilterList);
    std::memcpy(bss.bridge, from.bridge, sizeof bss.bridge);
    bss.upstreamRate = from.upstreamRate;
    bss.downstreamRate = from.downstreamRate;
    bss.presetRole = from.presetRole;
}

// A radio that is off has nobody to lose.
bool isLight(const RadioRecords &now, const RadioRecords &next) {
    RadioRecords same = now;
    for (size_t i = 0; i < WLBRCM_MAX_BSS; ++i)
        takeLightSettings(same.bss[i], next.bss[i]);
    return next.radio.radioOn && same == next;
}

// A BSS that is off takes no setting until it goes on the air.
LightChange lightChange(size_t index, const WlSsidCfg &now, const WlSsidCfg &next) {
    bool on = next.enable != 0;
    return {index, on && filterDiffers(now, next), on && limitsDiffer(now, next), on && onDemand(now) != onDemand(next),
            on && differ(now.bridge, next.bridge)};
}

ChangeKind lightest(const LightChange &part) {
    return part.bridge                  ? ChangeKind::kLan
           : part.preset                ? ChangeKind::kPreset
           : part.filter || part.limits ? ChangeKind::kFilter
                                        : ChangeKind::kNone;
}

} // namespace

const char *operationWord(ChangeKind operation) {
    constexpr const char *kWords[] = {"none", "filter", "preset", "lan", "reload", "bring-up", "down"};
    return kWords[static_cast<size_t>(operation)];
}

Change changeBetween(const RadioRecords &now, const RadioRecords &next) {
    Change change;
    if (now == next)
        return change;
    if (!isLight(now, next)) {
        change.operation = ChangeKind::kReload;
        return change;
    }
    for (size_t i = 0; i < WLBRCM_MAX_BSS; ++i) {
        LightChange part = lightChange(i, now.bss[i], next.bss[i]);
        change.operation = std::max(change.operation, lightest(part));
        change.parts.push_back(part);
    }
    return change;
}

std::string changedSettings(const json &now, const json &next) {
    std::vector<std::string> names;
    for (const json &step : json::diff(now, next)) {
        std::string name;
        for (const std::string &word : splitWords(step["path"].get<std::string>(), '/'))
            name += word == "-" ? "" : // one more in a list
                        word.find_first_not_of("0123456789") == std::string::npos ? "[" + word + "]"
                                                                                  : (name.empty() ? "" : ".") + word;
        name = escapeBytes(name);
        if (std::count(names.begin(), names.end(), name) == 0)
            names.push_back(name);
    }
    return joined(names, "");
}

json undoneBetween(const RadioRecords &given, const RadioRecords &now, const RadioRecords &next) {
    struct {
        const char *what;
        bool (*differs)(const WlSsidCfg &, const WlSsidCfg &);
    } const kRunTimeSettings[] = {{"filter", filterDiffers}, {"wps", networkDiffers}};
    json rows = json::array();
    for (size_t i = 0; i < WLBRCM_MAX_BSS; ++i)
        for (const auto &row : kRunTimeSettings)
            if (row.differs(given.bss[i], now.bss[i]) && row.differs(now.bss[i], next.bss[i]))
                rows.push_back({{"interface", now.bss[i].ifName}, {"what", row.what}});
    return rows;
}

} // namespace wlhost
