#include "host/report/records.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "host/base/escape.h"
#include "host/base/failure.h"

namespace wlhost {
namespace {

enum class Kind { kSigned, kUnsigned, kText, kBytes };

struct Member {
    const char *name;
    size_t offset;
    Kind kind;
    size_t size;  // of one element
    size_t count; // of an array of numbers or texts, else 1
};

template <typename Type> constexpr Member memberOf(const char *name, size_t offset) {
    using Element = std::remove_extent_t<Type>;
    using Leaf = std::remove_all_extents_t<Type>;
    if constexpr (std::is_same_v<Leaf, char>) // char[Size] or char[Count][Size]
        return {name, offset, Kind::kText, std::is_array_v<Element> ? sizeof(Element) : sizeof(Type),
                std::is_array_v<Element> ? std::extent_v<Type> : 1};
    else if constexpr (std::is_array_v<Type> && sizeof(Leaf) == 1)
        return {name, offset, Kind::kBytes, sizeof(Type), 1};
    else
        return {name, offset, std::is_signed_v<Leaf> ? Kind::kSigned : Kind::kUnsigned, sizeof(Leaf),
                sizeof(Type) / sizeof(Leaf)}; // NOLINT(bugprone-sizeof-expression): also of pointers
}

#define MEMBER(record, name) memberOf<decltype(record::name)>(#name, offsetof(record, name))

#define R(name) MEMBER(WlRadioCfg, name)
constexpr Member kRadio[] = {
    R(radioIndex),
    R(radioOn),
    R(autoChannel),
    R(frameBurst),
    R(atfEnable),
    R(txbfMu),
    R(apCoex),
    R(bgProtection),
    R(htProtect),
    R(txPreamble),
    R(sideband),
    R(rifsAdv),
    R(wirelessMode),
    R(bandwidth),
    R(txPower),
    R(txbfBfr),
    R(txbfBfe),
    R(channel),
    R(acsScanTimer),
    R(acsPolicyIndex),
    R(beaconPeriod),
    R(dtimPeriod),
    R(rtsThreshold),
    R(fragThreshold),
    R(bssCount),
    R(band),
    R(rate),
    R(rxChainPwrsaveParams),
    R(radioPwrsaveParams),
    R(mcs),
    R(multicastRate),
    R(regMode),
    R(dfsPreIsm),
    R(dfsPostIsm),
    R(tpcDb),
    R(lazyWds),
    R(interferenceMode),
    R(acsSkipList),
    R(wdsMode),
    R(wdsMacList),
    R(phyType),
    R(countryCode),
    R(ifName),
    R(baseMac),
    R(gpioOverlays),
};
#undef R

#define S(name) MEMBER(WlSsidCfg, name)
constexpr Member kSsid[] = {
    S(valid),        S(main),          S(objPath),         S(enable),         S(ifName),
    S(ssidName),     S(hideSsid),      S(bssIsolation),    S(multicastFwd),   S(wmm),
    S(wmmApsd),      S(maxSta),        S(macText),         S(bridge),         S(preauth),
    S(authMode),     S(encryption),    S(defaultKeyId),    S(wepKeys),        S(wpaPskFallback),
    S(wpaPsk),       S(rekeyInterval), S(netReauth),       S(radiusIpaddr),   S(radiusPort),
    S(radiusKey),    S(macFilterMode), S(macFilterList),   S(wpsEnable),      S(wpsConfigured),
    S(wpsVersion2),  S(wpsPbcEnable),  S(wpsStaPinEnable), S(wpsApPinEnable), S(wpsConfigMethod),
    S(wpsDevicePin), S(wpsUuid),       S(upstreamRate),    S(downstreamRate), S(protectMF),
    S(presetRole),
};
#undef S

#define C(name) MEMBER(WlCaps, name)
constexpr Member kCaps[] = {
    C(wme), C(wmeApsd),    C(mbss), C(ampdu), C(amsduTx), C(wmf), C(radioPwrsave), C(rxchainPwrsave),
    C(wds), C(wpsCapable), C(txbf), C(atf),   C(muMimo),  C(dhd), C(maxBss),       C(vifNames),
};
#undef C

constexpr Member kIntf[] = {
    MEMBER(WlIntf, intfName),
    MEMBER(WlIntf, state),
    MEMBER(WlIntf, bandCode),
    MEMBER(WlIntf, macAddr),
};

template <typename Number> json numberAt(const uint8_t *place) {
    Number number;
    std::memcpy(&number, place, sizeof number);
    return number;
}

json numberToJson(const Member &member, const uint8_t *place) {
    bool isSigned = member.kind == Kind::kSigned;
    switch (member.size) {
    case 1:
        return isSigned ? numberAt<int8_t>(place) : numberAt<uint8_t>(place);
    case 2:
        return isSigned ? numberAt<int16_t>(place) : numberAt<uint16_t>(place);
    default:
        return isSigned ? numberAt<int32_t>(place) : numberAt<uint32_t>(place);
    }
}

json elementToJson(const Member &member, const uint8_t *place) {
    const char *text = reinterpret_cast<const char *>(place);
    switch (member.kind) {
    case Kind::kText:
        return bytesToJson({text, strnlen(text, member.size)});
    case Kind::kBytes:
        return toHex({text, member.size});
    default:
        return numberToJson(member, place);
    }
}

template <size_t Count> json toJson(const Member (&members)[Count], const void *record) {
    json out = json::object();
    const auto *bytes = static_cast<const uint8_t *>(record);
    for (const Member &member : members) {
        const uint8_t *place = bytes + member.offset;
        if (std::all_of(place, place + member.size * member.count, [](uint8_t byte) { return byte == 0; }))
            continue;
        json &value = out[member.name];
        for (size_t i = 0; member.count > 1 && i < member.count; ++i)
            value.push_back(elementToJson(member, place + i * member.size));
        if (member.count == 1)
            value = elementToJson(member, place);
    }
    return out;
}

void numberFromJson(const json &value, const Member &member, const std::string &path, uint8_t *place) {
    if (!value.is_number_integer() && !value.is_boolean())
        refuseArchive(path, "is not a whole number");
    int64_t number = value.get<int64_t>(), span = int64_t{1} << (8 * member.size);
    int64_t low = member.kind == Kind::kSigned ? -span / 2 : 0;
    if (number < low || number >= low + span)
        refuseArchive(path, "is out of range");
    if (member.size == 1) {
        *place = static_cast<uint8_t>(number);
    } else if (member.size == 2) {
        auto narrow = static_cast<uint16_t>(number);
        std::memcpy(place, &narrow, sizeof narrow);
    } else {
        auto narrow = static_cast<uint32_t>(number);
        std::memcpy(place, &narrow, sizeof narrow);
    }
}

void elementFromJson(const json &value, const Member &member, const std::string &path, uint8_t *place) {
    if (member.kind == Kind::kSigned || member.kind == Kind::kUnsigned)
        return numberFromJson(value, member, path, place);
    std::string bytes = bytesFromJson(member.kind == Kind::kBytes ? json{{"hex", value}} : value);
    bool fits = member.kind == Kind::kBytes ? bytes.size() == member.size
                                            : bytes.size() < member.size && bytes.find('\0') == std::string::npos;
    if (!fits)
        refuseArchive(path, "does not fit into its field");
    std::copy(bytes.begin(), bytes.end(), place);
}

template <size_t Count>
void fromJson(const Member (&members)[Count], const json &from, const std::string &path, void *record) {
    if (!from.is_object())
        refuseArchive(path, "is not an object");
    for (const Member &member : members) {
        uint8_t *place = static_cast<uint8_t *>(record) + member.offset;
        std::memset(place, 0, member.size * member.count);
        auto found = from.find(member.name);
        if (found == from.end())
            continue;
        std::string name = path + "." + member.name;
        if (member.count > 1 && (!found->is_array() || found->size() != member.count))
            refuseArchive(name, "is not a list of " + std::to_string(member.count));
        for (size_t i = 0; i < member.count; ++i)
            elementFromJson(member.count > 1 ? (*found)[i] : *found, member, name, place + i * member.size);
    }
}

bool isUtf8(std::string_view bytes) {
    try {
        return !json(std::string(bytes)).dump().empty();
    } catch (const json::exception &) {
        return false;
    }
}

template <size_t Size> void textFromJson(const json &from, const char *name, char (&field)[Size]) {
    std::string text = bytesFromJson(from.value(name, json("")));
    if (text.size() >= Size)
        refuseArchive(name, "does not fit into its field");
    copyText(field, text);
}

} // namespace

void refuseArchive(const std::string &place, const std::string &what) {
    throw Failure(Status::kUsage, place, what, "the archive is damaged or made by hand");
}

json bytesToJson(std::string_view bytes) {
    return isUtf8(bytes) ? json(std::string(bytes)) : json{{"hex", toHex(bytes)}};
}

std::string bytesFromJson(const json &value) {
    if (value.is_string())
        return value;
    if (value.is_object() && value.size() == 1 && value.contains("hex") && value["hex"].is_string())
        if (auto bytes = fromHex(value["hex"].get<std::string>()))
            return *bytes;
    refuseArchive("text", "is neither a text nor pairs of hexadecimal digits");
}

json recordToJson(const WlIntf &intf) {
    json out = toJson(kIntf, &intf);
    out["radio"] = toJson(kRadio, &intf.radio);
    out["caps"] = toJson(kCaps, &intf.caps);
    json &entries = out["bss"] = json::array();
    for (const WlSsidCfg &bss : intf.bss)
        entries.push_back(toJson(kSsid, &bss));
    return out;
}

void recordFromJson(const json &from, WlIntf &intf) {
    fromJson(kIntf, from, "intf", &intf);
    fromJson(kRadio, from.value("radio", json()), "radio", &intf.radio);
    fromJson(kCaps, from.value("caps", json()), "caps", &intf.caps);
    const json entries = from.value("bss", json());
    if (!entries.is_array() || entries.size() != WLBRCM_MAX_BSS)
        refuseArchive("bss", "is not a list of " + std::to_string(WLBRCM_MAX_BSS));
    for (size_t i = 0; i < WLBRCM_MAX_BSS; ++i)
        fromJson(kSsid, entries[i], "bss[" + std::to_string(i) + "]", &intf.bss[i]);
}

json lanToJson(const WlLanCfg *lan) {
    if (!lan)
        return nullptr;
    json groups = json::array();
    for (int i = 0; lan->groups && i < lan->count; ++i) {
        const WlLanGroup &group = lan->groups[i];
        json members = json::array();
        for (int m = 0; group.members && m < group.memberCount; ++m)
            members.push_back(bytesToJson(group.members[m].ifName));
        groups.push_back({{"name", bytesToJson(group.name)},
                          {"hwaddr", bytesToJson(group.hwaddr)},
                          {"members", std::move(members)}});
    }
    return groups;
}

LanFromJson::LanFromJson(const json &from) : present(!from.is_null()) {
    constexpr size_t kMost = 64;
    if (!present)
        return;
    if (!from.is_array() || from.size() > kMost)
        refuseArchive("lan", "is not a list of groups");
    for (const json &one : from) {
        if (!one.is_object() || !one.value("members", json()).is_array() || one["members"].size() > kMost)
            refuseArchive("lan", "holds what is no group");
        members.emplace_back(one["members"].size());
        for (size_t i = 0; i < members.back().size(); ++i)
            textFromJson({{"member", one["members"][i]}}, "member", members.back()[i].ifName);
        groups.push_back({});
        textFromJson(one, "name", groups.back().name);
        textFromJson(one, "hwaddr", groups.back().hwaddr);
        groups.back().memberCount = static_cast<int32_t>(members.back().size());
    }
    for (size_t i = 0; i < groups.size(); ++i)
        groups[i].members = members[i].data();
    lan.count = static_cast<int32_t>(groups.size());
    lan.groups = groups.data();
}

} // namespace wlhost
