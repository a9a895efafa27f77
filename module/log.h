// Messages to the host's log callback.
#ifndef WLBRCM_MODULE_LOG_H
#define WLBRCM_MODULE_LOG_H

#include <string_view>

#include <wlbrcm/module.h>

namespace wlbrcm {

enum LogLevel { LOG_ERR = WLBRCM_LOG_ERR, LOG_INFO = WLBRCM_LOG_INFO, LOG_DEBUG = WLBRCM_LOG_DEBUG };

// Where a message comes from. Helpers that log for their caller take one, so that the log shows the caller.
struct Here {
    const char *function;
    int line;
};

// A foreign text as a message shows it: bytes that are no printable ASCII, line ends among them, and backslashes as
// \xNN. What is too long for a message is cut.
class Shown {
  public:
    explicit Shown(std::string_view text);
    explicit Shown(const char *text);
    const char *c_str() const { return text_; }

  private:
    char text_[1024];
};

} // namespace wlbrcm

#define WLBRCM_HERE (::wlbrcm::Here{__func__, __LINE__})

// The first form logs as the function it stands in, the second as the caller that `here` describes.
#define WLBRCM_LOG(level, ...) WLBRCM_LOG_AT(WLBRCM_HERE, level, __VA_ARGS__)
#define WLBRCM_LOG_AT(here, level, ...)                                                                                \
    do {                                                                                                               \
        if (brcm_print_fn != nullptr) {                                                                                \
            const ::wlbrcm::Here logged_ = (here);                                                                     \
            brcm_print_fn(::wlbrcm::level, "BRCM", logged_.function, logged_.line, __VA_ARGS__);                       \
        }                                                                                                              \
    } while (false)

#endif
