#include "host/config/contradictions.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "host/base/addresses.h"
#include "host/base/word_lists.h"

namespace wlhost {
namespace {

struct ChannelBlock {
    int first, last;
};
constexpr ChannelBlock k5gBlocks[] = {{36, 64}, {100, 144}, {149, 165}};
constexpr const char *k2gChannels = "1 to 14";
constexpr const char *k5gChannels = "36 to 64 and 100 to 144 in steps of 4, 149 to 165 in steps of 4";

const char *bandText(int band) { return band == WLBRCM_BAND_5G ? "5 GHz" : "2.4 GHz"; }

const ChannelBlock *blockOf(int channel) {
    for (const ChannelBlock &block : k5gBlocks)
        if (channel >= block.first && channel <= block.last && (channel - block.first) % 4 == 0)
            return &block;
    return nullptr;
}

bool isChannel(int band, int channel) {
    return band == WLBRCM_BAND_2G ? channel >= 1 && channel <= 14 : blockOf(channel) != nullptr;
}

// Whether the mode's whole width around the control channel exists.
bool widthFits(int band, int channel, const HtMode &mode) {
    if (mode.width == 20)
        return true;
    bool upper = mode.sideband == 1; // the control channel is the upper one of the pair
    if (band == WLBRCM_BAND_2G)
        return mode.width == 40 && (upper ? channel >= 5 && channel <= 13 : channel <= 9);
    const ChannelBlock *block = blockOf(channel);
    int place = (channel - block->first) / 4;
    int count = (block->last - block->first) / 4 + 1;
    if (mode.width == 80)
        return place / 4 * 4 + 4 <= count;
    return upper ? place % 2 == 1 : place % 2 == 0 && place + 1 < count;
}

bool modeFits(const HwMode &mode, int band, const HtMode &width) {
    bool inBand = band == 0 || (band == WLBRCM_BAND_2G ? mode.band2g : mode.band5g);
    bool wide = width.width == 20 || mode.ht;
    return inBand && wide && (!width.vht || mode.vht || band == WLBRCM_BAND_2G);
}

template <typename Rows, typename Fits> std::string fittingNames(const Rows &rows, Fits fits) {
    std::vector<std::string> names;
    for (const auto &row : rows)
        if (fits(row))
            names.push_back(row.name);
    return joined(names);
}

void checkKeys(const SsidFields &ssid, const std::string &security, const json &node, const Path &path,
               Problems &problems) {
    bool psk = security == "psk2" || security == "psk-mixed";
    bool wep = std::strcmp(ssid.record.encryption, "wep") == 0;
    bool hasKey = node.contains("key") || node.contains("key_fallback");
    if (psk && !hasKey)
        problems.add(path, "key is missing",
                     "encryption " + security + " needs 8 to 63 characters, or 64 hexadecimal digits");
    for (const char *name : {"key", "key_fallback"})
        if (!psk && node.contains(name))
            problems.add(path / name, "has no use with encryption " + security,
                         wep ? "WEP has key1 to key4" : "for psk2 and psk-mixed");
    for (const char *name : {"key1", "key2", "key3", "key4", "wep_default_key"})
        if (!wep && node.contains(name))
            problems.add(path / name, "has no use with encryption " + security, "for wep, wep-shared and wep-auto");
    std::string used = "key" + std::to_string(ssid.record.defaultKeyId);
    if (wep && ssid.record.defaultKeyId >= 1 && !node.contains(used))
        problems.add(path, used + " is missing",
                     "encryption " + security + " has key1 to key4 and sends with number " +
                         std::to_string(ssid.record.defaultKeyId));
    bool radius = security == "wpa2";
    if (radius && !node.contains("radius"))
        problems.add(path, "radius is missing", "encryption wpa2 needs a server");
    if (!radius && node.contains("radius"))
        problems.add(path / "radius", "has no use with encryption " + security, "for wpa2");
}

void checkProtection(const SsidFields &ssid, const std::string &security, const Path &path, Problems &problems) {
    bool wpa2 = security == "psk2" || security == "wpa2";
    int most = wpa2 ? 2 : security == "psk-mixed" ? 1 : 0;
    if (ssid.record.protectMF > most)
        problems.add(path / "ieee80211w",
                     std::to_string(ssid.record.protectMF) + " does not go with encryption " + security,
                     "at most " + std::to_string(most));
}

void checkWps(const SsidFields &ssid, size_t index, const std::string &security, const Path &path, Problems &problems) {
    if (!ssid.record.wpsEnable)
        return;
    Path at = path / "wps" / "enabled";
    if (index > 0)
        problems.add(at, "true is refused", "WPS runs on the radio's first SSID only");
    if (security != "psk2" && security != "psk-mixed" && security != "none")
        problems.add(at, "true does not go with encryption " + security, "psk2, psk-mixed or none");
    if (ssid.record.hideSsid)
        problems.add(at, "true does not go with a hidden SSID", "stations could not find it");
}

void checkInterface(const RadioConfig &radio, size_t i, const Path &path, Problems &problems) {
    std::string ifname = radio.ssids[i].record.ifName, own = radio.name();
    if (i == 0 && ifname != own)
        problems.add(path / "ifname", inQuotes(ifname) + " is not the radio's interface", "the first SSID is " + own);
    std::string number = ifname.substr(std::min(own.size() + 1, ifname.size()));
    bool virtualName = ifname.compare(0, own.size() + 1, own + ".") == 0 && number.size() == 1 && number >= "1" &&
                       number < std::to_string(int{WLBRCM_MAX_BSS});
    if (i > 0 && (!virtualName || !isInterfaceName(ifname)))
        problems.add(path / "ifname", inQuotes(ifname) + " is no interface of " + own,
                     own + ".1 to " + own + "." + std::to_string(WLBRCM_MAX_BSS - 1));
}

// Refuses a name that was seen before.
class Once {
  public:
    explicit Once(const char *what) : what_(what) {}
    void check(const std::string &name, const Path &path, Problems &problems) {
        if (auto [first, added] = seen_.emplace(name, path.text()); !added)
            problems.add(path, inQuotes(name) + " is the " + what_ + " at " + first->second + " already");
    }

  private:
    const char *what_;
    std::map<std::string, std::string> seen_;
};

// The module leaves out what does not fit into its text; a bridge without some of its members is not what was asked.
void checkMembers(const Config &config, const GroupFields &group, const Path &path, Problems &problems) {
    size_t length = 0;
    for (const std::string &member : lanMembers(config, group))
        length += member.size() + 1;
    if (length > sizeof group.ports)
        problems.add(path,
                     "is " + std::to_string(length - 1) + " characters when joined, with the interfaces of its SSIDs",
                     "at most " + std::to_string(sizeof group.ports - 1));
}

void checkNetwork(const Config &config, const WlSsidCfg &record, const Path &path, Problems &problems) {
    std::string bridge = record.bridge;
    std::vector<std::string> names;
    for (const GroupFields &group : config.lan) {
        names.push_back(group.name);
        std::vector<std::string> members = splitWords(group.ports);
        if (bridge != group.name && std::count(members.begin(), members.end(), record.ifName) > 0)
            problems.add(path, inQuotes(record.bridge) + " differs from " + group.name + ", which has " +
                                   record.ifName + " among its ports");
    }
    if (!bridge.empty() && std::count(names.begin(), names.end(), bridge) == 0)
        problems.add(path, inQuotes(record.bridge) + " is no LAN group", joined(names));
}

// Stations know a network by its name alone: with another key they cannot roam, and often not even join.
void warnOfKeys(const Config &config, Problems &problems) {
    std::map<std::string, std::pair<Path, std::string>> keys; // of the first SSID by a name
    for (size_t r = 0; r < config.radios.size(); ++r) {
        for (size_t i = 0; i < config.radios[r].ssids.size(); ++i) {
            const WlSsidCfg &record = config.radios[r].ssids[i].record;
            const std::string key = record.wpaPsk[0] != '\0' ? record.wpaPsk : record.wpaPskFallback;
            Path path = Path() / "radios" / r / "ssids" / i;
            if (key.empty() || !record.enable)
                continue;
            auto [first, added] = keys.emplace(record.ssidName, std::make_pair(path, key));
            if (!added && first->second.second != key)
                problems.warn(path / "key", "the same SSID has another key at " + first->second.first.text());
        }
    }
}

} // namespace

int impliedBand(const RadioFields &radio) {
    const WlRadioCfg &record = radio.record;
    if (record.band != 0)
        return record.band;
    if (record.channel != 0)
        return record.channel <= 14 ? WLBRCM_BAND_2G : WLBRCM_BAND_5G;
    if (record.wirelessMode < 0)
        return 0;
    const HwMode &mode = kHwModes[static_cast<size_t>(record.wirelessMode)];
    return mode.band2g && mode.band5g ? 0 : mode.band2g ? WLBRCM_BAND_2G : WLBRCM_BAND_5G;
}

void checkChannel(const RadioFields &radio, int band, const json &node, const Path &path, Problems &problems) {
    int channel = radio.record.channel;
    const HtMode &width = kHtModes[static_cast<size_t>(radio.htmode)];
    bool channelExists = band == 0 || channel == 0 || isChannel(band, channel);
    if (!channelExists)
        problems.add(path / "channel", std::to_string(channel) + " is no " + bandText(band) + " channel",
                     band == WLBRCM_BAND_2G ? k2gChannels : k5gChannels);
    if (band == WLBRCM_BAND_2G && width.width == 80)
        problems.add(path / "htmode", inQuotes(width.name) + " does not go with 2.4 GHz",
                     fittingNames(kHtModes, [](const HtMode &m) { return m.width < 80; }));
    else if (band != 0 && channel != 0 && channelExists && !widthFits(band, channel, width))
        problems.add(path / "htmode", inQuotes(width.name) + " does not fit channel " + std::to_string(channel),
                     fittingNames(kHtModes, [&](const HtMode &m) { return widthFits(band, channel, m); }));
    int8_t number = radio.record.wirelessMode;
    const HwMode *mode = number < 0 ? nullptr : &kHwModes[static_cast<size_t>(number)];
    if (mode && !modeFits(*mode, band, width)) {
        problems.add(path / "hwmode",
                     inQuotes(mode->name) + " does not go with " +
                         (band == 0 ? "" : std::string(bandText(band)) + " and ") + width.name,
                     fittingNames(kHwModes, [&](const HwMode &m) { return modeFits(m, band, width); }));
    }
    if (node.contains("rate") && radio.record.rate != 0 && radio.record.mcs < 0)
        problems.add(path / "rate", std::to_string(radio.record.rate) + " has no effect without mcs", "0, or set mcs");
}

void checkSsid(const SsidFields &ssid, size_t index, const json &node, const Path &path, Problems &problems) {
    if (node.contains("ssid") && node.contains("ssid_hex"))
        problems.add(path, "ssid and ssid_hex are both given", "one of them");
    if (!node.contains("ssid") && !node.contains("ssid_hex"))
        problems.add(path, "ssid is missing", kSsidRule.allowed);
    std::string security = kSecurityKinds[static_cast<size_t>(ssid.security)].name;
    checkKeys(ssid, security, node, path, problems);
    checkProtection(ssid, security, path, problems);
    checkWps(ssid, index, security, path, problems);
    if (index > 3 && std::strcmp(ssid.record.encryption, "wep") == 0)
        problems.add(path / "encryption", inQuotes(security) + " is refused",
                     "WEP goes with a radio's first four SSIDs only");
    if (node.contains("maclist") && ssid.record.macFilterMode[0] == '\0')
        problems.add(path / "maclist", "has no use without a filter", "set macfilter to deny or allow");
    if (index == 0 && ssid.record.presetRole == WLBRCM_PRESET_ON_DEMAND)
        problems.add(path / "preset", "\"on-demand\" is refused", "the first SSID is the radio's own interface");
}

void checkRadio(const RadioConfig &radio, const json &node, const Path &path, Problems &problems) {
    checkChannel(radio.fields, impliedBand(radio.fields), node, path, problems);
    if (radio.ssids.empty() && radio.fields.record.radioOn)
        problems.add(path, "ssids is missing", "1 to 6, unless the radio is disabled");
    int mainIndex = -1, announcer = -1;
    for (size_t i = 0; i < radio.ssids.size(); ++i) {
        Path at = path / "ssids" / i;
        checkInterface(radio, i, at, problems);
        const WlSsidCfg &record = radio.ssids[i].record;
        auto single = [&](bool marked, int &first, const char *name) {
            if (marked && first >= 0)
                problems.add(at / name, "ssids[" + std::to_string(first) + "] is marked already",
                             "at most one of a radio");
            else if (marked)
                first = static_cast<int>(i);
        };
        single(record.main, mainIndex, "main");
        single(record.presetRole == WLBRCM_PRESET_ANNOUNCER, announcer, "preset");
    }
}

void checkConfig(const Config &config, Problems &problems) {
    Once radios("name"), interfaces("interface"), bridges("name"), ports("port");
    for (size_t g = 0; g < config.lan.size(); ++g) {
        Path path = Path() / "lan" / "groups" / g;
        bridges.check(config.lan[g].name, path / "name", problems);
        for (const std::string &port : splitWords(config.lan[g].ports))
            ports.check(port, path / "ports", problems);
        checkMembers(config, config.lan[g], path / "ports", problems);
    }
    for (size_t r = 0; r < config.radios.size(); ++r) {
        Path path = Path() / "radios" / r;
        radios.check(config.radios[r].name(), path / "name", problems);
        for (size_t i = 0; i < config.radios[r].ssids.size(); ++i) {
            const WlSsidCfg &record = config.radios[r].ssids[i].record;
            interfaces.check(record.ifName, path / "ssids" / i / "ifname", problems);
            checkNetwork(config, record, path / "ssids" / i / "network", problems);
        }
    }
    warnOfKeys(config, problems);
}

} // namespace wlhost
