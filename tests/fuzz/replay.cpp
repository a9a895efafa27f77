// The seeds of every fuzz target, as ordinary tests.
#include "tests/fuzz/target.h"

#include <filesystem>
#include <fstream>

namespace {

std::string content(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Names of what a folder holds.
std::set<std::string> entries(const std::filesystem::path &folder) {
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

class Seeds : public testing::TestWithParam<std::pair<const std::string, fuzz::Check>> {};

} // namespace

TEST_P(Seeds, Hold) {
    const auto &[target, check] = GetParam();
    const std::filesystem::path folder = std::filesystem::path(FUZZ_SEEDS) / target;
    const std::set<std::string> names = entries(folder);
    EXPECT_FALSE(names.empty());
    for (const std::string &name : names) {
        SCOPED_TRACE(name);
        EXPECT_NO_THROW(check(content(folder / name)));
    }
    EXPECT_NO_THROW(check(""));
}

INSTANTIATE_TEST_SUITE_P(Fuzz, Seeds, testing::ValuesIn(fuzz::targets()),
                         [](const auto &row) { return row.param.first; });

// A target that nobody links, or seeds that nobody runs, would go unnoticed.
TEST(Fuzz, EveryFolderOfSeedsHasATarget) {
    std::set<std::string> names;
    for (const auto &[name, check] : fuzz::targets())
        names.insert(name);
    EXPECT_EQ(entries(FUZZ_SEEDS), names);
}
