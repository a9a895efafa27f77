// The seeds of every fuzz target, as ordinary tests.
#include "target.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

std::string content(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Names of what a folder holds, sorted.
Lines entries(const std::filesystem::path &folder) {
    Lines names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

class Seeds : public testing::TestWithParam<fuzz::Target> {};

} // namespace

TEST_P(Seeds, Hold) {
    const std::filesystem::path folder = std::filesystem::path(FUZZ_SEEDS) / GetParam().name;
    const Lines names = entries(folder);
    EXPECT_FALSE(names.empty());
    for (const std::string &name : names) {
        SCOPED_TRACE(name);
        EXPECT_NO_THROW(GetParam().check(content(folder / name)));
    }
    EXPECT_NO_THROW(GetParam().check(""));
}

INSTANTIATE_TEST_SUITE_P(Fuzz, Seeds, testing::ValuesIn(fuzz::targets()),
                         [](const auto &info) { return info.param.name; });

// A target that nobody links, or seeds that nobody runs, would go unnoticed.
TEST(Fuzz, EveryFolderOfSeedsHasATarget) {
    Lines names;
    for (const fuzz::Target &target : fuzz::targets())
        names.push_back(target.name);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(entries(FUZZ_SEEDS), names);
}
