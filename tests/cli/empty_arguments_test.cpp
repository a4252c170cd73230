// Empty arguments, as an unset variable of a shell makes them.
#include "cli/command_line.h"
#include "support/fixture.h"

using namespace corvinade;

using EmptyArguments = Program;

TEST_F(EmptyArguments, AreRefusedWhereverNoOptionTakesThem) {
    const std::string start = Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    const std::string target = Write("t.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");
    const std::string job = PathOf("j.cvn");
    ASSERT_EQ(FreshCommandLine({"fit", start, target, "--save", job}).Status, 0);
    const std::vector<std::vector<std::string>> lines = {
        {"export", job, "-y"},
        {"export", job, "--as", "points"},
        {"info", job, "--json"},
        {"convert", job, PathOf("o.json"), "--yes"},
        {"render", job, "--out", PathOf("o.png")},
        {"distances", job, "--csv"},
        {"bundle", start, "--json"},
        {"transform", "--job", job, start, "--to", folder_},
        {"fit", start, target, "--quiet"},
        {"automate", "--decimal", "point"},
        {"completion", "bash"},
    };
    for (const std::vector<std::string>& line : lines)
        for (std::size_t place = 0; place <= line.size(); ++place) {
            // Behind an option that takes a value it is that option's, which says itself what it thinks of
            // it.
            if (place > 0 && line[place - 1].starts_with("--") && line[place - 1] != "--json" &&
                line[place - 1] != "--yes" && line[place - 1] != "--csv" && line[place - 1] != "--quiet")
                continue;
            std::vector<std::string> arguments = line;
            arguments.insert(arguments.begin() + static_cast<std::ptrdiff_t>(place), "");
            const Outcome outcome = FreshCommandLine(arguments);
            EXPECT_EQ(outcome.Status, 2) << line[0] << " " << place;
            EXPECT_NE((outcome.Err + outcome.Out).find("argument " + std::to_string(place + 1) + " is empty"),
                      std::string::npos)
                << line[0] << " " << place << "\n"
                << outcome.Err;
        }
}

TEST_F(EmptyArguments, OfAnOptionAreTheOptionsOwn) {
    const Outcome outcome = FreshCommandLine({"bundle", Write("n.txt", ""), "--to", ""});
    EXPECT_EQ(outcome.Status, 2);
    EXPECT_NE(outcome.Err.find("the name of the folder is empty"), std::string::npos) << outcome.Err;
}

TEST_F(EmptyArguments, AreToldAsJsonToo) {
    const Outcome outcome = FreshCommandLine({"info", "", "--json"});
    EXPECT_EQ(outcome.Status, 2);
    EXPECT_EQ(outcome.Out.substr(0, 1), "{") << outcome.Out;
    EXPECT_NE(outcome.Out.find("argument 2 is empty"), std::string::npos) << outcome.Out;
}
