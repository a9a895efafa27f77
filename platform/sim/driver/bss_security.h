// What a BSS demands of its stations, and whether a station meets it.
#pragma once

#include "platform/sim/driver/model.h"

namespace wlsim {

// The security that the configuration store describes for one BSS.
Security readSecurity(const std::string &ifName);

// A station's side of the agreement.
struct Credentials {
    // open, wep, wpapsk, wpa2psk, wpa, wpa2.
    std::string security = "open";
    std::string passphrase;
    // aes, tkip, or empty for either.
    std::string cipher;
    bool pmf = true;
};

bool isSecurityWord(const std::string &word);

// Why a station is refused before keys come into it; empty when both sides agree on how to talk.
std::string securityMismatch(const Security &security, const Credentials &station);

bool keyFits(const Security &security, const Credentials &station);

} // namespace wlsim
