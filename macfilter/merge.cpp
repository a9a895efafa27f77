// One driver filter out of two: the user's configuration and the run-time deny list of each interface.
#include <cstdio>
#include <cstring>

#include "macfilter/pool.h"
#include "module/names.h"
#include "module/text.h"

using namespace wlbrcm;

namespace {

// The driver's list: 85 addresses of 18 characters fit.
using DriverList = Text<1536>;

void append(DriverList *text, const MacFilterEntry *list, const MacFilterEntry *except) {
    for (; list != nullptr; list = list->next) {
        const uint8_t *mac = list->mac;
        if (!contains(except, *list))
            text->append("%02X:%02X:%02X:%02X:%02X:%02X ", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    }
}

void removeAddress(MacFilterEntry **list, const MacFilterEntry &address) {
    for (MacFilterEntry *entry = *list, *next = nullptr; entry != nullptr; entry = next) {
        next = entry->next;
        if (!sameAddress(*entry, address))
            continue;
        (entry->prev != nullptr ? entry->prev->next : *list) = next;
        if (next != nullptr)
            next->prev = entry->prev;
        _release_mac(entry);
    }
}

void setUserFilter(MacFilterIntf *slot, MacFilterRequest *request) {
    _release_list(&slot->mac_list);
    slot->cmd = request->data.cmd;
    if (slot->cmd != WLBRCM_FILTER_OFF) {
        slot->mac_list = request->mac_list;
        request->mac_list = nullptr;
    }
}

void denyStations(MacFilterIntf *slot, MacFilterRequest *request) {
    while (MacFilterEntry *entry = request->mac_list) {
        request->mac_list = entry->next;
        if (contains(slot->bsa_mac_list, *entry))
            _release_mac(entry);
        else
            pushFront(&slot->bsa_mac_list, entry);
    }
}

void admitStations(MacFilterIntf *slot, const MacFilterRequest &request) {
    for (const MacFilterEntry *entry = request.mac_list; entry != nullptr; entry = entry->next)
        removeAddress(&slot->bsa_mac_list, *entry);
}

void editDenyList(MacFilterIntf *slot, MacFilterRequest *request) {
    slot->b_bsa_config = 1;
    if (request->data.cmd == WLBRCM_FILTER_DENY)
        denyStations(slot, request);
    else if (request->data.cmd == WLBRCM_FILTER_ALLOW)
        admitStations(slot, *request);
    else
        _release_list(&slot->bsa_mac_list);
}

// The slot of an interface, claimed for it when it has none yet; -1 when it cannot have one.
int _intf_index_get(const char *ifname) {
    if (!InterfaceName(WLBRCM_HERE, ifname))
        return -1;
    int index = 0;
    for (MacFilterIntf &slot : _intf_data) {
        if (slot.intf_name[0] == '\0')
            copyText(slot.intf_name, ifname);
        if (strcmp(slot.intf_name, ifname) == 0)
            return index;
        ++index;
    }
    WLBRCM_LOG(LOG_ERR, "insufficient interface\n");
    return -1;
}

void _update_intf_data(MacFilterIntf *slot, MacFilterRequest *request) {
    if (request->data.b_user_config != 0)
        setUserFilter(slot, request);
    else
        editDenyList(slot, request);
    _release_list(&request->mac_list);
}

bool _apply_to_driver(int index) {
    const MacFilterIntf &slot = _intf_data[index];
    DriverList list;
    const char *command = "DENY";
    switch (slot.cmd) {
    case WLBRCM_FILTER_OFF:
        append(&list, slot.bsa_mac_list, slot.mac_list);
        break;
    case WLBRCM_FILTER_DENY:
        append(&list, slot.mac_list, nullptr);
        append(&list, slot.bsa_mac_list, slot.mac_list);
        break;
    case WLBRCM_FILTER_ALLOW:
        append(&list, slot.mac_list, slot.bsa_mac_list);
        command = "ALLOW";
        break;
    default:
        WLBRCM_LOG(LOG_ERR, "invalid command %d on interface %d\n", slot.cmd, index);
        return false;
    }
    if (!list.fits()) {
        WLBRCM_LOG(LOG_ERR, "insufficient length by mac_list_str\n");
        return false;
    }
    if (qvWifiStaFilter(slot.intf_name, list.empty() ? "DISABLE" : command, list.c_str()) != 0) {
        WLBRCM_LOG(LOG_ERR, "fail to apply interface %d to driver\n", index);
        return false;
    }
    return true;
}

void logRequest(Here here, const MacFilterRequest &request) {
    WLBRCM_LOG_AT(here, LOG_DEBUG, "intf_name = %s, b_user_config = %d, cmd = %d\n",
                  Shown(request.data.intf_name).c_str(), request.data.b_user_config, request.data.cmd);
    for (const MacFilterEntry *entry = request.mac_list; entry != nullptr; entry = entry->next) {
        const uint8_t *mac = entry->mac;
        WLBRCM_LOG_AT(here, LOG_DEBUG, "mac = %02X:%02X:%02X:%02X:%02X:%02X\n", mac[0], mac[1], mac[2], mac[3], mac[4],
                      mac[5]);
    }
    if (request.mac_list == nullptr)
        WLBRCM_LOG_AT(here, LOG_DEBUG, "mac = NULL\n");
}

enum class Outcome { kNoSlot, kNotApplied, kApplied };

// Under the lock from here to the driver's last command, so that driver and table never disagree about the order.
Outcome takeOver(Here here, MacFilterRequest *request) {
    const PoolLock lock;
    const int index = _intf_index_get(request->data.intf_name);
    if (index < 0) {
        WLBRCM_LOG_AT(here, LOG_ERR, "fail to get index of _intf_data\n");
        _release_list(&request->mac_list);
        return Outcome::kNoSlot;
    }
    _update_intf_data(&_intf_data[index], request);
    return _apply_to_driver(index) ? Outcome::kApplied : Outcome::kNotApplied;
}

} // namespace

int qvbrcm_MacFilter_set(MacFilterRequest *request) {
    if (_mac_filter_ready == 0) {
        WLBRCM_LOG(LOG_ERR, "not initialized yet\n");
        return 0;
    }
    if (request == nullptr) {
        WLBRCM_LOG(LOG_ERR, "request == NULL\n");
        return 0;
    }
    if (request->data.cmd > WLBRCM_FILTER_ALLOW) {
        WLBRCM_LOG(LOG_ERR, "invalid request->data.cmd = %d\n", request->data.cmd);
        return 0;
    }
    request->data.intf_name[sizeof request->data.intf_name - 1] = '\0';
    logRequest(WLBRCM_HERE, *request);
    const Outcome outcome = takeOver(WLBRCM_HERE, request);
    if (outcome == Outcome::kNoSlot)
        WLBRCM_LOG(LOG_ERR, "invalid request on interface %s\n", Shown(request->data.intf_name).c_str());
    if (outcome == Outcome::kNotApplied)
        WLBRCM_LOG(LOG_ERR, "fail to apply to driver\n");
    return outcome == Outcome::kApplied ? 1 : 0;
}
