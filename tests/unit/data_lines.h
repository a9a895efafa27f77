// Long expectations, kept as files beside the tests.
#ifndef WLBRCM_TESTS_DATA_LINES_H
#define WLBRCM_TESTS_DATA_LINES_H

#include <fstream>
#include <string>
#include <vector>

// The lines of a file in tests/unit/data, without comments.
inline std::vector<std::string> readLines(const std::string &name) {
    std::ifstream file(std::string(WLBRCM_TEST_DATA) + "/" + name);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (line[0] != '#')
            lines.push_back(line);
    }
    return lines;
}

#endif
