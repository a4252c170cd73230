// What the tests of the exact norms stand on: norms that run on, and a search around their result.
#pragma once

#include <array>

#include "core/run.h"
#include "engine/norm_job.h"
#include "engine/transform.h"

using namespace corvinade;

// By their names on the command line.
struct NormOfSet {
    const char* Name;
    int Type;
    bool RunOn;
};
inline constexpr std::array<NormOfSet, 5> kNorms = {{{"l2", kL2, false},
                                                     {"l1", kL1, false},
                                                     {"loo", kLoo, false},
                                                     {"l1-exact", kL1, true},
                                                     {"minimax", kLoo, true}}};

class ExactNorms : public NormTest {
protected:
    ExactNorms() { Norm.RunOn = true; }

    static double Sum() { return SumOfResiduals(); }
    static double Largest() { return LargestResidual(); }

    // No small change of any unknown makes the objective smaller by more than the bound allows. Tries
    // directions at random, from a micrometre to some millimetres.
    static void ExpectNoBetterNearby(double (*objective)()) {
        const double at = objective();
        const double allowed = Norm.AboveOptimum + 1e-9 * at;
        std::array<double, kParameterEnd> kept{};
        for (int k = 1; k < kParameterEnd; ++k) kept[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
        for (int trial = 0; trial < 2000; ++trial) {
            const double size = std::pow(10, -6 + 3.5 * (NextNumber() + 1) / 2);
            for (int k = 1; k < kParameterEnd; ++k) {
                const auto index = static_cast<std::size_t>(k);
                ParameterValue(Job, k) = kept[index];
                if (Job.ParamText[index] != kFloat) continue;
                ParameterValue(Job, k) += size * NextNumber() * (k <= kTraZ ? 1 : 1e-3);
            }
            if (Job.ParamText[kScaleXYZ] == kFloat) Job.ScaleX = Job.ScaleY = Job.ScaleZ = Job.ScaleXYZ;
            TakeResidualsOfJob();
            EXPECT_GE(objective(), at - allowed) << "trial " << trial;
        }
        for (int k = 1; k < kParameterEnd; ++k) ParameterValue(Job, k) = kept[static_cast<std::size_t>(k)];
        TakeResidualsOfJob();
        EXPECT_NEAR(objective(), at, 1e-8);
    }
    static void TakeResidualsOfJob() {
        Job.RotXCopy = Job.RotX;
        Job.RotYCopy = Job.RotY;
        Job.RotZCopy = Job.RotZ;
        for (int i = 1; i <= Job.Pairs(); ++i) {
            const Vec3 p = StartPoint(i), q = TargetPoint(i);
            Vec3 X;
            TransformPoint(p(1), p(2), p(3), X(1), X(2), X(3));
            for (int axis = 1; axis <= 3; ++axis)
                Calculation.v[static_cast<std::size_t>(3 * (i - 1) + axis)] = X(axis) - q(axis);
        }
    }
};
