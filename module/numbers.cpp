#include "module/numbers.h"

#include <climits>
#include <cstring>

namespace wlbrcm {

namespace {

constexpr int kNoDigit = 99;

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

int digitOf(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return kNoDigit;
}

void skipBlanks(std::string_view *rest) {
    while (!rest->empty() && isBlank(rest->front()))
        rest->remove_prefix(1);
}

// "0x" belongs to the number only when a digit follows it.
bool startsHex(std::string_view text) {
    return text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x' && digitOf(text[2]) < 16;
}

struct Number {
    bool negative = false;
    uint64_t magnitude = 0; // never above the limit
    bool overflowed = false;
};

bool takeNumber(std::string_view *rest, unsigned base, uint64_t limit, Number *number) {
    std::string_view text = *rest;
    skipBlanks(&text);
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        number->negative = text[0] == '-';
        text.remove_prefix(1);
    }
    if ((base == 0 || base == 16) && startsHex(text)) {
        base = 16;
        text.remove_prefix(2);
    }
    if (base == 0)
        base = !text.empty() && text[0] == '0' ? 8 : 10;
    const size_t length = text.size();
    for (; !text.empty() && digitOf(text[0]) < static_cast<int>(base); text.remove_prefix(1)) {
        const auto digit = static_cast<unsigned>(digitOf(text[0]));
        number->overflowed = number->overflowed || number->magnitude > (limit - digit) / base;
        number->magnitude = number->overflowed ? limit : number->magnitude * base + digit;
    }
    if (text.size() == length)
        return false;
    *rest = text;
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
    const void *found = rest->empty() ? nullptr : memmem(rest->data(), rest->size(), part.data(), part.size());
    if (found == nullptr)
        return false;
    const auto *at = static_cast<const char *>(found);
    rest->remove_prefix(static_cast<size_t>(at - rest->data()) + part.size());
    return true;
}

} // namespace wlbrcm
