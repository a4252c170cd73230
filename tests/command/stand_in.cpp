// A program of tests that does what it is told, for the test of the command that counts tests: "counting"
// beside this file chooses the tests by gtest's filter.

#include <gtest/gtest.h>

#include <cstdlib>

TEST(StandIn, Passes) {
    EXPECT_EQ(1 + 1, 2);
}

TEST(StandIn, PassesToo) {
    EXPECT_TRUE(true);
}

TEST(StandIn, Fails) {
    EXPECT_EQ(1 + 1, 3);
}

TEST(StandIn, EndsTheProgram) {
    std::_Exit(0);
}

TEST(StandIn, LeavesAnErrorForTheEnd) {
    std::atexit([] { std::_Exit(23); });
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
