// The channels that the driver allows.
#include "module/numbers.h"
#include "params/setting.h"

using namespace wlbrcm;

namespace {

// A list of channels in the caller's buffer of WLBRCM_CHANNEL_LIST_SIZE bytes.
class ChannelListWriter {
  public:
    explicit ChannelListWriter(void *buffer) : list_(static_cast<char *>(buffer)) { list_[0] = '\0'; }

    // False when there is no room for the whole number; the list then ends before it.
    bool append(int channel) {
        const Text<64> entry(used_ > 0 ? ",%d" : "%d", channel);
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

// A line of a listing this long fills any list.
constexpr size_t kLongestLine = 4095;

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

bool takeCharacter(std::string_view *rest, char *character) {
    if (rest->empty())
        return false;
    *character = rest->front();
    rest->remove_prefix(1);
    return true;
}

// Takes one entry of the driver's listing: the channel, one or two characters, and but for 10 MHz the chanspec.
bool takeEntry(std::string_view *rest, int bandwidth, ChanspecEntry *entry) {
    int width;
    std::string_view chanspec;
    if (bandwidth != 10 && bandwidth != 20 && bandwidth != 40 && bandwidth != 80) {
        printf("unknown bandwidth : %d\n", bandwidth);
        return false;
    }
    if (!takeDecimal(rest, &entry->channel) || !takeCharacter(rest, &entry->first))
        return false;
    const bool isPair = bandwidth == 10 || bandwidth == 40;
    if (isPair && !takeCharacter(rest, &entry->second))
        return false;
    if (bandwidth == 80 && !takeDecimal(rest, &width))
        return false;
    return bandwidth == 10 || takeWord(rest, rest->size(), &chanspec);
}

// Passes over blanks; false when there is nothing else.
bool hasMore(std::string_view *rest) {
    takeText(rest, " ");
    return !rest->empty();
}

bool isWanted(const ListingRequest &request, const ChanspecEntry &entry) {
    if (request.bandwidth != 40)
        return true;
    const char letter = entry.first == 'l' || entry.first == 'u' ? entry.first : entry.second;
    if (strcmp(request.sideband, "lower") == 0)
        return letter == 'l';
    return strcmp(request.sideband, "upper") != 0 || letter == 'u';
}

// False when the listing is to be read no further.
bool readLine(std::string_view line, const ListingRequest &request, ChannelListWriter *list) {
    ChanspecEntry entry{};
    while (hasMore(&line)) {
        if (!takeEntry(&line, request.bandwidth, &entry) || (isWanted(request, entry) && !list->append(entry.channel)))
            return false;
    }
    return true;
}

bool isBlank(char c) { return contains(" \t\r\n", {&c, 1}); }

// A chanspec may have any length; what a line too long for one piece has left of it is passed over.
void readListing(Report *listing, const ListingRequest &request, ChannelListWriter *list) {
    bool insideChanspec = false;
    for (std::string_view line; listing->next<kLongestLine>(&line);) {
        const bool cut = !line.empty() && !isBlank(line.back());
        while (insideChanspec && !line.empty() && !isBlank(line.front()))
            line.remove_prefix(1);
        if (!readLine(line, request, list))
            return;
        insideChanspec = cut;
    }
}

bool readNumbers(std::string_view line, ChannelListWriter *list) {
    while (hasMore(&line)) {
        int channel;
        if (!takeDecimal(&line, &channel) || !list->append(channel))
            return false;
    }
    return true;
}

bool isLetterOrDigit(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); }

// What countries are called, with a revision or a number; nothing that the driver tool's line reads otherwise, as an
// option or a path. None at all is what a record without a country asks for.
bool isCountryText(std::string_view text) {
    for (const char c : text) {
        if (!isLetterOrDigit(c) && !contains("/#._-", {&c, 1}))
            return false;
    }
    return text.empty() || (isLetterOrDigit(text.front()) && !contains(text, ".."));
}

} // namespace

int qvWlanChannelList(WlanParamArg *arg) {
    const InterfaceName radio = interfaceOf(WLBRCM_HERE, arg, kValue | kAux | kResult);
    if (!radio)
        return WLBRCM_EINVAL;
    ChannelListWriter list(arg->result);
    const ListingRequest request = readRequest(arg->value);
    if (isCountryText(arg->aux))
        runDriver(WLBRCM_HERE, radio, DriverArgs("country %s", arg->aux));
    else
        WLBRCM_LOG(LOG_ERR, "invalid country \"%s\".\n", Shown({arg->aux, strnlen(arg->aux, 64)}).c_str());

    Report listing(WLBRCM_HERE, ResultPath(WLBRCM_COMMAND("/tmp/%schspeclist"), radio),
                   WLBRCM_COMMAND("wlctl -i %s chanspecs -b %d -w %d > %s"), radio, request.is5G ? 5 : 2,
                   request.bandwidth);
    if (!listing) {
        printf("can't open file");
        return WLBRCM_OK;
    }
    readListing(&listing, request, &list);
    return WLBRCM_OK;
}

int qvWlanGetValidChannel(WlanParamArg *arg) {
    const InterfaceName radio = interfaceOf(WLBRCM_HERE, arg, kResult);
    if (!radio)
        return WLBRCM_EINVAL;
    const ResultPath path(WLBRCM_COMMAND("/var/%schlist"), radio);
    Report listing(WLBRCM_HERE, path, WLBRCM_COMMAND("wlctl -i %s channels > %s"), radio);
    if (!listing) {
        printf("Can't open %s\n", path.c_str());
        return WLBRCM_EFAILED;
    }
    ChannelListWriter list(arg->result);
    for (std::string_view line; listing.next<kLongestLine>(&line) && readNumbers(line, &list);)
        continue;
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
