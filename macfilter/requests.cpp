// Requests: lists of addresses out of texts, and the two operations of the host.
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "macfilter/pool.h"
#include "module/filter_request.h"
#include "module/record.h"

using namespace wlbrcm;

namespace {

constexpr int kInvalidCommand = -17;
constexpr int kNoEntry = 2;
constexpr size_t kLongestAddressText = 32;

// One field as scanf's %x takes it, white space, "+" and "0x" included, except that a minus sign or a number too long
// for the machine does not wrap around into a byte.
bool readField(const char **text, uint8_t *field) {
    const char *start = *text;
    while (isspace(static_cast<unsigned char>(*start)) != 0)
        ++start;
    if (*start == '-')
        return false;
    char *end = nullptr;
    const unsigned long number = strtoul(start, &end, 16);
    if (end == start || number > 0xFF)
        return false;
    *text = end;
    *field = static_cast<uint8_t>(number);
    return true;
}

// Six fields joined by colons; whatever follows the sixth is ignored.
bool readAddress(const char *text, uint8_t (&mac)[6]) {
    for (int i = 0; i < 6; ++i) {
        if (i > 0 && *text++ != ':')
            return false;
        if (!readField(&text, &mac[i]))
            return false;
    }
    return true;
}

bool appendEntry(Here here, std::string_view word, MacFilterEntry **list) {
    char token[kLongestAddressText + 1];
    if (!copyText(token, word)) {
        WLBRCM_LOG_AT(here, LOG_ERR, "invalid si = %d\n", static_cast<int>(kLongestAddressText));
        return false;
    }
    if (qvbrcm_MacFilter_parse_str_to_mac_list(token, list) == 0) {
        WLBRCM_LOG_AT(here, LOG_ERR, "fail to parse and insert MAC list\n");
        return false;
    }
    return true;
}

} // namespace

int qvbrcm_MacFilter_add_mac_to_request(MacFilterRequest *request, MacFilterEntry *mac) {
    if (request == nullptr) {
        WLBRCM_LOG(LOG_ERR, "request == NULL\n");
        return 0;
    }
    if (mac == nullptr) {
        WLBRCM_LOG(LOG_ERR, "mac == NULL\n");
        return 0;
    }
    pushFront(&request->mac_list, mac);
    return 1;
}

int qvbrcm_MacFilter_get_cmd(const char *method) {
    if (method == nullptr) {
        WLBRCM_LOG(LOG_ERR, "method == NULL\n");
        return WLBRCM_FILTER_INVALID;
    }
    if (strcmp(method, "DENY") == 0)
        return WLBRCM_FILTER_DENY;
    return strcmp(method, "ALLOW") == 0 ? WLBRCM_FILTER_ALLOW : WLBRCM_FILTER_OFF;
}

int qvbrcm_MacFilter_parse_str_to_mac_list(const char *str, MacFilterEntry **mac_list) {
    if (str == nullptr) {
        WLBRCM_LOG(LOG_ERR, "str == NULL\n");
        return 0;
    }
    if (mac_list == nullptr) {
        WLBRCM_LOG(LOG_ERR, "mac_list == NULL\n");
        return 0;
    }
    uint8_t mac[6];
    if (!readAddress(str, mac)) {
        WLBRCM_LOG(LOG_ERR, "invalid MAC string = %s\n", Shown(str).c_str());
        return 0;
    }
    MacFilterEntry *entry = qvbrcm_MacFilter_get_free_mac();
    if (entry == nullptr) {
        WLBRCM_LOG(LOG_ERR, "insufficient free MAC\n");
        return 0;
    }
    memcpy(entry->mac, mac, sizeof mac);
    pushFront(mac_list, entry);
    return 1;
}

MacFilterEntry *qvbrcm_MacFilter_mac_list_by_str(const char *text) {
    if (text == nullptr)
        return nullptr;
    MacFilterEntry *list = nullptr;
    Words words(text);
    for (std::string_view word; words.next(&word);) {
        if (!appendEntry(WLBRCM_HERE, word, &list)) {
            qvbrcm_MacFilter_release_list(&list);
            return nullptr;
        }
    }
    return list;
}

int qvbrcm_StationFilter(WlIntf *intf, const char *objPath) {
    if (intf == nullptr || objPath == nullptr)
        return WLBRCM_EINVAL;
    WLBRCM_LOG(LOG_DEBUG, "objPath = %s\n", Shown(objPath).c_str());
    for (const WlSsidCfg &bss : EntriesInUse(&intf->radio, intf->bss)) {
        if (fieldText(bss.objPath) != objPath)
            continue;
        WLBRCM_LOG(LOG_DEBUG, "i = %d, ifname = %s\n", static_cast<int>(&bss - intf->bss),
                   Shown(fieldText(bss.ifName)).c_str());
        requestMacFilter(WLBRCM_HERE, bss);
    }
    return WLBRCM_OK;
}

int qvbrcm_BsaMacFilter(const char *ifname, int cmd, const uint8_t mac[6]) {
    constexpr uint8_t kNoAddress[6] = {};
    if (ifname == nullptr)
        return WLBRCM_EINVAL;
    const uint8_t *shown = mac != nullptr ? mac : kNoAddress;
    WLBRCM_LOG(LOG_DEBUG, "ifname = %s, cmd = %d, mac = %02X:%02X:%02X:%02X:%02X:%02X\n", Shown(ifname).c_str(), cmd,
               shown[0], shown[1], shown[2], shown[3], shown[4], shown[5]);
    if (cmd < WLBRCM_FILTER_OFF || cmd > WLBRCM_FILTER_ALLOW) {
        WLBRCM_LOG(LOG_ERR, "invalid command = %d\n", cmd);
        return kInvalidCommand;
    }
    MacFilterRequest request = {};
    copyText(request.data.intf_name, ifname);
    request.data.cmd = static_cast<uint32_t>(cmd);
    if (cmd != WLBRCM_FILTER_OFF) {
        request.mac_list = qvbrcm_MacFilter_get_mac(mac);
        if (request.mac_list == nullptr) {
            WLBRCM_LOG(LOG_ERR, "fail to get free MAC\n");
            return kNoEntry;
        }
    }
    return setFilter(WLBRCM_HERE, &request);
}
