#include "platform/sim/driver/faults.h"

#include "platform/sim/driver/sim_driver.h"

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

bool isWild(const std::string &pattern) { return pattern.find_first_of("*?[") != std::string::npos; }

bool matches(const std::string &pattern, const std::string &line) {
    return fnmatch(pattern.c_str(), line.c_str(), 0) == 0;
}

bool fits(const std::string &pattern, const std::string &line) {
    return matches(isWild(pattern) ? pattern : "*" + pattern + "*", line);
}

// Every command line that can be made to fail, without the arguments at its end.
Words commandLines(const Model &model) {
    Words radios = {"wl0"}, interfaces = {"wl0"}, lines;
    for (const Radio &radio : model.radios) {
        radios.push_back(radio.name);
        for (const Bss &bss : radio.bss) {
            interfaces.push_back(bss.ifName);
        }
    }
    auto add = [&](const char *tool, const Words &names, const Words &commands) {
        for (const std::string &name : names) {
            for (const std::string &command : commands) {
                lines.push_back(std::string(tool) + name + " " + command);
            }
        }
    };
    add("wlctl -i ", interfaces, driverCommandNames(false));
    add("wl -i ", interfaces, driverCommandNames(false));
    add("dhdctl -i ", interfaces, driverCommandNames(true));
    add("wlconf ", radios, wlconfVerbs());
    add("acs_cli -i ", radios, {"acs_policy", "csscan_force", "dump"});
    return lines;
}

} // namespace

std::string patternTrouble(const Model &model, const std::string &pattern) {
    // Any argument may follow a whole command.
    Words commands;
    for (size_t cut = pattern.find(' '); cut != std::string::npos; cut = pattern.find(' ', cut + 1)) {
        commands.push_back(isWild(pattern) ? pattern.substr(0, cut) : "*" + pattern.substr(0, cut));
    }
    for (const std::string &line : commandLines(model)) {
        bool possible = fits(pattern, line);
        for (const std::string &command : commands) {
            possible = possible || matches(command, line);
        }
        if (possible) {
            return "";
        }
    }
    return "no command that can fail fits '" + pattern + "'; those of wlctl, wl, dhdctl, wlconf and acs_cli can";
}

Fault *takeFault(std::vector<Fault> &faults, const Words &words) {
    std::string line = joinWords(words);
    for (Fault &fault : faults) {
        if (fault.count != 0 && fits(fault.match, line)) {
            fault.count -= fault.count > 0 ? 1 : 0;
            fault.hits++;
            return &fault;
        }
    }
    return nullptr;
}

std::string spoilt(const std::string &mode, const std::string &output) {
    return mode == "empty"     ? ""
           : mode == "garbage" ? garbage(600)
                               : output.substr(0, output.size() / (mode == "cut" ? 2 : 1));
}

} // namespace wlsim
