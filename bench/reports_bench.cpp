// How long it takes to read the two largest reports, beside two floors: the same file read with its lines split by the
// module's own means, and read with its line ends found and nothing else.
//
//   cmake -S . -B build/bench -DWLBRCM_BENCH=ON -DWLBRCM_TESTS=OFF -DWLBRCM_HOST=OFF && cmake --build build/bench
//   build/bench/bench/reports_bench
//
// Compare the rows of one size; the time of a row that doubles its size should double. A driver command costs 1 to 2 ms
// on a PC: a scan takes two of them, a station list two for each station.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>

#include "module/command.h"
#include "scan/readers.h"
#include "status/readers.h"

using namespace wlbrcm;

namespace {

// A report in a file of its own, as a driver command leaves it.
class Report {
  public:
    Report(const char *record, int count) : file_(tmpfile(), fclose) {
        for (int i = 0; i < count; ++i)
            fprintf(file_.get(), record, i, i & 0xff);
    }
    FILE *rewound() {
        rewind(file_.get());
        return file_.get();
    }

  private:
    std::unique_ptr<FILE, decltype(&fclose)> file_;
};

constexpr char kAccessPoint[] = "SSID: \"neighbour %d\"\n"
                                "Mode: Managed\tRSSI: -67 dBm\tSNR: 24 dB\tnoise: -91 dBm\tFlags: RSN\tChannel: 36/80\n"
                                "BSSID: 02:11:22:33:44:%02X\tCapability: ESS WEP ShortSlot\n"
                                "Beacon Period: 100\tDTIM Period: 2\n"
                                "Supported Rates: [ 6(b) 9 12(b) 18 24(b) 36 48 54 ]\n"
                                "RSN (WPA2):\n"
                                "\tmulticast cipher: AES-CCMP\n"
                                "\tunicast ciphers(1): AES-CCMP\n"
                                "\tAKM Suites(1): WPA2-PSK\n"
                                "\tCapabilities(0x000c): No Pre-Auth, Pairwise, 16 PTK Replay Ctrs\n"
                                "WPS: V2.0 Configured\n"
                                "VHT Capable:\n"
                                "\tChanspec: 5GHz channel 42 80MHz (0xe02a)\n"
                                "\tPrimary channel: 36\n"
                                "\tNSS1 Tx: 0-9\n"
                                "\tNSS2 Tx: 0-9\n"
                                "\n";
constexpr char kStation[] = "STA 02:00:00:00:%02X:%02X:\n"
                            "\t chanspec 36/80 (0xe02a)\n"
                            "\t aid:1 \n"
                            "\t rateset [ 6 9 12 18 24 36 48 54 ]\n"
                            "\t idle 2 seconds\n"
                            "\t in network 311 seconds\n"
                            "\t state: AUTHENTICATED ASSOCIATED AUTHORIZED\n"
                            "\t flags 0x11e03b: BRCM WME PS N_CAP VHT_CAP AMPDU AMSDU\n"
                            "\t HT caps 0x6f: LDPC 40MHz SGI20 SGI40\n"
                            "\t VHT caps 0x7b: LDPC SGI80 SU-BFE\n"
                            "\t tx total pkts: 4211\n"
                            "\t tx total bytes: 5123456789\n"
                            "\t tx ucast pkts: 4200\n"
                            "\t tx mcast/bcast pkts: 11\n"
                            "\t tx failures: 3\n"
                            "\t rx data pkts: 2811\n"
                            "\t rx data bytes: 412233\n"
                            "\t tx pkts retries: 71\n"
                            "\t tx pkts retry exhausted: 2\n"
                            "\t per antenna rssi of last rx data frame: -54 -55 -60 0\n"
                            "\t rate of last tx pkt: 866667 kbps - 650000 kbps\n"
                            "\t rate of last rx pkt: 780000 kbps\n";

// The bare floor: every byte read and every line end found.
void findLineEnds(benchmark::State &state, const char *record) {
    Report report(record, static_cast<int>(state.range(0)));
    const int file = fileno(report.rewound());
    for ([[maybe_unused]] auto _ : state) {
        lseek(file, 0, SEEK_SET);
        char buffer[4096];
        for (ssize_t size; (size = read(file, buffer, sizeof buffer)) > 0;) {
            const char *at = buffer;
            while ((at = static_cast<const char *>(memchr(at, '\n', static_cast<size_t>(buffer + size - at)))) !=
                   nullptr)
                benchmark::DoNotOptimize(++at);
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The floor: every line read and split at its tabs, nothing kept.
template <size_t LineSize> void splitLines(benchmark::State &state, const char *record) {
    Report report(record, static_cast<int>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        FILE *file = report.rewound();
        for (char line[LineSize]; readLine(file, line);) {
            Words words(line, '\t');
            for (std::string_view word; words.next(&word);)
                benchmark::DoNotOptimize(word.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void scanBare(benchmark::State &state) { findLineEnds(state, kAccessPoint); }
void stationsBare(benchmark::State &state) { findLineEnds(state, kStation); }
void scanFloor(benchmark::State &state) { splitLines<254>(state, kAccessPoint); }
void stationsFloor(benchmark::State &state) { splitLines<255>(state, kStation); }

void scanReport(benchmark::State &state) {
    const int count = static_cast<int>(state.range(0));
    Report report(kAccessPoint, count);
    for ([[maybe_unused]] auto _ : state) {
        auto *aps = static_cast<WlScanAp *>(calloc(static_cast<size_t>(count), sizeof(WlScanAp)));
        ApReader reader("wl0", aps, count);
        FILE *file = report.rewound();
        for (char line[254]; readLine(file, line);)
            reader.readLine(line);
        if (reader.finish() != count || aps[count - 1].channel != 42)
            state.SkipWithError("access points are missing");
        free(aps);
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void stationReports(benchmark::State &state) {
    const int count = static_cast<int>(state.range(0));
    Report report(kStation, count);
    for ([[maybe_unused]] auto _ : state) {
        auto *stations = static_cast<WlStaInfo *>(calloc(static_cast<size_t>(count), sizeof(WlStaInfo)));
        WlStaInfo *sta = stations - 1;
        StationCaps caps;
        FILE *file = report.rewound();
        for (char line[255]; readLine(file, line);) {
            if (startsWith(line, "STA ")) {
                ++sta;
                caps = {};
            }
            readStationInfo(line, true, sta, &caps);
        }
        if (sta + 1 != stations + count || sta->rxRate != 780000 || caps.vht != 0x7b)
            state.SkipWithError("stations are missing");
        free(stations);
    }
    state.SetItemsProcessed(state.iterations() * count);
}

BENCHMARK(scanBare)->Arg(250)->Arg(500);
BENCHMARK(scanFloor)->Arg(250)->Arg(500);
BENCHMARK(scanReport)->Arg(250)->Arg(500);
BENCHMARK(stationsBare)->Arg(256)->Arg(512);
BENCHMARK(stationsFloor)->Arg(256)->Arg(512);
BENCHMARK(stationReports)->Arg(256)->Arg(512);

} // namespace

BENCHMARK_MAIN();
