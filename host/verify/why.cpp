// Why a station cannot join: the checks in the order of the way from the radio to it, up to the first that does not
// hold.
#include <algorithm>
#include <cstring>

#include "host/base/word_lists.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/radio_status.h"
#include "host/commands/station_rows.h"
#include "host/verify/checks.h"
#include "host/verify/readers.h"

namespace wlhost {
namespace {

// A check on the way, and why a station depends on it.
struct Link {
    Finding finding;
    std::string why;
};

Link linkOf(const Place &place, const char *check, const char *why) {
    Link link{{}, why};
    link.finding.radio = place.radio();
    link.finding.interface = place.interface();
    link.finding.check = check;
    return link;
}

// What is off as it was asked for is in the way all the same.
Link configurationLink(const Place &place) {
    Link link = linkOf(place, "configuration", "what is switched off is not on the air");
    const std::string file = place.host.configFile();
    compare(link.finding, "enabled", "enabled");
    if (!isRadioWanted(place)) {
        compare(link.finding, "enabled", "the radio is disabled");
        link.finding.cure = "take \"disabled\" of radio " + place.radio() + " out of " + file + ", then wlhost reload";
    } else if (wantedAir(place) == Air::kOff) {
        compare(link.finding, "enabled", "the SSID is disabled");
        link.finding.cure =
            "take \"disabled\" of SSID " + place.interface() + " out of " + file + ", then wlhost reload";
    } else if (wantedAir(place) == Air::kStandby) {
        compare(link.finding, "enabled", "on demand, and switched off");
        link.finding.cure = "wlhost preset " + place.interface() + " on";
    }
    return link;
}

// How many stations may still come, and who would have to go.
struct Room {
    std::string full; // "16 of 16 stations on wl0.1"; empty while there is room
    std::string interface, station;
};

Room roomFor(const Place &place, const std::string &station) {
    size_t own = 0, all = 0;
    Room room;
    for (const Host::Bss &bss : place.host.allBss()) {
        std::string ifname = bss.record().ifName;
        if (bss.intf != place.intf || !place.world.hasInterface(ifname))
            continue;
        std::set<std::string> stations = driverStations(place.world, ifname);
        stations.erase(station);
        all += stations.size();
        if (ifname == place.interface())
            own = stations.size();
        if (!stations.empty() && (room.station.empty() || ifname == place.interface())) {
            room.interface = ifname;
            room.station = *stations.begin();
        }
    }
    auto limit = [&](const std::string &ifname, const char *command) {
        int most = firstNumber(place.world.driver(ifname, command).out).value_or(0);
        return most < 0 ? size_t{0} : static_cast<size_t>(most);
    };
    auto check = [&](size_t count, size_t most, const std::string &where) {
        if (most > 0 && count >= most)
            room.full = std::to_string(count) + " of " + std::to_string(most) + " stations on " + where;
    };
    check(all, limit(place.radio(), "maxassoc"), "all of " + place.radio());
    check(own, limit(place.interface(), "bss_maxassoc"), place.interface());
    return room;
}

Link limitLink(const Place &place, const std::string &station) {
    Link link = linkOf(place, "station limit", "the driver refuses a station above the limit");
    try {
        Room room = roomFor(place, station);
        compare(link.finding, "room for a station", room.full.empty() ? "room for a station" : room.full);
        if (!room.full.empty())
            link.finding.cure = "wlhost kick " + room.interface + " " + room.station;
    } catch (const Failure &failure) {
        link.finding.said = failure.what();
    }
    return link;
}

// What lets a station through the user's side of the filter.
std::string admission(const WlSsidCfg &bss, const std::string &station) {
    bool allow = std::strcmp(filterMode(bss), "allow") == 0;
    std::set<std::string> list = listedStations(bss);
    if (allow)
        list.insert(station);
    else
        list.erase(station);
    std::string command = std::string("wlhost filter ") + bss.ifName +
                          (allow          ? " allow"
                           : list.empty() ? " off"
                                          : " deny");
    for (const std::string &one : list)
        command += " " + one;
    return command;
}

// Who denies a station, by the side of the filter that has to change: the ban hides behind no user's list.
void explainDenial(const Place &place, const std::string &station, Finding &finding) {
    const WlSsidCfg &bss = *place.bss;
    std::string mode = filterMode(bss);
    bool listed = listedStations(bss).count(station) > 0;
    auto bans = place.host.bans.find(bss.ifName);
    if (bans != place.host.bans.end() && bans->second.count(station) > 0) {
        finding.found = "banned at run time";
        finding.cure = "wlhost unban " + place.interface() + " " + station;
    } else if ((mode == "deny" && listed) || (mode == "allow" && !listed)) {
        finding.found = mode == "deny" ? "denied by the user's filter" : "not in the user's list of those allowed";
        finding.cure = admission(bss, station);
    } else {
        finding.found = "denied by the driver's filter, which nobody asked for: " + finding.found;
    }
}

// With a station: whether the driver's filter lets it in. Without: whether that filter is the one asked for.
Link filterLink(const Place &place, const Check &check, const std::string &station) {
    Link link{carryOut(check, place), "the driver refuses whom its filter denies"};
    Finding &finding = link.finding;
    if (station.empty() || !finding.said.empty())
        return link;
    int mode = firstNumber(place.world.driver(place.interface(), "macmode").out).value_or(0);
    bool listed = mode != 0 && readStations(place.world.driver(place.interface(), "mac").out).count(station) > 0;
    finding.wanted = "admitted";
    finding.holds = mode == 0 || listed == (mode == 2);
    if (finding.holds) {
        finding.found = finding.wanted;
        finding.cure.clear();
    } else {
        explainDenial(place, station, finding);
    }
    return link;
}

std::string secondsAgo(const StationEvent &event) {
    auto ago = std::chrono::steady_clock::now() - event.time;
    return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(ago).count()) + " s ago";
}

// What the last events tell of a station that knocked and was not let in. The driver tells of no other reason than
// these.
const char *refusalIn(const std::deque<StationEvent> &events, const WlSsidCfg &bss) {
    constexpr auto kAtOnce = std::chrono::seconds(1);
    if (events.empty() || events.back().interface != bss.ifName)
        return nullptr;
    if (events.back().event == "pruned")
        return "its security does not fit the SSID's";
    const StationEvent &before = events[events.size() < 2 ? 0 : events.size() - 2];
    bool sentAway = before.event == "associated" && events.back().event == "deauthenticated" &&
                    before.interface == bss.ifName && events.back().time - before.time < kAtOnce;
    return sentAway && securityName(bss) != "none" ? "it came and was sent away at once, as with a wrong key" : nullptr;
}

Link eventsLink(const Place &place, const std::string &station) {
    Link link = linkOf(place, "events", "a station with other settings than the SSID's is sent away");
    std::deque<StationEvent> events = place.host.history.of(station);
    const char *refusal = station.empty() ? nullptr : refusalIn(events, *place.bss);
    link.finding.wanted = "not refused";
    std::string seen;
    for (const StationEvent &event : events)
        seen += (seen.empty() ? "" : ", ") + event.event + " " + secondsAgo(event);
    link.finding.found = refusal ? std::string(refusal) + " (" + seen + ")" : seen.empty() ? "nothing seen" : seen;
    link.finding.holds = !refusal;
    if (refusal)
        link.finding.cure = "give the station the key and security (" + securityName(*place.bss) + ") of the SSID";
    return link;
}

std::vector<Link> wayTo(const Place &bss, const std::string &station) {
    Place radio{bss.host, bss.world, bss.intf}, gateway{bss.host, bss.world};
    std::vector<Link> way = {configurationLink(bss)};
    for (const Check &check : checks()) {
        const Place &place = check.scope == Scope::kRadio ? radio : check.scope == Scope::kBss ? bss : gateway;
        // Without WPA the authentication daemons have nothing to do.
        bool needed = check.matters && (check.scope != Scope::kGateway || needsAuthenticator(*bss.bss));
        if (needed && check.applies(place))
            way.push_back({carryOut(check, place), check.matters});
    }
    way.push_back(limitLink(bss, station));
    for (const Check &check : checks())
        if (check.subject == kOfFilter)
            way.push_back(filterLink(bss, check, station));
    way.push_back(eventsLink(bss, station));
    return way;
}

} // namespace

json why(Host &host, const json &args) {
    Host::Bss bss = host.bss(textArg(args, "interface"));
    std::string station = textArg(args, "station");
    if (!station.empty())
        station = formatMac(macOf(station));
    World world(host);
    json rows = json::array();
    json result = {{"interface", bss.record().ifName},
                   {"station", station.empty() ? json() : json(station)},
                   {"link", nullptr},
                   {"found", nullptr},
                   {"wanted", nullptr},
                   {"why", nullptr},
                   {"cure", nullptr}};
    for (const Link &link : wayTo({host, world, bss.intf, &bss.record(), true}, station)) {
        json row = findingRow(link.finding);
        rows.push_back(row);
        if (link.finding.holds || !result["link"].is_null())
            continue;
        result["link"] = row["check"];
        result["wanted"] = row["wanted"];
        result["found"] = row["said"].is_null() ? row["found"] : json("no answer: " + link.finding.said);
        result["why"] = link.why;
        result["cure"] = row["cure"];
    }
    result["checks"] = std::move(rows);
    return result;
}

Status meaningOfWhy(const json &result) { return result["link"].is_null() ? Status::kDone : Status::kFailed; }

} // namespace wlhost
