#include "host/state/bridges.h"

#include <filesystem>

#include "host/base/addresses.h"
#include "host/tap/dry_run.h"

namespace wlhost {
namespace {

int brctl(const char *verb, const std::string &bridge, const std::string &interface) {
    return tap::run("wlhost", {"brctl", verb, bridge, interface});
}

} // namespace

std::string bridgeOf(const std::string &interface) {
    std::error_code none;
    return isInterfaceName(interface)
               ? std::filesystem::read_symlink("/sys/class/net/" + interface + "/brport/bridge", none)
                     .filename()
                     .string()
               : "";
}

int leaveBridge(const std::string &interface, const std::string &wanted) {
    std::string found = bridgeOf(interface);
    return found.empty() || found == wanted ? 0 : brctl("delif", found, interface);
}

int joinBridge(const std::string &interface, const std::string &wanted) {
    int rc = leaveBridge(interface, wanted);
    return rc != 0 || wanted.empty() || bridgeOf(interface) == wanted ? rc : brctl("addif", wanted, interface);
}

} // namespace wlhost
