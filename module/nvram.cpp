#include "module/nvram.h"

using namespace wlbrcm;

namespace {

int storeInt(Here here, int value, const char *key) {
    const Text<100> text("%d", value);
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
    if (prefix == nullptr || suffix == nullptr)
        return WLBRCM_EINVAL;
    return write(Here{function, line}, Key("%s_%s", prefix, suffix), value, type);
}

int nvram_match(const char *key, const char *value) {
    const char *stored = nvram_get(key);
    return stored != nullptr && strcmp(stored, value) == 0 ? 1 : 0;
}

std::string_view wlbrcm::nvramText(const char *key) {
    const char *stored = nvram_get(key);
    return stored != nullptr ? stored : "";
}

int wlbrcm::writeInt(Here here, const Key &key, int value) { return write(here, key, &value, "int"); }

int wlbrcm::writeText(Here here, const Key &key, std::string_view value) {
    char copy[kLongestValue + 1];
    if (!copyText(copy, value)) {
        WLBRCM_LOG_AT(here, LOG_ERR, "value of nvram %s is too long: %.32s...\n", key.c_str(), copy);
        return WLBRCM_EINVAL;
    }
    return write(here, key, copy, "string");
}

int wlbrcm::writeInt(Here here, const char *prefix, const char *suffix, int value) {
    return writeInt(here, Key("%s_%s", prefix, suffix), value);
}

int wlbrcm::writeText(Here here, const char *prefix, const char *suffix, std::string_view value) {
    return writeText(here, Key("%s_%s", prefix, suffix), value);
}
