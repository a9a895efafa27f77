// Waits that last as long as they should, however many signals the host gets meanwhile.
#ifndef WLBRCM_MODULE_WAITING_H
#define WLBRCM_MODULE_WAITING_H

#include <ctime>

namespace wlbrcm {

void pauseFor(unsigned seconds);

// A moment that many seconds from now.
class Deadline {
  public:
    explicit Deadline(int seconds);
    // Waits until something can be read from the descriptor; false when the moment comes first.
    bool waitReadable(int descriptor) const;

  private:
    timespec at_;
};

} // namespace wlbrcm

#endif
