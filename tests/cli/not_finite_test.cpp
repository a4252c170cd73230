// A job file with a coordinate that is no number, in every command.
#include <filesystem>
#include <limits>

#include "cli/fit_command.h"
#include "core/job_file.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

class NotFiniteCommands : public FitCommand {
protected:
    NotFiniteCommands() {
        EXPECT_EQ(FreshCommandLine({"fit", start_, target_, "--save", good_}).Status, 0);
        JobFileContent content = ReadJobBytes(Contents(good_), good_);
        content.Job.Target.Y[4] = std::numeric_limits<double>::quiet_NaN();
        Write("job.cvn", JobBytes(content.Job, {}));
    }
    std::string good_ = PathOf("good.cvn"), job_ = PathOf("job.cvn");
};

}  // namespace

TEST_F(NotFiniteCommands, EveryCommandSaysSoAndStrictLetsNonePass) {
    const std::vector<std::vector<std::string>> commands = {
        {"fit", "--job", job_, "--save", PathOf("fit.cvn")},
        {"info", job_},
        {"info", job_, "--json"},
        {"convert", job_, PathOf("copy.cvn")},
        {"convert", job_, PathOf("copy.csv")},
        {"convert", job_, PathOf("copy.json")},
        {"render", job_, "--out", PathOf("a.svg")},
        {"distances", job_, "--pairs", PathOf("pairs.txt")},
        {"distances", job_, "--with-result", "--pairs", PathOf("pairs.txt")},
        {"export", job_, "--rocal", PathOf("a.bas")},
        {"export", job_, "--robcad", PathOf("a.rf")},
        {"export", job_, "--points", PathOf("a.txt")},
        {"transform", job_, start_, "--to", PathOf("to")}};
    const auto files = [this] {
        return std::distance(std::filesystem::recursive_directory_iterator(PathOf("")), {});
    };
    for (std::vector<std::string> command : commands) {
        const std::string shown = command[0] + " " + command.back();
        const auto before = files();
        command.emplace_back("--strict");
        const Outcome strict = FreshCommandLine(command);
        EXPECT_EQ(strict.Status, 3) << shown << strict.Err;
        EXPECT_EQ(strict.Out.empty(), !shown.ends_with("--json")) << shown;  // an object then
        EXPECT_EQ(files(), before) << shown;
        EXPECT_NE(
            strict.Err.find("warning: Numbers of the job are infinite or none: 1 of the target system (the "
                            "first of point \"D\")"),
            std::string::npos)
            << shown << strict.Err;
        for (std::string& argument : command)
            if (argument == job_) argument = good_;
        EXPECT_EQ(FreshCommandLine(command).Status, 0) << shown;
    }
    // Without it commands write what they wrote.
    EXPECT_EQ(FreshCommandLine({"convert", job_, PathOf("plain.csv")}).Status, 0);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::NotFinite);
}

TEST_F(NotFiniteCommands, AResultThatIsNoneIsNotedByWhatUsesIt) {
    for (const double value :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        JobFileContent content = ReadJobBytes(Contents(good_), good_);
        content.Job.TraX = value;
        Write("job.cvn", JobBytes(content.Job, {}));
        for (std::vector<std::string> command : {std::vector<std::string>{"info", job_},
                                                 {"convert", job_, PathOf("copy.cvn")},
                                                 {"render", job_, "--out", PathOf("a.svg")},
                                                 {"distances", job_, "--with-result"}}) {
            const Outcome plain = FreshCommandLine(command);
            EXPECT_NE(plain.Err.find("warning: Numbers of the job are infinite or none: 1 of the result (the "
                                     "first of Tra x)"),
                      std::string::npos)
                << command[0] << plain.Err;
            command.emplace_back("--strict");
            EXPECT_EQ(FreshCommandLine(command).Status, 3) << command[0];
        }
    }
}
