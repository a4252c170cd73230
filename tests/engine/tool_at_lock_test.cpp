// The tool model where something moves without end, while the transformation itself stands: Rot x against Rot
// z where Rot y is at a right angle, and what poses turned about one axis leave open.
#include <cmath>
#include <numbers>

#include "engine/adjustment.h"
#include "engine/fit_job.h"
#include "engine/fit_reference.h"
#include "engine/selection.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class ToolAtLock : public Program {
protected:
    static std::size_t At(int i) { return static_cast<std::size_t>(i); }
    static reference::Real Rounded(reference::Real x) { return std::round(x * 1e6L) / 1e6L; }

    // Poses of any orientation with a tool of 30, -40, 200 mm; points in the digits of a file.
    static void AddPoses(const std::array<reference::Real, 18>& truth, double noise = 0,
                         bool aboutOneAxis = false) {
        constexpr int kPoses = 10;
        const std::array<double, 3> tool = {30, -40, 200};
        Job.RobotABC = Matrix(kPoses, 3);
        for (int i = 1; i <= kPoses; ++i) {
            std::array<double, 3> pose = {3 * NextNumber(), 1.4 * NextNumber(), 3 * NextNumber()};
            if (aboutOneAxis) pose = {pose[0], 0, 0};
            for (int k = 1; k <= 3; ++k) Job.RobotABC(i, k) = pose[At(k - 1)];
            const reference::Square G = reference::Product(
                reference::Turn(2, pose[0]),
                reference::Product(reference::Turn(1, pose[1]), reference::Turn(0, pose[2])));
            reference::Point start = {500 * NextNumber(), 500 * NextNumber(), 500 * NextNumber()};
            for (auto& x : start) x = Rounded(x);
            reference::Point target = reference::Image(truth, start);
            for (auto& x : start) x = Rounded(x + noise * NextNumber());
            for (std::size_t axis = 0; axis < 3; ++axis)
                target[axis] = Rounded(target[axis] + G[axis][0] * tool[0] + G[axis][1] * tool[1] +
                                       G[axis][2] * tool[2]);
            AddPair(start, target);
        }
    }
    // Base and tool; the residuals.
    static Column FitTool() {
        FloatParameters({kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kRvecX, kRvecY, kRvecZ});
        Selection.CheckUseABC = true;
        Selection.RDistShown = false;
        const int u = CountUnknowns(Job.ParamText), n = 3 * Job.Pairs();
        Matrix Q;
        Column v, P(At(n) + 1, 1);
        BestFitIteration(u, n, Job.ParamText, Q, v, P);
        return v;
    }
};

}  // namespace

TEST_F(ToolAtLock, FitsOfExactPosesConverge) {
    for (const int sign : {1, -1})
        for (int seed = 0; seed < 24; ++seed) {
            SCOPED_TRACE(std::to_string(sign) + ", seed " + std::to_string(seed));
            Job = JobRecord{};
            BeginFit();
            for (int skip = 0; skip < 17 * seed; ++skip) NextNumber();
            const auto truth =
                Truth({100, 200, 300, 3 * NextNumber(), sign * std::numbers::pi / 2, 0, 1, 1, 1, 1});
            AddPoses(truth);
            FitTool();
            EXPECT_TRUE(Adjustment.Converged);
            EXPECT_NEAR(Job.TraX, 100, 1e-4);
            EXPECT_NEAR(Job.Rvec_z, 200, 1e-4);
            // R is the same whichever two of the angles make it up.
            const double whole = sign > 0 ? Job.RotX + Job.RotZ : Job.RotX - Job.RotZ;
            const double wanted = static_cast<double>(truth[kRotX]);
            EXPECT_NEAR(std::remainder(whole - wanted, 2 * std::numbers::pi), 0, 1e-6);
        }
}

TEST_F(ToolAtLock, PosesTurnedAboutOneAxisConvergeThoughTheyLeaveAShiftOpen) {
    int ended = 0;
    for (int seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE(seed);
        Job = JobRecord{};
        BeginFit();
        for (int skip = 0; skip < 13 * seed; ++skip) NextNumber();
        const auto truth = Truth({700, 1400, 2000, 0.4 * NextNumber(), 0.5, 0.3, 1, 1, 1, 1});
        AddPoses(truth, 0.02, true);
        const Column v = FitTool();
        ended += Adjustment.Converged ? 1 : 0;
        // What the poses determine is right; the tool's length and the shift along it are not of these.
        EXPECT_NEAR(Job.TraX, 700, 0.1);
        EXPECT_NEAR(Job.Rvec_x, 30, 0.1);
        double sum = 0;
        for (const double residual : v) sum += residual * residual;
        EXPECT_LT(std::sqrt(sum / (3 * Job.Pairs())), 0.02);
    }
    EXPECT_EQ(ended, 12);
}
