#include "tests/fuzz/target.h"

#include <algorithm>

namespace fuzz {

std::map<std::string, Check> &targets() {
    static std::map<std::string, Check> all;
    return all;
}

Gateway::Gateway(std::initializer_list<std::pair<const char *, std::string>> reports) {
    for (const auto &[command, report] : reports)
        answer(command, report);
}

Gateway::~Gateway() { EXPECT_EQ(leftFiles(), Lines{}); }

int reads(const std::string &text, size_t longest) {
    int count = 0;
    for (size_t at = 0; at < text.size(); ++count)
        at += std::min(std::min(text.find('\n', at), text.size() - 1) - at + 1, longest);
    return count;
}

bool isNumberList(const std::string &list) {
    const bool noEmptyEntry = ("," + list + ",").find(",,") == std::string::npos;
    return list.empty() || (noEmptyEntry && list.find_first_not_of("-.,0123456789") == std::string::npos);
}

} // namespace fuzz
