// The MAC filter's state: the pool of addresses and the table of interfaces, both guarded by one lock.
#ifndef WLBRCM_MACFILTER_POOL_H
#define WLBRCM_MACFILTER_POOL_H

#include <wlbrcm/macfilter.h>

// Both sides' filters of one interface. An empty name marks a slot that is still free; a slot is never given back.
struct MacFilterIntf {
    char intf_name[68];
    uint32_t cmd;
    MacFilterEntry *mac_list;
    uint32_t b_bsa_config;
    MacFilterEntry *bsa_mac_list;
};

extern "C" {

extern int32_t _mac_free_cnt;     // elements in the pool
extern uint8_t _mac_filter_ready; // set by qvbrcm_MacFilter_init()
extern MacFilterIntf _intf_data[16];

// These work on the pool while the caller holds the lock.
MacFilterEntry *_get_free_mac(void);
void _release_mac(MacFilterEntry *mac);
void _release_list(MacFilterEntry **list);

} // extern "C"

namespace wlbrcm {

// Holds the process-wide lock. Before qvbrcm_MacFilter_init() there is no lock, and nothing to guard.
class PoolLock {
  public:
    PoolLock();
    ~PoolLock();
    PoolLock(const PoolLock &) = delete;
    PoolLock &operator=(const PoolLock &) = delete;

  private:
    bool held_;
};

void pushFront(MacFilterEntry **list, MacFilterEntry *entry);
bool sameAddress(const MacFilterEntry &one, const MacFilterEntry &other);
bool contains(const MacFilterEntry *list, const MacFilterEntry &address);

} // namespace wlbrcm

#endif
