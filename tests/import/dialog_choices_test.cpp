// What the input dialog chooses belongs to the dialog until an import has brought the points of that kind.
#include <array>

#include "core/job.h"
#include "core/job_file.h"
#include "core/notes.h"
#include "core/run.h"
#include "core/settings.h"
#include "import/input_dialog.h"
#include "import/robot_files.h"

using namespace corvinade;

namespace {

class DialogChoices : public InputDialog {
protected:
    DialogChoices() {
        start_ = Write("tips.txt", "1;0;0;0\r\n2;100;0;0\r\n3;0;200;0\r\n");
        program_ = Write("program.dat",
                         "DECL E6POS XP1={X 1,Y 2,Z 3,A 10,B 20,C 30,S 2,T 35}\r\n"
                         "DECL E6POS XP2={X 4,Y 5,Z 6,A 40,B 50,C 60,S 2,T 35}\r\n"
                         "DECL E6POS XP3={X 7,Y 8,Z 9,A 70,B 80,C 90,S 2,T 35}\r\nENDDAT\r\n");
    }
    // A job of a Kuka program, saved and opened again, while the dialog remembers another kind.
    void OpenKukaJob() {
        target_ = program_;
        Open();
        UserSetIndex(InputFiles.ComboOCS_Data, kKuka);
        UserClick(InputFiles.BtnOK);
        ASSERT_EQ(Job.Pairs(), 3) << LastMessage();
        SaveFileAs(PathOf("k.cvn"));
        bytes_ = Contents(PathOf("k.cvn"));
        Settings.LastDropDownInfoInOCS = kDefault;
        OpenFile(PathOf("k.cvn"));
    }
    void ExpectTheJobAsSaved() const {
        EXPECT_EQ(Job.IsKuka, kTrue);
        EXPECT_EQ(Job.IsQuaternion, kFalse);
        EXPECT_EQ(Job.IsParaboloid, kFalse);
        EXPECT_EQ(::Run.IsFanuc, kFalse);
        EXPECT_EQ(Job.RobotABC.Rows, 3);
        EXPECT_EQ(Settings.LastDropDownInfoInOCS, kDefault);
        SaveFileAs(PathOf("again.cvn"));
        EXPECT_EQ(Contents(PathOf("again.cvn")), bytes_);
    }
    std::string program_, bytes_;
};

}  // namespace

TEST_F(DialogChoices, OpeningAndCancellingLeavesARobotJobAsItIs) {
    OpenKukaJob();
    ShowWindow("FormInputFiles");
    ExpectTheJobAsSaved();
    UserClick(InputFiles.BtnCancel);
    ExpectTheJobAsSaved();
}

TEST_F(DialogChoices, EveryEntryOfTheListMayBeLookedAt) {
    OpenKukaJob();
    for (int kind = kDefault; kind <= kShape; ++kind) {
        ShowWindow("FormInputFiles");
        UserSetIndex(InputFiles.ComboOCS_Data, kind);
        ExpectTheJobAsSaved();
        UserEscape(FormInputFiles_Entry);
        ExpectTheJobAsSaved();
    }
}

TEST_F(DialogChoices, NoKeepsTheJobWithItsPoses) {
    OpenKukaJob();
    Open();
    UserSetIndex(InputFiles.ComboOCS_Data, kFanuc);
    Answer("message", "No");
    UserClick(InputFiles.BtnOK);
    ExpectTheJobAsSaved();
}

TEST_F(DialogChoices, AFileThatIsNotThereKeepsTheJobWithItsPosesAndPaths) {
    OpenKukaJob();
    Open();
    UserSetIndex(InputFiles.ComboOCS_Data, kQuaternion);
    UserSetText(InputFiles.TextNameOCS, PathOf("absent.txt"));
    UserClick(InputFiles.BtnOK);
    EXPECT_NE(LastMessage().find("is not existing"), std::string::npos);
    ExpectTheJobAsSaved();
}

TEST_F(DialogChoices, AnImportThatFailsKeepsTheKindOfTheJob) {
    OpenKukaJob();
    start_ = Write("bad.txt", "1;0;0;0\r\n2;here;0;0\r\n");
    Open();
    UserSetIndex(InputFiles.ComboOCS_Data, kXYZABC);
    Answer("message", "Yes");
    UserClick(InputFiles.BtnOK);
    EXPECT_NE(LastMessage().find("here"), std::string::npos) << LastMessage();
    EXPECT_EQ(Job.IsKuka, kTrue);
    EXPECT_EQ(::Run.IsXYZABC, kFalse);
    EXPECT_EQ(Job.RobotABC.Rows, 3) << "the target points are still those of the poses";
    EXPECT_EQ(Settings.LastDropDownInfoInOCS, kDefault);
}

TEST_F(DialogChoices, AShapeStaysWithItsJob) {
    Job.IsParaboloid = kTrue;
    Job.ParaboloidShape = Matrix(4, 2);
    ShowWindow("FormInputFiles");
    UserClick(InputFiles.BtnCancel);
    EXPECT_EQ(Job.IsParaboloid, kTrue);
    EXPECT_EQ(Job.ParaboloidShape.Rows, 4);
}

TEST_F(DialogChoices, AnImportThatSucceedsMakesTheJobOfItsKindAlone) {
    const std::array<const Flag*, 7> flags = {&::Run.IsDefault, &Job.IsKuka,     &::Run.IsABBModx,
                                              &::Run.IsFanuc,   &::Run.IsXYZABC, &Job.IsQuaternion,
                                              &Job.IsParaboloid};
    const std::string pose = "1;1;2;3;10;20;30\r\n", turned = "1;1;2;3;0.6;0.8;0;0\r\n";
    const std::array<std::string, 6> programs = {
        "1;1;2;3\r\n",
        "DECL E6POS XP1={X 1,Y 2,Z 3,A 10,B 20,C 30,S 2,T 35}\r\nENDDAT\r\n",
        "CONST robtarget p:=[[1,2,3],[0.6,0.8,0,0],[0,0,0,0],[9E9]];\r\n",
        "/POS\r\nP[1]{\r\n GP1:\r\n\tUF : 0,\r\n\tX =     1.000  mm,\tY =     2.000  mm,\tZ =     3.000  mm,\r\n"
        "\tW =    30.000 deg,\tP =    20.000 deg,\tR =    10.000 deg\r\n};\r\n/END\r\n",
        pose,
        turned};
    for (std::size_t chosen = 0; chosen < programs.size(); ++chosen) {
        target_ = Write("target.txt", programs[chosen]);
        Open();
        UserSetIndex(InputFiles.ComboOCS_Data, static_cast<int>(chosen));
        if (IsTrue(::Run.JobDataValid)) Answer("message", "Yes");
        UserClick(InputFiles.BtnOK);
        EXPECT_EQ(::Run.JobDataValid, kTrue) << chosen << ": " << LastMessage();
        for (std::size_t i = 0; i < flags.size(); ++i)
            EXPECT_EQ(*flags[i], ToFlag(i == chosen)) << chosen << " " << i;
        EXPECT_EQ(Settings.LastDropDownInfoInOCS, static_cast<std::int16_t>(chosen));
    }
}

// --- What an opened job has of its poses ------------------------------------------------------------------

TEST_F(DialogChoices, AnOpenedJobHasTheSpansOfItsOwnPoses) {
    OpenKukaJob();
    constexpr double kDegree = 3.14159265358979 / 180;
    Run.SpanA = Run.SpanB = Run.SpanC = 99;
    OpenFile(PathOf("k.cvn"));
    for (const double span : {::Run.SpanA, ::Run.SpanB, ::Run.SpanC}) EXPECT_NEAR(span, 60 * kDegree, 1e-12);
    Job = JobRecord{};
    Job.RobotABC = Matrix(2, 3);
    Job.Target.Resize(2);
    Job.Target.Name[1] = "1";
    Job.RobotABC(1, 1) = 0.5;
    Settings.LastDropDownInfoInOCS = kDefault;
    target_ = Write("points.txt", "1;1;2;3\r\n2;4;5;6\r\n3;7;8;9\r\n");
    ::Run.JobDataValid = kFalse;
    Import();
    SaveFileAs(PathOf("points.cvn"));
    OpenFile(PathOf("points.cvn"));
    EXPECT_EQ(::Run.SpanA, 0);
    EXPECT_EQ(::Run.SpanC, 0);
}

TEST_F(DialogChoices, SavingSaysWhichOrientationsAJobFileDoesNotKeep) {
    target_ = Write("poses.txt", "1;1;2;3;10;20;30\r\n2;4;5;6;40;50;60\r\n3;7;8;9;70;80;90\r\n");
    Open();
    UserSetIndex(InputFiles.ComboOCS_Data, kXYZABC);
    UserClick(InputFiles.BtnOK);
    ASSERT_EQ(Job.Pairs(), 3) << LastMessage();
    EXPECT_TRUE(Notes.List.empty());
    SaveFileAs(PathOf("angles.cvn"));
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::NoOrientation);
    EXPECT_EQ(Notes.List[0].File, PathOf("angles.cvn"));
}

TEST_F(DialogChoices, AnOpenedJobWithMorePointsThanNamesSaysSo) {
    OpenKukaJob();
    for (const auto& [more, noted] : {std::pair{3, false}, {4, true}}) {
        Job.Target.SpareCoordinates(more);
        SaveFileAs(PathOf("longer.cvn"));
        OpenFile(PathOf("longer.cvn"));
        ASSERT_EQ(!Notes.List.empty(), noted) << "three are those of the search by distances";
        if (!noted) continue;
        EXPECT_EQ(Notes.List[0].Code, NoteCode::NamesShort);
        EXPECT_EQ(Notes.List[0].Count, 4);
    }
}
