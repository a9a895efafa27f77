// What each command does in a running host: arguments in, result out. The dispatch has checked the arguments against
// the command's row; what they mean is checked here.
#pragma once

#include "host/base/failure.h"

namespace wlhost {

class Host;

// Version of wlhost itself.
constexpr const char *kHostVersion = "1.0";

json status(Host &host, const json &args);
json ssids(Host &host, const json &args);
json version(Host &host, const json &args);

// What differs from what was asked for, or every check.
json verify(Host &host, const json &args);
Status meaningOfFindings(const json &result);

// What stands in the way of a station.
json why(Host &host, const json &args);
Status meaningOfWhy(const json &result);

json stations(Host &host, const json &args);
json kick(Host &host, const json &args);

// On the air: neighbours, channels, rates, load.
json scan(Host &host, const json &args);
json survey(Host &host, const json &args);
json rates(Host &host, const json &args);
json load(Host &host, const json &args);
json beacon(Host &host, const json &args);

json reload(Host &host, const json &args);
// Back to the configuration before a reload that nobody confirmed.
json rollBack(Host &host);
// What a reload would do.
json plan(Host &host, const json &args);
Status meaningOfPlan(const json &plan);
json confirm(Host &host, const json &args);
// A configuration file beside the radios.
json check(Host &host, const json &args);
json lan(Host &host, const json &args);
json preset(Host &host, const json &args);
json setMac(Host &host, const json &args);

// The user's MAC filter, and addresses denied at run time.
json filter(Host &host, const json &args);
json ban(Host &host, const json &args);
json unban(Host &host, const json &args);

// Wi-Fi Protected Setup: sessions that let a station in by push button or PIN.
json wpsPushButton(Host &host, const json &args);
json wpsPin(Host &host, const json &args);
json wpsCheckPin(Host &host, const json &args);
json wpsCancel(Host &host, const json &args);
json wpsStatus(Host &host, const json &args);
// Takes over what a session agreed on.
json wpsApply(Host &host, const json &args);

// What the module did.
json journalEntries(Host &host, const json &args);
const char *journalTopic(const json &args);
json changeLogLevel(Host &host, const json &args);
// An archive of this host: its bytes as hexadecimal digits, and what it holds.
json report(Host &host, const json &args);

// Answers a subscription; the events follow as lines of their own.
json followEvents(Host &host, const json &args);
const char *eventTopic(const json &args);
// Their way to the steering agent.
json forward(Host &host, const json &args);

} // namespace wlhost
