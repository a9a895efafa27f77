#include "host/state/station_history.h"

namespace wlhost {

void StationHistory::note(const std::string &mac, const std::string &interface, const std::string &event) {
    constexpr size_t kMostStations = 256, kMostEvents = 5;
    auto known = stations_.find(mac);
    if (known != stations_.end())
        order_.erase(known->second.place);
    else
        known = stations_.emplace(mac, Station{}).first;
    known->second.place = order_.insert(order_.end(), mac);
    known->second.events.push_back({std::chrono::steady_clock::now(), interface, event});
    if (known->second.events.size() > kMostEvents)
        known->second.events.pop_front();
    if (stations_.size() > kMostStations) {
        stations_.erase(order_.front());
        order_.pop_front();
    }
}

std::deque<StationEvent> StationHistory::of(const std::string &mac) const {
    auto known = stations_.find(mac);
    return known == stations_.end() ? std::deque<StationEvent>() : known->second.events;
}

} // namespace wlhost
