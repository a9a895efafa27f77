// A fuzz target: one reader, and what must hold whatever it is given. FUZZ_TARGET adds its row to the table of targets.
// All are linked into one program with libFuzzer, and into fuzz_replay, which runs the seeds as ordinary tests.
#ifndef WLBRCM_TESTS_FUZZ_TARGET_H
#define WLBRCM_TESTS_FUZZ_TARGET_H

#include <map>
#include <stdexcept>
#include <string>

#include "tests/unit/fake_platform.h"

namespace fuzz {

// By name, which is also that of the folder of its seeds.
using Check = void (*)(const std::string &input);
std::map<std::string, Check> &targets();

// A platform where these commands print these reports, and no result file may stay.
class Gateway : public FakePlatform {
  public:
    Gateway(std::initializer_list<std::pair<const char *, std::string>> reports);
    ~Gateway();
};

// Whether a text field of a record ends inside the field.
template <size_t Size> bool ends(const char (&field)[Size]) { return strnlen(field, Size) < Size; }

// Whether two records are the same in every byte.
template <class Record> bool same(const Record &one, const Record &other) {
    return memcmp(&one, &other, sizeof one) == 0;
}

// Reads of fgets() with room for `longest` characters.
int reads(const std::string &text, size_t longest);

// Decimal numbers, perhaps with a minus sign or a fraction, joined by commas; or nothing.
bool isNumberList(const std::string &list);

} // namespace fuzz

#define FUZZ_TARGET(name)                                                                                              \
    static void name(const std::string &input);                                                                        \
    [[maybe_unused]] static const bool added_##name = fuzz::targets().emplace(#name, name).second;                     \
    static void name(const std::string &input)

// What libFuzzer reports as a crash and fuzz_replay as a failed test.
#define HOLDS(condition)                                                                                               \
    ((condition) ? void() : throw std::logic_error("line " + std::to_string(__LINE__) + " does not hold: " #condition))

#endif
