#include "target.h"

#include <cerrno>
#include <climits>

#include "module/numbers.h"

using namespace wlbrcm;

namespace {

// What strtoul() with 32 bits would give, on a processor of any width.
uint32_t expectedUnsigned(const char *text, int base) {
    const char *digits = text + strspn(text, " \t\n\v\f\r");
    const bool negative = *digits == '-';
    if (*digits == '-' || *digits == '+')
        ++digits;
    errno = 0;
    const unsigned long long number =
        isalnum(static_cast<unsigned char>(*digits)) ? strtoull(digits, nullptr, base) : 0;
    if (errno == ERANGE || number > UINT32_MAX)
        return UINT32_MAX;
    return static_cast<uint32_t>(negative ? 0 - number : number);
}

int expectedDecimal(const char *text) {
    const long long number = strtoll(text, nullptr, 10);
    return number > INT_MAX ? INT_MAX : number < INT_MIN ? INT_MIN : static_cast<int>(number);
}

} // namespace

FUZZ_TARGET(numbers) {
    const std::string text = input.substr(0, input.find('\0'));
    HOLDS(unsignedNumber(text) == expectedUnsigned(text.c_str(), 0));
    HOLDS(hexNumber(text) == expectedUnsigned(text.c_str(), 16));
    HOLDS(decimalNumber(text) == expectedDecimal(text.c_str()));

    // A conversion of a scan ends where libc's does, and without a number it changes nothing.
    int number = 7, expected = 7, end = 0;
    std::string_view rest = text;
    const bool found = takeDecimal(&rest, &number);
    HOLDS(found == (sscanf(text.c_str(), "%d%n", &expected, &end) == 1));
    HOLDS(found ? number == expectedDecimal(text.c_str()) : number == 7);
    HOLDS(!found || rest == std::string_view(text).substr(static_cast<size_t>(end)));

    uint32_t hex = 7;
    rest = text;
    HOLDS(takeHex(&rest, &hex) ? rest.size() < text.size() : hex == 7);
    std::string_view word;
    rest = text;
    if (takeWord(&rest, 5, &word)) {
        HOLDS(!word.empty() && word.size() <= 5 && word.find_first_of(" \t\n\v\f\r") == std::string_view::npos);
        HOLDS(word.data() + word.size() == rest.data());
    }
}
