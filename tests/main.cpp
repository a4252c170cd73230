// Runs the tests in random order, each from a fresh start; gtest prints the seed.
#include "support/fixture.h"

int main(int argc, char** argv) {
    GTEST_FLAG_SET(shuffle, true);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
