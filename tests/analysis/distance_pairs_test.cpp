// The distances of all pairs against a second way of computing them.
#include "analysis/distance_pairs.h"

#include <cmath>
#include <limits>

#include "analysis/distance_job.h"

using namespace corvinade;

namespace {

using DistancePairs = DistanceJob;

// Two points apart by `from` at the start and by `to` at the target, on an axis.
DistancePoints OnAnAxis(const std::vector<double>& from, const std::vector<double>& to) {
    DistancePoints points;
    for (std::size_t i = 0; i < from.size(); ++i) {
        points.Names.push_back("P" + std::to_string(i + 1));
        for (auto* side : {&points.From, &points.To})
            for (auto& column : *side) column.push_back(0);
        points.From[0].back() = from[i];
        points.To[0].back() = to[i];
    }
    return points;
}

double Distance(const std::array<std::vector<double>, 3>& p, int i, int j) {
    const auto a = static_cast<std::size_t>(i), b = static_cast<std::size_t>(j);
    return std::sqrt((p[0][a] - p[0][b]) * (p[0][a] - p[0][b]) + (p[1][a] - p[1][b]) * (p[1][a] - p[1][b]) +
                     (p[2][a] - p[2][b]) * (p[2][a] - p[2][b]));
}

TEST_F(DistancePairs, ExtremesAndSumsAreThoseOfThePlainLoopOverAllPartners) {
    Cloud(37);
    const DistancePoints points = TakeDistancePoints(false);
    std::vector<DistanceExtremes> rows;
    ASSERT_TRUE(MeasurePoints(points, rows));
    for (int i = 1; i <= 37; ++i) {
        float maxDelta = -1e8F, minDelta = 1e9F, maxScale = -1e9F, minScale = 1e9F, sumAbs = 0, sumScale = 0;
        int at[4] = {};
        for (int j = 1; j <= 37; ++j) {
            if (j == i) continue;
            const double s1 = Distance(points.From, i, j), s2 = Distance(points.To, i, j);
            const double scale = s2 / (s1 + 1e-10), delta = s2 - s1;
            if (static_cast<float>(delta) > maxDelta) maxDelta = static_cast<float>(delta), at[0] = j;
            if (static_cast<float>(delta) < minDelta) minDelta = static_cast<float>(delta), at[1] = j;
            if (static_cast<float>(scale) > maxScale) maxScale = static_cast<float>(scale), at[2] = j;
            if (static_cast<float>(scale) < minScale) minScale = static_cast<float>(scale), at[3] = j;
            sumAbs = static_cast<float>(static_cast<double>(sumAbs) + std::fabs(delta));
            sumScale = static_cast<float>(static_cast<double>(sumScale) + scale);
        }
        const DistanceExtremes& row = rows[static_cast<std::size_t>(i)];
        EXPECT_EQ(row.MaxDelta, maxDelta);
        EXPECT_EQ(row.MinDelta, minDelta);
        EXPECT_EQ(row.MaxScale, maxScale);
        EXPECT_EQ(row.MinScale, minScale);
        EXPECT_EQ(row.SumAbs, sumAbs);
        EXPECT_EQ(row.SumScale, sumScale);
        EXPECT_EQ(row.MaxDeltaAt, at[0]);
        EXPECT_EQ(row.MinDeltaAt, at[1]);
        EXPECT_EQ(row.MaxScaleAt, at[2]);
        EXPECT_EQ(row.MinScaleAt, at[3]);
    }
}

TEST_F(DistancePairs, APairHasTheSameNumbersInBothDirections) {
    Cloud(20);
    const DistancePoints points = TakeDistancePoints(false);
    for (int i = 1; i <= 20; ++i)
        for (int j = 1; j < i; ++j) {
            const TrumpetPair pair = PairOfPoints(points, i, j);
            EXPECT_EQ(pair, PairOfPoints(points, j, i));
            const double s1 = Distance(points.From, i, j), s2 = Distance(points.To, i, j);
            EXPECT_EQ(pair, (TrumpetPair{static_cast<float>(s1), static_cast<float>(s2),
                                         static_cast<float>(s2 - s1)}));
        }
}

TEST_F(DistancePairs, TheDifferenceIsTakenBeforeItIsRounded) {
    // In 32 bits both distances are 100000, and their difference would be nothing.
    const DistancePoints points = OnAnAxis({0, 100000.001}, {0, 100000.002});
    const TrumpetPair pair = PairOfPoints(points, 1, 2);
    EXPECT_EQ(pair.FromDistance, 100000.0F);
    EXPECT_EQ(pair.ToDistance, 100000.0F);
    EXPECT_NEAR(pair.DeltaS, 0.001, 1e-9);
}

TEST_F(DistancePairs, OfEqualExtremesTheFirstPartnerStands) {
    std::vector<DistanceExtremes> rows;
    // From the first point on, the others are 10 and 11 off, twice each: 1 at P2 and P4.
    MeasurePoints(OnAnAxis({0, 10, -10, 10}, {0, 11, -11, 11}), rows);
    EXPECT_EQ(rows[1].MaxDeltaAt, 2);
    EXPECT_EQ(rows[1].MinDeltaAt, 2);
    EXPECT_EQ(rows[1].MaxScaleAt, 2);
    EXPECT_EQ(rows[1].MinScaleAt, 2);
}

TEST_F(DistancePairs, PointsThatCoincideAtTheStartGiveALargeScaleAndNoFault) {
    std::vector<DistanceExtremes> rows;
    MeasurePoints(OnAnAxis({5, 5}, {0, 0.02}), rows);
    EXPECT_EQ(rows[1].MaxScale, static_cast<float>(0.02 / 1e-10));
    EXPECT_EQ(rows[1].MinScale, static_cast<float>(0.02 / 1e-10));
    EXPECT_EQ(rows[1].MaxScaleAt, 2);
    EXPECT_EQ(rows[1].MaxDelta, 0.02F);
}

TEST_F(DistancePairs, WhatIsBeyondTheValuesThatTheSearchBeginsWithIsNoExtreme) {
    std::vector<DistanceExtremes> rows;
    MeasurePoints(OnAnAxis({0, 3e9}, {0, 1e9}), rows);  // delta s -2e9
    EXPECT_EQ(rows[1].MaxDelta, -1e8F);
    EXPECT_EQ(rows[1].MaxDeltaAt, 0);
    EXPECT_EQ(rows[1].MinDeltaAt, 2);
    MeasurePoints(OnAnAxis({0, 0}, {0, 10}), rows);  // scale 1e11
    EXPECT_EQ(rows[1].MinScale, 1e9F);
    EXPECT_EQ(rows[1].MinScaleAt, 0);
    EXPECT_EQ(rows[1].MaxScaleAt, 2);
}

TEST_F(DistancePairs, CoordinatesAtTheEndOfTheRangeDoNoHarm) {
    const double most = std::numeric_limits<double>::max(), nan = std::numeric_limits<double>::quiet_NaN();
    const DistancePoints points = OnAnAxis({0, most, -most, nan, 1}, {0, -most, most, 2, 3});
    std::vector<DistanceExtremes> rows;
    EXPECT_TRUE(MeasurePoints(points, rows));
    TrumpetRange range;
    EXPECT_TRUE(RangeOfPairs(points, range));
    EXPECT_EQ(range.Pairs, 1) << "the first and the last point alone are numbers apart";
    EXPECT_EQ(range.XMax, 3);
    EXPECT_EQ(range.YMin, 2);
    EXPECT_EQ(range.YMax, 2);
}

TEST_F(DistancePairs, TheRangeIsThatOfAllPairs) {
    Triangle();
    TrumpetRange range;
    ASSERT_TRUE(RangeOfPairs(TakeDistancePoints(false), range));
    EXPECT_EQ(range, (TrumpetRange{3, 16, -2, 3}));
}

TEST_F(DistancePairs, WorkEndsWhereItIsToldTo) {
    Cloud(10);
    const DistancePoints points = TakeDistancePoints(false);
    std::vector<DistanceExtremes> rows;
    std::vector<double> shares;
    EXPECT_FALSE(MeasurePoints(points, rows, [&shares](double share) {
        shares.push_back(share);
        return shares.size() < 4;
    }));
    EXPECT_EQ(shares.size(), 4u);
    EXPECT_EQ(rows[3].MaxDeltaAt == 0, false);
    EXPECT_EQ(rows[4].MaxDeltaAt, 0);
    TrumpetRange range;
    EXPECT_FALSE(RangeOfPairs(points, range, [](double share) { return share < 0.3; }));
}

TEST_F(DistancePairs, TransformedPointsStandInForTheStartPoints) {
    Pair("A", {0, 0, 0}, {0, 0, 0}, {1, 1, 1});
    Pair("B", {3, 4, 0}, {5, 0, 0}, {1, 1, 8});
    EXPECT_EQ(PairOfPoints(TakeDistancePoints(false), 1, 2).FromDistance, 5);
    EXPECT_EQ(PairOfPoints(TakeDistancePoints(true), 1, 2).FromDistance, 7);
}

TEST_F(DistancePairs, WithoutDataThereAreNone) {
    Triangle();
    Run.JobDataValid = kFalse;
    EXPECT_EQ(TakeDistancePoints(false).Count(), 0);
    Run.JobDataValid = kTrue;
    Job.Target.Resize(2);  // a pair has lost its target
    EXPECT_EQ(TakeDistancePoints(false).Count(), 2);
}

}  // namespace
