// Security parameters of a BSS. They take effect when the radio is configured again.
#include "params/setting.h"

using namespace wlbrcm;

namespace {

enum class Akm { kSet, kUnset, kKeep };

struct AuthMode {
    const char *word;
    int auth;
    Akm change; // of akm and auth_mode
    const char *akm;
};
constexpr AuthMode kAuthModes[] = {
    {"wpa2psk", 0, Akm::kSet, "psk2"}, {"wpa2", 0, Akm::kSet, "wpa2"}, {"wpapskmix", 0, Akm::kSet, "psk psk2"},
    {"open", 0, Akm::kUnset, ""},      {"shared", 1, Akm::kKeep, ""},  {"wepauto", 2, Akm::kKeep, ""},
};

struct Cipher {
    const char *word;
    const char *crypto;
};
constexpr Cipher kCiphers[] = {{"none", ""}, {"wep", ""}, {"aes", "aes"}, {"tkipaes", "tkip+aes"}};

// The row of a word, or null.
template <class Row, size_t Count> const Row *findWord(const Row (&rows)[Count], const char *word) {
    for (const Row &row : rows) {
        if (strcmp(row.word, word) == 0)
            return &row;
    }
    return nullptr;
}

int *defaultKeyOf(const WlanParamArg *arg) {
    constexpr int kCount = sizeof wepkeyid / sizeof *wepkeyid;
    return arg->index >= 0 && arg->index < kCount ? &wepkeyid[arg->index] : nullptr;
}

} // namespace

int qvWlanSetAuthMode(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!name)
        return WLBRCM_EINVAL;
    const AuthMode *mode = findWord(kAuthModes, arg->value);
    if (mode == nullptr) {
        printf("Invalid Authentication Mode %s\n"
               "Possible Mode is : open\n"
               "\t\t   shared\n"
               "                   wepauto\n"
               "                   wpa2\n"
               "                   wpa2psk\n"
               "                   wpapskmix\n",
               arg->value);
        return WLBRCM_EINVAL;
    }
    if (mode->change == Akm::kSet)
        writeText(WLBRCM_HERE, name, "akm", mode->akm);
    if (mode->change == Akm::kUnset) {
        writeText(WLBRCM_HERE, name, "auth_mode", "");
        writeText(WLBRCM_HERE, name, "akm", "");
    }
    const int written = writeInt(WLBRCM_HERE, name, "auth", mode->auth);
    if (mode->change == Akm::kSet)
        return writeText(WLBRCM_HERE, name, "auth_mode", "none");
    return written;
}

// The old cipher goes first, so that an unknown word never leaves a cipher in force that nobody asked for.
int qvWlanSetEncrypType(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!name)
        return WLBRCM_EINVAL;
    const int unset = writeText(WLBRCM_HERE, name, "crypto", "");
    const Cipher *cipher = findWord(kCiphers, arg->value);
    if (cipher == nullptr) {
        printf("Invalid Encryption Type %s\n"
               "Possible Type is : none\n"
               "                   wep\n"
               "                   aes\n"
               "                   tkipaes\n",
               arg->value);
        return WLBRCM_EINVAL;
    }
    if (*cipher->crypto == '\0')
        return unset;
    return writeText(WLBRCM_HERE, name, "crypto", cipher->crypto);
}

int qvWlanSetDefaultKeyID(WlanParamArg *arg) {
    int number;
    const InterfaceName name = readNumber(WLBRCM_HERE, arg, {"key", 1, 4}, &number);
    if (!name)
        return WLBRCM_EINVAL;
    int *key = defaultKeyOf(arg);
    if (key == nullptr)
        return WLBRCM_EINVAL;
    *key = number;
    return writeInt(WLBRCM_HERE, name, "key", number);
}

int qvWlanSetWepKey(WlanParamArg *arg) {
    const InterfaceName name = interfaceOf(WLBRCM_HERE, arg, kValue);
    if (!name)
        return WLBRCM_EINVAL;
    const int *key = defaultKeyOf(arg);
    if (key == nullptr)
        return WLBRCM_EINVAL;
    return writeText(WLBRCM_HERE, name, Text<64>("key%d", *key).c_str(), arg->value);
}

int qvWlanSetPreSharedKey(WlanParamArg *arg) { return setText(WLBRCM_HERE, arg, "wpa_psk"); }

int qvWlanSetRekeyInterval(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"wpa_gtk_rekey"}); }

int qvWlanSetProtectMF(WlanParamArg *arg) { return setInt(WLBRCM_HERE, arg, {"mfp", 0, 2}); }
