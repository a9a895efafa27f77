// Requests to the kernel devices of the board.
#ifndef WLBRCM_MODULE_BOARD_H
#define WLBRCM_MODULE_BOARD_H

#include <cstdint>

namespace wlbrcm {

// A device opened for reading and writing, closed on every path.
class BoardDevice {
  public:
    explicit BoardDevice(const char *path);
    ~BoardDevice();
    BoardDevice(const BoardDevice &) = delete;
    BoardDevice &operator=(const BoardDevice &) = delete;

    explicit operator bool() const { return descriptor_ >= 0; }
    // Descriptor 0 is standard input's, which the board's driver library takes for a failure.
    bool isPositive() const { return descriptor_ > 0; }
    // Returns the ioctl's result.
    int request(unsigned long code, void *block);

  private:
    int descriptor_;
};

constexpr char kChipInfoDevice[] = "/dev/chipinfo";
constexpr char kBoardDevice[] = "/dev/brcmboard";

// The chip-information driver's block. It defines the first two words; the module sends zeros.
struct ChipInfoRequest {
    uint32_t driverWords[2];
    uint32_t item;
    int32_t answer;
};

// The board driver's block; pointers have the processor's size.
struct BoardRequest {
    void *buffer;
    void *second;
    int32_t length;
    int32_t offset;
    int32_t action;
    int32_t result;
};

// Request codes of a 32-bit board: direction, size, type and number. They stay these on any processor.
constexpr unsigned long kReadChipInfo = 0xC0104300;
constexpr unsigned long kReadBoardFlash = 0xC0184201;
constexpr unsigned long kReadGpioOverlays = 0xC0184232;

} // namespace wlbrcm

#endif
