// wlctl, wl, dhdctl, wlconf: each hands its words to the driver and shows the answer.
#include "client.h"

#include <cstdio>

int main(int argc, char **argv) {
    std::vector<std::string> words(argv, argv + argc);
    words[0] = TOOL_NAME;
    std::string output;
    int status = wlsim::request(words, &output);
    fwrite(output.data(), 1, output.size(), stdout);
    return fflush(stdout) == 0 ? status : 1;
}
