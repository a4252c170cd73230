// The adjustment of a network by itself: numbers and a listener, no file, no window, no job.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "fit/bundle_adjustment.h"

using namespace corvinade::fit;

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

using Places = std::vector<Vec3>;

double Apart(const Vec3& a, const Vec3& b) {
    return std::hypot(a(1) - b(1), a(2) - b(2), a(3) - b(3));
}

Matrix Rows(const Places& places) {
    Matrix rows(static_cast<int>(places.size()), 3);
    for (int i = 1; i <= rows.Rows; ++i)
        for (int axis = 1; axis <= 3; ++axis) rows(i, axis) = places[At(i - 1)](axis);
    return rows;
}

Vec3 PlaceOf(const Matrix& rows, int i) {
    return {rows(i, 1), rows(i, 2), rows(i, 3)};
}

// Stations and object points in a hall, mm, as they are, and a problem whose coordinates are off by some.
struct Hall {
    Places Stations, Objects;
    BundleProblem Problem;
    std::mt19937 Random{7};
    double Even(double size) { return std::uniform_real_distribution<>(-size, size)(Random); }

    Hall(int stations, int objects, double noise) {
        const auto near = [this](Places places) {
            for (Vec3& p : places)
                for (int axis = 1; axis <= 3; ++axis) p(axis) += Even(8);
            return Rows(places);
        };
        for (int i = 0; i < stations; ++i) Stations.emplace_back(Even(4000), Even(4000), Even(700));
        for (int i = 0; i < objects; ++i) Objects.emplace_back(Even(3000), Even(3000), Even(2000));
        Problem.Approximate = {.StationXYZ = near(Stations), .ObjectXYZ = near(Objects)};
        for (int o = 1; o <= objects; ++o) Problem.Choice.UsedObject.push_back(o);
        for (int s = 1; s <= stations; ++s)
            for (int o = 1; o <= objects; ++o) Measure(s, o, Even(noise));
    }
    void Measure(int s, int o, double error) {
        Problem.Choice.StationOf.push_back(s);
        Problem.Choice.ObjectOf.push_back(o);
        Problem.Approximate.DistanceValue.push_back(Apart(Stations[At(s - 1)], Objects[At(o - 1)]) + error);
    }
};

double SumOfSquares(const BundleProblem& problem, const BundleNetwork& network) {
    double sum = 0;
    for (std::size_t k = 1; k < network.DistanceValue.size(); ++k) {
        const int o = problem.Choice.UsedObject[At(problem.Choice.ObjectOf[k])];
        const double v =
            Apart(PlaceOf(network.StationXYZ, problem.Choice.StationOf[k]), PlaceOf(network.ObjectXYZ, o)) -
            network.DistanceValue[k];
        sum += v * v;
    }
    return sum;
}

}  // namespace

TEST(BundleAlone, DistancesWithoutErrorsGiveTheShapeBack) {
    const Hall hall(5, 11, 0);
    const BundleResult result = AdjustBundle(hall.Problem);
    ASSERT_EQ(result.End, BundleEnd::Converged);
    EXPECT_EQ(result.Work.nUnknown, 3 * 16 - 6);
    EXPECT_EQ(result.Work.OpenMoves, 0);
    for (int a = 1; a <= 11; ++a) {
        for (int b = 1; b < a; ++b)
            EXPECT_NEAR(Apart(PlaceOf(result.Adjusted.ObjectXYZ, a), PlaceOf(result.Adjusted.ObjectXYZ, b)),
                        Apart(hall.Objects[At(a - 1)], hall.Objects[At(b - 1)]), 1e-6);
    }
    for (int a = 1; a <= 5; ++a)
        for (int b = 1; b < a; ++b)
            EXPECT_NEAR(Apart(PlaceOf(result.Adjusted.StationXYZ, a), PlaceOf(result.Adjusted.StationXYZ, b)),
                        Apart(hall.Stations[At(a - 1)], hall.Stations[At(b - 1)]), 1e-6);
}

TEST(BundleAlone, OfDistancesWithErrorsNoChangeOfACoordinateMakesTheSumLess) {
    const Hall hall(4, 9, 0.5);
    const BundleResult result = AdjustBundle(hall.Problem);
    ASSERT_EQ(result.End, BundleEnd::Converged);
    const double least = SumOfSquares(hall.Problem, result.Adjusted);
    EXPECT_GT(least, 0.01);
    EXPECT_NEAR(result.Work.SumVV, least, 1e-9 * least);
    EXPECT_DOUBLE_EQ(BundleS0(result.Work), std::sqrt(result.Work.SumVV / (4 * 9 - 1)));
    BundleNetwork moved = result.Adjusted;
    for (Matrix* rows : {&moved.StationXYZ, &moved.ObjectXYZ})
        for (int i = 1; i <= rows->Rows; ++i)
            for (int axis = 1; axis <= 3; ++axis) {
                double& coordinate = (*rows)(i, axis);
                const double at = coordinate, h = 0.01;
                coordinate = at + h;
                const double more = SumOfSquares(hall.Problem, moved);
                coordinate = at - h;
                const double less = SumOfSquares(hall.Problem, moved);
                coordinate = at;
                EXPECT_NEAR((more - less) / (2 * h), 0, 1e-5) << i << ", " << axis;
                EXPECT_GT(std::min(more, less), least);
            }
}

TEST(BundleAlone, TheHeldCoordinatesStayAndTheProblemIsNotTouched) {
    const Hall hall(4, 9, 0.5);
    const BundleProblem before = hall.Problem;
    const BundleResult result = AdjustBundle(hall.Problem);
    EXPECT_EQ(hall.Problem.Approximate.StationXYZ.Elements, before.Approximate.StationXYZ.Elements);
    int held = 0;
    for (int column = 1; column <= 12; ++column) {
        if (result.Work.Unknown[At(column)] != 0) continue;
        ++held;
        const int station = (column - 1) / 3 + 1, axis = (column - 1) % 3 + 1;
        EXPECT_EQ(result.Adjusted.StationXYZ(station, axis), before.Approximate.StationXYZ(station, axis));
        EXPECT_FALSE(BundleAccuracy(result.Work, column));
    }
    EXPECT_EQ(held, 6);
}

TEST(BundleAlone, APointOfTwoDistancesIsOpenAndTheOthersAreNot) {
    Hall hall(5, 8, 0.2);
    hall.Objects.emplace_back(100, 200, 300);
    BundleNetwork& network = hall.Problem.Approximate;
    Places objects;
    for (int i = 1; i <= 8; ++i) objects.push_back(PlaceOf(network.ObjectXYZ, i));
    objects.emplace_back(103, 198, 301);
    network.ObjectXYZ = Rows(objects);
    hall.Problem.Choice.UsedObject.push_back(9);
    hall.Measure(1, 9, 0);
    hall.Measure(4, 9, 0);
    const BundleResult result = AdjustBundle(hall.Problem);
    EXPECT_EQ(result.Work.OpenMoves, 1);
    bool any = false;
    for (int axis = 1; axis <= 3; ++axis) any |= result.Work.Open[At(3 * (5 + 8) + axis)];
    EXPECT_TRUE(any);
    for (int column = 1; column <= 3 * (5 + 8); ++column) EXPECT_FALSE(result.Work.Open[At(column)]);
}

TEST(BundleAlone, TheListenerHearsEachStepAndIteration) {
    const Hall hall(4, 9, 0.5);
    std::vector<BundleStage> stages;
    std::vector<int> iterations;
    const BundleResult result = AdjustBundle(
        hall.Problem, {.Heard = [&](BundleStage stage) { stages.push_back(stage); },
                       .Iteration = [&](const BundleWork& work) { iterations.push_back(work.Iterations); }});
    ASSERT_EQ(iterations.size(), At(result.Work.Iterations));
    ASSERT_EQ(stages.size(), 9 * iterations.size());
    for (std::size_t i = 0; i < stages.size(); ++i) EXPECT_EQ(stages[i], static_cast<BundleStage>(i % 9));
    for (std::size_t i = 0; i < iterations.size(); ++i) EXPECT_EQ(iterations[i], static_cast<int>(i) + 1);
}

TEST(BundleAlone, AStopKeepsTheIterationsThatAreDoneAndAReplacedNetworkEndsAtOnce) {
    const Hall hall(4, 9, 0.5);
    int asked = 0;
    const BundleResult stopped =
        AdjustBundle(hall.Problem, {.StopIsWanted = [&asked] { return ++asked >= 2; }});
    EXPECT_EQ(stopped.End, BundleEnd::Stopped);
    EXPECT_GE(stopped.Work.Iterations, 1);
    EXPECT_LT(stopped.Work.Iterations, AdjustBundle(hall.Problem).Work.Iterations);
    EXPECT_LT(SumOfSquares(hall.Problem, stopped.Adjusted),
              SumOfSquares(hall.Problem, hall.Problem.Approximate));
    EXPECT_EQ(AdjustBundle(hall.Problem, {.GoesOn = [] { return false; }}).End, BundleEnd::Abandoned);
}

TEST(BundleAlone, StationsOnALineAndNumbersBeyondSquaresAreRefused) {
    Hall line(3, 6, 0);
    line.Problem.Approximate.StationXYZ = Rows({{0, 0, 0}, {1, 2, 3}, {2, 4, 6}});
    EXPECT_EQ(AdjustBundle(line.Problem).End, BundleEnd::OnALine);
    Hall far(4, 6, 0);
    far.Problem.Approximate.DistanceValue[3] = 1e160;
    const BundleResult result = AdjustBundle(far.Problem);
    EXPECT_EQ(result.End, BundleEnd::NotFinite);
    EXPECT_EQ(result.Adjusted.ObjectXYZ.Elements, far.Problem.Approximate.ObjectXYZ.Elements);
    Hall few(4, 6, 0.5);
    few.Problem.MostIterations = 1;
    EXPECT_EQ(AdjustBundle(few.Problem).End, BundleEnd::NoEnd);
}
