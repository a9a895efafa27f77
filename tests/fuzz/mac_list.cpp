#include "target.h"

#include "macfilter/pool.h"

namespace {

constexpr int32_t kPoolSize = 512;

// In the order of the text: a list has its last address first.
std::string text(const MacFilterEntry *list, int32_t *length) {
    std::string all;
    for (*length = 0; list != nullptr; list = list->next, ++*length) {
        const uint8_t *m = list->mac;
        char one[19];
        snprintf(one, sizeof one, "%02X:%02X:%02X:%02X:%02X:%02X ", m[0], m[1], m[2], m[3], m[4], m[5]);
        all.insert(0, one);
    }
    return all;
}

// The user's filter of wl0, handed on to the driver.
void apply(MacFilterEntry *list, uint32_t command, const FakePlatform &platform) {
    MacFilterRequest request = {};
    strcpy(request.data.intf_name, "wl0");
    request.data.b_user_config = 1;
    request.data.cmd = command;
    request.mac_list = list;
    const int done = qvbrcm_MacFilter_set(&request);
    HOLDS(request.mac_list == nullptr && (done == 1 || list != nullptr));
    for (const std::string &run : platform.did("run wlctl -i wl0 mac "))
        HOLDS(run == "run wlctl -i wl0 mac none" ||
              run.find_first_not_of("0123456789ABCDEF: ", 21) == std::string::npos);
}

} // namespace

FUZZ_TARGET(mac_list) {
    FakePlatform platform;
    HOLDS(qvbrcm_MacFilter_init() == 1 && _mac_free_cnt == kPoolSize);
    MacFilterEntry *list = qvbrcm_MacFilter_mac_list_by_str(input.c_str());
    int32_t length, lengthAgain;
    const std::string addresses = text(list, &length);
    HOLDS(_mac_free_cnt == kPoolSize - length);
    qvbrcm_MacFilter_release_list(&list);
    HOLDS(list == nullptr && _mac_free_cnt == kPoolSize);

    list = qvbrcm_MacFilter_mac_list_by_str(addresses.c_str());
    HOLDS(text(list, &lengthAgain) == addresses && lengthAgain == length);
    apply(list, WLBRCM_FILTER_DENY, platform);
    HOLDS(_mac_free_cnt == kPoolSize - length);
    apply(nullptr, WLBRCM_FILTER_OFF, platform);
    HOLDS(_mac_free_cnt == kPoolSize);
}
