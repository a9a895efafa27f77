// Runs the one target that it is linked with under libFuzzer.
#include "target.h"

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/) {
    GTEST_FLAG_SET(throw_on_failure, true); // expectations of the fake platform count too
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::targets().front().check(std::string(reinterpret_cast<const char *>(data), size));
    return 0;
}
