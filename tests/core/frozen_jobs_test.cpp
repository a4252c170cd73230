// Job files of every layout that has been in use, as they lie in tests/data/jobs. They were written field by
// field by the description of the format (write_jobs.py beside them) and are never written again. What is
// expected of them stands here in plain numbers; what they are saved as lies in tests/data/jobs/saved.
#include <filesystem>
#include <map>
#include <set>

#include "cli/headless.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/notes.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

const std::string kJobs = CORVINADE_SOURCE_DIR "/tests/data/jobs/";
using Texts = std::vector<std::string>;

std::string Told(const Vec3& p) {
    return std::to_string(p(1)) + " " + std::to_string(p(2)) + " " + std::to_string(p(3));
}

}  // namespace

class FrozenJobs : public Program {
protected:
    // Opens a copy of the file. A file without a version at its head is asked about.
    void Open(const std::string& name, bool asked = false) {
        if (asked) Headless.Answers["message"].push_back("Yes");
        OpenFile(Write("job.cvn", Contents(kJobs + name + ".cvn")));
        ASSERT_EQ(Run.JobDataValid, kTrue);
        ExpectPointsAndPairs();
        ExpectResult();
        ExpectWhatAllVersionsHave();
    }

    // All files hold the same points: eight pairs, one start and two target points without a partner.
    static void ExpectPointsAndPairs() {
        EXPECT_EQ(Job.Start.Name,
                  (Texts{"", "M1", "M2", "M3", "M4", "M5", "Säule", "M7", "M8", "only tracker"}));
        EXPECT_EQ(Job.Target.Name,
                  (Texts{"", "M1", "M2", "M3", "M4", "M5", "Säule", "M7", "M8", "only CAD", "only CAD 2"}));
        EXPECT_EQ(Job.Transformed.Name, Job.Start.Name);
        EXPECT_EQ(Job.Pairs(), 8);
        EXPECT_EQ(Job.Start.Count(), 9);
        EXPECT_EQ(Job.Target.Count(), 10);
        EXPECT_EQ(Job.StartOnly(), 1);
        EXPECT_EQ(Job.TargetOnly(), 2);
        EXPECT_EQ(Told(StartPoint(1)), Told({1200, 340, 50}));
        EXPECT_EQ(Told(StartPoint(2)), Told({-800, 2250.5, 51.25}));
        EXPECT_EQ(Told(StartPoint(3)), Told({40000, -7, 0.125}));
        EXPECT_EQ(Told(StartPoint(4)), Told({12.5, 0.5, -3.75}));
        EXPECT_EQ(StartPoint(5)(1), 1e-9);
        EXPECT_EQ(StartPoint(5)(2), -1e9);
        EXPECT_EQ(Told(StartPoint(9)), Told({9, 18, 27}));
        EXPECT_EQ(Told(TargetPoint(1)), Told({2201, -660, 1550}));
        EXPECT_EQ(Told(TargetPoint(8)), Told({992.5, -1016.5, 1467.5}));
        EXPECT_EQ(Told(TargetPoint(10)), Told({15, 16, 17}));
        EXPECT_EQ(Job.Transformed.X[9], 1010);
        EXPECT_EQ(Job.Transformed.Y[2], 1250.5);
        EXPECT_EQ(Job.Transformed.Z[8], 1467.5);
        const std::vector<std::int16_t> use = {0, 1, 1, 1, 1, 0, 1, 0, 0, 0, 1, 1, 1,
                                               1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
        EXPECT_EQ(Job.UseFlags, use);
    }

    static void ExpectResult() {
        EXPECT_EQ(Told({Job.TraX, Job.TraY, Job.TraZ}), Told({1001, -1000, 1500}));
        EXPECT_EQ(Told({Job.RotX, Job.RotY, Job.RotZ}), Told({0.125, -0.25, 1.5}));
        EXPECT_EQ(Told({Job.RotXCopy, Job.RotYCopy, Job.RotZCopy}), Told({0.125, -0.25, 1.5}));
        EXPECT_EQ(Told({Job.ScaleX, Job.ScaleY, Job.ScaleZ}), Told({1.001, 1.002, 1.003}));
        EXPECT_EQ(Job.ScaleXYZ, 1.0005);
        EXPECT_EQ(Told({Job.AngleXY, Job.Azimuth, Job.AngleZtoXY}), Told({0.011, 0.022, 0.033}));
    }

    static void ExpectWhatAllVersionsHave() {
        EXPECT_EQ(Texts(Job.ParamText.begin() + 1, Job.ParamText.begin() + 14),
                  (Texts{"float", "float", "1500", "float", "-0,25", "float", "not used", "not used",
                         "not used", "1.0005", "not used", "not used", "not used"}));
        EXPECT_EQ(Job.DirectionMCStoOCS, kFalse);
        EXPECT_EQ(Job.AutoRecalc, kFalse);  // whatever the file says
        EXPECT_EQ(Job.LengthUnitName, "inch");
        EXPECT_EQ(Job.AngleUnitName, "grad (gon)");
        EXPECT_EQ(Job.LengthDigits, 4);
        EXPECT_EQ(Job.AngleDigits, 6);
        EXPECT_EQ(Job.NormType, 1);
        EXPECT_EQ(Job.SeedName, (std::array<std::string, 4>{"", "M1", "M4", "Säule"}));
        EXPECT_EQ(Job.SeedIndex, (std::array<std::int16_t, 4>{0, 1, 4, 6}));
        EXPECT_EQ(Job.NameMCS, "Tracker");
        EXPECT_EQ(Job.NameOCS, "Cell");
        EXPECT_EQ(Job.PathMCS, "C:\\Halle\\Tracker.txt");
        EXPECT_EQ(Job.PathOCS, "C:\\Halle\\Cell.txt");
    }

    // Entries 14 to 17: distance and tool vector.
    static void ExpectLastParameters(const Texts& texts) {
        EXPECT_EQ(Texts(Job.ParamText.begin() + 14, Job.ParamText.end()), texts);
    }
    static void ExpectAllLastParameters() { ExpectLastParameters({"12.5", "not used", "float", "not used"}); }

    static void ExpectViewFlags(Flag mcs, Flag ocs, Flag onlyMcs, Flag onlyOcs) {
        EXPECT_EQ(Job.ViewAllMCS, mcs);
        EXPECT_EQ(Job.ViewAllOCS, ocs);
        EXPECT_EQ(Job.ViewAllonlyMCS, onlyMcs);
        EXPECT_EQ(Job.ViewAllonlyOCS, onlyOcs);
    }

    static void ExpectShape() {
        EXPECT_EQ(Job.IsParaboloid, kTrue);
        ASSERT_EQ(Job.ParaboloidShape.Rows, 3);
        EXPECT_EQ(Job.ParaboloidShape(2, 0), 0);
        EXPECT_EQ(Job.ParaboloidShape(2, 1), 125.5);
        EXPECT_EQ(Job.ParaboloidShape(2, 2), 3.25);
        EXPECT_EQ(Job.ParaboloidShape(3, 1), 250);
        EXPECT_EQ(Job.ParaboloidShape(3, 2), 13);
    }
    static void ExpectNoShape() {
        EXPECT_EQ(Job.IsParaboloid, kFalse);
        EXPECT_EQ(Job.ParaboloidShape.Rows, -1);
    }

    static void ExpectNoViews() {
        EXPECT_EQ(Job.nSavedViews, 0);
        EXPECT_TRUE(Main.ComboSaveView.Items.empty());
    }
    static void ExpectNoRobots() {
        EXPECT_EQ(Job.IsKuka, kFalse);
        EXPECT_EQ(Job.IsQuaternion, kFalse);
        EXPECT_EQ(Job.RobotABC.Rows, -1);
    }

    static void ExpectViews();
    static void ExpectPoses();

    // Saved again the file has the bytes that lie in tests/data/jobs/saved.
    void ExpectSavedAs(const std::string& name) const {
        SaveFileAs(PathOf("again.cvn"));
        const std::string actual = Contents(PathOf("again.cvn"));
        const std::string expected = Contents(kJobs + "saved/" + name + ".cvn");
        const auto at = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end()).first;
        EXPECT_TRUE(actual == expected) << name << ": differs from byte " << at - actual.begin() << " on";
    }
};

void FrozenJobs::ExpectViews() {
    EXPECT_EQ(Job.nSavedViews, 2);
    EXPECT_EQ(Main.ComboSaveView.Items, (Texts{"Front", "Übersicht"}));
    const ScreenRecord& view = Job.SavedView[1];
    EXPECT_EQ(view.VectorMode, kTrue);
    EXPECT_EQ(view.BigNess, 5);
    EXPECT_EQ(view.FlagMode, kFalse);
    EXPECT_EQ(Told({view.BildFaktor, view.BildOffsetX, view.BildOffsetY}), Told({0.25, 320.5, -240.5}));
    EXPECT_EQ(view.Vec_Maßstab, 150);
    EXPECT_EQ(view.GridLength, 40);
    EXPECT_EQ(view.RotAngles, (std::vector<double>{0.5, 0, -0.25, 0, 0.125, 0}));
    EXPECT_EQ(view.FlagCount, 1);
    EXPECT_EQ(view.FlagIndex, (std::vector<std::int16_t>{0, 1, 0, 0, 0, 0, 0, 0, 0}));
    ASSERT_EQ(view.Flags.size(), 1U);
    const FlagRecord& flag = view.Flags[0];
    const std::vector<Flag> third = {flag.ShowPointNumber, flag.ShowDevXYZ,      flag.showZ,    flag.showPhi,
                                     flag.ShowDev,         flag.ShowLegendeName, flag.ChangeAll};
    EXPECT_EQ(third, std::vector<Flag>(7, kTrue));
    const std::vector<Flag> others = {
        flag.ShowActual, flag.ShowNominal,  flag.showX,          flag.showY,
        flag.show3D,     flag.showR,        flag.showRho,        flag.showTheta,
        flag.ShowTolCol, flag.ShowGrid,     flag.ShowLegendeXYZ, flag.ShowUseNotUse,
        flag.SnaptoGrid, flag.WithinScreen, flag.Italic,         flag.Strikethrough};
    EXPECT_EQ(others, std::vector<Flag>(16, kFalse));
    EXPECT_EQ(flag.Left, -120);
    EXPECT_EQ(flag.Top, 300);
    EXPECT_EQ(flag.Bold, kTrue);
    EXPECT_EQ(flag.Charset, 1);
    EXPECT_EQ(flag.Name, "Arial");
    EXPECT_EQ(flag.Size, 9.75F);
    EXPECT_EQ(flag.Underline, kTrue);
    EXPECT_EQ(flag.Weight, 700);
    EXPECT_EQ(flag.Forecolor, 0x102030);
    EXPECT_EQ(view.ActiveFlag, 1);
    EXPECT_EQ(view.WindowWidth, 1024);
    EXPECT_EQ(view.WindowHeight, 768);
    EXPECT_EQ(view.AnzKlassenPos, 7);
    EXPECT_EQ(view.AnzKlassenNeg, 5);
    EXPECT_EQ(view.AusserhalbTol, kTrue);
    EXPECT_EQ(view.Min, -1.5);
    EXPECT_EQ(view.Max, 2.5);
    EXPECT_EQ((std::vector<Flag>{view.showVeX, view.showVeY, view.showVeZ}),
              (std::vector<Flag>{kTrue, kFalse, kTrue}));
    EXPECT_EQ(view.ColorBased, "3D");
    EXPECT_EQ(view.ShowOnlyUsedComponent, kTrue);
    EXPECT_EQ(view.OuterColor, 0x0080ff);
    EXPECT_EQ(view.CS_Type, "Cartesian");
    EXPECT_EQ(
        (std::vector<Flag>{view.BinärModus, view.BlackPlane, view.BlackPlaneBorders, view.BlackInitial}),
        (std::vector<Flag>{kFalse, kTrue, kFalse, kTrue}));
    EXPECT_EQ(Told({view.FrameOffsetX, view.FrameOffsetY, view.TopDepth}), Told({11.5, -12.5, -64.5}));
    EXPECT_EQ(view.FrameFactor, 0.75);
    EXPECT_EQ(view.SlabThickness, 33.25);
    EXPECT_EQ(view.FrameInverse(0, 2), 0);
    EXPECT_EQ(view.FrameInverse(1, 2), 12);
    EXPECT_EQ(view.FrameInverse(3, 1), 31);
    EXPECT_EQ((std::vector<Flag>{view.GridXY, view.GridYZ, view.GridZX, view.ShowGridDim}),
              (std::vector<Flag>{kFalse, kTrue, kFalse, kTrue}));
    EXPECT_EQ((std::vector<int>{view.ADis, view.BDis, view.Cdis}), (std::vector<int>{100, 200, 70000}));
    EXPECT_EQ(view.LineTable, (std::vector<std::int16_t>{0, 0, 1, 2, 2, 6}));
    EXPECT_EQ(view.LineStartRow, 3);
    EXPECT_EQ(view.LineMode, kFalse);
    EXPECT_EQ(view.SelectedLine, 1);
    EXPECT_TRUE(Job.SavedView[2].Flags.empty());
    EXPECT_EQ(Job.SavedView[2].WindowHeight, 768);
}

void FrozenJobs::ExpectPoses() {
    ASSERT_EQ(Job.RobotABC.Rows, 8);
    ASSERT_EQ(Job.RobotABC.Columns, 3);
    for (int i = 1; i <= 8; ++i) {
        EXPECT_DOUBLE_EQ(Job.RobotABC(i, 1), 0.01 * i);
        EXPECT_DOUBLE_EQ(Job.RobotABC(i, 2), -0.02 * i);
        EXPECT_DOUBLE_EQ(Job.RobotABC(i, 3), 0.03 * i);
    }
    EXPECT_EQ(Job.RVecX, (std::vector<TaggedValue>{{}, 11.5, 12.5, {}, 14.5, 15.5, 16.5, 17.5, 18.5}));
    EXPECT_EQ(Job.RVecY,
              (std::vector<TaggedValue>{{}, 19.25, 18.25, 17.25, 16.25, 15.25, 14.25, 13.25, 12.25}));
    EXPECT_EQ(Job.RVecZ, (std::vector<double>{0, 30, 60, 90, 120, 150, 180, 210, 240}));
}

TEST_F(FrozenJobs, Version1_2_40HasNoHeadAndFourteenParameters) {
    Open("1.2.40", true);
    ExpectLastParameters({"not used", "", "", ""});
    EXPECT_EQ(Job.RDist, 0);
    ExpectViewFlags(kTrue, kTrue, kTrue, kTrue);
    ExpectNoShape();
    ExpectNoViews();
    ExpectNoRobots();
    ExpectSavedAs("1.2.40");
}

TEST_F(FrozenJobs, Version1_3_68HasFlagsOfTheViewsBehindItsVersion) {
    Open("1.3.68", true);
    ExpectLastParameters({"not used", "", "", ""});
    EXPECT_EQ(Job.RDist, 0);
    ExpectViewFlags(kTrue, kFalse, kFalse, kTrue);
    ExpectNoShape();
    ExpectNoViews();
    ExpectNoRobots();
    ExpectSavedAs("1.3.68");
}

TEST_F(FrozenJobs, Version1_3_71HasItsVersionAtTheHeadAndADistance) {
    Open("1.3.71");
    ExpectAllLastParameters();
    EXPECT_EQ(Job.RDist, 12.5);
    ExpectViewFlags(kTrue, kFalse, kFalse, kTrue);
    ExpectNoShape();
    ExpectNoViews();
    ExpectNoRobots();
    ExpectSavedAs("1.3.71");
}

TEST_F(FrozenJobs, Version1_3_72HasAShapeAndSavedViews) {
    Open("1.3.72");
    ExpectAllLastParameters();
    EXPECT_EQ(Job.RDist, 12.5);
    ExpectViewFlags(kTrue, kFalse, kFalse, kTrue);
    ExpectShape();
    ExpectViews();
    ExpectNoRobots();
    ExpectSavedAs("1.3.72");
}

TEST_F(FrozenJobs, Version2_0_46HasFifteenParameters) {
    Open("2.0.46");
    ExpectLastParameters({"12.5", "not used", "", "not used"});
    EXPECT_EQ(Job.RDist, 12.5);
    ExpectViewFlags(kTrue, kFalse, kFalse, kTrue);
    ExpectNoShape();
    ExpectViews();
    ExpectNoRobots();
    ExpectSavedAs("2.0.46");
}

TEST_F(FrozenJobs, Version2_0_57SaysWhetherItIsOfARobot) {
    Open("2.0.57");
    ExpectLastParameters({"12.5", "not used", "", "not used"});
    EXPECT_EQ(Job.RDist, 12.5);
    ExpectViewFlags(kTrue, kFalse, kFalse, kTrue);
    ExpectShape();
    ExpectNoViews();
    ExpectNoRobots();
    ExpectSavedAs("2.0.57");
}

TEST_F(FrozenJobs, Version2_0_58HasAToolVectorAndPoses) {
    Open("2.0.58");
    ExpectAllLastParameters();
    EXPECT_EQ(Job.RDist, 12.5);
    ExpectViewFlags(kTrue, kFalse, kFalse, kTrue);
    ExpectNoShape();
    ExpectNoViews();
    EXPECT_EQ(Job.IsKuka, kFalse);
    EXPECT_EQ(Job.IsQuaternion, kTrue);
    ExpectPoses();
    ExpectSavedAs("2.0.58");
}

TEST_F(FrozenJobs, Version2_0_64HasAll) {
    Open("2.0.64");
    ExpectAllLastParameters();
    EXPECT_EQ(Job.RDist, 12.5);
    ExpectViewFlags(kTrue, kFalse, kFalse, kTrue);
    ExpectNoShape();
    ExpectViews();
    EXPECT_EQ(Job.IsKuka, kTrue);
    EXPECT_EQ(Job.IsQuaternion, kFalse);
    ExpectPoses();
    EXPECT_EQ(Job.Unconverged, kFalse);
    ExpectSavedAs("2.0.64");
}

TEST_F(FrozenJobs, ABlockBehindTheFieldsMarksAResultThatDidNotConverge) {
    Open("2.0.64-block");
    ExpectAllLastParameters();
    ExpectViewFlags(kTrue, kFalse, kFalse, kTrue);
    ExpectNoShape();
    ExpectNoViews();
    ExpectNoRobots();
    EXPECT_EQ(Job.Unconverged, kTrue);
    ASSERT_EQ(Job.OtherMembers.size(), 1U);
    EXPECT_EQ(Job.OtherMembers[0].first, "\"cell\"");
    EXPECT_EQ(Job.OtherMembers[0].second, "\"R12\"");
    ExpectSavedAs("2.0.64-block");
}

TEST_F(FrozenJobs, WhatABlockHoldsByAnUnknownNameIsSaid) {
    Open("2.0.64-block");
    int said = 0;
    for (const Note& note : Notes.List)
        said +=
            note.Code == NoteCode::MemberUnknown && note.Text.find("\"cell\"") != std::string::npos ? 1 : 0;
    EXPECT_EQ(said, 1);
    Open("2.0.64");
    for (const Note& note : Notes.List) EXPECT_NE(note.Code, NoteCode::MemberUnknown);
}

TEST_F(FrozenJobs, NoFrozenFileIsLeftOut) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(kJobs))
        if (entry.path().extension() == ".cvn") names.insert(entry.path().stem().string());
    EXPECT_EQ(names, (std::set<std::string>{"1.2.40", "1.3.68", "1.3.71", "1.3.72", "2.0.46", "2.0.57",
                                            "2.0.58", "2.0.64", "2.0.64-block"}));
}
