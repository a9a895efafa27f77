// Recording stand-in for ebtables' broute table, which a kernel seldom has and a user namespace never gets: the chain
// SKIP_FCACHE that the platform's firewall set-up provides, with the rules that programs add to it.
#include "platform/sim/common/sim_log.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr const char *kTable = "broute";
constexpr const char *kChain = "SKIP_FCACHE";
constexpr const char *kTarget = "SKIPLOG";
constexpr const char *kRules = "/var/sim/ebtables";
constexpr const char *kUsage = "ebtables -t broute {-A|-D} SKIP_FCACHE -i INTERFACE -j SKIPLOG | -L [SKIP_FCACHE]";

using wlsim::Words;

[[noreturn]] void refuse(const std::string &why) { throw std::runtime_error(why); }

// The rules under a lock: two radios' set-ups may run at the same time.
class Chain {
  public:
    Chain() : lock_(open("/var/sim/ebtables.lock", O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        if (lock_ < 0 || flock(lock_, LOCK_EX) != 0)
            refuse(std::string("cannot lock the rules: ") + std::strerror(errno));
        std::ifstream file(kRules);
        for (std::string rule; std::getline(file, rule);)
            rules_.push_back(rule);
    }
    ~Chain() { close(lock_); }
    Chain(const Chain &) = delete;
    Chain &operator=(const Chain &) = delete;

    void append(const std::string &rule) {
        rules_.push_back(rule);
        save();
    }
    void remove(const std::string &rule) {
        auto found = std::find(rules_.begin(), rules_.end(), rule);
        if (found == rules_.end())
            refuse("Sorry, rule does not exist.");
        rules_.erase(found);
        save();
    }
    void list() const {
        std::printf("Bridge table: %s\n\nBridge chain: %s, entries: %zu, policy: RETURN\n", kTable, kChain,
                    rules_.size());
        for (const std::string &rule : rules_)
            std::printf("%s\n", rule.c_str());
    }

  private:
    void save() const {
        std::ofstream file(kRules, std::ios::trunc);
        for (const std::string &rule : rules_)
            file << rule << '\n';
        if (!file.flush())
            refuse("cannot write the rules");
    }

    int lock_;
    Words rules_;
};

struct Command {
    std::string table, chain, interface, target;
    char action = 0;
};

Command read(const Words &words) {
    Command command;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string &word = words[i];
        bool last = i + 1 == words.size();
        if (word == "-L") {
            command.action = 'L';
            command.chain = last || words[i + 1][0] == '-' ? kChain : words[++i];
            continue;
        }
        if (last)
            refuse("unknown argument " + word);
        const std::string &value = words[++i];
        if (word == "-t")
            command.table = value;
        else if (word == "-i")
            command.interface = value;
        else if (word == "-j")
            command.target = value;
        else if (word == "-A" || word == "-D")
            command.action = word[1], command.chain = value;
        else
            refuse("unknown argument " + word);
    }
    return command;
}

void check(const Command &command) {
    if (command.action == 0)
        refuse("no command given");
    if (command.table != kTable)
        refuse("The kernel doesn't support the ebtables '" + (command.table.empty() ? "filter" : command.table) +
               "' table.");
    if (command.chain != kChain)
        refuse("Chain '" + command.chain + "' doesn't exist.");
    if (command.action == 'L')
        return;
    if (command.target != kTarget)
        refuse("Target " + command.target + " does not exist.");
    if (command.interface.empty() || command.interface.size() > 15)
        refuse("an interface name of 1 to 15 characters is needed");
}

void run(const Command &command) {
    Chain chain;
    std::string rule = "-i " + command.interface + " -j " + command.target;
    switch (command.action) {
    case 'A':
        return chain.append(rule);
    case 'D':
        return chain.remove(rule);
    default:
        return chain.list();
    }
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s\n", kUsage);
        return 1;
    }
    Words words(argv, argv + argc);
    words[0] = "ebtables";
    std::string trouble;
    try {
        Command command = read(Words(words.begin() + 1, words.end()));
        check(command);
        run(command);
    } catch (const std::exception &error) {
        trouble = error.what();
        std::fprintf(stderr, "ebtables: %s\n", error.what());
    }
    int status = trouble.empty() ? 0 : 255;
    wlsim::logCommand(words, status, trouble);
    return status;
}
