#include "platform/sim/daemons/wps_session.h"

#include "platform/sim/common/sim_text.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace wlsim {
namespace {

constexpr int kWalkSeconds = 120;
constexpr std::size_t kMostWaiting = 16;
constexpr const char *kPinMethod = "1";
constexpr const char *kPushButtonMethod = "2";

std::string field(const Fields &fields, const std::string &key) {
    auto found = fields.find(key);
    return found == fields.end() ? "" : found->second;
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

bool anyStation(const std::string &mac) { return mac.empty() || lower(mac) == "ff:ff:ff:ff:ff:ff"; }

} // namespace

Fields readFields(const std::string &text) {
    Fields fields;
    for (const std::string &token : splitWords(text)) {
        std::size_t equals = token.find('=');
        if (equals != std::string::npos)
            fields[token.substr(0, equals)] = token.substr(equals + 1);
    }
    return fields;
}

bool validPin(const std::string &pin) {
    if (!std::all_of(pin.begin(), pin.end(), [](unsigned char c) { return std::isdigit(c); }))
        return false;
    if (pin.size() == 4)
        return true;
    int sum = 0;
    for (std::size_t i = 0; i < pin.size(); ++i)
        sum += (pin[i] - '0') * (i % 2 ? 1 : 3);
    return pin.size() == 8 && sum % 10 == 0;
}

WpsRegistrar::WpsRegistrar(WpsPlatform platform) : platform_(std::move(platform)) { readRadios(); }

void WpsRegistrar::readRadios() {
    for (const char *group : {"lan", "lan1", "lan2", "lan3", "lan4", "lan5", "lan6", "lan7", "lan8", "lan9"}) {
        for (const std::string &ifname : splitWords(platform_.get(std::string(group) + "_ifnames"))) {
            auto setting = [&](const char *key) { return platform_.get(ifname + "_wps_" + key); };
            if (setting("mode") == "enabled")
                radios_[ifname] = {setting("enable_pbc") == "1", setting("enable_stapin") == "1",
                                   setting("config_state") == "1", setting("uuid")};
        }
    }
}

bool WpsRegistrar::command(const Fields &fields, time_t now, std::string *why) {
    std::string what = field(fields, "wps_config_command");
    if (what == "1")
        return start(fields, now, why);
    if (what == "2") {
        finish(WpsProgress::kIdle);
        return true;
    }
    *why = "wps_config_command is \"" + what + "\"";
    return false;
}

bool WpsRegistrar::start(const Fields &fields, time_t now, std::string *why) {
    std::string ifname = field(fields, "wps_ifname");
    std::string method = field(fields, "wps_method");
    auto radio = radios_.find(ifname);
    if (radio == radios_.end())
        *why = "WPS is not configured on \"" + ifname + "\"";
    else if (method != kPinMethod && method != kPushButtonMethod)
        *why = "wps_method is \"" + method + "\"";
    else if (method == kPushButtonMethod && !radio->second.pushButton)
        *why = "push button is switched off on " + ifname;
    else if (method == kPinMethod && !radio->second.stationPin)
        *why = "station PINs are switched off on " + ifname;
    else if (method == kPinMethod && !validPin(field(fields, "wps_sta_pin")))
        *why = "the station PIN is wrong";
    else if (!platform_.onAir(ifname))
        *why = ifname + " is down";
    if (!why->empty()) {
        finish(WpsProgress::kFailed);
        return false;
    }
    session_ = fields;
    deadline_ = now + walkTime();
    platform_.set("wps_proc_status", std::to_string(static_cast<int>(WpsProgress::kProcessing)));
    platform_.set("wps_proc_mac", "");
    meet();
    return true;
}

void WpsRegistrar::finish(WpsProgress progress) {
    session_.clear();
    platform_.set("wps_proc_status", std::to_string(static_cast<int>(progress)));
}

void WpsRegistrar::enrol(Enrollee enrollee, time_t now) {
    if (radios_.find(enrollee.ifname) == radios_.end())
        return enrollee.answer("FAIL " + enrollee.ifname + " does no WPS");
    if (waiting_.size() >= kMostWaiting)
        return enrollee.answer("FAIL too many devices wait");
    time_t longest = now + walkTime();
    enrollee.deadline = enrollee.deadline ? std::min(enrollee.deadline, longest) : longest;
    waiting_.push_back(std::move(enrollee));
    meet();
}

bool WpsRegistrar::matches(const Enrollee &enrollee) const {
    return enrollee.ifname == field(session_, "wps_ifname") &&
           enrollee.byPin == (field(session_, "wps_method") == kPinMethod);
}

// Brings the session and the devices that wait for it together. Two that pushed their buttons are an overlap: nobody
// can tell which one the user meant, so that nobody gets in.
void WpsRegistrar::meet() {
    if (session_.empty())
        return;
    auto first = std::stable_partition(waiting_.begin(), waiting_.end(),
                                       [this](const Enrollee &enrollee) { return !matches(enrollee); });
    std::vector<Enrollee> matching(first, waiting_.end());
    if (matching.empty())
        return;
    waiting_.erase(first, waiting_.end());
    bool overlap = matching.size() > 1 && !matching.front().byPin;
    std::string reason = overlap ? "session overlap" : refusal(matching.front());
    bool done = reason.empty();
    if (done)
        platform_.set("wps_proc_mac", matching.front().mac);
    matching.front().answer(done ? credentials() : "FAIL " + reason);
    for (std::size_t i = 1; i < matching.size(); ++i)
        matching[i].answer("FAIL session overlap");
    finish(done ? WpsProgress::kDone : WpsProgress::kFailed);
}

std::string WpsRegistrar::refusal(const Enrollee &enrollee) const {
    std::string authorised = field(session_, "wps_autho_sta_mac");
    if (!anyStation(authorised) && lower(authorised) != lower(enrollee.mac))
        return "only " + authorised + " may enrol";
    if (enrollee.byPin && enrollee.pin != field(session_, "wps_sta_pin"))
        return "wrong PIN";
    if (!platform_.onAir(enrollee.ifname))
        return enrollee.ifname + " is down";
    return {};
}

// What the enrollee receives, and what the host finds in the store: an unconfigured network is secured on the way.
std::string WpsRegistrar::credentials() {
    std::string ifname = field(session_, "wps_ifname");
    Radio &radio = radios_.at(ifname);
    if (!radio.configured)
        configure(ifname);
    radio.configured = true;
    // The platform's lists of key managements end in a blank, which is how the host knows a session's result.
    std::string akm;
    for (const std::string &suite : splitWords(platform_.get(ifname + "_akm")))
        akm += suite + " ";
    platform_.set(ifname + "_akm", akm);
    auto value = [&](const char *key) { return platform_.get(ifname + "_" + key); };
    return "OK ssid_hex=" + hexText(value("ssid")) + " akm_hex=" + hexText(value("akm")) +
           " crypto=" + value("crypto") + " key_hex=" + hexText(value("wpa_psk"));
}

void WpsRegistrar::configure(const std::string &ifname) {
    platform_.set(ifname + "_ssid", platform_.get("wps_random_ssid_prefix") + platform_.randomHex(3));
    platform_.set(ifname + "_akm", "psk2 ");
    platform_.set(ifname + "_crypto", "aes");
    platform_.set(ifname + "_wpa_psk", platform_.randomHex(16));
    platform_.set(ifname + "_wps_config_state", "1");
    platform_.set(ifname + "_wps_oob", "disabled");
    platform_.set("lan_wps_oob", "disabled");
}

void WpsRegistrar::tick(time_t now) {
    if (!session_.empty() && now >= deadline_)
        finish(WpsProgress::kTimedOut);
    auto late = std::stable_partition(waiting_.begin(), waiting_.end(),
                                      [now](const Enrollee &enrollee) { return now < enrollee.deadline; });
    std::vector<Enrollee> expired(late, waiting_.end());
    waiting_.erase(late, waiting_.end());
    for (const Enrollee &enrollee : expired)
        enrollee.answer("FAIL no session within the walk time");
}

std::string WpsRegistrar::state() const {
    bool running = !session_.empty();
    std::string uuid = field(session_, "wps_uuid");
    if (uuid.empty() && !radios_.empty())
        uuid = radios_.begin()->second.uuid;
    std::string authorised = field(session_, "wps_autho_sta_mac");
    std::string text = std::string("wps_config_command=") + (running ? "1" : "0") +
                       " wps_action=" + (running ? field(session_, "wps_action") : "0") +
                       " wps_method=" + (running ? field(session_, "wps_method") : kPinMethod) + " wps_uuid=" + uuid;
    return authorised.empty() ? text : text + " wps_autho_sta_mac=" + authorised;
}

// Two minutes; a test may not want to wait that long.
time_t WpsRegistrar::walkTime() const {
    int seconds = std::atoi(platform_.get("wlsim_wps_walk_time").c_str());
    return seconds > 0 ? seconds : kWalkSeconds;
}

} // namespace wlsim
