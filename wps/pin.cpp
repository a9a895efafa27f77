// WPS PINs: eight digits, the last one a checksum over the others.
#include <wlbrcm/wps.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "module/board.h"
#include "module/text.h"

using namespace wlbrcm;

namespace {

constexpr int kDigits = 8;

// Digits from the units on count once and three times in turn.
unsigned long weightedSum(unsigned long pin) {
    unsigned long sum = 0;
    for (int place = 0; place < kDigits; ++place, pin /= 10)
        sum += pin % 10 * (place % 2 == 0 ? 1 : 3);
    return sum;
}

bool isDigits(const char *text) {
    for (int i = 0; i < kDigits; ++i) {
        if (text[i] < '0' || text[i] > '9')
            return false;
    }
    return true;
}

// The PIN that the factory left in the boot loader's data.
bool qvWlanReadCfeDevPin(char (&pin)[kDigits + 1]) {
    constexpr int kPinOffset = 0x144;
    BoardDevice device(kBoardDevice);
    if (!device) {
        printf("Unable to open device %s", kBoardDevice);
        return false;
    }
    char stored[12] = {};
    BoardRequest request{stored, nullptr, kDigits, kPinOffset, 1, -1};
    if (device.request(kReadBoardFlash, &request) < 0) {
        printf("%s@%d Read WPS Pin Failure\n", __func__, __LINE__);
        return false;
    }
    copyText(pin, {stored, kDigits});
    if (!isDigits(pin)) {
        printf("There is no Predefined DevicePin in CFE\n");
        return false;
    }
    return true;
}

void generatePin(char (&pin)[kDigits + 1]) {
    srand(static_cast<unsigned>(time(nullptr)));
    Text<64> random("%08lu", static_cast<unsigned long>(rand()));
    random.cut(kDigits - 1);
    const unsigned long number = strtoul(random.c_str(), nullptr, 10) * 10;
    const unsigned long checksum = (10 - weightedSum(number) % 10) % 10;
    copyText(pin, Text<64>("%08lu", number + checksum).view());
}

} // namespace

int qvWlanWscPincheck(const char *pin) {
    constexpr size_t kShortPin = 4;
    if (pin == nullptr)
        return -1;
    const size_t length = strlen(pin);
    if (length == kShortPin)
        return 0;
    // A sign wraps at 32 bits, whatever the processor's long.
    return length == kDigits && weightedSum(static_cast<uint32_t>(strtoull(pin, nullptr, 10))) % 10 == 0 ? 0 : -1;
}

int qvWlanWscPinGen(char *out) {
    if (out == nullptr)
        return WLBRCM_EINVAL;
    char pin[kDigits + 1];
    if (!qvWlanReadCfeDevPin(pin) || qvWlanWscPincheck(pin) != 0)
        generatePin(pin);
    memcpy(out, pin, sizeof pin);
    return WLBRCM_OK;
}
