// The mathematics by itself: no job, no window, no settings, and nothing to be made fresh before a test.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "fit/adjustment.h"
#include "fit/chain.h"
#include "fit/start_values.h"

using namespace corvinade::fit;

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Points of a cell in mm, and where the truth takes them.
struct Cloud {
    std::array<std::vector<double>, 3> Start, Target;

    void Add(const Vec3& p, const Vec3& q) {
        for (int axis = 1; axis <= 3; ++axis) {
            Start[At(axis - 1)].push_back(p(axis));
            Target[At(axis - 1)].push_back(q(axis));
        }
    }
    PairColumns Columns() const {
        return {.Start = {Start[0], Start[1], Start[2]}, .Target = {Target[0], Target[1], Target[2]}};
    }
    SeedPoints Seeds() const {
        SeedPoints seeds;
        for (int k = 1; k <= 3; ++k) {
            const std::size_t i = At(k - 1);
            seeds.Pair[At(k)] = k;
            seeds.Start[At(k)] = {Start[0][i], Start[1][i], Start[2][i]};
            seeds.Target[At(k)] = {Target[0][i], Target[1][i], Target[2][i]};
        }
        seeds.Reference = ReferenceInFrame(seeds.Target);
        return seeds;
    }
};

const std::vector<Vec3> kCorners = {{0, 0, 0},      {1000, 20, -30}, {15, 800, 40},
                                    {-25, 35, 600}, {700, 500, 300}, {300, -400, 200}};

FitModel ModelOf(std::initializer_list<int> floating) {
    FitModel model;
    for (const int parameter : floating) model.UnknownOf[At(parameter)] = ++model.Unknowns;
    return model;
}

StartChoice ChoiceOf(const FitModel& model) {
    StartChoice choice;
    for (int k = kTraX; k < kParameterEnd; ++k) choice.Floats[At(k)] = model.UnknownOf[At(k)] != 0;
    return choice;
}

const FitModel kSimilarity = ModelOf({kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleXYZ});
const FitModel kTranslation = ModelOf({kTraX, kTraY, kTraZ});

// A quarter turn about z by hand, twice as large, moved.
Vec3 TurnedAndMoved(const Vec3& p) {
    return {-2 * p(2) + 100, 2 * p(1) - 200, 2 * p(3) + 300};
}

struct Fitted {
    FitRun Run;
    IterationResult Result;
    GatheredPoints Points;

    Fitted(const Cloud& cloud, const FitModel& model, FitListener listener = {}, int most = 100) {
        Column P(3 * cloud.Start[0].size() + 1, 1);
        GatherPoints(cloud.Columns(), P, false, Points);
        Run.Limits.MaxIteration = most;
        Run.Listener = std::move(listener);
        Run.Now = StartValues(ChoiceOf(model), cloud.Seeds());
        Iterate(Run, model, Points, P, Result);
    }
};

Cloud TurnedCloud() {
    Cloud cloud;
    for (const Vec3& p : kCorners) cloud.Add(p, TurnedAndMoved(p));
    return cloud;
}

}  // namespace

TEST(FitAlone, FindsASimilarityThatWasMadeByHand) {
    const Fitted fit(TurnedCloud(), kSimilarity);
    EXPECT_TRUE(fit.Run.State.Converged);
    const Parameters& p = fit.Run.Now;
    EXPECT_NEAR(p[kTraX], 100, 1e-9);
    EXPECT_NEAR(p[kTraY], -200, 1e-9);
    EXPECT_NEAR(p[kTraZ], 300, 1e-9);
    EXPECT_NEAR(p[kScaleXYZ], 2, 1e-12);
    ChainRecord chain;
    BuildChain(ChainSourceOf(p), chain);
    const Vec3 x(chain.Product(1, 1), chain.Product(2, 1), chain.Product(3, 1));
    EXPECT_NEAR(x(1), 0, 1e-12);
    EXPECT_NEAR(x(2), 2, 1e-12);
    EXPECT_NEAR(x(3), 0, 1e-12);
    for (std::size_t i = 1; i < fit.Result.v.size(); ++i) EXPECT_NEAR(fit.Result.v[i], 0, 1e-9);
}

TEST(FitAlone, OfATranslationGivesTheMeanAndItsInverse) {
    Cloud cloud;
    const std::vector<double> noise = {0.3, -0.2, 0.05, 0.11, -0.4, 0.02};
    double sum = 0;
    for (std::size_t i = 0; i < kCorners.size(); ++i) {
        const Vec3& p = kCorners[i];
        cloud.Add(p, {p(1) + 10 + noise[i], p(2) - noise[i], p(3)});
        sum += noise[i];
    }
    const double n = static_cast<double>(kCorners.size()), mean = sum / n;
    // Held at neutral, the other parameters are where the raw solution would not have them.
    Fitted fit(cloud, kTranslation);
    ASSERT_TRUE(fit.Run.State.Converged);
    EXPECT_NEAR(fit.Run.Now[kTraX], 10 + mean, 1e-10);
    EXPECT_NEAR(fit.Run.Now[kTraY], -mean, 1e-10);
    EXPECT_NEAR(fit.Run.Now[kTraZ], 0, 1e-10);
    for (int k = 1; k <= 3; ++k) EXPECT_NEAR(fit.Result.Q(k, k), 1 / n, 1e-12);
    for (std::size_t i = 0; i < noise.size(); ++i) {
        EXPECT_NEAR(fit.Result.v[3 * i + 1], mean - noise[i], 1e-10);
        EXPECT_NEAR(fit.Result.v[3 * i + 2], noise[i] - mean, 1e-10);
        EXPECT_NEAR(fit.Result.v[3 * i + 3], 0, 1e-10);
    }
}

TEST(FitAlone, TellsItsStepsInTheirOrder) {
    std::vector<FitStep> steps;
    std::vector<int> passes;
    FitListener listener;
    listener.Hear = [&](const FitEvent& event) {
        steps.push_back(event.Step);
        if (event.Step == FitStep::PassBegins) passes.push_back(event.Iterations);
        EXPECT_EQ(event.Corrections != nullptr, event.Step == FitStep::PassEnds);
        if (event.Corrections != nullptr) {
            EXPECT_EQ(event.Corrections->size(), 8U);
        }
        return true;
    };
    const Fitted fit(TurnedCloud(), kSimilarity, listener);
    ASSERT_GE(steps.size(), 6U);
    const std::vector<FitStep> first = {FitStep::PassBegins, FitStep::Linearised, FitStep::Summed,
                                        FitStep::Solved};
    EXPECT_TRUE(std::equal(first.begin(), first.end(), steps.begin()));
    EXPECT_EQ(steps.back(), FitStep::IterationEnds);
    ASSERT_EQ(static_cast<int>(passes.size()), fit.Run.State.Iterations);
    for (std::size_t i = 0; i < passes.size(); ++i) EXPECT_EQ(passes[i], static_cast<int>(i));
}

TEST(FitAlone, AListenerThatWantsToStopGetsWhatThereIs) {
    FitListener listener;
    listener.StopIsWanted = [] { return true; };
    const Fitted fit(TurnedCloud(), kSimilarity, listener);
    EXPECT_EQ(fit.Run.State.Iterations, 1);
    EXPECT_FALSE(fit.Run.State.Abandoned);
    EXPECT_EQ(fit.Result.v.size(), 3 * kCorners.size() + 1);
    EXPECT_EQ(fit.Result.Q.Rows, 7);
}

TEST(FitAlone, AListenerThatAbandonsGetsNothing) {
    int heard = 0;
    FitListener listener;
    listener.Hear = [&heard](const FitEvent&) { return ++heard < 3; };
    const Fitted fit(TurnedCloud(), kSimilarity, listener);
    EXPECT_EQ(heard, 3);
    EXPECT_TRUE(fit.Run.State.Abandoned);
    EXPECT_FALSE(fit.Run.State.Converged);
    EXPECT_EQ(fit.Result.Q.Rows, -1);
}

TEST(FitAlone, EndsAtItsLimitOnDataWithoutANumber) {
    Cloud cloud = TurnedCloud();
    cloud.Target[1][2] = std::nan("");
    const Fitted fit(cloud, kSimilarity);
    EXPECT_FALSE(fit.Run.State.Converged);
    EXPECT_FALSE(fit.Run.State.Finite);
    EXPECT_GT(fit.Run.State.Iterations, 100);
}

TEST(FitAlone, TwoFitsAtOnceKnowNothingOfEachOther) {
    const Cloud turned = TurnedCloud();
    Cloud moved;
    for (const Vec3& p : kCorners) moved.Add(p, {p(1) + 1, p(2) + 2, p(3) + 3});
    const Fitted alone(turned, kSimilarity);
    std::vector<Parameters> inner;
    FitListener listener;
    listener.Hear = [&](const FitEvent& event) {
        if (event.Step == FitStep::Linearised) inner.push_back(Fitted(moved, kSimilarity).Run.Now);
        return true;
    };
    const Fitted outer(turned, kSimilarity, listener);
    EXPECT_EQ(outer.Run.Now, alone.Run.Now);
    ASSERT_FALSE(inner.empty());
    for (const Parameters& p : inner) EXPECT_NEAR(p[kTraZ], 3, 1e-9);
}
