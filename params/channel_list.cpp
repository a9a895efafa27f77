// The channels that the driver allows.
#include "params/setting.h"

using namespace wlbrcm;

namespace {

// A list of channels in the caller's buffer of WLBRCM_CHANNEL_LIST_SIZE bytes.
class ChannelListWriter {
  public:
    explicit ChannelListWriter(void *buffer) : list_(static_cast<char *>(buffer)) { list_[0] = '\0'; }

    // False when there is no room for the whole number; the list then ends before it.
    bool append(int channel) {
        const Text<16> entry(used_ > 0 ? ",%d" : "%d", channel);
        if (!copyText(list_ + used_, WLBRCM_CHANNEL_LIST_SIZE - used_, entry.view())) {
            list_[used_] = '\0';
            return false;
        }
        used_ += entry.size();
        return true;
    }

  private:
    char *list_;
    size_t used_ = 0;
};

struct ListingRequest {
    bool is5G = false;
    int bandwidth = 20;
    char sideband[16] = "upper";
};

ListingRequest readRequest(const char *text) {
    ListingRequest to;
    std::string_view band;
    if (!splitFirstField(text, &band, &text))
        return to;
    to.is5G = band == "5GHz";
    [[maybe_unused]] const int fields = sscanf(text, "%d,%15s", &to.bandwidth, to.sideband);
    return to;
}

struct ChanspecEntry {
    int channel;
    char first, second; // the characters behind the channel
};

// Reads one entry of the driver's listing. The number of characters is stored behind the chanspec, which may have any
// length: it tells that all of the entry was there.
bool readEntry(FILE *listing, int bandwidth, ChanspecEntry *entry) {
    int *channel = &entry->channel;
    char *first = &entry->first;
    char *second = &entry->second;
    int end = 0;
    switch (bandwidth) {
    case 10:
        return fscanf(listing, "%d%c%c\n", channel, first, second) == 3;
    case 20:
        return fscanf(listing, "%d%c %*s%n\n", channel, first, &end) == 2 && end > 0;
    case 40:
        return fscanf(listing, "%d%c%c %*s%n\n", channel, first, second, &end) == 3 && end > 0;
    case 80:
        return fscanf(listing, "%d%c%*d %*s%n\n", channel, first, &end) == 2 && end > 0;
    default:
        printf("unknown bandwidth : %d\n", bandwidth);
        return false;
    }
}

bool hasMore(FILE *listing) {
    if (fscanf(listing, " ") == EOF)
        return false;
    const int next = getc(listing);
    return next != EOF && ungetc(next, listing) != EOF;
}

bool isWanted(const ListingRequest &request, const ChanspecEntry &entry) {
    if (request.bandwidth != 40)
        return true;
    const char letter = entry.first == 'l' || entry.first == 'u' ? entry.first : entry.second;
    if (strcmp(request.sideband, "lower") == 0)
        return letter == 'l';
    return strcmp(request.sideband, "upper") != 0 || letter == 'u';
}

void readListing(FILE *listing, const ListingRequest &request, ChannelListWriter *list) {
    ChanspecEntry entry{};
    while (hasMore(listing) && readEntry(listing, request.bandwidth, &entry)) {
        if (isWanted(request, entry) && !list->append(entry.channel))
            return;
    }
}

// What countries are called, with a revision or a number; nothing that the driver tool's line reads otherwise.
bool isCountryText(std::string_view text) {
    for (const char c : text) {
        const bool isLetter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        if (!isLetter && !(c >= '0' && c <= '9') && !contains("/#._-", {&c, 1}))
            return false;
    }
    return true;
}

} // namespace

int qvWlanChannelList(WlanParamArg *arg) {
    if (!hasValue(arg) || arg->aux == nullptr || arg->result == nullptr)
        return WLBRCM_EINVAL;
    ChannelListWriter list(arg->result);
    const InterfaceName radio(WLBRCM_HERE, arg->prefix);
    if (!radio)
        return WLBRCM_EINVAL;
    const ListingRequest request = readRequest(arg->value);
    if (isCountryText(arg->aux))
        runDriver(WLBRCM_HERE, radio, DriverArgs("country %s", arg->aux));
    else
        WLBRCM_LOG(LOG_ERR, "invalid country \"%.64s\".\n", arg->aux);

    const ResultPath path("/tmp/%schspeclist", radio.c_str());
    runCommand(WLBRCM_HERE, "wlctl -i %s chanspecs -b %d -w %d > %s", radio, request.is5G ? 5 : 2, request.bandwidth,
               path);
    ResultFile listing(path);
    if (!listing) {
        printf("can't open file");
        return WLBRCM_OK;
    }
    readListing(listing.stream(), request, &list);
    return WLBRCM_OK;
}

int qvWlanGetValidChannel(WlanParamArg *arg) {
    if (!hasPrefix(arg) || arg->result == nullptr)
        return WLBRCM_EINVAL;
    const InterfaceName radio(WLBRCM_HERE, arg->prefix);
    if (!radio)
        return WLBRCM_EINVAL;
    const ResultPath path("/var/%schlist", radio.c_str());
    runCommand(WLBRCM_HERE, "wlctl -i %s channels > %s", radio, path);
    ResultFile listing(path);
    if (!listing) {
        printf("Can't open %s\n", path.c_str());
        return WLBRCM_EFAILED;
    }
    ChannelListWriter list(arg->result);
    for (int channel; fscanf(listing.stream(), "%d", &channel) == 1;) {
        if (!list.append(channel))
            break;
    }
    return WLBRCM_OK;
}

int qvWlanCheckChannelSideband(int channel, const char *list) {
    if (list == nullptr)
        return 0;
    char copy[256];
    copyText(copy, list);
    Words channels(copy, ',');
    for (std::string_view each; channels.next(&each);) {
        // The number ends at the comma or at the end of the copy.
        if (decimal(each.data()) == channel)
            return 1;
    }
    return 0;
}

void qvWlanUpdateAutoChannel(WlRadioCfg *radio) {
    if (radio == nullptr || (radio->sideband != 1 && radio->sideband != -1))
        return;
    Text<64> ifname("%.*s", static_cast<int>(sizeof radio->ifName), radio->ifName);
    Text<64> country("%.*s", static_cast<int>(sizeof radio->countryCode), radio->countryCode);
    Text<64> value("%s,%d,%s", radio->band == WLBRCM_BAND_2G ? "2.4GHz" : "5GHz", 40,
                   radio->sideband == 1 ? "upper" : "lower");
    char list[WLBRCM_CHANNEL_LIST_SIZE] = "";
    WlanParamArg arg{ifname.data(), value.data(), country.data(), list, 0};
    qvWlanChannelList(&arg);
    if (qvWlanCheckChannelSideband(radio->channel, list) == 0)
        radio->autoChannel = 1;
}
