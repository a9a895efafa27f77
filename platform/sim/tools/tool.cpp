// wlctl, wl, dhdctl, wlconf: each hands its words to the driver and shows the answer.
#include "platform/sim/common/sim_socket.h"

int main(int argc, char **argv) {
    wlsim::Words words(argv, argv + argc);
    words[0] = TOOL_NAME;
    return wlsim::requestAndShow(words);
}
