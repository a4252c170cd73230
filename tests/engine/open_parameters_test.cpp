// What points and poses leave open, by known shapes.
#include "fit/open_parameters.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/notes.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/design.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class OpenParametersTest : public Program {
protected:
    void SetUp() override { BeginFit(); }

    static OpenParameters Found() {
        SelectionFromJob();
        ButtonCalcErsatz();
        GatheredPoints points;
        GatherPoints(WeightsFromUseFlags(3 * Job.Pairs()), Selection.CheckUseABC, points);
        return FindOpenParameters(points, Adjustment.Model, CoordinateInUse, ParametersOf(Job),
                                  Linearise(Adjustment.Model, points));
    }
    static bool Noted(NoteCode code) {
        for (const Note& note : Notes.List)
            if (note.Code == code) return true;
        return false;
    }
    static void AddShifted(double x, double y, double z) { AddPair({x, y, z}, {x + 1, y + 2, z + 3}); }
};

}  // namespace

TEST_F(OpenParametersTest, NothingIsOpenOfACloud) {
    AddCloud({.Points = 9, .Truth = Truth({1, 2, 3, 0.1, 0.2, 0.3, 1, 1, 1, 1, 0, 0, 0})});
    FloatParameters(kRigid);
    EXPECT_EQ(Found().Count, 0);
    EXPECT_FALSE(Noted(NoteCode::OpenParameters));
}

TEST_F(OpenParametersTest, AboutALineARotationIsOpenInEveryNorm) {
    for (int i = 0; i < 7; ++i) AddShifted(i * 10.0, i * 20.0, i * 30.0 + 5);
    FloatParameters(kRigid);
    for (const std::int16_t norm : {2, 1, 3}) {
        Job.NormType = norm;
        const OpenParameters open = Found();
        EXPECT_EQ(open.Count, 1) << norm;
        EXPECT_TRUE(open.Open[kRotX] && open.Open[kRotY] && open.Open[kRotZ]) << norm;
        EXPECT_TRUE(Noted(NoteCode::OpenParameters)) << norm;
        EXPECT_TRUE(std::isnan(Calculation.Sigma[kRotX])) << norm;
    }
}

TEST_F(OpenParametersTest, AboutOnePlaceOffTheOriginTheTranslationIsOpenWithTheRotation) {
    // T = q - R p: with R any, so is T, unless p is the origin.
    for (const bool away : {false, true}) {
        Job = JobRecord{};
        BeginFit();
        for (int i = 0; i < 5; ++i) AddPair({away ? 1000.0 : 0, away ? 2.0 : 0, away ? 3.0 : 0}, {4, 5, 6});
        FloatParameters(kRigid);
        const OpenParameters open = Found();
        EXPECT_TRUE(open.Open[kRotX] && open.Open[kRotY] && open.Open[kRotZ]);
        for (int k = kTraX; k <= kTraZ; ++k) {
            EXPECT_EQ(open.Open[static_cast<std::size_t>(k)], away) << k;
            EXPECT_EQ(std::isnan(Calculation.Sigma[static_cast<std::size_t>(k)]), away) << k;
        }
    }
}

TEST_F(OpenParametersTest, AcrossAPlaneAlongTheAxesTheScaleIsOpen) {
    for (int i = 0; i < 9; ++i) AddShifted(100.0 * (i % 3), 100.0 * (i / 3), 0);
    FloatParameters(kRigid);
    FloatParameters({kScaleX, kScaleY, kScaleZ});
    const OpenParameters open = Found();
    EXPECT_EQ(open.Count, 1);
    EXPECT_TRUE(open.Open[kScaleZ]);
    EXPECT_FALSE(open.Open[kScaleX]);
    EXPECT_FALSE(std::isnan(Calculation.Sigma[kScaleX]));
    EXPECT_TRUE(std::isnan(Calculation.Sigma[kScaleZ]));
}

TEST_F(OpenParametersTest, PosesTurnedAboutOneAxisLeaveLengthAndShiftOfTheToolOpen) {
    // Poses about z alone: the tool's z and the shift in z are one.
    Job.RobotABC = Matrix(8, 3);
    for (int i = 1; i <= 8; ++i) {
        const double angle = 0.7 * i, x = 100.0 * (i % 3), y = 70.0 * (i % 4), z = 50.0 * (i % 5);
        Job.RobotABC(i, 1) = angle;
        // The target less the turned tool (30, 40, 200) is the start point.
        AddPair({x, y, z}, {x + 30 * std::cos(angle) - 40 * std::sin(angle),
                            y + 30 * std::sin(angle) + 40 * std::cos(angle), z + 200});
    }
    FloatParameters(kRigid);
    FloatParameters({kRvecX, kRvecY, kRvecZ});
    const OpenParameters open = Found();
    EXPECT_EQ(open.Count, 1);
    EXPECT_TRUE(open.Open[kTraZ]);
    EXPECT_TRUE(open.Open[kRvecZ]);
    EXPECT_FALSE(open.Open[kTraX]);
    EXPECT_FALSE(open.Open[kRvecX]);
    EXPECT_TRUE(std::isnan(Calculation.Sigma[kRvecZ]));
    EXPECT_TRUE(std::isnan(Calculation.Sigma[kRDist]));
    ASSERT_TRUE(Noted(NoteCode::OpenParameters));
    EXPECT_NE(Notes.List[0].Text.find("Tra z and R vec z"), std::string::npos) << Notes.List[0].Text;
}

TEST_F(OpenParametersTest, ManyPointsOfWhichFewTellAreSearchedInFull) {
    for (int i = 0; i < 5000; ++i) AddShifted(i, 0, 0);
    AddShifted(17, 100, 0);  // the only one off the line
    FloatParameters(kRigid);
    EXPECT_EQ(Found().Count, 0);
}

TEST_F(OpenParametersTest, NoiseBeyondTheDigitsOfTheCoordinatesTellsParametersApart) {
    for (int i = 0; i < 7; ++i) AddShifted(1e5 + 100.0 * i, (i % 2) * 1e-3, (i % 3) * 1e-3);
    FloatParameters(kRigid);
    EXPECT_EQ(Found().Count, 0);
}

TEST_F(OpenParametersTest, GimbalLockIsNoMatterOfThePoints) {
    for (const auto& [x, y, z] : {std::array{0.0, 0.0, 0.0}, std::array{100.0, 0.0, 10.0},
                                  std::array{0.0, 200.0, 20.0}, std::array{30.0, 40.0, 300.0}})
        AddPair({x, y, z}, {z, y, -x});
    FloatParameters(kRigid);
    const OpenParameters open = Found();
    EXPECT_EQ(open.Count, 1);
    EXPECT_TRUE(open.GimbalLock);
    EXPECT_EQ(open.ByPoints(), 0);
    EXPECT_TRUE(Noted(NoteCode::GimbalLock));
    EXPECT_FALSE(Noted(NoteCode::OpenParameters));
}
