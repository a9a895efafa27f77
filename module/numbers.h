// Numbers in foreign text, read like strtoul(), atoi() and sscanf() do, but over views, and the same on 32-bit and
// 64-bit processors.
#ifndef WLBRCM_MODULE_NUMBERS_H
#define WLBRCM_MODULE_NUMBERS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace wlbrcm {

// Like strtoul() with base 0 and 32 bits: blanks in front are skipped, "0x" means hexadecimal, another leading "0"
// octal. A minus sign wraps, so that "-45" stored in an int is -45; a number that does not fit gives the largest.
uint32_t unsignedNumber(std::string_view text);
uint64_t unsignedNumber64(std::string_view text);

// Like strtoul() with base 16 and 32 bits.
uint32_t hexNumber(std::string_view text);

// Like atoi(), but out of range gives the nearest int.
int decimalNumber(std::string_view text);

// One conversion of a scan, "%d", "%u" or "%x": skips blanks, reads a number and leaves `rest` behind it. Without a
// number they return false and *value stays. "%hhu" and "%hhx" are the low byte.
bool takeDecimal(std::string_view *rest, int *value);
bool takeUnsigned(std::string_view *rest, uint32_t *value);
bool takeHex(std::string_view *rest, uint32_t *value);

// "%s" of at most `longest` characters: skips blanks and takes what stands up to the next one.
bool takeWord(std::string_view *rest, size_t longest, std::string_view *word);

// The text of a scan format: each of its blanks stands for any run of blanks, also none; the rest must stand in `rest`
// literally and is passed over. False at the first character that differs.
bool takeText(std::string_view *rest, std::string_view text);

// The signal-to-noise ratio in dB of a signal and a noise in dBm. Wraps like the processor does: a driver may print any
// number.
inline int32_t signalToNoise(int32_t signal, int32_t noise) {
    return static_cast<int32_t>(static_cast<uint32_t>(signal) - static_cast<uint32_t>(noise));
}

// Moves `rest` behind the first `part` in it. False, with `rest` as it was, when there is none.
bool takeThrough(std::string_view *rest, std::string_view part);

} // namespace wlbrcm

#endif
