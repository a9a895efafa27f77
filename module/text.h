// Bounded text: copies, a writer that remembers that it overflowed, words and numbers of foreign text.
#ifndef WLBRCM_MODULE_TEXT_H
#define WLBRCM_MODULE_TEXT_H

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <wlbrcm/module.h>

namespace wlbrcm {

inline bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Copies as much as fits, always terminated. Returns whether all of it did.
bool copyText(char *to, size_t size, std::string_view from);

template <size_t Size> bool copyText(char (&to)[Size], std::string_view from) { return copyText(to, Size, from); }

// The text of a field that should be terminated inside the field, but may come from elsewhere.
template <size_t Size> std::string_view fieldText(const char (&field)[Size]) { return {field, strnlen(field, Size)}; }

// Formats into a fixed buffer of `size` bytes behind `used` characters. Returns false, with the text cut, when it does
// not fit.
bool appendFormat(char *text, size_t size, size_t *used, const char *format, va_list args) WLBRCM_PRINTF(4, 0);

// A text in a fixed buffer. An append that does not fit leaves a cut text for which fits() is false for good, so that
// one check at the end is enough.
template <size_t Size> class Text {
  public:
    Text() { buffer_[0] = '\0'; }
    explicit Text(const char *format, ...) WLBRCM_PRINTF(2, 3) {
        buffer_[0] = '\0';
        va_list args;
        va_start(args, format);
        fits_ = appendFormat(buffer_, Size, &used_, format, args);
        va_end(args);
    }

    void append(const char *format, ...) WLBRCM_PRINTF(2, 3) {
        va_list args;
        va_start(args, format);
        fits_ = appendFormat(buffer_, Size, &used_, format, args) && fits_;
        va_end(args);
    }

    // Drops the characters from `length` on.
    void cut(size_t length) {
        if (length < used_) {
            used_ = length;
            buffer_[used_] = '\0';
        }
    }

    bool fits() const { return fits_; }
    bool empty() const { return used_ == 0; }
    size_t size() const { return used_; }
    char *data() { return buffer_; }
    const char *c_str() const { return buffer_; }
    std::string_view view() const { return {buffer_, used_}; }

  private:
    char buffer_[Size];
    size_t used_ = 0;
    bool fits_ = true;
};

// Splits a text at a separator. By default empty words between repeated separators are passed over.
class Words {
  public:
    explicit Words(std::string_view text, char separator = ' ', bool keepEmpty = false)
        : rest_(text), separator_(separator), keepEmpty_(keepEmpty), done_(text.empty()) {}

    // Moves to the next word; false at the end.
    bool next(std::string_view *word);

  private:
    std::string_view rest_;
    char separator_;
    bool keepEmpty_;
    bool done_;
};

inline bool startsWith(std::string_view text, std::string_view start) {
    return text.size() >= start.size() && memcmp(text.data(), start.data(), start.size()) == 0;
}

// Where a character first stands, or the text's size.
inline size_t indexOf(std::string_view text, char c) {
    const void *at = text.empty() ? nullptr : memchr(text.data(), c, text.size());
    return at != nullptr ? static_cast<size_t>(static_cast<const char *>(at) - text.data()) : text.size();
}

// Where `part` first stands in `text`, or npos. An empty text holds nothing, not even an empty part. Made for the short
// lines of reports, where memmem() would spend most of its time on the table that it prepares for each search.
size_t positionOf(std::string_view text, std::string_view part);

inline bool contains(std::string_view text, std::string_view part) {
    return positionOf(text, part) != std::string_view::npos;
}

// The characters of a text, folded into a set of 32.
constexpr uint32_t characterBit(char c) { return uint32_t{1} << (c & 31); }
constexpr uint32_t characterSet(std::string_view text) {
    uint32_t set = 0;
    for (const char c : text)
        set |= characterBit(c);
    return set;
}

// A text that is looked for in many others. Most of them lack one of its characters and need not be searched.
struct KeyMark {
    template <size_t Size>
    constexpr KeyMark(const char (&literal)[Size]) : text(literal, Size - 1), characters(characterSet(text)) {}
    bool mayStandIn(uint32_t set) const { return (characters & ~set) == 0; }

    std::string_view text;
    uint32_t characters;
};

// Decimal number at the start of a text, like atoi(), but defined for every input: out of range gives the nearest int.
int decimal(const char *text);

} // namespace wlbrcm

#endif
