// Fits to distances in the calculation window, and the R vectors that they leave for the pictures.
#include <cmath>

#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/calculation_job.h"
#include "engine/calculation_window.h"
#include "engine/trafo_window.h"
#include "engine/transform.h"

using namespace corvinade;

namespace {

// Targets at 50 mm from where the transformation puts the start points, so that the distance is known.
class DistanceRun : public CalculationJob {
protected:
    DistanceRun() {
        AddPairs(12, 0);
        Open();
        UserSetValue(trafoWindow.CheckRDist, 1);
    }

    // Every target goes 50 mm from where its start point will lie, each in a direction of its own; every
    // other one by `more` further.
    static void MoveTargets(double more) {
        for (std::size_t i = 1; i <= 12; ++i) {
            const double angle = 0.7 * static_cast<double>(i), up = -0.9 + 0.15 * static_cast<double>(i);
            const double across = std::sqrt(1 - up * up), far = i % 2 == 0 ? 50 : 50 + more;
            Job.Target.X[i] = *Job.Target.X[i] + far * across * std::cos(angle);
            Job.Target.Y[i] = *Job.Target.Y[i] + far * across * std::sin(angle);
            Job.Target.Z[i] += far * up;
        }
    }
    static void SeedTraX() {
        UserSetValue(trafoWindow.CheckSeedTrax, 1);
        UserSetText(trafoWindow.TextSeedTrax, "103");
    }
    static int SecondPoints() {
        int count = 0;
        for (std::size_t i = 1; i <= 12; ++i) count += Job.RVecX[i] && Job.RVecY[i] ? 1 : 0;
        return count;
    }
};

}  // namespace

TEST_F(DistanceRun, AStartOnTheTargetsIsToldWithThePointAndChangesNothing) {
    Job.TraX = 17;
    Calculate();
    EXPECT_EQ(LastMessage(),
              "The start values put point \"P1\" onto its target, where the distance between them has no "
              "direction. Please give a seed for one of the translations, or choose other seed points.");
    EXPECT_EQ(Job.TraX, 17);
    EXPECT_FALSE(IsTrue(Run.TrafoValid));
    for (std::size_t flag = 1; flag <= 9; ++flag) Job.UseFlags[flag] = 0;
    Calculate();
    EXPECT_NE(LastMessage().find("\"P4\""), std::string::npos) << "points out of use do not matter";
}

TEST_F(DistanceRun, ASeedLeadsAwayFromTheTargets) {
    MoveTargets(0);
    SeedTraX();
    Calculate();
    EXPECT_TRUE(Adjustment.Converged);
    EXPECT_NEAR(Job.RDist, 50, 1e-6);
    EXPECT_NEAR(Job.TraX, 100, 1e-6);
    EXPECT_EQ(trafoWindow.TextRDist.Text, "50.000");
}

// A point at R_Dist from the target that is off the transformed point by just what its distance is off R_Dist
// lies on the line through both, on the side of the transformed point.
TEST_F(DistanceRun, RVectorsLeadFromThePointsToTheFittedDistanceFromTheirTargets) {
    MoveTargets(0.5);
    SeedTraX();
    Settings.ShowRVec = kTrue;
    Calculate();
    ASSERT_TRUE(Adjustment.Converged);
    ASSERT_EQ(SecondPoints(), 12);
    double worst = 0;
    for (std::size_t i = 1; i <= 12; ++i) {
        const auto distance = [](double x1, double y1, double z1, double x2, double y2, double z2) {
            return std::sqrt((x1 - x2) * (x1 - x2) + (y1 - y2) * (y1 - y2) + (z1 - z2) * (z1 - z2));
        };
        const double x = *Job.RVecX[i], y = *Job.RVecY[i], z = Job.RVecZ[i];
        double px = 0, py = 0, pz = 0;
        TransformPoint(*Job.Start.X[i], *Job.Start.Y[i], Job.Start.Z[i], px, py, pz);
        const double present = distance(px, py, pz, *Job.Target.X[i], *Job.Target.Y[i], Job.Target.Z[i]);
        EXPECT_NEAR(distance(x, y, z, *Job.Target.X[i], *Job.Target.Y[i], Job.Target.Z[i]), Job.RDist, 1e-9)
            << i;
        EXPECT_NEAR(distance(x, y, z, px, py, pz), std::abs(present - Job.RDist), 1e-9) << i;
        worst = std::max(worst, std::abs(present - Job.RDist));
    }
    EXPECT_GT(worst, 0.05) << "the distances do not fit exactly";
    EXPECT_NEAR(Job.RDist, 50.25, 0.1);
}

TEST_F(DistanceRun, WithoutTheirDisplayThereAreNoRVectors) {
    MoveTargets(0.5);
    SeedTraX();
    Calculate();
    ASSERT_TRUE(Adjustment.Converged);
    EXPECT_EQ(SecondPoints(), 0);
    Settings.ShowRVec = kTrue;
    Calculate();
    EXPECT_EQ(SecondPoints(), 12);
    // Another model has none, and those of the former fit are gone.
    UserSetValue(trafoWindow.CheckRDist, 0);
    UserSetText(trafoWindow.TextRDist, "0");
    Calculate();
    EXPECT_EQ(SecondPoints(), 0);
    EXPECT_EQ(Job.RVecZ, std::vector<double>(13, 0.0));
}

TEST_F(DistanceRun, RVectorsAreThereWithoutTheWindowToo) {
    MoveTargets(0.5);
    SeedTraX();
    Settings.ShowRVec = kTrue;
    Calculate();
    const std::vector<TaggedValue> withWindow = Job.RVecX;
    Job.RVecX.assign(13, {});
    Job.RVecY.assign(13, {});
    UserClose(*FindWindow("FormTrafoBerechnung"));
    // The choice and its seed stay with the program; one more run ends where the first one did.
    myButtonCalculate();
    EXPECT_EQ(SecondPoints(), 12);
    for (std::size_t i = 1; i <= 12; ++i) EXPECT_NEAR(*Job.RVecX[i], *withWindow[i], 1e-6) << i;
}
