// The names that a command line gives for units, norms and presets: those of the help, each taken as what it
// says, and no other.
#include "cli/fit_command.h"

using namespace corvinade;

namespace {

using Choices = FitCommand;

struct Named {
    const char* Given;
    const char* Told;  // by the job
};

// What the program tells of a job that was fitted and saved with these arguments.
json JobOf(const std::string& path, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "fit");
    arguments.insert(arguments.end(), {"--save", path});
    const Outcome fit = CommandLine(arguments);
    EXPECT_EQ(fit.Status, 0) << fit.Err;
    return json::parse(CommandLine({"info", path, "--json"}).Out);
}

}  // namespace

TEST_F(Choices, AUnitHasTheNameOfTheHelpAndALongOne) {
    for (const Named& named : {Named{"mm", "millimeter"}, Named{"millimeter", "millimeter"},
                               Named{"m", "meter"}, Named{"meter", "meter"}, Named{"in", "inch"},
                               Named{"inch", "inch"}, Named{"ft", "feet"}, Named{"feet", "feet"}})
        EXPECT_EQ(JobOf(PathOf("l.cvn"), {start_, target_, "--length-unit", named.Given})["units"]["length"],
                  named.Told)
            << named.Given;
    for (const Named& named : {Named{"deg", "degree"}, Named{"degree", "degree"}, Named{"gon", "grad (gon)"},
                               Named{"rad", "rad"}, Named{"mrad", "mrad"}, Named{"arcsecond", "arcsecond"},
                               Named{"arcminute", "arcminute"}, Named{"dms", "360°60'60''"}})
        EXPECT_EQ(JobOf(PathOf("a.cvn"), {start_, target_, "--angle-unit", named.Given})["units"]["angle"],
                  named.Told)
            << named.Given;
}

TEST_F(Choices, TheHelpShowsThemAll) {
    for (const char* command : {"fit", "bundle"})
        EXPECT_NE(CommandLine({command, "--help"}).Out.find("--length-unit mm|m|in|ft"), std::string::npos)
            << command;
    const std::string help = CommandLine({"fit", "--help"}).Out;
    for (const char* choices : {"--angle-unit deg|gon|rad|mrad|arcsecond|arcminute|dms",
                                "--parameters level|6|7|9|12", "--norm l1|l2|loo"})
        EXPECT_NE(help.find(choices), std::string::npos) << choices;
}

TEST_F(Choices, AnotherNameIsWrongUsage) {
    for (const char* option : {"--length-unit", "--angle-unit", "--norm", "--parameters"})
        for (const char* name : {"", "no such name", "L2", "3"}) {
            const Outcome outcome = Fit({start_, target_, option, name});
            EXPECT_EQ(outcome.Status, 2) << option << " " << name;
            EXPECT_EQ(outcome.Out, "") << option << " " << name;
        }
}

// What `info` tells of a norm: the loop's, whether it was run on to its optimum or not.
TEST_F(Choices, AJobKeepsTheNorm) {
    for (const Named& norm : {Named{"l1", "L1"}, Named{"l2", "L2"}, Named{"loo", "L-infinity"},
                              Named{"l1-exact", "L1"}, Named{"minimax", "L-infinity"}})
        EXPECT_EQ(JobOf(PathOf("n.cvn"), {kMeasured, kNominal, "--norm", norm.Given})["norm"], norm.Told)
            << norm.Given;
}
