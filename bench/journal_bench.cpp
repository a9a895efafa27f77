// What an entry of the journal costs beside the call that it tells of: the same calls with and without it.
// Build and run as reports_bench.cpp says.
#include <benchmark/benchmark.h>

#include "host/journal/journal.h"
#include "host/tap/live.h"

namespace {

using wlhost::tap::Handler;
using wlhost::tap::LiveHandler;

template <typename Call> void measure(benchmark::State &state, Call call) {
    Handler plain;
    LiveHandler live([](const wlhost::tap::Entry &entry) { wlhost::journal().add(entry); });
    Handler &handler = state.range(0) != 0 ? live : plain;
    for (auto _ : state) {
        call(handler);
    }
}

void pauses(benchmark::State &state) {
    measure(state, [](Handler &handler) {
        const timespec none{0, 0};
        handler.nanosleep(&none, nullptr);
    });
}
BENCHMARK(pauses)->ArgName("journal")->Arg(0)->Arg(1);

void commands(benchmark::State &state) {
    measure(state, [](Handler &handler) { handler.system("true"); });
}
BENCHMARK(commands)->ArgName("journal")->Arg(0)->Arg(1)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
