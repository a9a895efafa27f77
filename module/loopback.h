// Ports on the loopback interface.
#ifndef WLBRCM_MODULE_LOOPBACK_H
#define WLBRCM_MODULE_LOOPBACK_H

#include <arpa/inet.h>
#include <netinet/in.h>

namespace wlbrcm {

inline sockaddr_in loopback(uint16_t port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace wlbrcm

#endif
