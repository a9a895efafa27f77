#include "macfilter/pool.h"

#include <cstring>
#include <pthread.h>

#include "module/log.h"

using namespace wlbrcm;

int32_t _mac_free_cnt = 0;
uint8_t _mac_filter_ready = 0;
MacFilterIntf _intf_data[16];

namespace {

constexpr int32_t kPoolSize = 512;
MacFilterEntry pool[kPoolSize];
MacFilterEntry *freeEntries = nullptr;
pthread_mutex_t poolMutex;

} // namespace

PoolLock::PoolLock() : held_(_mac_filter_ready != 0) {
    if (held_)
        pthread_mutex_lock(&poolMutex);
}

PoolLock::~PoolLock() {
    if (held_)
        pthread_mutex_unlock(&poolMutex);
}

void wlbrcm::pushFront(MacFilterEntry **list, MacFilterEntry *entry) {
    entry->prev = nullptr;
    entry->next = *list;
    if (*list != nullptr)
        (*list)->prev = entry;
    *list = entry;
}

bool wlbrcm::sameAddress(const MacFilterEntry &one, const MacFilterEntry &other) {
    return memcmp(one.mac, other.mac, sizeof one.mac) == 0;
}

bool wlbrcm::contains(const MacFilterEntry *list, const MacFilterEntry &address) {
    for (; list != nullptr; list = list->next) {
        if (sameAddress(*list, address))
            return true;
    }
    return false;
}

MacFilterEntry *_get_free_mac(void) {
    MacFilterEntry *mac = freeEntries;
    if (mac == nullptr) {
        WLBRCM_LOG(LOG_ERR, "insufficient mac\n");
        WLBRCM_LOG(LOG_DEBUG, "_mac_free_cnt = %d\n", _mac_free_cnt);
        return nullptr;
    }
    freeEntries = mac->next;
    mac->prev = nullptr;
    mac->next = nullptr;
    --_mac_free_cnt;
    WLBRCM_LOG(LOG_DEBUG, "_mac_free_cnt = %d\n", _mac_free_cnt);
    return mac;
}

void _release_mac(MacFilterEntry *mac) {
    if (mac == nullptr) {
        WLBRCM_LOG(LOG_ERR, "mac == NULL\n");
        return;
    }
    mac->next = freeEntries;
    freeEntries = mac;
    ++_mac_free_cnt;
    WLBRCM_LOG(LOG_DEBUG, "_mac_free_cnt = %d\n", _mac_free_cnt);
}

void _release_list(MacFilterEntry **list) {
    if (list == nullptr)
        return;
    for (MacFilterEntry *mac = *list, *next = nullptr; mac != nullptr; mac = next) {
        next = mac->next;
        _release_mac(mac);
    }
    *list = nullptr;
}

int qvbrcm_MacFilter_init(void) {
    if (_mac_filter_ready != 0)
        return 1;
    if (pthread_mutex_init(&poolMutex, nullptr) != 0) {
        WLBRCM_LOG(LOG_ERR, "fail to init mutex\n");
        return 0;
    }
    memset(_intf_data, 0, sizeof _intf_data);
    memset(pool, 0, sizeof pool);
    for (int32_t i = 0; i + 1 < kPoolSize; ++i)
        pool[i].next = &pool[i + 1];
    freeEntries = pool;
    _mac_free_cnt = kPoolSize;
    _mac_filter_ready = 1;
    return 1;
}

MacFilterEntry *qvbrcm_MacFilter_get_free_mac(void) {
    const PoolLock lock;
    return _get_free_mac();
}

MacFilterEntry *qvbrcm_MacFilter_get_mac(const uint8_t mac_addr[6]) {
    if (mac_addr == nullptr) {
        WLBRCM_LOG(LOG_ERR, "mac_addr == NULL\n");
        return nullptr;
    }
    MacFilterEntry *mac = qvbrcm_MacFilter_get_free_mac();
    if (mac != nullptr)
        memcpy(mac->mac, mac_addr, sizeof mac->mac);
    return mac;
}

void qvbrcm_MacFilter_release_list(MacFilterEntry **list) {
    const PoolLock lock;
    _release_list(list);
}
