// The channel selection daemon: scans for the radios that nvram's acs_ifnames lists, moves those in automatic mode to
// the quietest channel, and answers acs_cli.
#include "platform/sim/common/sim_log.h"
#include "platform/sim/common/sim_socket.h"
#include "platform/sim/daemons/acs.h"
#include "platform/sim/daemons/daemon.h"
#include "platform/sim/nvram/nvram_store.h"

#include <climits>
#include <ctime>
#include <stdexcept>

namespace wlsim {
namespace {

struct SelectedRadio {
    std::string name;
    int policy = 0;
    bool scanned = false;
    std::vector<Neighbour> neighbours;
    // 0: never by itself.
    time_t nextScan = 0;
};

std::string setting(const SelectedRadio &radio, const char *key) { return stored(radio.name, key); }
int number(const SelectedRadio &radio, const char *key) { return std::atoi(setting(radio, key).c_str()); }

// One driver command on the radio. Returns what it printed; throws what it complained about.
std::string driver(const SelectedRadio &radio, const Words &command) {
    Words line{"wlctl", "-i", radio.name};
    line.insert(line.end(), command.begin(), command.end());
    std::string output;
    std::string errors;
    if (request(line, &output, &errors) != 0)
        throw std::runtime_error(command.front() + " failed: " + errors);
    return output;
}

// Channel 0 in the configuration leaves the choice to this daemon.
bool automatic(const SelectedRadio &radio) { return setting(radio, "channel") == "0"; }

// The width that the configuration allows the radio, narrowed as its modes ask.
int width(const SelectedRadio &radio) {
    int capability = number(radio, "bw_cap");
    int mhz = capability >= 7 ? 80 : capability >= 3 ? 40 : 20;
    if (setting(radio, "nmode") == "0")
        return 20;
    return setting(radio, "vhtmode") == "0" && mhz > 40 ? 40 : mhz;
}

void scan(SelectedRadio &radio) {
    driver(radio, {"scan"});
    radio.neighbours = readScanReport(driver(radio, {"scanresults"}));
    radio.scanned = true;
}

// Moves the radio where it is the quietest. Returns the chanspec, empty when it stays.
std::string choose(SelectedRadio &radio) {
    if (!automatic(radio))
        return {};
    const char *band = setting(radio, "nband") == "2" ? "2" : "5";
    auto candidates = readChanspecs(driver(radio, {"chanspecs", "-b", band, "-w", std::to_string(width(radio))}));
    auto now = readChanspecs(driver(radio, {"chanspec"}));
    std::string current = now.empty() ? "" : now.front().text();
    auto best = quietest(candidates, readChannels(setting(radio, "acs_autoch_skip")), radio.neighbours, current);
    if (!best || best->text() == current)
        return {};
    driver(radio, {"chanspec", best->text()});
    logLine("acs", radio.name + " moved to " + best->text());
    return best->text();
}

void forceScan(SelectedRadio &radio, const std::string &, std::string *answer) {
    *answer += "Channel scan on " + radio.name + " requested\n";
    scan(radio);
    *answer += "Scan complete: " + std::to_string(radio.neighbours.size()) + " BSS found\n";
    std::string chosen = choose(radio);
    *answer += chosen.empty() ? "" : "Radio moved to " + chosen + "\n";
    *answer += "Request finished\n";
}

void dump(SelectedRadio &radio, const std::string &what, std::string *answer) {
    if (what != "bss")
        throw std::runtime_error("cannot dump \"" + what + "\"");
    *answer =
        bssTable(radio.scanned ? readChannels(driver(radio, {"channels"})) : std::vector<int>(), radio.neighbours);
}

void setPolicy(SelectedRadio &radio, const std::string &value, std::string *) {
    auto policy = parseNumber(value);
    if (!policy || *policy < 0 || *policy > INT_MAX)
        throw std::runtime_error("\"" + value + "\" is no policy");
    radio.policy = static_cast<int>(*policy);
    logLine("acs", radio.name + " policy " + value);
}

constexpr struct {
    const char *word;
    void (*run)(SelectedRadio &, const std::string &argument, std::string *answer);
} kRequests[] = {{"csscan_force", forceScan}, {"dump", dump}, {"acs_policy", setPolicy}};

class Acsd {
  public:
    void listen() {
        std::string error = server_.listen(kAcsSocket);
        if (!error.empty())
            throw std::runtime_error(error);
    }

    void serve() {
        for (const std::string &name : splitWords(stored("acs_ifnames")))
            radios_[name].name = name;
        for (auto &[name, radio] : radios_) {
            radio.policy = number(radio, "acs_pol_idx");
            survey(radio);
        }
        server_.serve(-1, 1000, [this] {
            for (auto &[name, radio] : radios_) {
                if (radio.nextScan && time(nullptr) >= radio.nextScan)
                    survey(radio);
            }
        });
    }

  private:
    // Scan and choice on the daemon's own account; again after the time that the configuration sets.
    static void survey(SelectedRadio &radio) {
        int period = number(radio, "acs_cs_scan_timer");
        radio.nextScan = period > 0 && automatic(radio) ? time(nullptr) + period : 0;
        try {
            scan(radio);
            choose(radio);
        } catch (const std::exception &error) {
            logLine("acs", radio.name + ": " + error.what());
        }
    }

    // The words of acs_cli: its name, -i, the interface, the command and perhaps an argument.
    Reply answer(const Words &words) {
        std::string text;
        try {
            perform(words, &text);
            return done(text);
        } catch (const std::exception &error) {
            return {1, text + "Request failed: " + error.what() + "\n", "", 0};
        }
    }

    void perform(const Words &words, std::string *text) {
        auto radio = words.size() < 4 ? radios_.end() : radios_.find(words[2]);
        if (radio == radios_.end())
            throw std::runtime_error((words.size() < 4 ? "nothing" : words[2]) + " is not in acs_ifnames");
        for (const auto &request : kRequests) {
            if (words[3] == request.word)
                return request.run(radio->second, words.size() > 4 ? words[4] : "", text);
        }
        throw std::runtime_error("unknown request " + words[3]);
    }

    Server server_{[this](const Words &words) { return answer(words); }};
    std::map<std::string, SelectedRadio> radios_;
};

} // namespace
} // namespace wlsim

int main(int argc, char **argv) {
    wlsim::plainArguments(argc, argv, 0, "acsd");
    wlsim::Acsd acsd;
    wlsim::DaemonTask task;
    task.name = "acsd";
    task.prepare = [&] { acsd.listen(); };
    task.serve = [&] { acsd.serve(); };
    return wlsim::startDaemon(task);
}
