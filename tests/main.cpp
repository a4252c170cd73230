// Runs the tests in random order, each from a fresh start; gtest prints the seed.
#include <unistd.h>

#include <string>

#include "core/fresh_start.h"
#include "support/fixture.h"
#include "support/program_path.h"

using namespace corvinade;

// What cannot be tried in this program or by this user is not listed, so that a test that skips itself still
// counts as one that was not run.
static std::string NotHere() {
    std::string names;
    const auto leaveOut = [&names](const char* name) {
        names += (names.empty() ? "-" : ":") + std::string(name);
    };
    if (FaultsPath().empty()) leaveOut("Faults.*");  // the sanitizers want to be loaded first
    // Sanitizers take their memory for themselves.
    if (ProgramIsSanitized()) leaveOut("Ends.WantOfMemoryIsToldAndNoSignalWhereverItComes");
    // Only root may give files away.
    if (geteuid() != 0) leaveOut("FileWriter.OwnerAndGroupOfTheOldFileAreKept");
    return names.empty() ? "*" : names;
}

int main(int argc, char** argv) {
    FreshStart();  // some tests are made of what windows have
    GTEST_FLAG_SET(shuffle, true);
    GTEST_FLAG_SET(filter, NotHere());
    testing::InitGoogleTest(&argc, argv);
    const int status = RUN_ALL_TESTS();
    FreshStart();  // pictures of windows that the last test has left open would pass for lost memory
    return status;
}
