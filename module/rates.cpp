#include "module/rates.h"

namespace wlbrcm {

namespace {

constexpr int kMaxStreams = 4;

struct RateTable {
    bool vht;
    int bandwidth;
    const char *lists[kMaxStreams];
};

// Whole texts, although each HT list begins with the one before: the host shows them as they stand, and the rounding of
// a rate differs between lists (288.8, 288.9).
constexpr RateTable kRateTables[] = {
    {false,
     20,
     {"7.2,14.4,21.7,28.9,43.3,57.8,65,72.2", "7.2,14.4,21.7,28.9,43.3,57.8,65,72.2,86.7,115.6,130,144.4",
      "7.2,14.4,21.7,28.9,43.3,57.8,65,72.2,86.7,115.6,130,144.4,173.3,195,216.7",
      "7.2,14.4,21.7,28.9,43.3,57.8,65,72.2,86.7,115.6,130,144.4,173.3,195,216.7,231.1,260,288.9"}},
    {false,
     40,
     {"15,30,45,60,90,120,135,150", "15,30,45,60,90,120,135,150,180,240,270,300",
      "15,30,45,60,90,120,135,150,180,240,270,300,360,405,450",
      "15,30,45,60,90,120,135,150,180,240,270,300,360,405,450,480,540,600"}},
    {true,
     20,
     {"7.2,14.4,21.7,28.9,43.3,57.8,65,72.2,86.7", "115.6,130,144.4,173.3", "195,216.7,260,288.9",
      "231.2,260,288.8,346.8"}},
    {true, 40, {"15,30,45,60,90,120,135,150,180,200", "240,270,300,360,400", "405,450,540,600", "480,780,800"}},
    {true,
     80,
     {"32.5,65,97.5,130,195,260,292.5,325,390,433.3", "520,585,650,780,866.7", "585,975,1170,1300",
      "1040,1560,1733.2"}},
};

const char *rates(bool vht, int bandwidth, int streams) {
    if (streams < 1 || streams > kMaxStreams)
        return nullptr;
    for (const RateTable &table : kRateTables) {
        if (table.vht == vht && table.bandwidth == bandwidth)
            return table.lists[streams - 1];
    }
    return nullptr;
}

} // namespace

const char *htRates(int bandwidth, int streams) { return rates(false, bandwidth, streams); }

const char *vhtRates(int bandwidth, int stream) { return rates(true, bandwidth, stream); }

} // namespace wlbrcm
