// Readers of the scan reports: no command, no file, only texts in and records out.
#ifndef WLBRCM_SCAN_READERS_H
#define WLBRCM_SCAN_READERS_H

#include <string_view>

#include <wlbrcm/scan.h>

namespace wlbrcm {

// The channel of one line of the daemon's BSS dump. False, with the record untouched, for a line of another shape.
bool readChannelLine(std::string_view line, int band, WlChanScanInfo *channel);

// One "key: value" of an access point report.
struct Piece {
    std::string_view key;
    std::string_view value;
    bool hasValue;
    uint32_t characters; // those of the key, as in KeyMark
};

// Splits a line into its pieces. A key reaches up to its colon and keeps the tabs that indent it; a value ends at the
// next tab, and the last one keeps the line's end.
class Pieces {
  public:
    explicit Pieces(std::string_view line) : rest_(line) {}
    bool next(Piece *piece);

  private:
    std::string_view rest_;
};

// Fills records from the lines of an access point report. At most `capacity` are started; what a further access point
// reports is passed over.
class ApReader {
  public:
    ApReader(const char *ifname, WlScanAp *records, int capacity)
        : ifname_(ifname), records_(records), capacity_(capacity) {}

    void readLine(std::string_view line);
    // Completes the last record; returns the number of records started.
    int finish();

    // What the pieces of a report say. Each but start() is called only while there is a record.
    void start(const Piece &piece);
    WlScanAp &record() { return *current_; }
    void channelFallback(int channel) { channelFallback_ = channel; }
    void legacyRates(std::string_view rates);
    void htSeen() { ht_ = true; }
    void vhtSeen() { vht_ = true; }

  private:
    void dispatch(const Piece &piece);
    uint16_t phyModes() const;
    void complete();

    const char *ifname_;
    WlScanAp *records_;
    int capacity_;
    int started_ = 0;
    WlScanAp *current_ = nullptr;
    // What is known of the current record besides its fields.
    int channelFallback_ = 0;
    int highestLegacyRate_ = 0;
    bool ht_ = false;
    bool vht_ = false;
};

// Adds a comma, unless the list is empty, and then as many of the last entries of `rates` as keep it within 255
// characters.
void addRates(char (&list)[259], std::string_view rates);

} // namespace wlbrcm

#endif
