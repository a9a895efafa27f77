// libwlctl: one command line, without a shell and in the caller's process.
#include <wlctl_lib.h>

#include "platform/sim/common/sim_socket.h"

#include <cstdio>

namespace {

// Splits at blanks; quotes group and vanish. False for a quote left open.
bool splitLine(const char *line, wlsim::Words *words) {
    char quote = 0;
    bool inWord = false;
    std::string word;
    for (; *line; line++) {
        if (quote != 0 ? *line == quote : *line == '\'' || *line == '"') {
            quote = quote != 0 ? '\0' : *line;
            inWord = true;
        } else if (quote == 0 && *line == ' ') {
            if (inWord) {
                words->push_back(word);
            }
            word.clear();
            inWord = false;
        } else {
            word += *line;
            inWord = true;
        }
    }
    if (inWord) {
        words->push_back(word);
    }
    return quote == 0;
}

} // namespace

__attribute__((visibility("default"))) int wlctl_cmd(char *line) {
    wlsim::Words words;
    if (!line || !splitLine(line, &words) || words.empty()) {
        fprintf(stderr, "wlctl: malformed command line\n");
        return 2;
    }
    return wlsim::requestAndShow(words);
}
