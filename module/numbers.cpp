#include "module/numbers.h"

#include <climits>

#include "module/text.h"

namespace wlbrcm {

namespace {

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// 0 to 15, or a number above any base.
unsigned digitOf(char c) {
    const unsigned digit = static_cast<unsigned>(c) - '0';
    const unsigned letter = (static_cast<unsigned>(c) | 0x20) - 'a';
    return digit <= 9 ? digit : letter <= 5 ? letter + 10 : UINT_MAX;
}

void skipBlanks(std::string_view *rest) {
    while (!rest->empty() && isBlank(rest->front()))
        rest->remove_prefix(1);
}

// "0x" belongs to the number only when a digit follows it.
bool startsHex(const char *at, const char *end) {
    return end - at > 2 && at[0] == '0' && (at[1] | 0x20) == 'x' && digitOf(at[2]) < 16;
}

struct Number {
    bool negative = false;
    uint64_t magnitude = 0; // never above the limit
    bool overflowed = false;
};

bool takeNumber(std::string_view *rest, unsigned base, uint64_t limit, Number *number) {
    std::string_view text = *rest;
    skipBlanks(&text);
    const char *at = text.data();
    const char *const end = at + text.size();
    if (at != end && (*at == '-' || *at == '+'))
        number->negative = *at++ == '-';
    if ((base == 0 || base == 16) && startsHex(at, end)) {
        base = 16;
        at += 2;
    }
    if (base == 0)
        base = at != end && *at == '0' ? 8 : 10;
    const char *const first = at;
    uint64_t magnitude = 0;
    uint64_t excess = 0; // what 64 bits do not hold
    for (; at != end; ++at) {
        const unsigned digit = digitOf(*at);
        if (digit >= base)
            break;
        // By halves, which a 32-bit processor multiplies at once; a check beforehand would divide 64 bits.
        const uint64_t low = (magnitude & UINT32_MAX) * base + digit;
        const uint64_t high = (magnitude >> 32) * base + (low >> 32);
        magnitude = high << 32 | (low & UINT32_MAX);
        excess |= high >> 32;
    }
    const bool overflowed = excess != 0 || magnitude > limit;
    if (at == first)
        return false;
    number->magnitude = overflowed ? limit : magnitude;
    number->overflowed = overflowed;
    *rest = {at, static_cast<size_t>(end - at)};
    return true;
}

uint64_t wrapped(const Number &number) {
    return number.negative && !number.overflowed ? 0 - number.magnitude : number.magnitude;
}

bool takeBits(std::string_view *rest, unsigned base, uint32_t *value) {
    Number number;
    if (!takeNumber(rest, base, UINT32_MAX, &number))
        return false;
    *value = static_cast<uint32_t>(wrapped(number));
    return true;
}

} // namespace

uint32_t unsignedNumber(std::string_view text) {
    uint32_t value = 0;
    takeBits(&text, 0, &value);
    return value;
}

uint64_t unsignedNumber64(std::string_view text) {
    Number number;
    return takeNumber(&text, 0, UINT64_MAX, &number) ? wrapped(number) : 0;
}

uint32_t hexNumber(std::string_view text) {
    uint32_t value = 0;
    takeHex(&text, &value);
    return value;
}

int decimalNumber(std::string_view text) {
    int value = 0;
    takeDecimal(&text, &value);
    return value;
}

bool takeDecimal(std::string_view *rest, int *value) {
    Number number;
    if (!takeNumber(rest, 10, uint64_t{INT_MAX} + 1, &number))
        return false;
    const auto magnitude = static_cast<int64_t>(number.magnitude);
    *value = static_cast<int>(number.negative ? -magnitude : magnitude <= INT_MAX ? magnitude : INT_MAX);
    return true;
}

bool takeUnsigned(std::string_view *rest, uint32_t *value) { return takeBits(rest, 10, value); }

bool takeHex(std::string_view *rest, uint32_t *value) { return takeBits(rest, 16, value); }

bool takeWord(std::string_view *rest, size_t longest, std::string_view *word) {
    skipBlanks(rest);
    size_t length = 0;
    while (length < rest->size() && length < longest && !isBlank((*rest)[length]))
        ++length;
    *word = {rest->data(), length};
    rest->remove_prefix(length);
    return length != 0;
}

bool takeText(std::string_view *rest, std::string_view text) {
    for (const char c : text) {
        if (isBlank(c)) {
            skipBlanks(rest);
            continue;
        }
        if (rest->empty() || rest->front() != c)
            return false;
        rest->remove_prefix(1);
    }
    return true;
}

bool takeThrough(std::string_view *rest, std::string_view part) {
    const size_t at = positionOf(*rest, part);
    if (at == std::string_view::npos)
        return false;
    rest->remove_prefix(at + part.size());
    return true;
}

} // namespace wlbrcm
