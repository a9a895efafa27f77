#include "host/commands/station_events.h"

#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "host/base/escape.h"
#include "host/base/times.h"
#include "host/commands/arguments.h"
#include "host/commands/driver_report.h"
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

} // namespace

void noteEvent(Host &host, const json &event) {
    const json mac = event.value("mac", json()), kind = event.value("event", json());
    if (mac.is_string() && kind.is_string())
        host.history.note(mac, event.value("interface", ""), kind);
}

const std::vector<std::string> &eventKinds() {
    static const std::vector<std::string> kWords = {"associated",    "reassociated", "deauthenticated",
                                                    "disassociated", "pruned",       "refused",
                                                    "wps",           "reload",       "rollback"};
    return kWords;
}

json eventRow(const WlEvent &event) {
    const auto *kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                    [&](const EventKind &one) { return one.code == event.event; });
    bool known = kind != std::end(kKinds);
    WlStaInfo station;
    std::memcpy(&station, event.sta, sizeof station);
    json row = known && !kind->describes ? json::object() : stationRow(station);
    row["mac"] = stationMac(station);
    row["event"] = known ? json(kind->name) : json();
    row["radio"] = escapeBytes(event.radioName);
    row["interface"] = escapeBytes(event.ifName);
    return row;
}

json nextEvent(const WlEvtHandler &handler) {
    int sock = static_cast<int>(handler.sock);
    char message[128];
    ssize_t length = recv(sock, message, sizeof message, MSG_PEEK | MSG_DONTWAIT);
    auto report = readReport({message, length > 0 ? static_cast<size_t>(length) : 0});
    WlEvent *event = nullptr;
    int rc = handler.receive(sock, &event);
    Block<WlEvent> block(event);
    if (rc != 0 || !event)
        return report ? unrecordedEvent(*report) : json();
    json row = eventRow(*event);
    if (report)
        addReport(row, *report);
    return row;
}

bool isWanted(const json &event, const json &subscription) {
    const json kind = event.value("event", json()), kinds = subscription.value("kinds", json::array());
    const std::vector<std::string> &known = eventKinds();
    if (kind.is_string() && std::count(known.begin(), known.end(), kind) == 0)
        return true;
    auto fits = [&](const char *asked, const char *key) {
        const json wanted = subscription.value(asked, json());
        return wanted.is_null() || event.value(key, json()) == wanted;
    };
    return (kinds.empty() || std::count(kinds.begin(), kinds.end(), kind) > 0) && fits("interface", "interface") &&
           fits("station", "mac");
}

json followEvents(Host &host, const json &args) {
    if (!host.module().events)
        throw Failure(Status::kFailed, "events", "the module registered no event handler", "is its event port in use?");
    std::string interface = textArg(args, "interface"), station = textArg(args, "station");
    json subscription = {{"sequence", host.eventCount}, {"kinds", listArg(args, "kinds")}};
    subscription["interface"] = interface.empty() ? json() : json(host.bss(interface).record().ifName);
    subscription["station"] = station.empty() ? json() : json(formatMac(macOf(station)));
    return subscription;
}

const char *eventTopic(const json &) { return "events"; }

json forward(Host &host, const json &args) {
    bool on = textArg(args, "state") == "on";
    Host::check(host.operation(host.module().ops->enableFenraEvt, "enableFenraEvt")(on), "forward", "enableFenraEvt");
    return {{"forward", on ? "on" : "off"}};
}

} // namespace wlhost
