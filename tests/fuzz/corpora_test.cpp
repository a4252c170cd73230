// Every input that is kept is read or refused as it should be: the seeds of tools/fuzz, and what it has
// found.
#include <filesystem>

#include "fuzz/harnesses.h"
#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

using Corpora = Program;

TEST_F(Corpora, EachInputIsReadOrRefused) {
    ExpectUnanswered();  // inputs ask what they like
    const fs::path top = fs::path(CORVINADE_SOURCE_DIR) / "tests/data";
    std::vector<std::string> folders;
    const fuzz::Room room;
    for (const fuzz::Harness& harness : fuzz::Harnesses()) {
        folders.emplace_back(harness.Name);
        std::vector<fs::path> inputs;
        for (const auto& entry : fs::directory_iterator(top / "fuzz" / harness.Name))
            inputs.push_back(entry.path());
        EXPECT_GE(inputs.size(), 1U) << harness.Name;
        // Jobs of each version are kept already.
        if (folders.back() == "job")
            for (const auto& entry : fs::directory_iterator(top / "jobs"))
                if (entry.path().extension() == ".cvn") inputs.push_back(entry.path());
        for (const fs::path& input : inputs) {
            EXPECT_EQ(room.Try(harness, Contents(input.string())), "") << input;
            EXPECT_EQ(room.Try(harness, ""), "") << harness.Name << ", nothing";
        }
    }
    for (const auto& entry : fs::directory_iterator(top / "fuzz"))
        EXPECT_TRUE(std::count(folders.begin(), folders.end(), entry.path().filename().string()) == 1)
            << entry.path() << " is no reader's";
}
