#include "tests/fuzz/target.h"

#include <algorithm>

#include <wlbrcm/params.h>

namespace {

// A buffer of exactly the size that callers are told to give.
using Buffer = std::vector<char>;
Buffer buffer() { return Buffer(WLBRCM_CHANNEL_LIST_SIZE, '\x7f'); }

std::string taken(const Buffer &buffer) {
    HOLDS(memchr(buffer.data(), '\0', buffer.size()) != nullptr);
    const std::string list = buffer.data();
    HOLDS(fuzz::isNumberList(list) && list.find('.') == std::string::npos);
    return list;
}

std::string validChannels(const std::string &listing) {
    const fuzz::Gateway gateway{{"wlctl -i wl0 channels", listing}};
    Buffer list = buffer();
    HOLDS(qvWlanGetValidChannel(Arg("wl0", "", "", 0, list.data())) == 0);
    return taken(list);
}

std::string allowedChannels(const std::string &listing, const std::string &request) {
    const fuzz::Gateway gateway{{"wlctl -i wl0 chanspecs", listing}};
    Buffer list = buffer();
    HOLDS(qvWlanChannelList(Arg("wl0", request, "DE", 0, list.data())) == 0);
    return taken(list);
}

void checkList(const std::string &list) {
    std::string listing = list;
    std::replace(listing.begin(), listing.end(), ',', ' ');
    HOLDS(validChannels(listing) == list);
    HOLDS(list.empty() || qvWlanCheckChannelSideband(atoi(list.c_str()), list.c_str()) == 1);
}

} // namespace

FUZZ_TARGET(channel_lists) {
    checkList(validChannels(input));
    for (const char *request : {"2.4GHz,10,any", "5GHz,20,upper", "5GHz,40,upper", "5GHz,80,lower"})
        checkList(allowedChannels(input, request));
    // One sideband is a part of both, unless the list of both was full.
    const std::string both = allowedChannels(input, "5GHz,40,any");
    HOLDS(both.size() > 1000 || allowedChannels(input, "5GHz,40,lower").size() <= both.size());
}
