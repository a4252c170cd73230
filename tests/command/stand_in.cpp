// A program of tests that does what it is told, for the test of the command that counts tests: "counting"
// beside this file chooses the tests by gtest's filter.

#include <gtest/gtest.h>

#include <cstdlib>

// Not the compiler, but the sanitizer is to find what nothing points to any more.
[[gnu::noinline]] void Forget(std::size_t size) {
    void* volatile place = std::malloc(size);
    place = nullptr;
    static_cast<void>(place);
}

extern "C" [[gnu::noinline]] void libfontconfig_stand_in(std::size_t size) {
    Forget(size);
    asm volatile("");
}

TEST(StandIn, Passes) {
    EXPECT_EQ(1 + 1, 2);
}

TEST(StandIn, PassesToo) {
    EXPECT_TRUE(true);
}

TEST(StandIn, Fails) {
    EXPECT_EQ(1 + 1, 3);
}

TEST(StandIn, FailsToo) {
    EXPECT_TRUE(false);
}

TEST(StandIn, EndsTheProgram) {
    std::_Exit(0);
}

TEST(StandIn, LeavesAnErrorForTheEnd) {
    std::atexit([] { std::_Exit(23); });
}

TEST(StandIn, SkipsItself) {
    GTEST_SKIP();
}

TEST(StandIn, ForgetsMemory) {
    Forget(1000);
    EXPECT_EQ(1 + 1, 2);
}

// The name is in the list of what is not reported.
TEST(StandIn, KeepsMemoryForALibrary) {
    libfontconfig_stand_in(1000);
    EXPECT_EQ(1 + 1, 2);
}

int main(int argc, char** argv) {
    if (std::getenv("STAND_IN_SHARES_NOTHING") != nullptr) {
        unsetenv("GTEST_TOTAL_SHARDS");
        unsetenv("GTEST_SHARD_INDEX");
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
