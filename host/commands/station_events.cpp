#include "host/commands/station_events.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "host/base/escape.h"
#include "host/base/times.h"
#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/commands/station_rows.h"

namespace wlhost {
namespace {

struct EventKind {
    int32_t code;
    const char *name;
    bool describes; // the record tells more than who it was
};
constexpr EventKind kKinds[] = {{WLBRCM_EVENT_ASSOCIATED, "associated", true},
                                {WLBRCM_EVENT_DEAUTHENTICATED, "deauthenticated", false},
                                {WLBRCM_EVENT_REASSOCIATED, "reassociated", true},
                                {WLBRCM_EVENT_PRUNED, "pruned", false}};

const EventKind *kindOf(const WlEvent &event) {
    const auto *kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                    [&](const EventKind &one) { return one.code == event.event; });
    return kind == std::end(kKinds) ? nullptr : kind;
}

WlStaInfo stationOf(const WlEvent &event) {
    WlStaInfo station;
    std::memcpy(&station, event.sta, sizeof station);
    return station;
}

} // namespace

void noteEvent(Host &host, const WlEvent &event) {
    const EventKind *kind = kindOf(event);
    json mac = stationMac(stationOf(event));
    if (kind && mac.is_string())
        host.history.note(mac, escapeBytes(event.ifName), kind->name);
}

json eventRow(const WlEvent &event, uint64_t sequence) {
    const EventKind *kind = kindOf(event);
    bool known = kind != nullptr;
    WlStaInfo station = stationOf(event);
    json row = known && !kind->describes ? json::object() : stationRow(station);
    row["mac"] = stationMac(station);
    row["sequence"] = sequence;
    row["time"] = utcText(std::chrono::system_clock::now());
    row["event"] = known ? json(kind->name) : json();
    row["radio"] = escapeBytes(event.radioName);
    row["interface"] = escapeBytes(event.ifName);
    return row;
}

json followEvents(Host &host, const json &) {
    if (!host.module().events)
        throw Failure(Status::kFailed, "events", "the module registered no event handler", "is its event port in use?");
    return {{"sequence", host.eventCount}};
}

const char *eventTopic(const json &) { return "events"; }

json forward(Host &host, const json &args) {
    bool on = textArg(args, "state") == "on";
    Host::check(host.operation(host.module().ops->enableFenraEvt, "enableFenraEvt")(on), "forward", "enableFenraEvt");
    return {{"forward", on ? "on" : "off"}};
}

} // namespace wlhost
