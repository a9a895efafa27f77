#include "host/command_table.h"

#include <algorithm>

#include "host/cli/calls.h"
#include "host/commands/host_commands.h"
#include "host/commands/station_events.h"
#include "host/show/results.h"
#include "host/show/units.h"

namespace wlhost {
namespace {

const Option kRadio{"RADIO", "radio", Value::kRadio, "Radio, such as wl0"};
const Option kInterface{"IF", "interface", Value::kInterface, "Interface of a BSS, such as wl0.1", true};
const Option kAnyInterface{"IF", "interface", Value::kInterface, "Interface of a BSS, such as wl0.1; all without"};
const Option kStation{"MAC", "station", Value::kStation, "Station"};
const Option kState{"STATE", "state", Value::kText, "on or off", true, {"on", "off"}};
const Option kPin{"PIN", "pin", Value::kText, "4 or 8 digits", true};
const Option kConfig{"CONFIG", "config", Value::kFile, "Configuration file", true};
const Option kLibrary{"--library", "library", Value::kFile, "The module (WLHOST_LIBRARY)"};
const Option kWait{"--wait", "wait", Value::kFlag, "Until the session ends; the exit status tells its result"};

Option required(Option option) {
    option.required = true;
    return option;
}

const Option kKeep{"--keep", "keep", Value::kFlag, "Stations that are there already may stay"};
const Option kDryRun{"--dry-run", "dry_run", Value::kFlag, "Tell what it would do, as plan does, and do nothing"};

// Text of any length, which gives way where a table must fit.
constexpr Column freeText(const char *title, const char *key) { return {title, key, false, nullptr, true}; }

const std::vector<Column> kRadioActions = {{"RADIO", "radio"}, {"ACTION", "action"}, freeText("REASON", "reason")};
const std::vector<Column> kFilterSides = {
    {"IF", "interface"}, {"SIDE", "side"}, {"MODE", "mode"}, freeText("STATIONS", "stations")};
const std::vector<Column> kSession = {{"RADIO", "radio"},
                                      {"METHOD", "method"},
                                      {"STATE", "state"},
                                      {"LEFT", "seconds_left", true, seconds},
                                      {"RESULT", "result"}};

} // namespace

const std::vector<Option> &commonOptions() {
    static const std::vector<Option> kOptions = {
        {"--socket", "socket", Value::kFile, "Control socket (WLHOST_SOCKET, /run/wlhost.sock)"},
        {"--timeout", "timeout", Value::kNumber, "Seconds to wait for the host", false, {}, 3600},
        {"--json", "json", Value::kFlag, "One JSON document on stdout, errors too"},
        {"--sort", "sort", Value::kColumn, "Rows by this column: values with a unit the largest first"},
        {"--wide", "wide", Value::kFlag, "Tables as wide as they are; else they fit the terminal, or COLUMNS"},
    };
    return kOptions;
}

const std::vector<Group> &groups() {
    static const std::vector<Group> kRows = {{"wps", "Wi-Fi Protected Setup"}};
    return kRows;
}

// NOLINTNEXTLINE(readability-function-size): one table
const std::vector<Command> &commands() {
    // Name and what it is for; options; what the host does; how the result is shown; who asks for it.
    static const std::vector<Command> kRows = {
        {"run",
         "Be the host: bring the configured radios up and serve",
         {kConfig,
          {"--sim", "sim", Value::kFlag, "Run in a simulated gateway of its own"},
          {"--once", "once", Value::kFlag, "Bring the radios up and end"},
          {"--fresh", "fresh", Value::kFlag, "Bring radios up that are as wanted already, too"},
          kDryRun,
          {"--journal", "journal", Value::kFile, "Keep the journal in this file as well, a JSON document a line"},
          {"--syslog", "syslog", Value::kFlag, "Log to the system's log instead of stderr"},
          kLibrary,
          {"--log-level", "log_level", Value::kText, "How much is logged", false, {"error", "info", "debug"}}},
         nullptr,
         showRadios,
         kRadioActions,
         beTheHost},
        {"doctor",
         "What this machine lacks to be a gateway",
         {kLibrary},
         nullptr,
         showRows,
         {freeText("CHECK", "check"), {"RESULT", "result"}, {"REQUIRED", "required"}, freeText("HINT", "hint")},
         examineMachine},
        {"check",
         "Check a configuration file, and on a gateway whether its radios can do it; nothing is applied",
         {kConfig, kLibrary},
         check,
         showMembers,
         {},
         checkConfiguration},
        {"schema", "Print the JSON schema of the configuration file", {}, nullptr, nullptr, {}, printSchema},
        {"status",
         "Radios: channel, state, rates, stations",
         {kRadio, {"--items", "items", Value::kItems, "Raw status items instead, joined by commas"}},
         status,
         showStatus,
         {{"RADIO", "radio"},
          {"BAND", "band"},
          {"CHAN", "channel", true},
          {"WIDTH", "width_mhz", true, mhz},
          {"STATE", "state"},
          {"MAXRATE", "max_rate_mbps", true, mbps},
          {"NOISE", "noise_dbm", true, dbm},
          {"SSIDS", "ssids", true},
          {"STAS", "stations", true}},
         ask},
        {"ssids",
         "SSIDs: security, bridge, filter, WPS",
         {},
         ssids,
         showRows,
         {{"IF", "interface"},
          freeText("SSID", "ssid"),
          {"SECURITY", "security"},
          {"BRIDGE", "bridge"},
          {"BSSID", "bssid"},
          {"FILTER", "filter"},
          {"WPS", "wps"},
          {"STATE", "state"}},
         ask},
        {"verify",
         "Compare radios, SSIDs and daemons with what was asked for; what differs, and its cure",
         {kRadio, {"--all", "all", Value::kFlag, "What holds as well"}},
         verify,
         showFindings,
         {{"IF", "place"},
          {"CHECK", "check"},
          freeText("WANTED", "wanted"),
          freeText("FOUND", "found"),
          freeText("CURE", "cure")},
         askForVerification,
         nullptr,
         meaningOfFindings},
        {"why",
         "What stands in the way of a station: the way from the radio to it, and what cures the first broken link",
         {kInterface, kStation},
         why,
         showWhy,
         {{"CHECK", "check"}, {"WANTED", "wanted"}, {"FOUND", "found"}},
         ask,
         nullptr,
         meaningOfWhy},
        {"stations",
         "Stations: signal, rates, traffic",
         {kAnyInterface},
         stations,
         showRows,
         {{"MAC", "mac"},
          {"IF", "interface"},
          {"MODE", "mode"},
          {"WIDTH", "width_mhz", true, mhz},
          {"SIGNAL", "signal_dbm", true, dbm},
          {"SNR", "snr_db", true, db},
          {"RX", "rx_rate_kbps", true, kbps},
          {"TX", "tx_rate_kbps", true, kbps},
          {"RX-BYTES", "rx_bytes", true, bytes},
          {"TX-BYTES", "tx_bytes", true, bytes},
          {"RETRIES", "tx_retries", true},
          {"AUTH", "authenticated"}},
         ask},
        {"scan",
         "Scan for neighbouring networks",
         {kRadio, {"--cached", "cached", Value::kFlag, "Show what the last scan found"}},
         scan,
         showRows,
         {{"BSSID", "bssid"},
          freeText("SSID", "ssid"),
          {"BAND", "band"},
          {"CHAN", "channel", true},
          {"WIDTH", "width_mhz", true, mhz},
          {"SIGNAL", "signal_dbm", true, dbm},
          {"SECURITY", "security"},
          {"MODES", "modes", false, slashed},
          {"WPS", "wps"}},
         askAndWait},
        {"survey",
         "Networks on each channel, as the last scan counted them",
         {kRadio},
         survey,
         showSurvey,
         {{"RADIO", "radio"},
          {"BAND", "band"},
          {"CHAN ", "place", true},
          {"BSS", "bss_count", true},
          {"", "bar", false, plain, true}},
         ask},
        {"rates",
         "Rates: the highest, the current one, basic and supported ones",
         {kRadio},
         rates,
         showRates,
         {{"RADIO", "radio"}, {"RATES", "what"}, freeText("", "value")},
         ask},
        {"load",
         "How busy the channel of a BSS is",
         {kAnyInterface},
         load,
         showRows,
         {{"IF", "interface"}, {"BUSY", "busy_percent", true, percent}, {"FREE", "free_percent", true, percent}},
         ask},
        {"beacon",
         "What the beacon of a BSS announces",
         {kAnyInterface},
         beacon,
         showBeacon,
         {{"IF", "interface"},
          {"ELEMENT", "element"},
          {"STREAMS", "streams", true},
          {"CHAN", "channel", true},
          freeText("ANNOUNCES", "announces")},
         ask},
        {"kick", "Send a station away; it may come back", {kInterface, required(kStation)}, kick, showMembers, {}, ask},
        {"reload",
         "Take the configuration file over again: the radios that it changes, or RADIO",
         {kRadio,
          {"--config", "config", Value::kFile, "Another file, which takes the place of the first"},
          {"--all", "all", Value::kFlag, "Unchanged radios as well"},
          kDryRun,
          {"--rollback",
           "rollback",
           Value::kNumber,
           "Seconds until the configuration before comes back, unless confirm comes first",
           false,
           {},
           86400}},
         reload,
         showReload,
         kRadioActions,
         askForReload},
        {"confirm", "Keep what a reload with --rollback brought", {}, confirm, showMembers, {}, ask},
        {"plan",
         "What a reload would do, or a first start: nvram, commands, who loses the network; nothing is done",
         {{"CONFIG", "config", Value::kFile, "Configuration file; without, the one in force"}, kLibrary},
         plan,
         showPlan,
         {},
         askForPlan,
         nullptr,
         meaningOfPlan},
        {"filter",
         "Show the MAC filter of an SSID, or set the user's side of it",
         {kInterface,
          {"MODE", "mode", Value::kText, "deny, allow or off", false, {"deny", "allow", "off"}},
          {"MAC", "stations", Value::kStations, "Stations"},
          kKeep},
         filter,
         showFilter,
         kFilterSides,
         ask},
        {"ban",
         "Deny a station until unban, whatever the user's filter says",
         {kInterface, required(kStation), kKeep},
         ban,
         showFilter,
         kFilterSides,
         ask},
        {"unban",
         "Admit a banned station again",
         {kInterface, kStation, {"--all", "all", Value::kFlag, "Every banned station of the SSID"}},
         unban,
         showFilter,
         kFilterSides,
         ask},
        {"preset", "Switch an on-demand SSID", {kInterface, kState}, preset, showMembers, {}, ask},
        {"lan",
         "Take the LAN groups of a configuration file over",
         {kConfig},
         lan,
         showLan,
         {{"BRIDGE", "name"}, {"MAC", "mac"}, freeText("PORTS", "ports")},
         ask},
        {"mac",
         "Set the address of a radio's interface",
         {required(kRadio), {"ADDR", "mac", Value::kText, "Address", true}},
         setMac,
         showMembers,
         {},
         ask},
        {"wps push-button",
         "Let the station in whose button is pressed too",
         {kRadio,
          {"--hardware", "hardware", Value::kFlag, "As the gateway's own button does; the module picks the radio"},
          kWait},
         wpsPushButton,
         showSession,
         kSession,
         askForSession},
        {"wps pin",
         "Let the station in that has this PIN",
         {required(kRadio), kPin, kWait},
         wpsPin,
         showSession,
         kSession,
         askForSession},
        {"wps check-pin", "Whether a PIN is one", {kPin}, wpsCheckPin, showMembers, {}, ask},
        {"wps cancel", "End the session", {required(kRadio)}, wpsCancel, showSession, kSession, ask},
        {"wps status", "The session: state, seconds left, result", {}, wpsStatus, showSession, kSession, ask},
        {"wps apply", "Take over what a session agreed on", {required(kRadio)}, wpsApply, showMembers, {}, ask},
        {"report",
         "Write an archive of what a supporter needs, with every secret masked; replay runs it again",
         {{"FILE", "file", Value::kFile, "Archive; a name with date and host without"}},
         report,
         showMembers,
         {},
         askForReport},
        {"replay",
         "Run the operations of an archive again without a gateway, and compare what the module does",
         {{"FILE", "file", Value::kFile, "Archive of report", true}, kLibrary},
         nullptr,
         showReplay,
         {},
         replayArchive},
        {"events",
         "Follow the stations' coming and going, WPS, reloads; with --json a document a line",
         {{"--count", "count", Value::kNumber, "End after so many"},
          {"--interface", "interface", Value::kInterface, "Only those of this BSS"},
          {"--station", "station", Value::kStation, "Only those of this station"},
          {"--kind", "kinds", Value::kItems, "Only these, joined by commas", false, eventKinds()},
          {"--no-reconnect", "no_reconnect", Value::kFlag, "End with the host, instead of waiting for the next one"}},
         followEvents,
         showEvent,
         {},
         askForEvents,
         eventTopic},
        {"journal",
         "What the module did: commands, writes, pauses; with --json and --follow a document a line",
         {{"--follow", "follow", Value::kFlag, "What it does from now on, or since --since"},
          {"--failed", "failed", Value::kFlag, "Only what did not succeed"},
          {"--operation", "operation", Value::kNumber, "Only of this operation"},
          {"--since", "since", Value::kText, "From this time on: 10m ago, 10:00:00, or 2026-01-31T10:00:00Z"},
          {"--shell", "shell", Value::kFlag, "As a script that does the same again"},
          {"--secrets", "secrets", Value::kFlag, "Passphrases, keys and PINs unmasked, for root"}},
         journalEntries,
         showJournal,
         {{"TIME", "time", false, timeOfDay},
          {"OP", "operation", true},
          {"CAUSE", "function"},
          {"WHAT", "what"},
          {"RESULT", "status", false, exitText},
          {"MS", "ms", true}},
         askForJournal,
         journalTopic},
        {"log-level",
         "How much the running host logs from now on",
         {{"LEVEL", "level", Value::kText, "error, info or debug", true, {"error", "info", "debug"}}},
         changeLogLevel,
         showMembers,
         {},
         ask},
        {"forward",
         "Pass driver events on to the steering agent, or stop that",
         {kState},
         forward,
         showMembers,
         {},
         ask},
        {"version",
         "Versions of host, module and interface; the radios found",
         {},
         version,
         showMembers,
         {},
         askForVersion},
        {"completion",
         "For the shell: what may stand in the place of the last WORD",
         {{"WORD", "words", Value::kTexts, "The command line so far, behind --"}},
         nullptr,
         nullptr,
         {},
         complete},
    };
    return kRows;
}

const Command *findCommand(const std::string &name) {
    auto found =
        std::find_if(commands().begin(), commands().end(), [&](const Command &row) { return name == row.name; });
    return found == commands().end() ? nullptr : &*found;
}

std::vector<std::string> namesIn(const std::string &group) {
    std::vector<std::string> names;
    std::string start = group.empty() ? "" : group + " ";
    for (const Command &command : commands()) {
        std::string name = command.name;
        if (name.compare(0, start.size(), start) != 0)
            continue;
        name = name.substr(start.size());
        name = name.substr(0, name.find(' '));
        if (names.empty() || names.back() != name)
            names.push_back(name);
    }
    return names;
}

} // namespace wlhost
