// Imports by a request alone: no window has a part in them, and whoever asks for one is asked in turn.
#include "import/import_request.h"

#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/settings.h"
#include "import/input_dialog.h"

using namespace corvinade;

namespace {

const char* const kProgram =
    "DECL E6POS XP1={X 1,Y 2,Z 3,A 10,B 20,C 30,S 2,T 35}\r\n"
    "DECL E6POS XP2={X 4,Y 5,Z 6,A 40,B 50,C 60,S 2,T 35}\r\nENDDAT\r\n";

class ImportRequests : public InputDialog {
protected:
    ImportRequest Request() const {
        ImportRequest request;
        request.StartPath = start_;
        request.TargetPath = target_;
        return request;
    }
    // Its questions go into `asked_`, each with Yes or No for an answer.
    void AnswerYesNo(ImportRequest& request, bool yes) {
        request.How.YesNo = [this, yes](const std::string& text, const std::string&) {
            asked_.push_back(text);
            pathAsked_ = Job.PathOCS;
            return yes;
        };
    }
    std::vector<std::string> asked_;
    std::string pathAsked_;  // of the target, when the last question came
};

}  // namespace

TEST_F(ImportRequests, FillTheJobAsTheDialogDoesAndOpenNoWindow) {
    const JobRecord fresh = Job;
    Import();
    SaveFileAs(PathOf("dialog.cvn"));
    Job = fresh;
    ::Run.JobDataValid = kFalse;
    EXPECT_EQ(::Import(Request()), ImportOutcome::Done);
    EXPECT_FALSE(IsLoaded("FormInputFiles"));
    EXPECT_EQ(Job.NameMCS, "MCS");
    EXPECT_EQ(Job.Pairs(), 4);
    SaveFileAs(PathOf("request.cvn"));
    EXPECT_EQ(Contents(PathOf("request.cvn")), Contents(PathOf("dialog.cvn")));
}

TEST_F(ImportRequests, LeaveADialogThatIsOpenAlone) {
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMCS, "somewhere.txt");
    UserSetValue(InputFiles.OptionByDis, 1);
    UserSetIndex(InputFiles.ComboOCS_Data, 3);
    EXPECT_EQ(::Import(Request()), ImportOutcome::Done);
    EXPECT_EQ(Job.PathMCS, start_);
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_EQ(InputFiles.TextNameMCS.Text, "somewhere.txt");
    EXPECT_EQ(InputFiles.ComboOCS_Data.Index, 3);
}

TEST_F(ImportRequests, ThatReplaceNothingLeaveThePointsOfBeforeCounted) {
    ASSERT_EQ(::Import(Request()), ImportOutcome::Done);
    ImportRequest request = Request();
    // The points may go; the file with the other decimal delimiter is not to be changed, so it is not read.
    request.How.YesNo = [](const std::string&, const std::string& title) {
        return title == "Overwrite old Points?";
    };
    request.StartPath = Write("comma.txt", "A;0,5;0;0\r\nB;100;0;0\r\n");
    EXPECT_EQ(::Import(request), ImportOutcome::NotRead);
    EXPECT_EQ(Job.Start.Count(), 5);
    EXPECT_EQ(Job.Target.Count(), 5);
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(::Run.JobDataValid, kFalse);
}

// --- Questions --------------------------------------------------------------------------------------------

TEST_F(ImportRequests, AskForPointsThatWouldGo) {
    ImportRequest request = Request();
    AnswerYesNo(request, false);
    EXPECT_EQ(::Import(request), ImportOutcome::Done) << "there are none yet";
    EXPECT_TRUE(asked_.empty());
    request.StartPath = Write("other.txt", "A;1;1;1\r\nB;2;2;2\r\n");
    EXPECT_EQ(::Import(request), ImportOutcome::NotRead);
    ASSERT_EQ(asked_.size(), 1U);
    EXPECT_TRUE(asked_[0].starts_with("This will not add points")) << asked_[0];
    EXPECT_EQ(Job.PathMCS, start_);
    EXPECT_EQ(Job.Start.Count(), 5);
    request.ReplacesQuietly = true;
    EXPECT_EQ(::Import(request), ImportOutcome::Done);
    EXPECT_EQ(asked_.size(), 1U);
    EXPECT_EQ(Job.Start.Count(), 2);
    EXPECT_TRUE(Headless.Dialogs.empty()) << "nobody else is asked";
}

TEST_F(ImportRequests, AskWhetherAFileWithTheOtherDecimalDelimiterShallBeChanged) {
    const std::string before = "A;0,5;0;0\r\nB;100;0;0\r\n";
    for (const bool yes : {false, true}) {
        start_ = Write("comma.txt", before);
        ImportRequest request = Request();
        AnswerYesNo(request, yes);
        EXPECT_EQ(::Import(request), yes ? ImportOutcome::Done : ImportOutcome::NotRead);
        EXPECT_EQ(Run.ImportFailed, ToFlag(!yes));
        EXPECT_EQ(Contents(start_), yes ? "A;0.5;0;0\r\nB;100;0;0" : before);
    }
    EXPECT_EQ(asked_.size(), 2U);
    EXPECT_EQ(Job.Start.X[1], 0.5);
    EXPECT_TRUE(Headless.Dialogs.empty());
}

TEST_F(ImportRequests, TakeTheDecimalDelimiterThatTheyName) {
    start_ = Write("comma.txt", "A;0,5;0;0\r\nB;100,25;0;0\r\n");
    target_ = Write("comma2.txt", "P;0,5;0;0\r\nQ;100,25;0;0\r\n");
    ImportRequest request = Request();
    request.How.Decimal = ',';
    request.Way = Pairing::ByCoordinate;
    request.Tolerance_mm = 0.1;
    request.RenameStart = true;
    AnswerYesNo(request, true);
    EXPECT_EQ(::Import(request), ImportOutcome::Done);
    EXPECT_TRUE(asked_.empty());
    EXPECT_EQ(Job.Start.X[1], 0.5);
    EXPECT_EQ(Job.Pairs(), 2);
    EXPECT_EQ(Contents(start_), "P;0,5;0;0\r\nQ;100,25;0;0\r\n") << "it is written as it is read";
}

TEST_F(ImportRequests, TakeTheDecimalDelimiterOfProgramsAndShapesToo) {
    start_ = Write("tips.txt", "1;0;0;0\r\n2;100;0;0\r\n");
    target_ = Write("program.dat",
                    "DECL E6POS XP1={X 1,5,Y 2,Z 3,A 10,B 20,C 30,S 2}\r\n"
                    "DECL E6POS XP2={X 4,Y 5,Z 6,A 40,B 50,C 60,S 2}\r\nENDDAT\r\n");
    ImportRequest request = Request();
    request.How.Decimal = ',';
    request.Kind = TargetKind::Kuka;
    EXPECT_EQ(::Import(request), ImportOutcome::Done);
    EXPECT_EQ(Job.Target.X[1], 1.5);
    request.TargetPath = Write("shape.txt", "0;0\r\n10,5;1,25\r\n20;4\r\n");
    request.Kind = TargetKind::Shape;
    request.ReplacesQuietly = true;
    EXPECT_EQ(::Import(request), ImportOutcome::Done);
    EXPECT_EQ(Job.ParaboloidShape(2, 1), 10.5);
}

TEST_F(ImportRequests, AskForATolerance) {
    std::vector<std::string> lines = {"0", "0.5"};
    ImportRequest request = Request();
    request.Way = Pairing::ByCoordinate;
    request.AskLine = [&lines](const std::string& text, const std::string& title, const std::string& preset) {
        EXPECT_TRUE(text.starts_with("Identify by coordinate comparison works by comparison"));
        EXPECT_EQ(title, "Etta Value");
        EXPECT_EQ(preset, "0.8");
        const std::string line = lines.front();
        lines.erase(lines.begin());
        return std::optional<std::string>(line);
    };
    EXPECT_EQ(::Import(request), ImportOutcome::Done);
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(Run.Etta, 0.5F);
    request.Tolerance_mm = 0.25;
    request.ReplacesQuietly = true;
    EXPECT_EQ(::Import(request), ImportOutcome::Done) << "it is not asked for";
    EXPECT_EQ(Run.Etta, 0.25F);
    request.Tolerance_mm = std::nullopt;
    request.AskLine = [](const std::string&, const std::string&, const std::string&) {
        return std::optional<std::string>();
    };
    EXPECT_EQ(::Import(request), ImportOutcome::NotRead);
}

TEST_F(ImportRequests, SearchAsManyTargetPointsAsTheySay) {
    target_ = start_;
    ImportRequest request = Request();
    request.Way = Pairing::ByDistance;
    request.Tolerance_mm = 0.1;
    request.OnlyFirst = "many";
    EXPECT_EQ(ErrorOf([&request] { ::Import(request); }), "Number of OCS points: \"many\" is not a number");
    EXPECT_EQ(Run.JobDataValid, kFalse);
    request.OnlyFirst = "1";  // between one point there is no distance
    ::Import(request);
    EXPECT_EQ(Job.Pairs(), 0);
    request.OnlyFirst = std::nullopt;
    request.ReplacesQuietly = true;
    EXPECT_EQ(::Import(request), ImportOutcome::Done);
    EXPECT_EQ(Job.Pairs(), 5);
}

TEST_F(ImportRequests, WithoutAWayOfPairingReadNothing) {
    ImportRequest request = Request();
    request.Way = Pairing::None;
    EXPECT_EQ(::Import(request), ImportOutcome::NotRead);
    EXPECT_EQ(Job.Start.Count(), 0);
    EXPECT_EQ(Run.JobDataValid, kFalse);
}

TEST_F(ImportRequests, NameTheDelimiterOfAFileThatDoesNotShowIt) {
    start_ = Write("blanks.txt", "A 0 0 0\r\nB 100 0 0\r\n");
    target_ = start_;
    ImportRequest request = Request();
    request.Delimiter = "";
    EXPECT_EQ(::Import(request), ImportOutcome::NotRead);
    request.Delimiter = " ";
    EXPECT_EQ(::Import(request), ImportOutcome::Done);
    EXPECT_EQ(Job.Pairs(), 2);
}

// --- Kinds ------------------------------------------------------------------------------------------------

TEST_F(ImportRequests, OfAProgramHaveItsPathInTheJobAllTheTime) {
    start_ = Write("tips.txt", "1;0,5;0;0\r\n2;100;0;0\r\n");
    target_ = Write("program.dat", kProgram);
    ImportRequest request = Request();
    request.Kind = TargetKind::Kuka;
    AnswerYesNo(request, true);  // to the comma in the start file
    EXPECT_EQ(::Import(request), ImportOutcome::Done);
    EXPECT_EQ(asked_.size(), 1U);
    EXPECT_EQ(pathAsked_, target_);
    EXPECT_EQ(Job.PathOCS, target_);
    EXPECT_EQ(Job.Pairs(), 2);
}

TEST_F(ImportRequests, OfAShapeWriteNoNamesIntoIt) {
    const std::string profile = "0;0\r\n10;1\r\n20;4\r\n";
    target_ = Write("shape.txt", profile);
    ImportRequest request = Request();
    request.Kind = TargetKind::Shape;
    request.Way = Pairing::ByCoordinate;
    request.Tolerance_mm = 0.1;
    request.RenameTarget = true;
    EXPECT_EQ(::Import(request), ImportOutcome::Done);
    EXPECT_EQ(Contents(target_), profile);
    EXPECT_EQ(Job.PathOCS, target_);
}

// --- Guests -----------------------------------------------------------------------------------------------

TEST_F(ImportRequests, OfARoundTripLeaveAJobAloneThatIsOpenedMeanwhile) {
    Import();
    Job.UseFlags[1] = 0;
    SaveFileAs(PathOf("other.cvn"));
    Headless.Clipboard =
        "A\t0\t0\t0\tA\t5\t6\t7\r\nB\t100\t0\t0\tB\t105\t6\t7\r\nC\t0\t200\t0\tC\t5\t206\t7\r\n";
    const std::string table = Headless.Clipboard;
    ShowWindow("FormMainSheet");
    bool opened = false;
    Headless.OnYield = [&opened, other = PathOf("other.cvn")] {
        if (opened || Job.Start.Count() != 3 || !IsTrue(::Run.JobDataValid)) return;
        opened = true;
        OpenFile(other);
    };
    UserClick(Main.MenueHelpSpezial);
    Headless.OnYield = nullptr;
    ASSERT_TRUE(opened);
    EXPECT_EQ(Job.Start.Count(), 5);
    EXPECT_EQ(Job.UseFlags[1], 0);
    EXPECT_EQ(Run.TrafoValid, kFalse);
    EXPECT_EQ(Headless.Clipboard, table);
    EXPECT_EQ(Run.OverwriteQuiet, kFalse);
}
