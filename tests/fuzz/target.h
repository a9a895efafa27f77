// A fuzz target: one reader, and what must hold whatever it is given. Each target file holds one FUZZ_TARGET. It is
// linked alone with libFuzzer, and all together into fuzz_replay, which runs the seeds as ordinary tests.
#ifndef WLBRCM_TESTS_FUZZ_TARGET_H
#define WLBRCM_TESTS_FUZZ_TARGET_H

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/unit/fake_platform.h"

namespace fuzz {

struct Target {
    const char *name; // also of the folder of its seeds
    void (*check)(const std::string &input);
};
std::vector<Target> &targets();
bool add(Target target);

// What libFuzzer reports as a crash and fuzz_replay as a failed test.
[[noreturn]] void violated(const char *property, int line);

// Whether a text field of a record ends inside the field.
template <size_t Size> bool ends(const char (&field)[Size]) { return strnlen(field, Size) < Size; }

// Reads of fgets() with room for `longest` characters.
int reads(const std::string &text, size_t longest);

// Every command was made of our own words, checked names and numbers: nothing of the input reached the shell.
bool onlyKnownCommands(const FakePlatform &platform, const Lines &starts);

// Decimal numbers, perhaps with a minus sign or a fraction, joined by commas; or nothing.
bool isNumberList(const std::string &list);

} // namespace fuzz

#define FUZZ_TARGET(name)                                                                                              \
    static void name(const std::string &input);                                                                        \
    [[maybe_unused]] static const bool added_##name = fuzz::add({#name, name});                                        \
    static void name(const std::string &input)

#define HOLDS(condition) ((condition) ? void() : fuzz::violated(#condition, __LINE__))

#endif
