// What was last seen of each station, for whoever asks why it is not there.
#pragma once

#include <chrono>
#include <deque>
#include <list>
#include <map>
#include <string>

namespace wlhost {

struct StationEvent {
    std::chrono::steady_clock::time_point time;
    std::string interface, event;
};

// The last few events of the stations that were heard of last; bounded, whatever is sent.
class StationHistory {
  public:
    void note(const std::string &mac, const std::string &interface, const std::string &event);
    // The oldest first.
    std::deque<StationEvent> of(const std::string &mac) const;

  private:
    struct Station {
        std::deque<StationEvent> events;
        std::list<std::string>::iterator place; // in `order_`
    };
    std::map<std::string, Station> stations_;
    std::list<std::string> order_; // heard of last: at the end
};

} // namespace wlhost
