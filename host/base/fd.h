// A file descriptor and its end.
#pragma once

namespace wlhost {

// A file descriptor that is closed with its owner.
class Fd {
  public:
    explicit Fd(int fd = -1) : fd_(fd) {}
    ~Fd();
    Fd(Fd &&other) noexcept : fd_(other.release()) {}
    Fd &operator=(Fd &&other) noexcept;
    int get() const { return fd_; }
    int release();

  private:
    int fd_;
};

} // namespace wlhost
