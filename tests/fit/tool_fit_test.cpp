// Fits with a tool vector, against simulated poses whose base and tool are known.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "fit/chain.h"
#include "fit/chain_search.h"
#include "fit/fit.h"
#include "fit/matrix.h"
#include "fit/rotations.h"

using namespace corvinade::fit;

namespace {

constexpr double kDegree = std::numbers::pi / 180;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// A measured tip of a pose (F, G) is x with T + R x = F + G t; the vector of the model is -t.
struct Cell {
    explicit Cell(unsigned seed) : Numbers(seed) {
        Base = AnyRotation();
        for (int k = 1; k <= 3; ++k) Place(k) = Between(-3000, 3000);
    }

    double Between(double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(Numbers);
    }
    Vec3 AnyVector(double length) {
        std::normal_distribution<double> normal;
        const Vec3 v(normal(Numbers), normal(Numbers), normal(Numbers));
        const double size = std::hypot(v(1), v(2), v(3));
        return {length / size * v(1), length / size * v(2), length / size * v(3)};
    }
    Mat3 AnyRotation() { return RotationAbout(AnyVector(Between(0, std::numbers::pi))); }

    // Angles A, B, C of G = Rz(A) Ry(B) Rx(C), in so many decimals of a degree.
    void AddPose(const Mat3& G, const Vec3& tool, double spread, double noise, int decimals = 4) {
        const double unit = kDegree / std::pow(10.0, decimals);
        const std::array<double, 3> angles = {std::atan2(G(2, 1), G(1, 1)),
                                              std::atan2(-G(3, 1), std::hypot(G(1, 1), G(2, 1))),
                                              std::atan2(G(3, 2), G(3, 3))};
        for (std::size_t k = 0; k < 3; ++k) Angles[k].push_back(std::round(angles[k] / unit) * unit);
        Vec3 tip;
        for (int k = 1; k <= 3; ++k) {
            const double flange = (k == 1 ? 1200 : k == 3 ? 900 : 0) + Between(-spread / 2, spread / 2);
            Target[At(k - 1)].push_back(flange);
            tip(k) = flange + G(k, 1) * tool(1) + G(k, 2) * tool(2) + G(k, 3) * tool(3) - Place(k);
        }
        std::normal_distribution<double> normal(0, noise > 0 ? noise : 1);
        for (int k = 1; k <= 3; ++k)
            Start[At(k - 1)].push_back(Base(1, k) * tip(1) + Base(2, k) * tip(2) + Base(3, k) * tip(3) +
                                       (noise > 0 ? normal(Numbers) : 0));
    }
    // Turned about all three axes up to this angle each.
    void AddPoses(int count, double degrees, const Vec3& tool, double spread, double noise) {
        const Mat3 middle = AnyRotation();
        const double most = degrees * kDegree;
        for (int i = 0; i < count; ++i)
            AddPose(MatrixProduct(
                        RotationAbout({Between(-most, most), Between(-most, most), Between(-most, most)}),
                        middle),
                    tool, spread, noise);
    }

    FitProblem Problem(bool scale = false) const {
        FitProblem problem;
        for (std::size_t k = 0; k < 3; ++k) {
            problem.Pairs.Start[k] = Start[k];
            problem.Pairs.Target[k] = Target[k];
            problem.Pairs.PoseAngles[k] = Angles[k];
        }
        problem.Mode = FitMode::Tool;
        for (int k = kTraX; k <= kRotZ; ++k) problem.Choice.Floats[At(k)] = true;
        problem.Choice.Floats[kScaleXYZ] = scale;
        for (int k = kRvecX; k <= kRvecZ; ++k) problem.Choice.Floats[At(k)] = true;
        return problem;
    }
    // The iteration alone, from the truth on.
    FitResult FromTruth(FitProblem problem) const {
        problem.SeeksBest = false;
        const Vec3 angles = AnglesOf(Base);
        for (int k = 1; k <= 3; ++k) {
            problem.Choice.Own[At(kTraX + k - 1)] = Place(k);
            if (problem.Choice.Floats[At(kRotX + k - 1)]) problem.Choice.Own[At(kRotX + k - 1)] = angles(k);
        }
        if (problem.Choice.Floats[kScaleXYZ]) problem.Choice.Own[kScaleXYZ] = 1;
        return Fit(problem);
    }

    std::mt19937 Numbers;
    Mat3 Base;
    Vec3 Place;
    std::array<std::vector<double>, 3> Start, Target, Angles;
};

double SumOf(const FitResult& fit) {
    double sum = 0;
    for (std::size_t i = 1; i < fit.Residuals.size(); ++i) sum += fit.Residuals[i] * fit.Residuals[i];
    return sum;
}

double SigmaOf(const FitResult& fit, int parameter) {
    const int j = fit.Model.UnknownOf[At(parameter)];
    const auto redundancy = static_cast<double>(fit.Residuals.size() - 1) - fit.Model.Unknowns;
    return std::sqrt(std::fabs(fit.Q(j, j)) * SumOf(fit) / redundancy);
}

Mat3 RotationOf(const FitResult& fit) {
    Mat3 R;
    RotMatrixXYZ(fit.Values[kRotX], fit.Values[kRotY], fit.Values[kRotZ], R);
    return R;
}

// Of the turn from one rotation to the other, rad.
double TurnBetween(const Mat3& A, const Mat3& B) {
    double squares = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) squares += (A(i, j) - B(i, j)) * (A(i, j) - B(i, j));
    return std::sqrt(squares / 2);
}

// The tool comes out as it was within its sigmas.
void ExpectTool(const FitResult& fit, const Vec3& tool) {
    constexpr double kSigmas = 7;
    for (int k = 1; k <= 3; ++k)
        EXPECT_NEAR(fit.Values[kRvecX + k - 1], -tool(k), kSigmas * SigmaOf(fit, kRvecX + k - 1) + 1e-6);
}

}  // namespace

TEST(ToolFit, LongToolsAmongNearPointsEndAtTheBestPlace) {
    int astray = 0;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        Cell cell(seed);
        const Vec3 tool = cell.AnyVector(250);
        const bool scale = seed % 2 == 0;
        cell.AddPoses(10, 45, tool, 100, 0.05);
        FitProblem problem = cell.Problem(scale);
        const FitResult fit = Fit(problem), truth = cell.FromTruth(problem);
        ASSERT_TRUE(truth.Converged());
        EXPECT_TRUE(fit.Converged());
        EXPECT_LE(SumOf(fit), SumOf(truth) * (1 + 1e-8));
        EXPECT_GT(fit.Values[kScaleXYZ], 0.99);
        ExpectTool(fit, tool);
        EXPECT_TRUE(fit.LeftByPoses.Directions.empty());
        EXPECT_EQ(fit.Certificate.Kind, CertificateRecord::Road::Starts);
        EXPECT_LT(fit.Certificate.RelativeAbove, 1e-9);

        problem.SeeksBest = false;
        const FitResult told = Fit(problem);
        const bool best = told.Converged() && SumOf(told) <= SumOf(truth) * (1 + 1e-6);
        EXPECT_EQ(fit.Certificate.BeganAgain, !best);
        EXPECT_EQ(fit.Remarks.size(), best ? 0u : 1u);
        astray += best ? 0 : 1;
        if (!best) continue;
        // What is best already stays bit by bit.
        EXPECT_EQ(fit.Values, told.Values);
        EXPECT_EQ(fit.State.Iterations, told.State.Iterations);
        EXPECT_EQ(fit.Residuals, told.Residuals);
    }
    EXPECT_GT(astray, 10) << "sets that the iteration alone does not solve";
}

TEST(ToolFit, FewPosesAndAnAngleThatIsHeld) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        Cell cell(1000 + seed);
        const Vec3 tool = cell.AnyVector(180);
        cell.AddPoses(seed % 2 == 0 ? 5 : 9, 90, tool, 150, 0.02);
        FitProblem problem = cell.Problem(true);
        const int held = kRotX + static_cast<int>(seed % 3);
        problem.Choice.Floats[At(held)] = false;
        problem.Choice.Held[At(held)] = true;
        problem.Choice.Value[At(held)] = AnglesOf(cell.Base)(held - kRotX + 1);
        const FitResult fit = Fit(problem), truth = cell.FromTruth(problem);
        ASSERT_TRUE(truth.Converged());
        EXPECT_TRUE(fit.Converged());
        EXPECT_LE(SumOf(fit), SumOf(truth) * (1 + 1e-8));
        EXPECT_EQ(fit.Values[held], problem.Choice.Value[At(held)]);
    }
}

TEST(ToolFit, StartValuesOfOnesOwnKeepTheirSolution) {
    int kept = 0;
    for (unsigned seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        Cell cell(seed);
        cell.AddPoses(10, 45, cell.AnyVector(250), 100, 0.05);
        FitProblem problem = cell.Problem();
        problem.SeeksBest = false;
        const FitResult told = Fit(problem), truth = cell.FromTruth(problem);
        if (!told.Converged() || SumOf(told) < 2 * SumOf(truth)) continue;
        for (int k = kTraX; k <= kRotZ; ++k) problem.Choice.Own[At(k)] = told.Values[k];
        const FitResult alone = Fit(problem);
        problem.SeeksBest = true;
        const FitResult fit = Fit(problem);
        EXPECT_EQ(fit.Values, alone.Values);
        if (SumOf(alone) < 2 * SumOf(truth)) continue;
        ASSERT_EQ(fit.Remarks.size(), 1u);
        EXPECT_EQ(fit.Remarks[0].Kind, FitRemark::What::OtherSolutionIsLess);
        ++kept;
    }
    EXPECT_GT(kept, 2);
}

// Points written with six decimals: the limit of the iteration leaves more of their sum than they do, which
// is no better place.
TEST(ToolFit, WhatTheLimitLeavesOfExactPosesIsNoBetterPlace) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        Cell cell(seed);
        const Vec3 tool(60, -20, 210);
        for (int i = 0; i < 10; ++i) {
            const auto angle = [&cell] { return std::round(cell.Between(-4.5e5, 4.5e5)) * 1e-4 * kDegree; };
            const double a = angle(), b = angle(), c = std::numbers::pi + angle();
            const Mat3 G = MatrixProduct(MatrixProduct(RotationAbout({0, 0, a}), RotationAbout({0, b, 0})),
                                         RotationAbout({c, 0, 0}));
            cell.AddPose(G, tool, 1600, 0, 12);
        }
        for (auto& axis : cell.Start)
            for (double& x : axis) x = std::round(x * 1e6) / 1e6;
        for (const bool own : {false, true}) {
            FitProblem problem = cell.Problem();
            const Vec3 angles = AnglesOf(cell.Base);
            if (own) problem.Choice.Own[kRotZ] = std::round(angles(3) * 1e3) / 1e3;
            const FitResult fit = Fit(problem);
            ASSERT_TRUE(fit.Converged());
            EXPECT_LT(SumOf(fit), 30 * 1e-10);
            for (const FitRemark& remark : fit.Remarks)
                EXPECT_FALSE(remark.Kind == FitRemark::What::OtherSolutionIsLess ||
                             (remark.Kind == FitRemark::What::IterationBeganAgain && remark.Times < 1.5))
                    << remark.Times;
            EXPECT_LT(fit.Certificate.RelativeAbove, 1e-6);
        }
    }
}

TEST(ToolFit, PosesAboutOneTiltedAxisLeaveTheToolAlongItOpen) {
    for (unsigned seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        Cell cell(2000 + seed);
        const Vec3 tool(40, -30, 200), axis = cell.AnyVector(1);
        const Mat3 first = cell.AnyRotation();
        const int decimals = std::array{1, 2, 3, 4, 6}[seed % 5];
        const double noise = seed % 2 == 0 ? 0.02 : 0;
        for (int i = 0; i < 10; ++i) {
            const double angle = cell.Between(-1.5, 1.5);
            cell.AddPose(
                MatrixProduct(RotationAbout({angle * axis(1), angle * axis(2), angle * axis(3)}), first),
                tool, 800, noise, decimals);
        }
        const FitResult fit = Fit(cell.Problem());
        EXPECT_TRUE(fit.Converged());
        ASSERT_EQ(fit.LeftByPoses.Directions.size(), 1u);
        // The axis as the flange has it.
        Vec3 w;
        for (int j = 1; j <= 3; ++j)
            for (int i = 1; i <= 3; ++i) w(j) += first(i, j) * axis(i);
        const Vec3& found = fit.LeftByPoses.Directions[0];
        const double same = found(1) * w(1) + found(2) * w(2) + found(3) * w(3);
        const double fine = std::pow(10.0, -decimals) * kDegree + 1e-7;
        EXPECT_GT(std::fabs(same), 1 - fine);
        double left = 0, along = 0;
        for (int k = 1; k <= 3; ++k) {
            left += found(k) * fit.Values[kRvecX + k - 1];
            along += w(k) * tool(k);
        }
        EXPECT_NEAR(left, 0, 1e-6);
        const double s0 = std::sqrt(SumOf(fit) / 21);
        for (int k = 1; k <= 3; ++k) {
            // The tool across the axis is that of the truth; a turn of w takes some of what is along it.
            const double across = tool(k) - along * w(k);
            EXPECT_NEAR(fit.Values[kRvecX + k - 1], -across, 8 * s0 + 300 * fine);
            EXPECT_EQ(fit.LeftByPoses.Of[At(kRvecX + k - 1)], std::fabs(found(k)) > fit.LeftByPoses.Noise);
        }
        const double sigma = std::hypot(SigmaOf(fit, kRotX), SigmaOf(fit, kRotY), SigmaOf(fit, kRotZ));
        EXPECT_LT(TurnBetween(RotationOf(fit), cell.Base), 6 * sigma + 1e-9);
    }
}

TEST(ToolFit, PosesTurnedByMoreThanADegreeAboutTwoAxesAreNeverDoubted) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        SCOPED_TRACE(seed);
        Cell cell(5000 + seed);
        // About one axis by anything, about another by 1.5 degrees and more; any tool, along the first axis
        // too.
        const double least = std::pow(10.0, cell.Between(std::log10(1.5), 1.5)) * kDegree;
        const Mat3 flange = cell.AnyRotation();
        const Vec3 tool =
            seed % 4 == 0 ? Vec3(0, 0, 200) : cell.AnyVector(std::pow(10.0, cell.Between(0, 2.8)));
        const double noise = std::array{0.0, 0.02, 0.1, 0.5}[seed % 4];
        const int count = 4 + static_cast<int>(seed % 9);
        for (int i = 0; i < count; ++i) {
            const Mat3 about = RotationAbout({0, 0, cell.Between(-2, 2)});
            const Mat3 tilt = RotationAbout({i % 2 == 0 ? least : -least, 0, 0});
            cell.AddPose(MatrixProduct(flange, MatrixProduct(tilt, about)), tool, 500, noise, 3);
        }
        const FitResult fit = Fit(cell.Problem());
        EXPECT_TRUE(fit.Converged());
        EXPECT_TRUE(fit.LeftByPoses.Directions.empty()) << fit.LeftByPoses.Turned / kDegree;
    }
}

// A reweighting that leads away from the best fit of least squares is no result of its norm.
TEST(ToolFit, OfTheOtherNormsIsNotFartherOffThanLeastSquaresUnlessItSaysSo) {
    for (const FitNorm norm : {FitNorm::LeastSum, FitNorm::LeastLargest})
        for (unsigned seed = 1; seed <= 60; ++seed) {
            SCOPED_TRACE(seed);
            Cell cell(seed);
            const Vec3 tool = cell.AnyVector(cell.Between(50, 400));
            cell.AddPoses(static_cast<int>(cell.Between(5, 20)), 60, tool, cell.Between(100, 1000), 0.05);
            FitProblem problem = cell.Problem();
            const FitResult squares = Fit(problem);
            problem.Norm = norm;
            const FitResult other = Fit(problem);
            if (!other.Converged()) continue;
            const auto objective = [norm](const FitResult& fit) {
                double sum = 0, largest = 0;
                for (std::size_t i = 1; i < fit.Residuals.size(); ++i) {
                    sum += std::fabs(fit.Residuals[i]);
                    largest = std::max(largest, std::fabs(fit.Residuals[i]));
                }
                return norm == FitNorm::LeastSum ? sum : largest;
            };
            EXPECT_LT(objective(other), 1.001 * objective(squares) + 1e-3);
        }
}
