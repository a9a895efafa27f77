#include "faults.h"

#include <cstring>
#include <fnmatch.h>

namespace wlsim {
namespace {

std::string garbage(size_t size) {
    std::string out;
    uint32_t state = 0x2545f491;
    while (out.size() < size) {
        state = state * 1664525 + 1013904223;
        out += static_cast<char>(state >> 24);
    }
    return out;
}

void cut(Reply *reply) { reply->out.resize(reply->out.size() / 2); }
void empty(Reply *reply) { reply->out.clear(); }
void scramble(Reply *reply) { reply->out = garbage(600); }
void leave(Reply *) {}

constexpr struct {
    const char *name;
    void (*apply)(Reply *);
} kModes[] = {{"fail", leave}, {"empty", empty}, {"garbage", scramble}, {"cut", cut}, {"slow", leave}};

bool fits(const Fault &fault, const std::string &line) {
    bool wild = fault.match.find_first_of("*?[") != std::string::npos;
    std::string pattern = wild ? fault.match : "*" + fault.match + "*";
    return fnmatch(pattern.c_str(), line.c_str(), 0) == 0;
}

} // namespace

bool isFaultMode(const std::string &mode) {
    for (const auto &row : kModes) {
        if (mode == row.name) {
            return true;
        }
    }
    return false;
}

Fault *takeFault(std::vector<Fault> &faults, const std::vector<std::string> &words) {
    std::string line = joinWords(words);
    for (Fault &fault : faults) {
        if (fault.count != 0 && fits(fault, line)) {
            fault.count -= fault.count > 0 ? 1 : 0;
            fault.hits++;
            return &fault;
        }
    }
    return nullptr;
}

void spoil(const Fault &fault, Reply *reply) {
    reply->delayMs = fault.ms;
    for (const auto &row : kModes) {
        if (fault.mode == row.name) {
            row.apply(reply);
        }
    }
}

} // namespace wlsim
