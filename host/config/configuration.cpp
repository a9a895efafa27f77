#include "host/config/configuration.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "host/base/escape.h"
#include "host/base/word_lists.h"
#include "host/config/contradictions.h"

namespace wlhost {
namespace {

// A member, or null when there is none of that type (a wrong type was reported when the rows were read).
const json &memberOf(const json &node, const char *name) {
    static const json kNone;
    auto member = node.is_object() ? node.find(name) : node.end();
    return node.is_object() && member != node.end() ? *member : kNone;
}

// The records in a list, or an empty list. One that is too long was refused when the rows were read: its end does not
// matter any more.
std::vector<json> recordsOf(const json &node, const Field &field) {
    const json &member = memberOf(node, field.name);
    if (!member.is_array())
        return {};
    return {member.begin(), member.begin() + std::min<ptrdiff_t>(field.high, static_cast<ptrdiff_t>(member.size()))};
}

SsidFields readSsid(const json &node, const Path &path, const std::string &radio, size_t index, Problems &problems) {
    SsidFields ssid;
    readRecord(node, path, *fieldAt({"radios", "ssids"}).children, &ssid, sizeof ssid, problems);
    WlSsidCfg &record = ssid.record;
    const SecurityKind &security = kSecurityKinds[static_cast<size_t>(ssid.security)];
    copyText(record.authMode, security.authMode);
    copyText(record.encryption, security.encryption);
    record.valid = 1;
    if (record.ifName[0] == '\0')
        copyText(record.ifName, index == 0 ? radio : radio + "." + std::to_string(index));
    if (record.objPath[0] == '\0')
        copyText(record.objPath, record.ifName);
    if (record.wpsConfigMethod == 0)
        record.wpsConfigMethod = record.wpsVersion2 ? 0x2288 : 0x88;
    return ssid;
}

void completeRadio(RadioFields &fields) {
    WlRadioCfg &record = fields.record;
    const HtMode &width = kHtModes[static_cast<size_t>(fields.htmode)];
    record.bandwidth = width.width;
    record.sideband = width.sideband;
    record.autoChannel = record.channel == 0;
    if (!fields.beamforming)
        record.txbfBfr = record.txbfBfe = record.txbfMu = 0;
    if (record.radioIndex == 0) { // wl0 is the host's radio 1
        std::string name = record.ifName;
        size_t digits = name.find_last_not_of("0123456789") + 1;
        int number = digits < name.size() && name.size() - digits < 4 ? std::atoi(name.c_str() + digits) : 0;
        record.radioIndex = static_cast<int8_t>(std::min(number, 126) + 1);
    }
}

RadioConfig readRadio(const json &node, const Path &path, Problems &problems) {
    RadioConfig radio;
    readRecord(node, path, *fieldAt({"radios"}).children, &radio.fields, sizeof radio.fields, problems);
    completeRadio(radio.fields);
    const std::vector<json> ssids = recordsOf(node, fieldAt({"radios", "ssids"}));
    for (size_t i = 0; i < ssids.size(); ++i)
        radio.ssids.push_back(readSsid(ssids[i], path / "ssids" / i, radio.name(), i, problems));
    bool marked = std::any_of(radio.ssids.begin(), radio.ssids.end(), [](const auto &s) { return s.record.main; });
    if (!marked && !radio.ssids.empty())
        radio.ssids[0].record.main = 1;
    return radio;
}

void checkRecords(const Config &config, Problems &problems) {
    for (size_t r = 0; r < config.radios.size(); ++r) {
        const json &node = config.document.root["radios"][r];
        Path path = Path() / "radios" / r;
        for (size_t i = 0; i < config.radios[r].ssids.size(); ++i)
            checkSsid(config.radios[r].ssids[i], i, node["ssids"][i], path / "ssids" / i, problems);
        checkRadio(config.radios[r], node, path, problems);
    }
    checkConfig(config, problems);
}

const char *usualMode(int band, const HtMode &width) {
    return band == WLBRCM_BAND_2G ? "bgn" : width.vht ? "anac" : "an";
}

int8_t modeNumber(const char *name) {
    auto found = std::find_if(kHwModes.begin(), kHwModes.end(),
                              [&](const HwMode &mode) { return std::strcmp(mode.name, name) == 0; });
    return static_cast<int8_t>(found - kHwModes.begin());
}

const char *phyOf(const WlRadioCfg &radio) {
    const HwMode &mode = kHwModes[static_cast<size_t>(radio.wirelessMode)];
    return mode.vht ? "v" : mode.ht ? "n" : radio.band == WLBRCM_BAND_5G ? "a" : "g";
}

// A version-1 style UUID whose node is the radio's address, so that it stays the same from start to start.
std::string uuidOf(const uint8_t mac[6]) {
    return "00000000000010008000" + toHex({reinterpret_cast<const char *>(mac), 6});
}

} // namespace

int interfaceNumber(const std::string &ifname) {
    size_t dot = ifname.find('.');
    return dot == std::string::npos ? 0 : std::atoi(ifname.c_str() + dot + 1);
}

Config Config::load(const std::string &file) { return from(Document::load(file)); }

Config Config::from(Document document) {
    Config config{std::move(document), {}, {}, {}};
    const json &root = config.document.root;
    Problems problems(config.document);
    char nothing = 0;
    readRecord(root, Path(), rootFields(), &nothing, 0, problems);
    const std::vector<json> groups = recordsOf(memberOf(root, "lan"), fieldAt({"lan", "groups"}));
    for (size_t g = 0; g < groups.size(); ++g) {
        config.lan.emplace_back();
        readRecord(groups[g], Path() / "lan" / "groups" / g, *fieldAt({"lan", "groups"}).children, &config.lan.back(),
                   sizeof(GroupFields), problems);
    }
    const std::vector<json> radios = recordsOf(root, fieldAt({"radios"}));
    for (size_t r = 0; r < radios.size(); ++r)
        config.radios.push_back(readRadio(radios[r], Path() / "radios" / r, problems));
    // Settings are compared with each other once each of them is sound.
    problems.throwIfAny();
    checkRecords(config, problems);
    problems.throwIfAny();
    config.warnings = problems.warnings();
    return config;
}

bool RadioRecords::operator==(const RadioRecords &other) const { return std::memcmp(this, &other, sizeof *this) == 0; }

RadioRecords bindRadio(const Config &config, size_t index, const WlIntf &intf, const char *phyType,
                       Problems &problems) {
    RadioConfig radio = config.radios[index];
    WlRadioCfg &record = radio.fields.record;
    const json &node = config.document.root["radios"][index];
    Path path = Path() / "radios" / index;

    int band = intf.bandCode == WLBRCM_BANDCODE_5G ? WLBRCM_BAND_5G : WLBRCM_BAND_2G;
    if (record.band != 0 && record.band != band)
        problems.add(path / "band", shown(node["band"]) + " is not the band of " + radio.name(),
                     band == WLBRCM_BAND_5G ? "\"5g\"" : "\"2g\"");
    else
        checkChannel(radio.fields, band, node, path, problems);
    if (radio.ssids.size() > static_cast<size_t>(intf.caps.maxBss))
        problems.add(path / "ssids", std::to_string(radio.ssids.size()) + " SSIDs",
                     radio.name() + " carries at most " + std::to_string(intf.caps.maxBss));

    for (size_t i = 0; i < radio.ssids.size(); ++i) {
        if (interfaceNumber(radio.ssids[i].record.ifName) >= intf.caps.maxBss)
            problems.add(path / "ssids" / i / "ifname", inQuotes(radio.ssids[i].record.ifName) + " does not exist",
                         radio.name() + " carries at most " + std::to_string(intf.caps.maxBss) + " SSIDs");
    }
    record.band = band;
    if (record.wirelessMode < 0)
        record.wirelessMode = modeNumber(usualMode(band, kHtModes[static_cast<size_t>(radio.fields.htmode)]));
    if (record.phyType[0] == '\0')
        copyText(record.phyType, phyType ? phyType : phyOf(record));
    if (!node.contains("macaddr"))
        std::memcpy(record.baseMac, intf.macAddr, sizeof record.baseMac);
    record.bssCount = static_cast<uint16_t>(radio.ssids.size());

    RadioRecords records;
    std::memset(&records, 0, sizeof records);
    for (size_t i = 0; i < radio.ssids.size() && i < WLBRCM_MAX_BSS; ++i) {
        WlSsidCfg &bss = radio.ssids[i].record;
        if (bss.wpsEnable && bss.wpsUuid[0] == '\0')
            copyText(bss.wpsUuid, uuidOf(intf.macAddr));
        std::memcpy(&records.bss[i], &bss, sizeof bss);
    }
    std::memcpy(&records.radio, &record, sizeof record);
    return records;
}

std::vector<std::string> lanMembers(const Config &config, const GroupFields &group) {
    std::vector<std::string> members = splitWords(group.ports);
    for (const RadioConfig &radio : config.radios) {
        for (const SsidFields &ssid : radio.ssids)
            if (std::strcmp(ssid.record.bridge, group.name) == 0 &&
                std::count(members.begin(), members.end(), ssid.record.ifName) == 0)
                members.push_back(ssid.record.ifName);
    }
    return members;
}

} // namespace wlhost
