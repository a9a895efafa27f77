// Client of the channel selection daemon: hands it one request and prints the answer.
#include "platform/sim/common/sim_log.h"
#include "platform/sim/driver/faults.h"

#include <cstdio>

namespace {

using wlsim::Words;

// Whether the words are a request: -i INTERFACE, a command and its argument.
bool isRequest(const Words &words) {
    constexpr struct {
        const char *command;
        size_t arguments;
    } kForms[] = {{"acs_policy", 1}, {"csscan_force", 0}, {"dump", 1}};
    for (const auto &form : kForms) {
        if (words.size() == 4 + form.arguments && words[1] == "-i" && words[3] == form.command) {
            return true;
        }
    }
    return false;
}

int ask(const Words &words, std::string *output, std::string *errors) {
    if (!isRequest(words)) {
        *errors = "usage: acs_cli -i INTERFACE {acs_policy NUMBER | csscan_force | dump bss}\n";
        return 1;
    }
    Words question = words;
    question.insert(question.begin(), "fault");
    std::string fault;
    if (wlsim::request(question, &fault, errors) == 1) {
        return 1;
    }
    int status = wlsim::request(words, output, errors, wlsim::kAcsSocket);
    if (status == wlsim::kNoDriver) {
        *errors = "acs_cli: acsd does not answer\n";
        return 1;
    }
    *output = wlsim::spoilt(fault, *output);
    return status;
}

} // namespace

int main(int argc, char **argv) {
    Words words(argv, argv + argc);
    words[0] = "acs_cli";
    std::string output, errors;
    int status = ask(words, &output, &errors);
    wlsim::logCommand(words, status, errors);
    fwrite(output.data(), 1, output.size(), stdout);
    fwrite(errors.data(), 1, errors.size(), stderr);
    return status;
}
