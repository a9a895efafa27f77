// What an interface announces in its beacon.
#include "module/command.h"
#include "module/numbers.h"
#include "status/interface.h"
#include "status/readers.h"

namespace wlbrcm {

// An information element, in the report's words and in the record. There its number, length and bytes follow each
// other; the report prints the bytes in one or two further lines.
struct BeaconElement {
    const char *mark;
    uint8_t flag;
    size_t offset; // in WlIntfInfo
    int parts[2];  // bytes in each further line; none at all for the capability word
    bool labelled; // the further lines have a "label: " in front
};

namespace {

// The first mark that a line contains decides: "HT Capabilities" is part of "VHT Capabilities".
constexpr BeaconElement kElements[] = {
    {"HT Capabilities", 0x2, offsetof(WlIntfInfo, htCapId), {16, 10}, true},
    {"HT Information", 0, offsetof(WlIntfInfo, htInfoId), {16, 6}, true},
    {"Capabilities", 0, offsetof(WlIntfInfo, capabilities), {0, 0}, false},
    {"Tag:191", 0x4, offsetof(WlIntfInfo, vhtCapId), {12, 0}, false},
    {"Tag:192", 0x4, offsetof(WlIntfInfo, vhtOpId), {5, 0}, false},
};
static_assert(sizeof WlIntfInfo::htCap == 26 && sizeof WlIntfInfo::htInfo == 22 && sizeof WlIntfInfo::vhtCap == 12 &&
                  sizeof WlIntfInfo::vhtOp == 5,
              "the parts fill the fields");

// The number is 16 bits, in some drivers in the upper half of a word.
void readCapabilityWord(std::string_view line, WlIntfInfo *info) {
    uint32_t word;
    if (takeText(&line, "Capabilities: 0x") && takeHex(&line, &word))
        info->capabilities = word >= 0x10000 ? word >> 16 : word;
}

// "Tag:45 Len:26 - ..."
void readElementHeader(std::string_view line, uint8_t *header) {
    uint32_t number;
    if (!takeText(&line, "Tag:") || !takeUnsigned(&line, &number))
        return;
    header[0] = static_cast<uint8_t>(number);
    if (takeText(&line, " Len:") && takeUnsigned(&line, &number))
        header[1] = static_cast<uint8_t>(number);
}

// "label: " with a label of at least one character.
bool skipLabel(std::string_view *line) { return !line->empty() && line->front() != ':' && takeThrough(line, ":"); }

} // namespace

void BeaconReader::readBytes(std::string_view line) {
    auto *bytes = reinterpret_cast<uint8_t *>(info_) + element_->offset + 2;
    if (part_ == 1)
        bytes += element_->parts[0];
    uint32_t byte;
    const bool readable = !element_->labelled || skipLabel(&line);
    for (int i = 0; readable && i < element_->parts[part_] && takeHex(&line, &byte); ++i)
        bytes[i] = static_cast<uint8_t>(byte);
    if (part_ == 1 || element_->parts[1] == 0)
        element_ = nullptr;
    else
        part_ = 1;
}

bool BeaconReader::startElement(std::string_view line) {
    for (const BeaconElement &element : kElements) {
        if (!contains(line, element.mark))
            continue;
        info_->ieFlags = static_cast<uint8_t>(info_->ieFlags | element.flag);
        element_ = &element;
        part_ = 0;
        return true;
    }
    return false;
}

void BeaconReader::line(std::string_view line) {
    if (element_ != nullptr) {
        readBytes(line);
    } else if (startElement(line)) {
        if (element_->parts[0] != 0) {
            readElementHeader(line, reinterpret_cast<uint8_t *>(info_) + element_->offset);
            return;
        }
        readCapabilityWord(line, info_);
        element_ = nullptr;
    }
}

} // namespace wlbrcm

using namespace wlbrcm;

int qvbrcm_GetGenIntfInfo(const char *ifname, int bssIndex, WlIntfInfo *info) {
    WLBRCM_LOG(LOG_DEBUG, "enter.\n");
    const InterfaceName name = bssInterface(WLBRCM_HERE, ifname, bssIndex, info);
    if (!name)
        return WLBRCM_OK;
    Report report(unlogged(WLBRCM_HERE), ResultPath(WLBRCM_COMMAND("/tmp/.intf_info_result")),
                  WLBRCM_COMMAND("wlctl -i %s beacon_info > %s"), name);
    BeaconReader reader(info);
    for (char line[99]; report.next(line);)
        reader.line(line);
    return WLBRCM_OK;
}
