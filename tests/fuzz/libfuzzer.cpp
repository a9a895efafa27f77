// Runs under libFuzzer the target that the environment variable FUZZ_TARGET names.
#include "tests/fuzz/target.h"

static fuzz::Check check;

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/) {
    GTEST_FLAG_SET(throw_on_failure, true); // expectations of the fake platform count too
    const char *name = getenv("FUZZ_TARGET");
    check = fuzz::targets().at(name == nullptr ? "" : name);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    check(std::string(reinterpret_cast<const char *>(data), size));
    return 0;
}
