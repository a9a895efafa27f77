#include "module/nvram.h"

using namespace wlbrcm;

namespace {

int storeInt(Here here, int value, const char *key) {
    const Text<64> text("%d", value);
    nvram_set(key, text.c_str());
    WLBRCM_LOG_AT(here, LOG_DEBUG, "nvram set %s = %s\n", key, text.c_str());
    return WLBRCM_OK;
}

int storeText(Here here, char *value, const char *key) {
    const size_t length = strlen(value);
    if (length == 0) {
        nvram_unset(key);
        WLBRCM_LOG_AT(here, LOG_DEBUG, "nvram unset %s\n", key);
        return WLBRCM_OK;
    }
    // Lists are built with a blank behind each word; network names and passphrases may end in one of their own.
    const bool keepsBlank = strstr(key, "ssid") != nullptr || strstr(key, "wpa_psk") != nullptr;
    if (!keepsBlank && value[length - 1] == ' ')
        value[length - 1] = '\0';
    nvram_set(key, value);
    WLBRCM_LOG_AT(here, LOG_DEBUG, "nvram set %s = %s\n", key, value);
    return WLBRCM_OK;
}

int write(Here here, const Key &key, void *value, const char *type) {
    if (!key.fits()) {
        WLBRCM_LOG_AT(here, LOG_ERR, "nvram key is too long: %s...\n", key.c_str());
        return WLBRCM_EINVAL;
    }
    return __qvWlanSetVarToNvram(here.function, here.line, value, key.c_str(), type);
}

} // namespace

int __qvWlanSetVarToNvram(const char *function, int line, void *value, const char *key, const char *type) {
    const Here here{function, line};
    const bool isInt = type != nullptr && strcmp(type, "int") == 0;
    if (!isInt && (type == nullptr || strcmp(type, "string") != 0)) {
        WLBRCM_LOG_AT(here, LOG_ERR, "type not found.\n");
        return WLBRCM_EINVAL;
    }
    if (value == nullptr || key == nullptr)
        return WLBRCM_EINVAL;
    return isInt ? storeInt(here, *static_cast<int *>(value), key) : storeText(here, static_cast<char *>(value), key);
}

int __qvWlanSetVarToNvram2(const char *function, int line, void *value, const char *prefix, const char *suffix,
                           const char *type) {
    const Here here{function, line};
    if (prefix == nullptr || suffix == nullptr)
        return WLBRCM_EINVAL;
    const InterfaceName name(here, prefix);
    return name ? write(here, keyOf(name, suffix), value, type) : WLBRCM_EINVAL;
}

int nvram_match(const char *key, const char *value) {
    const char *stored = nvram_get(key);
    return stored != nullptr && strcmp(stored, value) == 0 ? 1 : 0;
}

std::string_view wlbrcm::nvramText(const char *key) {
    const char *stored = nvram_get(key);
    return stored != nullptr ? stored : "";
}

bool wlbrcm::valueFits(Here here, const char *key, std::string_view value) {
    constexpr size_t kShown = 32;
    const bool fits = value.size() <= kLongestValue;
    if (!fits)
        WLBRCM_LOG_AT(here, LOG_ERR, "value of nvram %s is too long: %s...\n", key,
                      Shown({value.data(), kShown}).c_str());
    return fits;
}

int wlbrcm::writeInt(Here here, const Key &key, int value) { return write(here, key, &value, "int"); }

int wlbrcm::writeText(Here here, const Key &key, std::string_view value) {
    char copy[kLongestValue + 1];
    if (!valueFits(here, key.c_str(), value))
        return WLBRCM_EINVAL;
    copyText(copy, value);
    return write(here, key, copy, "string");
}

int wlbrcm::writeInt(Here here, const InterfaceName &prefix, const char *suffix, int value) {
    return prefix ? writeInt(here, keyOf(prefix, suffix), value) : WLBRCM_EINVAL;
}

int wlbrcm::writeText(Here here, const InterfaceName &prefix, const char *suffix, std::string_view value) {
    return prefix ? writeText(here, keyOf(prefix, suffix), value) : WLBRCM_EINVAL;
}
