// A whole fit, against results that are known in closed form.
#include "fit/fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "fit/chain.h"

using namespace corvinade::fit;

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

using Columns = std::array<std::vector<double>, 3>;

const Columns kStart = {
    {{0, 1000, 15, -25, 700, 300, 120}, {0, 20, 800, 35, 500, -400, 640}, {0, -30, 40, 600, 300, 200, -80}}};

std::array<std::span<const double>, 3> Spans(const Columns& columns) {
    return {columns[0], columns[1], columns[2]};
}

StartChoice Floating(std::initializer_list<int> parameters) {
    StartChoice choice;
    for (const int k : parameters) choice.Floats[At(k)] = true;
    return choice;
}

const std::initializer_list<int> kTranslation = {kTraX, kTraY, kTraZ};
const std::initializer_list<int> kSimilarity = {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleXYZ};

// Moved by 10, 20, 30 and by these errors.
const Columns kErrors = {{{0.3, -0.2, 0.05, 0.11, -0.4, 0.02, 0.9},
                          {0, 0.1, 0.4, -0.3, 0.2, -2.5, 0.7},
                          {-0.6, 0.1, 0.15, 0.2, 0.25, 0.3, 0.35}}};

Columns Moved() {
    Columns target = kStart;
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t i = 0; i < target[axis].size(); ++i)
            target[axis][i] += 10.0 * static_cast<double>(axis + 1) + kErrors[axis][i];
    return target;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double MiddleOfRange(const std::vector<double>& values) {
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    return (*least + *most) / 2;
}

FitResult FitOfMoved(FitNorm norm) {
    const Columns target = Moved();
    FitProblem problem;
    problem.Pairs = {.Start = Spans(kStart), .Target = Spans(target)};
    problem.Choice = Floating(kTranslation);
    problem.Norm = norm;
    problem.ToOptimum = true;
    return Fit(problem);
}

}  // namespace

TEST(Fit, OfSquaresATranslationIsTheMean) {
    const FitResult fit = FitOfMoved(FitNorm::LeastSquares);
    ASSERT_TRUE(fit.Converged());
    for (int axis = 0; axis < 3; ++axis) {
        double sum = 0;
        for (const double error : kErrors[At(axis)]) sum += error;
        EXPECT_NEAR(fit.Values[kTraX + axis], 10.0 * (axis + 1) + sum / 7, 1e-10);
    }
    EXPECT_EQ(fit.Model.Unknowns, 3);
    EXPECT_EQ(fit.Q.Rows, 3);
}

TEST(Fit, OfTheLeastSumATranslationIsTheMedian) {
    const FitResult fit = FitOfMoved(FitNorm::LeastSum);
    ASSERT_TRUE(fit.Converged());
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(fit.Values[kTraX + axis], 10.0 * (axis + 1) + Median(kErrors[At(axis)]), 1e-9);
    EXPECT_NEAR(fit.Norm.AboveOptimum, 0, 1e-9);
    EXPECT_TRUE(fit.Norm.BoundOfAll);
}

TEST(Fit, OfTheLeastLargestATranslationIsTheMiddleOfTheRange) {
    const FitResult fit = FitOfMoved(FitNorm::LeastLargest);
    ASSERT_TRUE(fit.Converged());
    // The largest of all is that of y; the others are as small as their own ranges allow.
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(fit.Values[kTraX + axis], 10.0 * (axis + 1) + MiddleOfRange(kErrors[At(axis)]), 1e-9);
}

TEST(Fit, CoordinatesOutOfUseTakeNoPart) {
    const Columns target = Moved();
    std::vector<double> inUse(21, 1);
    inUse[3 * 5 + 1] = 0;  // the gross one in y
    FitProblem problem;
    problem.Pairs = {.Start = Spans(kStart), .Target = Spans(target)};
    problem.InUse = inUse;
    problem.Choice = Floating(kTranslation);
    const FitResult fit = Fit(problem);
    ASSERT_TRUE(fit.Converged());
    EXPECT_NEAR(fit.Values[kTraY], 20 + (0 + 0.1 + 0.4 - 0.3 + 0.2 + 0.7) / 6, 1e-10);
    EXPECT_NEAR(fit.Residuals[3 * 5 + 2], fit.Values[kTraY] - 20 + 2.5, 1e-10);
}

TEST(Fit, HeldValuesStay) {
    const Columns target = Moved();
    FitProblem problem;
    problem.Pairs = {.Start = Spans(kStart), .Target = Spans(target)};
    problem.Choice = Floating({kTraX, kTraY});
    problem.Choice.Held[kTraZ] = true;
    problem.Choice.Value[kTraZ] = 29.5;
    const FitResult fit = Fit(problem);
    EXPECT_EQ(fit.Values[kTraZ], 29.5);
    EXPECT_NEAR(fit.Residuals[3], 29.5 - 30 + 0.6, 1e-10);
}

TEST(Fit, SeedPairsOnALineLeadToTheBestAllTheSame) {
    // A quarter turn about z of points whose first three are on a line.
    const Columns start = {{{0, 100, 200, 15, -25, 700}, {0, 0, 0, 800, 35, 500}, {0, 0, 0, 40, 600, 300}}};
    Columns target = start;
    for (std::size_t i = 0; i < start[0].size(); ++i) {
        target[0][i] = -1.5 * start[1][i] + 7;
        target[1][i] = 1.5 * start[0][i] - 8;
        target[2][i] = 1.5 * start[2][i] + 9;
    }
    for (const FitNorm norm : {FitNorm::LeastSquares, FitNorm::LeastSum, FitNorm::LeastLargest}) {
        FitProblem problem;
        problem.Pairs = {.Start = Spans(start), .Target = Spans(target)};
        problem.Choice = Floating(kSimilarity);
        problem.Norm = norm;
        problem.ToOptimum = true;
        const FitResult fit = Fit(problem);
        EXPECT_NEAR(fit.Values[kScaleXYZ], 1.5, 1e-9);
        EXPECT_NEAR(fit.Values[kTraX], 7, 1e-6);
        for (std::size_t i = 1; i < fit.Residuals.size(); ++i) EXPECT_NEAR(fit.Residuals[i], 0, 1e-6);
        if (norm == FitNorm::LeastSquares) {
            EXPECT_EQ(fit.Certificate.Kind, CertificateRecord::Road::ClosedForm);
        }
    }
}

TEST(Fit, TellsThatTwoExchangedNamesKeptTheIterationFromTheBest) {
    Columns target = kStart;
    for (std::vector<double>& column : target) std::swap(column[0], column[1]);
    FitProblem problem;
    problem.Pairs = {.Start = Spans(kStart), .Target = Spans(target)};
    problem.Choice = Floating(kSimilarity);
    const FitResult fit = Fit(problem);
    ChainRecord chain;
    BuildChain(ChainSourceOf(fit.Values), chain);
    EXPECT_TRUE(fit.Converged());
    EXPECT_LT(fit.Certificate.RelativeAbove, 1e-9);
    EXPECT_EQ(fit.Certificate.BeganAgain, !fit.Remarks.empty());
}

TEST(Fit, AnAbandonedFitIsNone) {
    const Columns target = Moved();
    FitProblem problem;
    problem.Pairs = {.Start = Spans(kStart), .Target = Spans(target)};
    problem.Choice = Floating(kSimilarity);
    for (const FitNorm norm : {FitNorm::LeastSquares, FitNorm::LeastSum, FitNorm::LeastLargest}) {
        problem.Norm = norm;
        FitListener listener;
        int heard = 0;
        listener.Hear = [&heard](const FitEvent&) { return ++heard < 10; };
        const FitResult fit = Fit(problem, listener);
        EXPECT_TRUE(fit.State.Abandoned);
        EXPECT_FALSE(fit.Converged());
        EXPECT_EQ(heard, 10);
    }
}

TEST(Fit, AStopEndsALoopBehindItsFirstFit) {
    const Columns target = Moved();
    FitProblem problem;
    problem.Pairs = {.Start = Spans(kStart), .Target = Spans(target)};
    problem.Choice = Floating(kSimilarity);
    problem.Norm = FitNorm::LeastSum;
    FitListener listener;
    listener.StopIsWanted = [] { return true; };
    const FitResult fit = Fit(problem, listener);
    EXPECT_EQ(fit.Norm.Iterations, 1);
    EXPECT_FALSE(fit.Converged());
    EXPECT_FALSE(fit.State.Abandoned);
}
