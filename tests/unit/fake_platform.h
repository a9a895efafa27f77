// An in-memory twin of the platform: it says what the module is answered, records what the module does, in order, and
// owns the clock. While one exists, the module's calls into libc and the platform libraries end here; nothing is
// spawned, nothing sleeps, and no file of the machine is touched.
#ifndef WLBRCM_TESTS_FAKE_PLATFORM_H
#define WLBRCM_TESTS_FAKE_PLATFORM_H

#include <array>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <wlbrcm/wlbrcm.h>

struct LogLine {
    int level;
    std::string function;
    std::string text;
};

class FakePlatform {
  public:
    FakePlatform();
    ~FakePlatform();
    FakePlatform(const FakePlatform &) = delete;
    FakePlatform &operator=(const FakePlatform &) = delete;

    // What a command prints and returns. `start` is the beginning of the command text; the longest match decides.
    // Without an answer a command prints nothing and succeeds. A command's "> FILE" goes into `files`.
    void answer(const std::string &start, const std::string &output, int status = 0);
    // The same, but a redirection leaves no file behind, as on a full /tmp.
    void loseOutput(const std::string &start);
    // popen() of such a command fails.
    void failPipe(const std::string &start);

    // Everything the module did, in order:
    //   "run CMD" (system), "pipe CMD" (popen), "wlctl LINE" (wlctl_cmd), "set KEY=VALUE", "unset KEY", "sleep
    //   SECONDS", "affinity PID MASK" (hexadecimal), "priority PID POLICY PRIORITY", "ioctl DEVICE REQUEST"
    //   (hexadecimal), "chmod MODE PATH" (octal). poll() waits a twentieth of its time-out.
    std::vector<std::string> journal;
    // The entries that begin with `start`, e.g. did("set wl0_").
    std::vector<std::string> did(const std::string &start) const;
    void forget();

    std::map<std::string, std::string> nvram; // may be preset and read directly
    std::map<std::string, std::string> files; // by absolute path, also files that are merely to exist (/bin/acsd)
    std::set<std::string> foreign;            // of `files`, those of another user
    std::map<int, std::string> processes;     // pid -> command name, seen through /proc
    std::vector<LogLine> logs;                // through brcm_print_fn, set while a FakePlatform exists
    std::vector<std::string> logged(int level) const;

    // The n-th calloc() from now (0 = the next) returns null; allocationFailed tells that it was reached.
    void failAllocation(int n);
    bool allocationFailed = false;
    // Calls that fail: "open /tmp/x", "remove /tmp/x", "opendir", "affinity", "priority", "mutex";
    // "sendto" sends, and tells one byte less; "nanosleep" is interrupted once, behind a second.
    std::map<std::string, int> failing; // call -> result or errno, any value
    // What a board device answers: called with request code and block, returns the ioctl result. No device without one.
    std::map<std::string, int (*)(unsigned long request, void *block)> devices;

    std::map<std::string, std::array<uint8_t, 6>> addresses; // hardware addresses of network interfaces

    // No result file may stay, but for the capability caches.
    std::vector<std::string> leftFiles() const;

    long slept() const; // seconds the module would have slept

  private:
    friend struct FakeCalls;
    struct Answer {
        std::string output;
        int status = 0;
        bool lost = false;
        bool noPipe = false;
    };
    const Answer &find(const std::string &command) const;
    std::map<std::string, Answer> answers_;
    int allocationsLeft_ = -1;
};

// The descriptors that this process has open.
std::vector<std::string> openDescriptors();

// A test with a platform of its own, the module's variables at their initial values, and neither a result file nor a
// descriptor left at the end.
class PlatformTest : public ::testing::Test {
  protected:
    PlatformTest();
    ~PlatformTest() override;
    FakePlatform platform;

  private:
    std::vector<std::string> descriptors_;
};

// Argument record over literal texts; keeps writable copies.
struct Arg {
    Arg(std::string where, std::string what = "", std::string more = "", int index = 0, void *result = nullptr);
    operator WlanParamArg *() { return &record; }
    std::string prefix, value, aux;
    WlanParamArg record;
};

// What a call writes on stdout.
template <class Call> std::string printed(Call call) {
    ::testing::internal::CaptureStdout();
    call();
    return ::testing::internal::GetCapturedStdout();
}

using Lines = std::vector<std::string>;

#endif
