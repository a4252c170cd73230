// Text files of poses: name, x, y, z, and an orientation as angles or as a quaternion.
#include <cmath>
#include <numbers>

#include "cli/headless.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/units.h"
#include "import/point_file.h"
#include "import/robot_files.h"
#include "support/degrees.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class PoseTexts : public Program {
protected:
    void Read(PoseReader reader, const std::string& content) const {
        ::Run.ImportFailed = kFalse;
        reader({Write("poses.txt", CrLf(content))});
        EXPECT_TRUE(JobIsWhole(Job));
    }
    std::string Error(PoseReader reader, const std::string& content) const {
        std::string what;
        try {
            Read(reader, content);
        } catch (const PlatformError& error) {
            what = error.What;
        }
        EXPECT_TRUE(JobIsWhole(Job));
        return what;
    }
    std::string In(int line) const {
        return "Cannot read \"" + PathOf("poses.txt") + "\", line " + std::to_string(line) + ": ";
    }
    static void ExpectAngle(int i, int k, double degrees) {
        EXPECT_NEAR(Job.RobotABC(i, k), degrees * kDegree, 1e-9) << "pose " << i << ", angle " << k;
    }
};

}  // namespace

TEST_F(PoseTexts, AnglesKeepTheirNamesAndTheirOrder) {
    Read(EinlesenXYZABC, "P1;1.5;2;3;10.5;-20;30\n\nTip 2;-4;5;6;11;21;31;further\nP3;7;8;9;12;22;32\n");
    EXPECT_EQ(::Run.ImportFailed, kTrue) << "the column behind the angles is in one line alone";
    Read(EinlesenXYZABC, "P1;1.5;2;3;10.5;-20;30\n\nTip-2;-4;5;6;11;21;31\nP3;7;8;9;12;22;32\n");
    EXPECT_EQ(Job.Target.Name, (std::vector<std::string>{"", "P1", "Tip-2", "P3"}));
    EXPECT_EQ(Job.Target.Count(), 3);
    EXPECT_EQ(Job.Target.X[1], 1.5);
    EXPECT_EQ(Job.Target.Y[2], 5);
    EXPECT_EQ(Job.Target.Z[3], 9);
    ExpectAngle(1, 1, 10.5);
    ExpectAngle(1, 2, -20);
    ExpectAngle(3, 3, 32);
    EXPECT_NEAR(Run.SpanA, 1.5 * kDegree, 1e-12);
    EXPECT_NEAR(Run.SpanB, 42 * kDegree, 1e-12);
    EXPECT_NEAR(Run.SpanC, 2 * kDegree, 1e-12);
}

TEST_F(PoseTexts, QuaternionsBecomeAnglesWhateverTheUnit) {
    Job.LengthUnitName = "meter";
    Job.AngleUnitName = "grad (gon)";
    RhoFestlegung();
    Read(EinlesenABB,
         "A;1;2;3;0.923879532511287;0;0;0.38268343236509\nB;4;5;6;0.965925826289068;0;0.258819045102521;0\n");
    EXPECT_EQ(Job.Target.Name, (std::vector<std::string>{"", "A", "B"}));
    EXPECT_NEAR(*Job.Target.X[1], 1000, 1e-9);
    ExpectAngle(1, 1, 45);
    ExpectAngle(1, 2, 0);
    ExpectAngle(2, 2, 30);
    EXPECT_NEAR(Run.SpanB, 30 * kDegree, 1e-9);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(PoseTexts, TheCheckLooksAtThreeFieldsBehindTheNameFromThenOn) {
    EXPECT_EQ(Run.RobotFileHasId, kFalse);
    Read(EinlesenXYZABC, "P.1;1;2;3;1;2;3\n");
    EXPECT_EQ(Run.RobotFileHasId, kTrue);
    EXPECT_EQ(Run.Delimiter, ";");
    // A plain point file of the same program run is now checked behind its first field, its Z as well: the
    // dot in a name no longer counts, the comma in z does.
    Job.PathMCS = Write("start.txt", "P.1;1;2;3,5\r\n");
    Job.PathOCS = Job.PathMCS;
    Headless.Answers["message"].emplace_back("No");
    Einlesen_Neu();
    EXPECT_NE(LastMessage().find("Should I change the , in your File to ."), std::string::npos);
    EXPECT_EQ(Run.RobotFileHasId, kTrue);
}

TEST_F(PoseTexts, NumbersAreReadByThePlainConversionWhateverTheSystem) {
    for (const char system : {'.', ','}) {
        Headless.Decimal = system;
        Read(EinlesenXYZABC, "P1;1;2;3;10.5;-2.5E1deg;x\n");
        ExpectAngle(1, 1, 10.5);
        ExpectAngle(1, 2, -25);
        ExpectAngle(1, 3, 0);
    }
    EXPECT_TRUE(Messages().empty()) << "x, y and z alone are looked at";
}

TEST_F(PoseTexts, AFileInTheSystemsFormWithCommaIsNotCutAtTheComma) {
    Headless.Decimal = ',';
    Read(EinlesenXYZABC, "P1;1,5;2,25;3;10,5;0;0\n");
    EXPECT_EQ(Job.Target.X[1], 1.5);
    ExpectAngle(1, 1, 10.5);
    // The other form brings up the question of every point file, and Yes turns it into this one.
    Headless.Answers["message"].emplace_back("Yes");
    Read(EinlesenXYZABC, "P1;1.5;2.25;3;10.5;0;0\n");
    EXPECT_EQ(Contents(PathOf("poses.txt")), "P1;1,5;2,25;3;10,5;0;0");
    EXPECT_EQ(Job.Target.Y[1], 2.25);
    ExpectAngle(1, 1, 10.5);
}

TEST_F(PoseTexts, AFileThatFailsItsCheckLeavesTheJobAsItWas) {
    Read(EinlesenXYZABC, "P1;1;2;3;4;5;6\n");
    for (const PoseReader reader : {EinlesenXYZABC, EinlesenABB}) {
        Headless.Answers["message"].emplace_back("No");
        Read(reader, "Q1;1,5;2;3;4;5;6;7\n");
        EXPECT_EQ(::Run.ImportFailed, kTrue);
        EXPECT_EQ(Job.Target.Name[1], "P1");
        EXPECT_EQ(Job.RobotABC.Rows, 1);
        Headless.Answers.clear();
    }
}

TEST_F(PoseTexts, ALineWithTooFewNumbersIsNamedWithItsText) {
    EXPECT_EQ(Error(EinlesenXYZABC, "P1;1;2;3;4;5;6\n\nP2;1;2;3;4;5;\n"),
              In(3) + "a name and 6 numbers are expected in \"P2;1;2;3;4;5;\"");
    EXPECT_EQ(Job.Target.Name, (std::vector<std::string>{"", "P1", ""}));
    EXPECT_EQ(Error(EinlesenABB, "P1;1;2;3;4;5;6\n"),
              In(1) + "a name and 7 numbers are expected in \"P1;1;2;3;4;5;6\"");
    Headless.Dialogs.clear();
    EXPECT_EQ(Error(EinlesenABB, "1;2;3\n"), In(1) + "a name and 7 numbers are expected in \"1;2;3\"");
    EXPECT_NE(LastMessage().find("File has only 3 columns"), std::string::npos);
    EXPECT_EQ(Run.RobotFileHasId, kFalse);
    EXPECT_EQ(Error(EinlesenXYZABC, ""),
              "Cannot read \"" + PathOf("poses.txt") + "\": there is no pose in it");
}

TEST_F(PoseTexts, NumbersBeyondTheRangeAreAnError) {
    EXPECT_EQ(Error(EinlesenXYZABC, "P1;1;2;3;4;5;1e999\n"),
              In(1) + "these numbers are no pose: \"P1;1;2;3;4;5;1e999\"");
    EXPECT_EQ(Error(EinlesenABB, "P1;1;2;3;1e200;1e200;0;1e200\n"),
              In(1) + "these numbers are no pose: \"P1;1;2;3;1e200;1e200;0;1e200\"");
}

TEST_F(PoseTexts, AQuaternionThatTurnsNothingIsAnError) {
    EXPECT_EQ(Error(EinlesenABB, "P1;1;2;3;0;0;0;0\n"),
              In(1) + "these numbers are no pose: \"P1;1;2;3;0;0;0;0\"");
}

TEST_F(PoseTexts, EmptyRowsAreNotedUnlessTheyEndTheFile) {
    Read(EinlesenXYZABC, "P1;1;2;3;4;5;6\n\n\nP2;1;2;3;4;5;6\n\n");
    EXPECT_EQ(Job.Target.Count(), 2);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::EmptyRow);
    EXPECT_EQ(Notes.List[0].Line, 2);
    EXPECT_EQ(Notes.List[0].Count, 2);
}

TEST_F(PoseTexts, NotesNameThePointAndTheField) {
    Read(EinlesenXYZABC, "P1;abc;2mm;3;4;5;1e-400\n");
    std::vector<std::string> texts;
    for (const Note& note : Notes.List) texts.push_back(note.Text);
    EXPECT_EQ(texts, (std::vector<std::string>{
                         "The field \"abc\" in x of point \"P1\" is not a number and counts as 0",
                         "The field \"2mm\" in y of point \"P1\" is read as 2, as far as it is a number",
                         "The number \"1e-400\" is smaller than any that can be kept and counts as 0"}));
}

TEST_F(PoseTexts, BlanksAndTabsDivideAsInPointFiles) {
    Read(EinlesenXYZABC, "P1\t1\t2\t3\t4\t5\t6\r\nP2\t1\t2\t3\t4\t5\t6\n");
    EXPECT_EQ(Job.Target.Count(), 2);
    Run.Delimiter = " ";
    Read(EinlesenXYZABC, "P1 1 2 3 4 5 6\nP2 1 2 3 4 5 7\n");
    EXPECT_EQ(Job.Target.Count(), 2);
    ExpectAngle(2, 3, 7);
}
