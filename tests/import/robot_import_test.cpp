// The import of robot programs through the dialog: reading, pairing, and what becomes of paths and files.
#include <cmath>
#include <numbers>

#include "analysis/form_input_statistic.h"
#include "core/job.h"
#include "core/settings.h"
#include "import/input_dialog.h"
#include "support/degrees.h"

using namespace corvinade;

namespace {

// Eleven poses with their start points under the same numbers, in another order. Pose i stands at
// (100 i, 10 i², i³) and has the angles i, 2 i, 3 i degrees.
class RobotImport : public InputDialog {
protected:
    static constexpr int kPoses = 11;

    RobotImport() {
        std::string start;
        for (int i = kPoses; i >= 1; --i) start += Numbered(i) + "\r\n";
        start_ = Write("start.txt", start);
    }
    static std::string Numbered(int i) {
        return std::to_string(i) + ";" + std::to_string(100 * i) + ";" + std::to_string(10 * i * i) + ";" +
               std::to_string(i * i * i);
    }
    static std::array<double, 4> Quaternion(int i) {
        const auto half = [](int degrees) { return degrees * kDegree / 2; };
        const double cz = std::cos(half(i)), sz = std::sin(half(i));
        const double cy = std::cos(half(2 * i)), sy = std::sin(half(2 * i));
        const double cx = std::cos(half(3 * i)), sx = std::sin(half(3 * i));
        return {cz * cy * cx + sz * sy * sx, cz * cy * sx - sz * sy * cx, cz * sy * cx + sz * cy * sx,
                sz * cy * cx - cz * sy * sx};
    }
    // The poses as a program of a kind; text files have them from the last to the first.
    static std::string Program(DialogKind kind) {
        std::string text = kind == kFanuc ? "/PROG  T\r\n/POS\r\n" : kind == kAbb ? "MODULE T\r\n" : "";
        const bool isText = kind == kXYZABC || kind == kQuaternion;
        for (int k = 1; k <= kPoses; ++k) {
            const int i = isText ? kPoses + 1 - k : k;
            const auto [w, x, y, z] = Quaternion(i);
            std::array<char, 400> line{};
            const auto print = [&line](const char* format, auto... values) {
                std::snprintf(line.data(), line.size(), format, values...);
            };
            if (kind == kKuka)
                print("DECL E6POS XP%d={X %d,Y %d,Z %d,A %d,B %d,C %d,S 2,T 35}", i, 100 * i, 10 * i * i,
                      i * i * i, i, 2 * i, 3 * i);
            if (kind == kAbb)
                print("  CONST robtarget p%d:=[[%d,%d,%d],[%.12f,%.12f,%.12f,%.12f],[0,0,0,0],[9E9,9E9]];", i,
                      100 * i, 10 * i * i, i * i * i, w, x, y, z);
            if (kind == kFanuc)
                print(
                    "P[%d]{\r\n   GP1:\r\n\tUF : 0, UT : 1,\r\n"
                    "\tX =%10.3f  mm,\tY =%10.3f  mm,\tZ =%10.3f  mm,\r\n"
                    "\tW =%10.3f deg,\tP =%10.3f deg,\tR =%10.3f deg\r\n};",
                    i, 100.0 * i, 10.0 * i * i, 1.0 * i * i * i, 3.0 * i, 2.0 * i, 1.0 * i);
            if (kind == kXYZABC) print("%s;%d;%d;%d", Numbered(i).c_str(), i, 2 * i, 3 * i);
            if (kind == kQuaternion) print("%s;%.12f;%.12f;%.12f;%.12f", Numbered(i).c_str(), w, x, y, z);
            text += line.data();
            text += "\r\n";
        }
        return text + (kind == kFanuc ? "/END\r\n"
                       : kind == kAbb ? "ENDMODULE\r\n"
                       : isText       ? ""
                                      : "ENDDAT\r\n");
    }
    void OpenKind(DialogKind kind, const std::string& program) {
        target_ = Write("program.txt", program);
        Open();
        UserSetIndex(InputFiles.ComboOCS_Data, kind);
    }
    void ImportKind(DialogKind kind) {
        OpenKind(kind, Program(kind));
        if (IsTrue(Run.JobDataValid)) Answer("message", "Yes");
        UserClick(InputFiles.BtnOK);
    }
    // Whichever way the poses have gone, position and angles are those of one pose.
    static void ExpectWholePoses() {
        EXPECT_TRUE(JobIsWhole(Job));
        ASSERT_EQ(Job.Target.Count(), kPoses);
        ASSERT_EQ(Job.RobotABC.Rows, kPoses);
        for (int row = 1; row <= kPoses; ++row) {
            const Vec3 p = TargetPoint(row);
            const double i = p(1) / 100;
            EXPECT_EQ(p(2), 10 * i * i);
            EXPECT_EQ(p(3), i * i * i);
            for (int k = 1; k <= 3; ++k) EXPECT_NEAR(Job.RobotABC(row, k), k * i * kDegree, 1e-9);
        }
    }
};

}  // namespace

TEST_F(RobotImport, EveryKindGivesTheSamePosesEachWithItsPoint) {
    for (const DialogKind kind : {kKuka, kFanuc, kXYZABC, kQuaternion}) {
        ImportKind(kind);
        EXPECT_TRUE(IsTrue(Run.JobDataValid)) << kind << ": " << LastMessage();
        EXPECT_EQ(Job.Pairs(), kPoses);
        ExpectWholePoses();
        for (int i = 1; i <= kPoses; ++i) {
            const auto k = static_cast<std::size_t>(i);
            EXPECT_EQ(Job.Target.Name[k], std::to_string(i));
            EXPECT_EQ(Job.Start.X[k], Job.Target.X[k]);
        }
        EXPECT_NEAR(Run.SpanA, 10 * kDegree, 1e-9);
        EXPECT_NEAR(Run.SpanC, 30 * kDegree, 1e-9);
        EXPECT_EQ(Job.PathMCS, start_);
        EXPECT_EQ(Job.PathOCS, target_);
        EXPECT_EQ(Settings.OCS_FileName, target_);
        EXPECT_EQ(Settings.LastDropDownInfoInOCS, kind);
    }
}

TEST_F(RobotImport, StartPointsOfAModuleAreNumberedInTheirOrder) {
    ImportKind(kAbb);
    EXPECT_EQ(Job.Pairs(), kPoses);
    ExpectWholePoses();
    for (int i = 1; i <= kPoses; ++i) {
        const auto k = static_cast<std::size_t>(i);
        EXPECT_EQ(Job.Start.Name[k], std::to_string(i));
        EXPECT_EQ(Job.Start.X[k], 100.0 * (kPoses + 1 - i)) << "the file has them from the last to the first";
    }
}

TEST_F(RobotImport, PosesWithoutAStartPointFollowBehindThePairs) {
    start_ = Write("start.txt", "7;0;0;0\r\nA;1;1;1\r\n10;2;2;2\r\n2;3;3;3\r\n");
    for (const DialogKind kind : {kKuka, kFanuc, kXYZABC, kQuaternion}) {
        ImportKind(kind);
        EXPECT_EQ(Job.Pairs(), 3);
        ExpectWholePoses();
        EXPECT_EQ(Job.Target.X[1], 200);
        EXPECT_EQ(Job.Target.X[2], 700);
        EXPECT_EQ(Job.Target.X[3], 1000);
    }
}

TEST_F(RobotImport, ByDistanceThePosesAreThoseOfTheProgram) {
    // The same cloud elsewhere; the names do not help.
    std::string start;
    for (int i = kPoses; i >= 1; --i)
        start += "N" + std::to_string(i) + ";" + std::to_string(-10 * i * i) + ";" +
                 std::to_string(100 * i + 7) + ";" + std::to_string(i * i * i - 90) + "\r\n";
    start_ = Write("start.txt", start);
    for (const DialogKind kind : {kKuka, kAbb, kFanuc, kXYZABC, kQuaternion}) {
        ::Run.RobotFileHasId = kFalse;
        OpenKind(kind, Program(kind));
        UserSetValue(InputFiles.OptionByDis, 1);
        if (IsTrue(Run.JobDataValid)) Answer("message", "Yes");
        Answer("input", "0.01");
        UserClick(InputFiles.BtnOK);
        EXPECT_EQ(Job.Pairs(), kPoses) << kind << ": " << LastMessage();
        ExpectWholePoses();
        for (int i = 1; i <= kPoses; ++i) {
            const auto k = static_cast<std::size_t>(i);
            EXPECT_EQ(Job.Start.Y[k].value() - 7, Job.Target.X[k]);
            const std::string number = std::to_string(std::lround(Job.Target.X[k].value() / 100));
            EXPECT_NE(Job.Target.Name[k].find("N" + number + "=OCS_" + number), std::string::npos)
                << Job.Target.Name[k];
        }
        EXPECT_EQ(Job.PathOCS, target_);
    }
}

TEST_F(RobotImport, RenamingNeverWritesToAProgram) {
    for (const DialogKind kind : {kKuka, kAbb, kFanuc, kXYZABC, kQuaternion}) {
        OpenKind(kind, Program(kind));
        UserSetValue(InputFiles.OptionByCoordinate, 1);
        UserSetValue(InputFiles.CheckRenameOCS, 1);
        if (IsTrue(Run.JobDataValid)) Answer("message", "Yes");
        Answer("input", "0.01");
        UserClick(InputFiles.BtnOK);
        EXPECT_EQ(Job.Pairs(), kPoses);
        ExpectWholePoses();
        EXPECT_EQ(Contents(target_), Program(kind));
        EXPECT_EQ(Contents(target_ + ".$"), "");
    }
}

TEST_F(RobotImport, AnErrorInTheProgramEndsTheImportWithTheTargetPathPutBack) {
    const std::array<DialogKind, 5> kinds = {kKuka, kAbb, kFanuc, kXYZABC, kQuaternion};
    for (const DialogKind kind : kinds) {
        std::string program = Program(kind);
        program.replace(program.find("640"), 3, kind == kXYZABC || kind == kQuaternion ? ";;;;;;" : "6+0");
        OpenKind(kind, program);
        UserClick(InputFiles.BtnOK);
        EXPECT_FALSE(IsTrue(Run.JobDataValid)) << kind;
        EXPECT_FALSE(LastMessage().empty());
        EXPECT_EQ(Job.PathOCS, target_);
        EXPECT_TRUE(JobIsWhole(Job));
        EXPECT_EQ(Job.Pairs(), 0);
        EXPECT_EQ(Run.WaitPointers, 0);
    }
}

TEST_F(RobotImport, AMissingProgramIsNamedBeforeAnythingIsRead) {
    OpenKind(kKuka, Program(kKuka));
    UserSetText(InputFiles.TextNameOCS, PathOf("none.dat"));
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(LastMessage(), CrLf("\n\n" + PathOf("none.dat") + "\n\n is not existing"));
    EXPECT_EQ(Job.Start.Count(), 0);
}

TEST_F(RobotImport, PointsWithoutOrientationTakeThoseOfTheOldPointsAway) {
    ImportKind(kKuka);
    target_ = Write("points.txt", kTarget);
    Open();
    UserSetIndex(InputFiles.ComboOCS_Data, kDefault);
    Answer("message", "Yes");
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(Job.Target.Count(), 5);
    EXPECT_EQ(Job.RobotABC.Rows, -1);
}

TEST_F(RobotImport, TheStatisticShowsTheSpansOfTwoKindsAlone) {
    ShowWindow("FormInputStatistic");
    for (const DialogKind kind : {kKuka, kAbb, kFanuc, kXYZABC, kQuaternion}) {
        ImportKind(kind);
        EXPECT_NEAR(Run.SpanB, 20 * kDegree, 1e-9) << "computed for every kind";
        const bool shown = kind == kKuka || kind == kQuaternion;
        EXPECT_EQ(InputStatistic.TextRangeA.Text, shown ? "10.0000" : "not in use");
        EXPECT_EQ(InputStatistic.TextRangeC.Text, shown ? "30.0000" : "not in use");
    }
}

TEST_F(RobotImport, TheRestOfTheJobIsNotTouched) {
    Job.ViewAllMCS = Job.ViewAllonlyOCS = kTrue;
    Job.ViewAllOCS = 5;
    Job.ViewAllonlyMCS = kFalse;
    Job.TraX = 17;
    Job.ParamText.fill("12.5");
    Job.SeedName.fill("x");
    Job.NormType = 3;
    Job.nSavedViews = 4;
    Job.UseFlags = {0, 1, 0, 1};
    for (const DialogKind kind : {kKuka, kAbb, kFanuc, kXYZABC, kQuaternion}) {
        ::Run.JobDataValid = kFalse;  // an import over valid points begins with a fresh job
        ImportKind(kind);
        EXPECT_EQ(Job.ViewAllMCS, kTrue);
        EXPECT_EQ(Job.ViewAllonlyOCS, kTrue);
        EXPECT_EQ(Job.ViewAllOCS, 5);
        EXPECT_EQ(Job.ViewAllonlyMCS, kFalse);
        EXPECT_EQ(Job.TraX, 17);
        EXPECT_EQ(Job.ParamText[3], "12.5");
        EXPECT_EQ(Job.SeedName[1], "x");
        EXPECT_EQ(Job.NormType, 3);
        EXPECT_EQ(Job.nSavedViews, 4);
        EXPECT_EQ(Job.UseFlags[1], 1);
        EXPECT_EQ(Job.UseFlags[3], 1);
    }
}
