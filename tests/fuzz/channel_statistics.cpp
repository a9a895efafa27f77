#include "target.h"

#include "status/readers.h"

namespace {

constexpr int kUntouched = 12345;

int load(const std::string &report) {
    FakePlatform platform;
    platform.answer("wlctl -i wl0 chanim_stats", report);
    int fat = kUntouched;
    HOLDS(qvbrcm_GetFatIntfInfo("wl0", 0, &fat) == 0);
    HOLDS(platform.leftFiles().empty());
    return fat;
}

// The load by libc's own reading; only for numbers that fit an int.
int expectedLoad(const std::string &line) {
    unsigned spec;
    int n[9] = {};
    sscanf(line.c_str(), "0x%x %d %d %d %d %d %d %d %d %d", &spec, &n[0], &n[1], &n[2], &n[3], &n[4], &n[5], &n[6],
           &n[7], &n[8]);
    return 100 - n[1] - n[2] - n[3] - n[4] - n[7] - n[8];
}

bool hasLongNumber(const std::string &line) {
    for (size_t at = 0; (at = line.find_first_of("0123456789abcdefABCDEF", at)) != std::string::npos;) {
        const size_t digits = strspn(line.c_str() + at, "0123456789abcdefABCDEF");
        if (digits > 8)
            return true;
        at += digits;
    }
    return false;
}

} // namespace

FUZZ_TARGET(channel_statistics) {
    if (input.find("inbss") == std::string::npos)
        HOLDS(load(input) == kUntouched);
    else
        load(input);
    const std::string line = input.substr(0, input.find_first_of(std::string("\0\n", 2)));
    // Libraries disagree about "0x" without a digit behind it, so only the mark itself may have one.
    if (hasLongNumber(line) || line.size() > 254 || line.find_first_of("xX", 2) != std::string::npos)
        return;
    HOLDS(wlbrcm::channelLoad(line) == expectedLoad(line));
    if (!line.empty())
        HOLDS(load("version: 3\nchanspec tx inbss obss\n" + line + "\n" + input) == expectedLoad(line));
}
