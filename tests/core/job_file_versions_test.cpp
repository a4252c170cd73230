// Job files of older and newer versions: what each has, what the user is asked and told, and what they are
// saved as.
#include <filesystem>
#include <functional>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

const std::string kVersionQuestion = CrLf(
    "This is not a Corvinade File.\n\nClick  YES  to try loading this file and \n\nClick  NO  to choose another "
    "file");
const std::string kNoViews = "Sorry, Saved Views can not be loaded";

std::string Lower(const std::string& version) {
    return CrLf("File Version is lower than your Softwareversion!\n\nFile Version is " + version +
                "\nSoftware Version is 2.0.64\nCorvinade will convert Job to actual Softwareversion");
}
std::string Higher(const std::string& version) {
    return CrLf("File Version is higher than your Softwareversion!\n\nFile Version is " + version +
                "\nSoftware Version is 2.0.64\nThis can cause trouble with your data!");
}

// A job of a file without views, robots and shape, whose four view flags came from the file or not.
HandJob Plain(bool viewFlags = true) {
    HandJob job = HandExample();
    if (!viewFlags) job.ViewAll = {true, true, true, true};
    return job;
}

// Entries of ParamText that an old file does not have. `before` is the job that was open.
HandJob With15Parameters(HandJob job, const std::array<std::string, 18>& before) {
    job.ParamText[0] = before[0];
    job.ParamText[15] = job.ParamText[17] = "not used";
    job.ParamText[16] = before[16];
    return job;
}
HandJob With14Parameters(HandJob job, const std::array<std::string, 18>& before) {
    job.ParamText[0] = before[0];
    job.ParamText[14] = "not used";
    for (const std::size_t i : {15, 16, 17}) job.ParamText[i] = before[i];
    return job;
}

// Ten points, more than a version text has characters.
HandJob TenPoints() {
    HandJob job = HandExample();
    for (int i = 5; i <= 10; ++i) {
        job.MCS.Add("P" + std::to_string(i), i, i, i);
        job.TMCS.Add("P" + std::to_string(i), i, i, i);
    }
    job.nMCS = 10;
    return job;
}

}  // namespace

class JobFileVersions : public Program {
protected:
    // What the job that is open before leaves its traces with.
    JobFileVersions() {
        Job.RDist = 1234.5;
        for (std::size_t i = 0; i < Job.ParamText.size(); ++i)
            Job.ParamText[i] = "before" + std::to_string(i);
        before_ = Job.ParamText;
    }

    // Opens the file and expects these messages; then what was opened is saved, and opened and saved again.
    void ExpectOpened(const std::string& file, const HandJob& expected,
                      const std::vector<std::string>& messages) {
        Job.ParamText = before_;
        Job.RDist = 1234.5;
        Headless.Dialogs.clear();
        OpenFile(Write("a.cvn", file));
        EXPECT_EQ(Messages(), messages);
        ExpectJob(Job, expected);
        EXPECT_EQ(Run.JobDataValid, kTrue);
        EXPECT_EQ(Main.ComboSaveView.Items, expected.ViewNames);
        ExpectBytes(Contents(PathOf("a.cvn")), file);

        for (const char* name : {"b.cvn", "c.cvn"}) std::filesystem::remove(PathOf(name));
        HandJob saved = expected;
        saved.AutoRecalc = false;
        Headless.Dialogs.clear();
        SaveFileAs(PathOf("b.cvn"));
        ExpectBytes(Contents(PathOf("b.cvn")), HandFile(saved));
        OpenFile(PathOf("b.cvn"));
        SaveFileAs(PathOf("c.cvn"));
        ExpectBytes(Contents(PathOf("c.cvn")), Contents(PathOf("b.cvn")));
        EXPECT_TRUE(Messages().empty());
    }

    std::array<std::string, 18> before_;
};

TEST_F(JobFileVersions, ThePresentVersionIsOpenedWithoutAWord) {
    ExpectOpened(HandFile(HandRobotExample()), HandRobotExample(), {});
}

TEST_F(JobFileVersions, ANewerFileIsOpenedWithAWarning) {
    for (const std::string version : {"2.0.65", "2.1.0", "3.0.0", "10.0.0", "2.0.999"}) {
        SCOPED_TRACE(version);
        ExpectOpened(HandFile(HandRobotExample(), version), HandRobotExample(), {Higher(version)});
    }
}

TEST_F(JobFileVersions, VersionsAreComparedAsASequence) {
    // The minor number or the revision alone says nothing.
    for (const std::string version : {"2.0.63", "2.0.58"}) {
        SCOPED_TRACE(version);
        ExpectOpened(HandFile(HandRobotExample(), version), HandRobotExample(), {Lower(version)});
    }
    ExpectOpened(HandFile(HandRobotExample(), "3.0.1"), HandRobotExample(), {Higher("3.0.1")});
    ExpectOpened(HandFile72(HandExample(), "1.9.99"), HandExample(), {Lower("1.9.99")});
}

TEST_F(JobFileVersions, UpTo2_0_57FifteenParametersAreInTheFile) {
    for (const std::string version : {"2.0.57", "2.0.47"}) {
        SCOPED_TRACE(version);
        ExpectOpened(HandFile15(HandRobotExample(), version), With15Parameters(HandRobotExample(), before_),
                     {Lower(version)});
    }
    ExpectOpened(HandFile15(HandParaboloidExample(), "2.0.50"),
                 With15Parameters(HandParaboloidExample(), before_), {Lower("2.0.50")});
}

TEST_F(JobFileVersions, TheNumberOfParametersIsToldPartByPart) {
    // 2.0.57 is told by all of its parts: another minor number or a higher revision means 18 texts.
    ExpectOpened(HandFile(HandRobotExample(), "2.0.58"), HandRobotExample(), {Lower("2.0.58")});
    ExpectOpened(HandFile(HandRobotExample(), "2.1.5"), HandRobotExample(), {Higher("2.1.5")});
    ExpectOpened(HandFile(HandRobotExample(), "3.0.5"), HandRobotExample(), {Higher("3.0.5")});
    ExpectOpened(HandFile72(HandExample(), "1.4.5"), HandExample(), {Lower("1.4.5")});
}

TEST_F(JobFileVersions, UpTo2_0_46NoRobotIsInTheFile) {
    for (const std::string version : {"2.0.46", "2.0.0"}) {
        SCOPED_TRACE(version);
        HandJob job = HandParaboloidExample();
        job.ViewNames = {"One"};
        ExpectOpened(HandFile46(job, version), With15Parameters(job, before_), {Lower(version)});
    }
}

TEST_F(JobFileVersions, AFieldThatTheFileDoesNotHaveIsNotThatOfTheJobBefore) {
    OpenFile(Write("robot.cvn", HandFile(HandRobotExample())));
    Run.IsFanuc = kTrue;
    OpenFile(Write("old.cvn", HandFile46(HandExample(), "2.0.46")));
    EXPECT_EQ(Job.IsKuka, kFalse);
    EXPECT_EQ(Job.RobotABC.Rows, -1);
    EXPECT_EQ(Job.RVecX, (std::vector<TaggedValue>{{}, {}, {}, {}}));
    EXPECT_EQ(Job.nSavedViews, 0);
    EXPECT_TRUE(Main.ComboSaveView.Items.empty());
    EXPECT_EQ(Job.SavedView[1].BigNess, 2);
    EXPECT_EQ(Run.IsFanuc, kFalse);
    OpenFile(Write("shape.cvn", HandFile(HandParaboloidExample())));
    OpenFile(Write("older.cvn", HandFile71(HandExample(), "1.3.71")));
    EXPECT_EQ(Job.IsParaboloid, kFalse);
    EXPECT_EQ(Job.ParaboloidShape.Rows, -1);
}

TEST_F(JobFileVersions, UpTo1_3_71NoViewsAreInTheFileAndThatIsSaid) {
    for (const std::string version : {"1.3.71", "1.3.69"}) {
        SCOPED_TRACE(version);
        ExpectOpened(HandFile71(Plain(), version), Plain(), {Lower(version), kNoViews});
    }
    ExpectOpened(HandFile72(HandParaboloidExample(), "1.3.72"), HandParaboloidExample(), {Lower("1.3.72")});
}

TEST_F(JobFileVersions, ARevisionAbove68AloneMeansAHeadAnd18Parameters) {
    ExpectOpened(HandFile71(Plain(), "1.3.69"), Plain(), {Lower("1.3.69"), kNoViews});
    ExpectOpened(HandFile71(Plain(), "1.2.70"), Plain(), {Lower("1.2.70"), kNoViews});
    // In the sequence it may stand so far down that there are no view flags either.
    const std::string noFlags = HandFile71(Plain(), "1.1.80");
    ExpectOpened(noFlags.substr(0, noFlags.size() - 8), Plain(false), {Lower("1.1.80"), kNoViews});
}

TEST_F(JobFileVersions, AMinorNumberAbove3AloneMeansAHead) {
    ExpectOpened(HandFile72(Plain(), "1.4.0"), Plain(), {Lower("1.4.0")});
    const std::string noFlags = HandFile71(Plain(), "0.9.9");
    ExpectOpened(noFlags.substr(0, noFlags.size() - 8), Plain(false), {Lower("0.9.9"), kNoViews});
}

TEST_F(JobFileVersions, AFileWithoutAHeadIsAskedAbout) {
    HandJob expected = With14Parameters(TenPoints(), before_);
    expected.RDist = 1234.5;
    for (const std::string version : {"1.3.68", "1.3.0", "1.2.41"}) {
        SCOPED_TRACE(version);
        Headless.Answers["message"].push_back("Yes");
        // What is said of the version is said of the one that such a file counts as.
        ExpectOpened(HandFile68(TenPoints(), version), expected,
                     {kVersionQuestion, Lower("1.2.40"), kNoViews});
    }
}

TEST_F(JobFileVersions, AFileWithoutPointsIsAskedAbout) {
    HandJob job = HandExample();
    job.MCS = job.OCS = job.TMCS = HandPoints{};
    job.nMCS = job.nOCS = job.nIdent = 0;
    job.UseFlags = {0};
    HandJob expected = With14Parameters(job, before_);
    expected.RDist = 1234.5;
    Headless.Answers["message"].push_back("Yes");
    ExpectOpened(HandFile68(job, "1.3.68"), expected, {kVersionQuestion, Lower("1.2.40"), kNoViews});
}

TEST_F(JobFileVersions, UpTo1_2_40TheViewFlagsAreNotInTheFileAndOn) {
    HandJob expected = With14Parameters(TenPoints(), before_);
    expected.RDist = 1234.5;
    expected.ViewAll = {true, true, true, true};
    for (const std::string version : {"1.2.40", "1.1.99", "1.0.0"}) {
        SCOPED_TRACE(version);
        Headless.Answers["message"].push_back("Yes");
        ExpectOpened(HandFile40(TenPoints(), version), expected,
                     {kVersionQuestion, Lower("1.2.40"), kNoViews});
    }
}

TEST_F(JobFileVersions, WithAnotherLengthBehindThePathsTheFileCountsAs1_2_40) {
    HandJob expected = With14Parameters(TenPoints(), before_);
    expected.RDist = 1234.5;
    expected.ViewAll = {true, true, true, true};
    const std::string file = HandFile40(TenPoints(), "");
    for (const int length : {0, -1, 8, 1000000, -2147483647}) {
        SCOPED_TRACE(length);
        Headless.Answers["message"].push_back("Yes");
        ExpectOpened(file.substr(0, file.size() - 4) + HandBytes().I32(length).Text, expected,
                     {kVersionQuestion, Lower("1.2.40"), kNoViews});
    }
}

TEST_F(JobFileVersions, TheVersionBehindThePathsDecidesWhatFollowsIt) {
    HandJob expected = With14Parameters(TenPoints(), before_);
    expected.RDist = 1234.5;
    // Field 26, and at 2.0.64 all fields behind it.
    const std::string with26 = HandFile68(TenPoints(), "1.3.71");
    Headless.Answers["message"].push_back("Yes");
    ExpectOpened(with26, expected, {kVersionQuestion, Lower("1.2.40"), kNoViews});

    HandJob robot = expected;
    robot.IsQuaternion = true;
    robot.RVecX = robot.RVecY = {{}, 1.0, 2.0, 3.0};
    robot.RVecZ = {0, 1, 2, 3};
    robot.Robot = {{0, 0, 0, 0}, {0, 1, 2, 3}};
    HandBytes rest;
    rest.Flag(false).I16(0);             // no paraboloid, no views
    rest.Flag(false).Flag(true).I32(1);  // quaternions, two rows, column by column
    rest.F64(0).F64(0).F64(0).F64(1).F64(0).F64(2).F64(0).F64(3);
    rest.Taggeds(robot.RVecX).Taggeds(robot.RVecY).F64s(robot.RVecZ);
    Headless.Answers["message"].push_back("Yes");
    ExpectOpened(HandFile68(TenPoints(), "2.0.64") + rest.Text, robot, {kVersionQuestion, Lower("1.2.40")});
    // The parameters are those of the head's version all the same: 14 of them.
}

TEST_F(JobFileVersions, AnUpperBoundOf1To7IsTakenForTheLengthOfAVersion) {
    // Four points: the characters are the lengths of the names 0 and 1, no number in them.
    HandJob expected = With14Parameters(HandExample(), before_);
    expected.RDist = 1234.5;
    ExpectOpened(HandFile68(HandExample(), "1.3.68"), expected, {Lower("0.0.0"), kNoViews});
    expected.ViewAll = {true, true, true, true};
    ExpectOpened(HandFile40(HandExample(), "1.2.40"), expected, {Lower("0.0.0"), kNoViews});
}

TEST_F(JobFileVersions, NamesMayPassForAVersionToo) {
    HandJob job;
    for (const char* name : {"9.9", "b", "c", "d", "e", "f", "g"}) job.MCS.Add(name, 1, 2, 3);
    job.TMCS = job.MCS;
    job.nMCS = 7;
    HandJob expected = With14Parameters(job, before_);
    expected.RDist = 1234.5;
    // Seven characters: two bytes of each length, then "9.9".
    ExpectOpened(HandFile68(job, "1.3.68"), expected, {Lower("0.0.9"), kNoViews});
    // A revision above 68 makes it a file with a head, and nothing behind it is where it should be.
    job.MCS.Name[1] = ".99";
    const std::string path = Write("a.cvn", HandFile68(job, "1.3.68"));
    Headless.Dialogs.clear();
    EXPECT_NE(ErrorOf([&] { OpenFile(path); }), "");
    EXPECT_EQ(Messages(), std::vector<std::string>{Lower("0.0.99")});
    EXPECT_EQ(Run.JobDataValid, kFalse);
}

TEST_F(JobFileVersions, TheTextOfAVersionIsTakenApartFromItsEnd) {
    EXPECT_EQ(ParseJobVersion("2.0.64"), (JobVersion{2, 0, 64}));
    EXPECT_EQ(ParseJobVersion("10.20.3"), (JobVersion{10, 20, 3}));
    EXPECT_EQ(ParseJobVersion("64"), (JobVersion{0, 0, 64}));
    EXPECT_EQ(ParseJobVersion("5.64"), (JobVersion{0, 5, 64}));
    EXPECT_EQ(ParseJobVersion("1.2.3.4"), (JobVersion{1, 3, 4}));  // "1.2" is the number 1.2
    EXPECT_EQ(ParseJobVersion(""), (JobVersion{0, 0, 0}));
    EXPECT_EQ(ParseJobVersion("..."), (JobVersion{0, 0, 0}));
    EXPECT_EQ(ParseJobVersion("a.b.7x"), (JobVersion{0, 0, 7}));
    EXPECT_EQ(ParseJobVersion("1.-2.3"), (JobVersion{1, -2, 3}));
    EXPECT_EQ(ParseJobVersion("9e9.0.1"), (JobVersion{9999999, 0, 1}));
    EXPECT_EQ(ParseJobVersion("1.2.9e999"), (JobVersion{1, 2, 9999999}));
}

TEST_F(JobFileVersions, NoLeavesTheProgramWithoutAJobAndTheFileAsItWas) {
    const std::string file = HandFile68(TenPoints(), "1.3.68");
    Run.JobFilePath = Write("a.cvn", file);
    Headless.Answers["message"].push_back("No");
    OpenFile(Run.JobFilePath);
    EXPECT_EQ(Messages(), std::vector<std::string>{kVersionQuestion});
    EXPECT_EQ(Headless.Dialogs.back().Buttons, (std::vector<std::string>{"Yes", "No"}));
    EXPECT_EQ(Run.JobFilePath, "..\\default.cvn");
    EXPECT_EQ(Main.Window.Caption, "Corvinade Version 2.0.64 | ..\\default.cvn");
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Job.Start.Count(), 0);
    ExpectBytes(Contents(PathOf("a.cvn")), file);
}

TEST_F(JobFileVersions, WindowsAreClosedAndTheRunHasNoDataBeforeAnythingIsAsked) {
    OpenFile(Write("good.cvn", HandFile(HandRobotExample())));
    ShowWindow("FormUnits");
    int asked = 0;
    Headless.OnQuestion = [&asked](const DialogShown& dialog) -> std::optional<std::string> {
        ++asked;
        EXPECT_FALSE(IsLoaded("FormUnits"));
        EXPECT_EQ(Run.JobDataValid, kFalse);
        EXPECT_TRUE(Main.ComboSaveView.Items.empty());
        return dialog.Buttons.front();
    };
    const std::uint64_t generation = Run.JobGeneration;
    OpenFile(Write("a.cvn", HandFile68(TenPoints(), "1.3.68")));
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(Messages().size(), 3U);
    EXPECT_EQ(Job.Start.Count(), 10);
    EXPECT_GT(Run.JobGeneration, generation + 1);
}

TEST_F(JobFileVersions, ACalculationWindowThatAGuestHasOpenedShowsTheNewJob) {
    for (PointSet* points : {&Job.Start, &Job.Target}) points->Resize(3);
    Job.SetPairs(3);
    Headless.OnQuestion = [](const DialogShown&) -> std::optional<std::string> {
        ShowWindow("FormTrafoBerechnung");
        return "Yes";
    };
    OpenFile(Write("a.cvn", HandFile68(TenPoints(), "1.3.68")));
    const WindowEntry* const window = FindWindow("FormTrafoBerechnung");
    ASSERT_TRUE(window->State->Loaded);
    EXPECT_EQ(FindControl(*window, "TextTraX")->Text, "p1");
    EXPECT_EQ(FindControl(*window, "TextTraZ")->Text, "float");
    EXPECT_EQ(FindControl(*window, "OptionLoo")->Value, 1);
}

TEST_F(JobFileVersions, AMissingFileIsToldAndLeavesNoData) {
    OpenFile(Write("good.cvn", HandFile(HandRobotExample())));
    Run.JobDirty = kTrue;
    OpenFile(PathOf("none.cvn"));
    EXPECT_EQ(Messages(), std::vector<std::string>{"File does not exist; maybe check the drive!?"});
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Job.Start.Count(), 0);
    EXPECT_EQ(Run.JobDirty, kTrue);  // opening never touches it
    OpenFile(folder_);               // a folder is no file
    EXPECT_EQ(Messages().size(), 2U);
}

TEST_F(JobFileVersions, AutomaticRecalculationIsOffAfterOpening) {
    Job.AutoRecalc = kTrue;
    OpenFile(Write("a.cvn", HandFile(HandExample())));  // it is on in the file
    EXPECT_EQ(Job.AutoRecalc, kFalse);
}

TEST_F(JobFileVersions, CommandsFollowTheOpenedJob) {
    OpenFile(Write("a.cvn", HandFile(HandExample())));
    EXPECT_TRUE(Main.MenuTransformation.Enabled);
    EXPECT_FALSE(Main.MenueFileExport.Enabled);  // until the calculation has run again
}

TEST_F(JobFileVersions, TheStartOpensTheJobOfTheCommandLine) {
    const std::string path = Write("a.cvn", HandFile(HandExample()));
    StartUp("\"" + path + "\"");
    EXPECT_EQ(Run.JobFilePath, path);
    EXPECT_EQ(Job.Pairs(), 3);
    EXPECT_EQ(Run.JobDataValid, kTrue);
}
