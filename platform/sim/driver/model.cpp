#include "model.h"

namespace wlsim {

std::string Security::text() const {
    if (!broken.empty()) {
        return "broken: " + broken;
    }
    if (wep) {
        return sharedKey ? "wep shared" : "wep";
    }
    std::string suites;
    const struct {
        bool on;
        const char *name;
    } names[] = {{wpaPsk, "wpapsk"}, {wpa2Psk, "wpa2psk"}, {wpa, "wpa"}, {wpa2, "wpa2"}};
    for (const auto &suite : names) {
        if (suite.on) {
            suites += (suites.empty() ? "" : "+") + std::string(suite.name);
        }
    }
    if (suites.empty()) {
        return "open";
    }
    suites += aes && tkip ? " tkip+aes" : aes ? " aes" : " tkip";
    return suites + (mfp == 2 ? " mfp required" : mfp == 1 ? " mfp" : "");
}

size_t bssCapacity(const std::string &caps) {
    constexpr struct {
        const char *word;
        size_t count;
    } kWords[] = {{"mbss16", 16}, {"mbss8", 8}, {"mbss4", 4}};
    for (const std::string &cap : splitWords(caps)) {
        for (const auto &row : kWords) {
            if (cap == row.word) {
                return row.count;
            }
        }
    }
    return 1;
}

std::string peerName(const std::string &ifName) {
    return ifName.compare(0, 2, "wl") == 0 ? "air" + ifName.substr(2) : "air-" + ifName;
}

} // namespace wlsim
