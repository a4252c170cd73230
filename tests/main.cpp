// Runs the tests in random order, each from a fresh start; gtest prints the seed.
#include "core/fresh_start.h"
#include "support/fixture.h"

using namespace corvinade;

int main(int argc, char** argv) {
    FreshStart();  // some tests are made of what windows have
    GTEST_FLAG_SET(shuffle, true);
    testing::InitGoogleTest(&argc, argv);
    const int status = RUN_ALL_TESTS();
    FreshStart();  // pictures of windows that the last test has left open would pass for lost memory
    return status;
}
