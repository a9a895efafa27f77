// The daemons whose work the simulated driver models itself (it asks whether they run): the event dispatcher, the
// authenticator and link-layer discovery.
#include "daemon.h"

#include <iterator>
#include <net/if.h>
#include <stdexcept>
#include <unistd.h>

namespace {

struct Service {
    const char *name;
    std::size_t arguments;
    const char *usage;
};

constexpr Service kServices[] = {{"eapd", 0, "eapd"}, {"nas", 0, "nas"}, {"lld2d", 1, "lld2d [INTERFACE]"}};

constexpr bool same(const char *a, const char *b) {
    while (*a && *a == *b)
        ++a, ++b;
    return *a == *b;
}

constexpr std::size_t find(const char *name) {
    std::size_t index = 0;
    while (index < std::size(kServices) && !same(kServices[index].name, name))
        ++index;
    return index;
}

constexpr std::size_t kIndex = find(WLSIM_SERVICE);
static_assert(kIndex < std::size(kServices), "a program that is no service");
constexpr Service kService = kServices[kIndex];

} // namespace

int main(int argc, char **argv) {
    auto interfaces = wlsim::plainArguments(argc, argv, kService.arguments, kService.usage);
    wlsim::DaemonTask task;
    task.name = kService.name;
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
