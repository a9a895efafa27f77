#include "platform/sim/driver/bss_security.h"

#include "platform/sim/nvram/nvram_store.h"

#include <algorithm>
#include <strings.h>

namespace wlsim {
namespace {

constexpr struct {
    const char *akm, *word;
    bool Security::*flag;
} kSuites[] = {{"psk", "wpapsk", &Security::wpaPsk},
               {"psk2", "wpa2psk", &Security::wpa2Psk},
               {"wpa", "wpa", &Security::wpa},
               {"wpa2", "wpa2", &Security::wpa2}};

bool isHex(const std::string &text) { return bytesFromHex(text).has_value(); }

bool validPsk(const std::string &key) {
    return (key.size() >= 8 && key.size() <= 63) || (key.size() == 64 && isHex(key));
}

bool validWepKey(const std::string &key) {
    return key.size() == 5 || key.size() == 13 || ((key.size() == 10 || key.size() == 26) && isHex(key));
}

std::string readWep(const std::string &ifName, Security *security) {
    std::string number = stored(ifName, "key");
    security->key = stored(ifName, "key" + (number.empty() ? "1" : number));
    security->wep = true;
    return validWepKey(security->key) ? "" : "WEP without a usable default key";
}

std::string readAkm(const std::string &akm, Security *security) {
    for (const std::string &word : splitWords(akm)) {
        auto row = std::find_if(std::begin(kSuites), std::end(kSuites), [&](auto &suite) { return word == suite.akm; });
        if (row == std::end(kSuites)) {
            return "unknown akm " + word;
        }
        security->*row->flag = true;
    }
    return "";
}

std::string readCrypto(const std::string &crypto, Security *security) {
    security->aes = crypto == "aes" || crypto == "tkip+aes";
    security->tkip = crypto == "tkip" || crypto == "tkip+aes";
    if (security->aes || security->tkip) {
        return "";
    }
    return crypto.empty() ? "akm without crypto" : "unknown crypto " + crypto;
}

std::string readKeys(const std::string &ifName, Security *security) {
    if (security->psk()) {
        security->key = stored(ifName, "wpa_psk");
        if (!validPsk(security->key)) {
            return "no usable wpa_psk";
        }
    }
    bool radius = !stored(ifName, "radius_ipaddr").empty() && !stored(ifName, "radius_key").empty();
    return (security->wpa || security->wpa2) && !radius ? "no RADIUS server" : "";
}

// Every demand in turn; the first that the configuration does not meet makes the BSS unusable.
std::string readWpa(const std::string &ifName, const std::string &akm, Security *security) {
    std::string trouble = readAkm(akm, security);
    trouble = trouble.empty() ? readCrypto(stored(ifName, "crypto"), security) : trouble;
    trouble = trouble.empty() ? readKeys(ifName, security) : trouble;
    std::string mode = stored(ifName, "auth_mode");
    if (trouble.empty() && !mode.empty() && mode != "none") {
        trouble = "auth_mode " + mode + " with akm";
    }
    if (trouble.empty() && security->sharedKey) {
        trouble = "shared-key authentication with akm";
    }
    return trouble;
}

} // namespace

std::string Security::text() const {
    if (!broken.empty()) {
        return "broken: " + broken;
    }
    if (wep) {
        return sharedKey ? "wep shared" : "wep";
    }
    Words suites;
    for (const auto &suite : kSuites) {
        if (this->*suite.flag) {
            suites.emplace_back(suite.word);
        }
    }
    if (suites.empty()) {
        return "open";
    }
    return joinWords(suites, "+") +
           (aes && tkip ? " tkip+aes"
            : aes       ? " aes"
                        : " tkip") +
           (mfp == 2   ? " mfp required"
            : mfp == 1 ? " mfp"
                       : "");
}

Security readSecurity(const std::string &ifName) {
    Security security;
    std::string akm = stored(ifName, "akm"), auth = stored(ifName, "auth"), mfp = stored(ifName, "mfp");
    bool wep = stored(ifName, "wep") == "enabled";
    security.sharedKey = auth == "1";
    security.mfp = static_cast<int>(parseNumber(mfp).value_or(0));
    if (wep) {
        security.broken = splitWords(akm).empty() ? readWep(ifName, &security) : "WEP together with akm";
    } else if (!splitWords(akm).empty()) {
        security.broken = readWpa(ifName, akm, &security);
    } else if (security.sharedKey) {
        security.broken = "shared-key authentication without WEP";
    }
    if (security.broken.empty() && security.mfp == 2 && !(security.rsn() && security.aes)) {
        security.broken = "frame protection required without WPA2 and AES";
    }
    return security;
}

bool isSecurityWord(const std::string &word) {
    return word == "open" || word == "wep" ||
           std::any_of(std::begin(kSuites), std::end(kSuites), [&](auto &suite) { return word == suite.word; });
}

std::string securityMismatch(const Security &security, const Credentials &station) {
    if (!security.broken.empty()) {
        return security.broken;
    }
    bool offered = station.security == (security.wep ? "wep" : "open") && !security.needsAuthenticator();
    for (const auto &suite : kSuites) {
        offered = offered || (station.security == suite.word && security.*suite.flag);
    }
    if (!offered) {
        return "the BSS is " + security.text();
    }
    if (security.needsAuthenticator() &&
        ((station.cipher == "aes" && !security.aes) || (station.cipher == "tkip" && !security.tkip))) {
        return "the BSS does not offer " + station.cipher;
    }
    return security.mfp == 2 && !station.pmf ? "frame protection is required" : "";
}

bool keyFits(const Security &security, const Credentials &station) {
    if (!security.psk() && !security.wep) {
        return true;
    }
    bool hex = security.key.size() == 64 || security.key.size() == 10 || security.key.size() == 26;
    return hex ? strcasecmp(security.key.c_str(), station.passphrase.c_str()) == 0 : security.key == station.passphrase;
}

} // namespace wlsim
