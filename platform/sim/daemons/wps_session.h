// A WPS registrar's session, apart from sockets and the clock: commands and enrollees go in, states and outcomes come
// out.
#pragma once

#include <ctime>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace wlsim {

using Fields = std::map<std::string, std::string>;

// The key=value tokens of a command's text; a token without "=" is left out, a repeated key keeps its last value.
Fields readFields(const std::string &text);

// Eight digits with the right checksum, or four.
bool validPin(const std::string &pin);

// What the configuration store's wps_proc_status tells of the last session.
enum class WpsProgress { kIdle = 0, kProcessing = 1, kDone = 2, kFailed = 3, kTimedOut = 4 };

struct Enrollee {
    std::string ifname;
    std::string mac;
    bool byPin = false;
    std::string pin;
    time_t deadline = 0;
    // Called once, with "OK ..." or "FAIL reason".
    std::function<void(const std::string &)> answer;
};

// The platform around a session.
struct WpsPlatform {
    std::function<std::string(const std::string &key)> get;
    std::function<void(const std::string &key, const std::string &value)> set;
    // The BSS sends beacons.
    std::function<bool(const std::string &ifname)> onAir;
    std::function<std::string(int bytes)> randomHex;
};

// The registrar. Which radios do WPS, and how, is read once, when it is made: a changed configuration takes a restart.
class WpsRegistrar {
  public:
    explicit WpsRegistrar(WpsPlatform platform);

    // A SET command: wps_config_command 1 starts a session, 2 stops it. Returns false with the reason in `why`.
    bool command(const Fields &fields, time_t now, std::string *why);
    // A device that wants in. It is answered when a session takes or refuses it, or when its own walk time ends.
    void enrol(Enrollee enrollee, time_t now);
    // Ends what ran out of time.
    void tick(time_t now);
    // The state as the reply to GET tells it.
    std::string state() const;

  private:
    struct Radio {
        bool pushButton, stationPin, configured;
        std::string uuid;
    };

    void readRadios();
    bool start(const Fields &fields, time_t now, std::string *why);
    void finish(WpsProgress progress);
    bool matches(const Enrollee &enrollee) const;
    void meet();
    std::string refusal(const Enrollee &enrollee) const;
    std::string credentials();
    void configure(const std::string &ifname);
    time_t walkTime() const;

    WpsPlatform platform_;
    std::map<std::string, Radio> radios_;
    // The start command's fields; empty while no session runs.
    Fields session_;
    time_t deadline_ = 0;
    std::vector<Enrollee> waiting_;
};

} // namespace wlsim
