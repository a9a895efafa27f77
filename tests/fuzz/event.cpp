#include "tests/fuzz/target.h"

#include <memory>
#include <sys/socket.h>
#include <unistd.h>

#include "events/decode.h"

using namespace wlbrcm;

namespace {

using Record = std::unique_ptr<WlEvent, decltype(&free)>;

int receive(const std::string &datagram, Record *record) {
    const fuzz::Gateway gateway{{"wlctl -i", "-44\n"}};
    int ends[2];
    HOLDS(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends) == 0);
    HOLDS(send(ends[0], datagram.data(), datagram.size(), 0) == static_cast<ssize_t>(datagram.size()));
    WlEvent *made = nullptr;
    const int result = qvbrcm_EvtReceive(ends[1], &made);
    record->reset(made);
    char left;
    HOLDS(recv(ends[1], &left, 1, MSG_DONTWAIT) < 0); // consumed, whatever it was
    for (const int fd : ends)
        close(fd);
    HOLDS((result == 0) == (made != nullptr) && (result == 0 || result == 1));
    for (const std::string &command : gateway.did("run ")) {
        // Only for a station that joined, and only about an interface named wlN or wlN.M.
        HOLDS(made != nullptr && isRadioInterface(made->ifName));
        HOLDS(command.find(std::string("run wlctl -i ") + made->ifName + " ") == 0);
    }
    return result;
}

} // namespace

FUZZ_TARGET(event) {
    if (input.empty())
        return;
    Record record(nullptr, free), padded(nullptr, free);
    const int result = receive(input, &record);
    std::string whole = input;
    whole.resize(kEventMessageSize);
    HOLDS(receive(whole, &padded) == result);
    HOLDS(eventType(input.data(), input.size()) == 0 || input.size() >= 32);
    if (result != 0)
        return;
    HOLDS(fuzz::same(*record, *padded));
    HOLDS(fuzz::ends(record->ifName) && fuzz::ends(record->radioName));
    HOLDS(std::string(record->ifName, strcspn(record->ifName, ".")) == record->radioName);
    HOLDS(record->event == 1 || record->event == 2 || record->event == 3 || record->event == 6);
    WlStaInfo sta;
    memcpy(&sta, record->sta, sizeof sta);
    char mac[18];
    const auto *byte = reinterpret_cast<const uint8_t *>(whole.data()) + 48;
    snprintf(mac, sizeof mac, "%02X:%02X:%02X:%02X:%02X:%02X", byte[0], byte[1], byte[2], byte[3], byte[4], byte[5]);
    HOLDS(fuzz::ends(sta.ifName) && strcmp(sta.macAddr, mac) == 0);
}
