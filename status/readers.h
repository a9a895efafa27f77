// Readers of the driver's reports. Each takes one line, does no input or output, and leaves what the line does not say
// as it was. Lines may be cut anywhere or hold anything.
#ifndef WLBRCM_STATUS_READERS_H
#define WLBRCM_STATUS_READERS_H

#include <string_view>

#include <wlbrcm/status.h>

namespace wlbrcm {

// "36/80 (0xe02a)": false for a line without "(".
bool readChanspec(std::string_view line, uint32_t *chanspec);

// Fills the record's fields. False, with the record untouched, for a number that is no chanspec.
bool decodeChanspec(uint32_t chanspec, WlChannelInfo *info);

// Lines of the counters report. Returns how many counter names were met.
int readCounters(std::string_view line, WlTrafficCounters *counters);

// "Supported HT MCS : 0-15": the highest rate in Mbit/s. False for any other line.
bool readHtMcs(std::string_view line, int *mbps);

// The highest MCS index and the stream count that a rate set ends with.
struct RateSet {
    int mcs = 0;
    int streams = 0;
};
void readMcsSet(std::string_view line, RateSet *set);   // a line that contains "MCS SET"
void readVhtWords(std::string_view line, RateSet *set); // "9x1 9x2"

// Streams that a line of the rate set stands for; 0 when it says nothing about them.
int streamsOfMcsLine(std::string_view line);

// PHY rate in kbit/s at a channel width in MHz; 0 for a width or a stream count that does not exist. False for an MCS
// outside 0..11.
bool phyRate(const RateSet &set, uint32_t bandwidth, uint32_t *kbps);

// "assoclist 00:11:22:AA:BB:CC": false for any other line.
bool readStationLine(const char *line, uint8_t mac[6]);

// What a station's report says beside the fields of its record.
struct StationCaps {
    uint32_t flags = 0;
    uint32_t ht = 0;
    uint32_t vht = 0;
    char rateSet[256] = "";
};
void readStationInfo(std::string_view line, bool counters, WlStaInfo *sta, StationCaps *caps);

// The lines of a beacon report in order; an element's bytes stand in the lines after its header.
class BeaconReader {
  public:
    explicit BeaconReader(WlIntfInfo *info) : info_(info) {}
    void line(std::string_view line);

  private:
    void readBytes(std::string_view line);
    bool startElement(std::string_view line);

    WlIntfInfo *info_;
    const struct BeaconElement *element_ = nullptr; // whose bytes the next line holds
    int part_ = 0;
};

// 100 minus six of the percentages in a line of channel statistics.
int channelLoad(std::string_view line);

} // namespace wlbrcm

#endif
