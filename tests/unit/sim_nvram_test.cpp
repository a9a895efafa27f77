// The configuration store under several processes, crashes and reboots.
#include "platform/sim/nvram/nvram_store.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class SimNvram : public ::testing::Test {
  protected:
    SimNvram() {
        std::string pattern = (std::filesystem::temp_directory_path() / "wlsim-test-XXXXXX").string();
        directory = mkdtemp(pattern.data());
        setenv("WLSIM_NVRAM", (directory + "/nvram").c_str(), 1);
    }
    ~SimNvram() override { std::filesystem::remove_all(directory); }
    static std::string get(const std::string &key) {
        const char *value = nvram_get(key.c_str());
        return value ? value : "(unset)";
    }
    std::string directory;
};

TEST_F(SimNvram, KeepsAnyText) {
    for (const char *value : {"", " ", "two  words ", "a=b", "line\nline", "back\\slash\\n", "\xff\x01"}) {
        ASSERT_EQ(nvram_set("key", value), 0);
        EXPECT_EQ(get("key"), value);
    }
    EXPECT_EQ(nvram_unset("key"), 0);
    EXPECT_EQ(nvram_unset("key"), 0);
    EXPECT_EQ(get("key"), "(unset)");
}

TEST_F(SimNvram, RefusesBadKeysAndLongValues) {
    for (const std::string &key : {std::string(), std::string("a=b"), std::string("a\nb"), std::string(256, 'k')}) {
        EXPECT_EQ(nvram_set(key.c_str(), "x"), -1) << key;
        EXPECT_EQ(nvram_unset(key.c_str()), -1) << key;
        EXPECT_EQ(nvram_get(key.c_str()), nullptr) << key;
    }
    EXPECT_EQ(nvram_set(std::string(255, 'k').c_str(), std::string(4095, 'v').c_str()), 0);
    EXPECT_EQ(nvram_set("long", std::string(4096, 'v').c_str()), -1);
    EXPECT_EQ(nvram_set("none", nullptr), -1);
    EXPECT_EQ(get("long"), "(unset)");
}

TEST_F(SimNvram, RebootForgetsWhatWasNotCommitted) {
    ASSERT_EQ(nvram_set("kept", "1"), 0);
    ASSERT_EQ(nvram_commit(), 0);
    ASSERT_EQ(nvram_set("kept", "2"), 0);
    ASSERT_EQ(nvram_set("lost", "x"), 0);
    EXPECT_EQ(get("kept"), "2");
    ASSERT_EQ(nvram_reboot(), 0);
    EXPECT_EQ(get("kept"), "1");
    EXPECT_EQ(get("lost"), "(unset)");
}

pid_t spawn(void (*work)(int), int number) {
    pid_t pid = fork();
    if (pid == 0) {
        work(number);
        _exit(0);
    }
    return pid;
}

TEST_F(SimNvram, LosesNoWriteOfConcurrentProcesses) {
    constexpr int kWriters = 4, kKeys = 50;
    auto work = [](int writer) {
        for (int i = 0; i < kKeys; i++) {
            std::string key = "w" + std::to_string(writer) + "_" + std::to_string(i);
            nvram_set(key.c_str(), key.c_str());
        }
    };
    for (int writer = 0; writer < kWriters; writer++) {
        ASSERT_GT(spawn(work, writer), 0);
    }
    for (int status = 1; wait(&status) > 0;) {
        EXPECT_EQ(status, 0);
    }
    int count = 0;
    auto check = [](const char *key, const char *value, void *arg) {
        ++*static_cast<int *>(arg);
        return strcmp(key, value);
    };
    EXPECT_EQ(nvram_each(check, &count), 0);
    EXPECT_EQ(count, kWriters * kKeys);
}

TEST_F(SimNvram, SurvivesWritersThatAreKilled) {
    auto work = [](int) {
        for (;;) {
            nvram_set("big", std::string(4000, 'x').c_str());
            nvram_unset("big");
        }
    };
    ASSERT_EQ(nvram_set("steady", "value"), 0);
    for (int i = 0; i < 20; i++) {
        pid_t pid = spawn(work, 0);
        ASSERT_GT(pid, 0);
        for (int reads = 0; reads < 20 + 10 * i; reads++) {
            ASSERT_EQ(get("steady"), "value") << "a reader must never meet half a store";
        }
        ASSERT_EQ(kill(pid, SIGKILL), 0);
        ASSERT_EQ(waitpid(pid, nullptr, 0), pid);
        std::string big = get("big");
        EXPECT_EQ(get("steady"), "value");
        EXPECT_TRUE(big == "(unset)" || big == std::string(4000, 'x'));
        ASSERT_EQ(nvram_set("after", std::to_string(i).c_str()), 0) << "the lock must not outlive its holder";
    }
    EXPECT_EQ(get("after"), "19");
}

} // namespace
