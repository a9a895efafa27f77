#include "host/state/lan_records.h"

#include <fstream>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/word_lists.h"

namespace wlhost {
namespace {

std::string systemAddress(const std::string &interface) {
    std::ifstream file("/sys/class/net/" + interface + "/address");
    std::string address;
    file >> address;
    auto mac = parseMac(address);
    return mac ? formatMac(*mac, true) : "";
}

} // namespace

LanRecords::LanRecords(const Config &config, bool clears) {
    for (const GroupFields &fields : config.lan) {
        members_.emplace_back();
        for (const std::string &name : lanMembers(config, fields)) {
            members_.back().push_back({});
            copyText(members_.back().back().ifName, name);
        }
        asked_.push_back(std::string(fields.name) + " " + fields.hwaddr + " " + joined(lanMembers(config, fields)));
        WlLanGroup group{};
        copyText(group.name, fields.name);
        copyText(group.hwaddr, fields.hwaddr[0] ? fields.hwaddr : systemAddress(fields.name));
        group.memberCount = static_cast<int32_t>(members_.back().size());
        groups_.push_back(group);
    }
    if (groups_.empty() && clears) {
        members_.emplace_back();
        groups_.emplace_back();
    }
    for (size_t i = 0; i < groups_.size(); ++i)
        groups_[i].members = members_[i].data();
    lan_.count = static_cast<int32_t>(groups_.size());
    lan_.groups = groups_.data();
}

json LanRecords::describe() const {
    json groups = json::array();
    for (size_t i = 0; i < count(); ++i) {
        json ports = json::array();
        for (const WlLanMember &member : members_[i])
            ports.push_back(member.ifName);
        auto mac = parseMac(groups_[i].hwaddr);
        groups.push_back(
            {{"name", groups_[i].name}, {"mac", mac ? json(formatMac(*mac)) : json()}, {"ports", std::move(ports)}});
    }
    return groups;
}

} // namespace wlhost
