// The daemons whose work the simulated driver models itself (it asks whether they run): the event dispatcher, the
// authenticator and link-layer discovery.
#include "platform/sim/daemons/daemon.h"

#include <net/if.h>
#include <stdexcept>
#include <unistd.h>

int main(int argc, char **argv) {
    const char *usage = WLSIM_INTERFACES ? WLSIM_SERVICE " [INTERFACE]" : WLSIM_SERVICE;
    auto interfaces = wlsim::plainArguments(argc, argv, WLSIM_INTERFACES, usage);
    wlsim::DaemonTask task;
    task.name = WLSIM_SERVICE;
    task.prepare = [&] {
        for (const std::string &name : interfaces) {
            if (if_nametoindex(name.c_str()) == 0)
                throw std::runtime_error(name + ": no such interface");
        }
    };
    task.serve = [] {
        for (;;)
            pause();
    };
    return wlsim::startDaemon(task);
}
