// Driver events received per second, with and without forwarding, beside a bare receive loop on the same socket.
// Build and run as reports_bench.cpp says; the fixed ports must be free (script/own-network runs it where they are).
#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

#include <wlbrcm/events.h>

#include "module/loopback.h"
#include "tests/unit/events_message.h"

namespace {

constexpr uint16_t kEventPort = 44032;
constexpr uint32_t kDisassociated = 12; // an event that is received, named and forwarded, and gives no record
constexpr int kBurst = 200;             // fits the receive buffer, so that none is lost

// The module's event socket, opened once, and the driver's end.
struct Sockets {
    Sockets() : driver(socket(AF_INET, SOCK_DGRAM, 0)), message(eventMessage(kDisassociated)) {
        if (driver < 0 || qvbrcm_EvtInit(&events) != 0) {
            perror("event sockets");
            exit(1);
        }
    }
    void fill() const {
        const sockaddr_in to = wlbrcm::loopback(kEventPort);
        for (int i = 0; i < kBurst; ++i) {
            if (sendto(driver, message.data(), message.size(), 0, reinterpret_cast<const sockaddr *>(&to), sizeof to) <
                0)
                exit(1);
        }
    }
    int events = -1;
    int driver;
    std::string message;
};

template <class Receive> void receiveBursts(benchmark::State &state, Receive receive) {
    static const Sockets sockets;
    for (auto _ : state) {
        state.PauseTiming();
        sockets.fill();
        state.ResumeTiming();
        for (int i = 0; i < kBurst; ++i)
            receive(sockets.events);
    }
    state.SetItemsProcessed(state.iterations() * kBurst);
}

void receiveEvent(int sock) {
    WlEvent *event = nullptr;
    if (qvbrcm_EvtReceive(sock, &event) != 1)
        exit(1);
}

void BareReceive(benchmark::State &state) {
    receiveBursts(state, [](int sock) {
        char buffer[4096];
        benchmark::DoNotOptimize(recv(sock, buffer, sizeof buffer, 0));
    });
}
BENCHMARK(BareReceive);

void Receive(benchmark::State &state) {
    qvbrcm_EnableFenraEvt(0);
    receiveBursts(state, receiveEvent);
}
BENCHMARK(Receive);

void ReceiveAndForward(benchmark::State &state) {
    qvbrcm_EnableFenraEvt(1);
    receiveBursts(state, receiveEvent);
}
BENCHMARK(ReceiveAndForward);

} // namespace

BENCHMARK_MAIN();
