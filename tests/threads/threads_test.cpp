// Fits in several threads at once, under the thread sanitizer: it ends the program where one of them writes
// what another one reads or writes.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <thread>

#include "corvinade/fit.h"
#include "corvinade/moments.h"

using namespace corvinade;

namespace {

struct Cell {
    std::vector<double> Start, Target;

    explicit Cell(unsigned seed) {
        std::mt19937_64 random(seed);
        std::uniform_real_distribution<double> place(-1000, 1000), error(-0.1, 0.1);
        for (int i = 0; i < 3 * 12; ++i) Start.push_back(place(random));
        Target.resize(Start.size());
        Apply(MatrixOf({.Translation = {100.0 * seed, -20, 30}, .Rotation = {0.1, -0.2, 0.3 * seed}}), Start,
              Target);
        for (double& coordinate : Target) coordinate += error(random);
    }
};

FitResult Fitted(const Cell& cell, const char* parameters, const char* norm) {
    const std::array<double, 3> sigma{0.1, 0.2, 0.3};
    FitOptions options;
    options.Parameters = ChoiceByName(parameters);
    options.Which = NormByName(norm);
    if (options.Which == Norm::L2) options.TargetSigma = sigma;
    return Fit(Points(cell.Start), Points(cell.Target), options);
}

}  // namespace

TEST(Threads, FitAtOnceAndTouchNothingOfEachOther) {
    // Least squares with whatever floats; the norms, which take longer, rigid and affine alone.
    for (const char* norm : {"l2", "l1", "loo", "l1-exact", "minimax"})
        for (const char* parameters : {"level", "6", "7", "9", "12"}) {
            if (std::string(norm) != "l2" && *parameters != '6' && *parameters != '1') continue;
            if (std::string(norm) == "l1-exact" && *parameters != '6') continue;
            SCOPED_TRACE(std::string(norm) + " " + parameters);
            std::vector<std::thread> threads;
            std::array<FitResult, 3> together;
            for (std::size_t i = 0; i < together.size(); ++i)
                threads.emplace_back([&together, i, parameters, norm] {
                    together[i] = Fitted(Cell(static_cast<unsigned>(i)), parameters, norm);
                });
            for (std::thread& thread : threads) thread.join();
            for (std::size_t i = 0; i < together.size(); ++i) {
                const FitResult alone = Fitted(Cell(static_cast<unsigned>(i)), parameters, norm);
                EXPECT_EQ(alone.Values, together[i].Values);
                EXPECT_EQ(alone.Residuals, together[i].Residuals);
            }
        }
}

TEST(Threads, ReadTheSameSumsAndTakeTheirOwn) {
    const Cell cell(3);
    Moments shared;
    shared.Add(Points(cell.Start), Points(cell.Target));
    std::vector<std::thread> threads;
    std::array<Moments, 3> own;
    std::array<FitResult, 3> together;
    for (std::size_t i = 0; i < own.size(); ++i)
        threads.emplace_back([&, i] {
            own[i].Merge(shared);
            own[i].Add(Points(cell.Start), Points(cell.Target));
            together[i] = Fit(shared);
        });
    for (std::thread& thread : threads) thread.join();
    for (std::size_t i = 1; i < own.size(); ++i) {
        EXPECT_EQ(own[i].Bytes(), own[0].Bytes());
        EXPECT_EQ(together[i].Values, Fit(shared).Values);
    }
}
