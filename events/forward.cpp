// The steering agent's side: raw events forwarded to it, stations deauthenticated for it.
#include <wlbrcm/events.h>

#include "events/decode.h"
#include "module/command.h"
#include "module/loopback.h"

using namespace wlbrcm;

namespace {

constexpr uint16_t kAgentPort = 13727;

} // namespace

uint8_t enable_fenra_evt = 0;
int fenra_rpe_sock = 0;

int qvbrcm_EnableFenraEvt(int enable) {
    WLBRCM_LOG(LOG_DEBUG, "enable = %d\n", enable);
    enable_fenra_evt = static_cast<uint8_t>(enable);
    return WLBRCM_OK;
}

int send_bcmevt_to_Fenra_RPE(int sock, const void *message, int length) {
    WLBRCM_LOG(LOG_DEBUG, "Enter.\n");
    if (message == nullptr || length < 0)
        return WLBRCM_EINVAL;
    const size_t size = static_cast<size_t>(length);
    WLBRCM_LOG(LOG_DEBUG, "event_type = %d\n", static_cast<int>(eventType(message, size)));
    if (sock < 0) {
        WLBRCM_LOG(LOG_ERR, "fenra_rpe_sock not created\n");
        return WLBRCM_EFAILED;
    }
    const sockaddr_in agent = loopback(kAgentPort);
    const ssize_t sent = sendto(sock, message, size, 0, reinterpret_cast<const sockaddr *>(&agent), sizeof agent);
    if (sent != length)
        WLBRCM_LOG(LOG_ERR, "UDP send failed; sentBytes = %d\n", static_cast<int>(sent));
    return WLBRCM_OK;
}

int qvbrcm_DisassociateSTA(const char *ifname, const char *mac) {
    const InterfaceName name(WLBRCM_HERE, ifname);
    const MacText station(WLBRCM_HERE, mac);
    if (!name || !station)
        return WLBRCM_EINVAL;
    if (!isRadioInterface(name.c_str())) {
        WLBRCM_LOG(LOG_ERR, "%s is no interface of a radio.\n", name.c_str());
        return WLBRCM_EINVAL;
    }
    runCommand(unlogged(WLBRCM_HERE), WLBRCM_COMMAND("wlctl -i %s deauthenticate %s"), name, station);
    return WLBRCM_OK;
}
