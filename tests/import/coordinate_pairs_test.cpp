// The greedy pairing by distance, compared with the two loops that it replaces.
#include "import/coordinate_pairs.h"

#include <cmath>
#include <limits>
#include <random>

#include "support/fixture.h"

using namespace corvinade;

namespace {

struct Expected {
    std::vector<double> X{0}, Y{0}, Z{0};
    void Add(double x, double y, double z) {
        X.push_back(x);
        Y.push_back(y);
        Z.push_back(z);
    }
    operator CoordinateColumns() const { return {X, Y, Z}; }
};

std::vector<std::int32_t> TwoLoops(const Expected& start, const Expected& target, float etta) {
    std::vector<std::int32_t> partner(start.X.size());
    std::vector<bool> used(target.X.size());
    for (std::size_t i = 1; i < start.X.size(); ++i) {
        double best = 1e10;
        for (std::size_t j = 1; j < target.X.size(); ++j) {
            const double dx = target.X[j] - start.X[i], dy = target.Y[j] - start.Y[i],
                         dz = target.Z[j] - start.Z[i];
            const double d = std::sqrt(dx * dx + dy * dy + dz * dz);
            if (used[j] || !(static_cast<float>(d) < etta && d < best)) continue;
            best = d;
            partner[i] = static_cast<std::int32_t>(j);
        }
        if (partner[i] != 0) used[static_cast<std::size_t>(partner[i])] = true;
    }
    return partner;
}

class CoordinatePairs : public Program {
protected:
    std::mt19937 random_{3};
    double Uniform(double size) { return std::uniform_real_distribution<double>(-size, size)(random_); }
    Expected Cloud(int count, double size, double grid = 0) {
        const auto value = [&] {
            const double v = Uniform(size);
            return grid > 0 ? std::round(v / grid) * grid : v;
        };
        Expected points;
        for (int i = 0; i < count; ++i) {
            const double x = value(), y = value(), z = value();
            points.Add(x, y, z);
        }
        return points;
    }
};

TEST_F(CoordinatePairs, RandomSetsPairAsInTheTwoLoops) {
    for (int round = 0; round < 60; ++round) {
        const Expected start = Cloud(static_cast<int>(random_() % 120), 10),
                       target = Cloud(static_cast<int>(random_() % 120), 10);
        for (const float etta : {0.0F, -1.0F, 0.5F, 3.0F, 1e9F, 1e11F, std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::quiet_NaN()})
            ASSERT_EQ(PairByCoordinates(start, target, etta), TwoLoops(start, target, etta)) << round;
    }
}

TEST_F(CoordinatePairs, EqualDistancesGoToTheLowestNumber) {
    for (int round = 0; round < 60; ++round) {
        const Expected start = Cloud(150, 3, 1), target = Cloud(150, 3, 1);
        for (const float etta : {0.5F, 1.0F, 1.5F, 100.0F})
            ASSERT_EQ(PairByCoordinates(start, target, etta), TwoLoops(start, target, etta)) << round;
    }
}

TEST_F(CoordinatePairs, VerySmallAndVeryLargeCoordinatesPairAsInTheTwoLoops) {
    for (const double size : {1e-170, 1e-3, 1e9, 1e12, 1e160, 1e308}) {
        const Expected start = Cloud(60, size), target = Cloud(60, size);
        for (const float etta : {1e-3F, 1e9F, 3e10F})
            ASSERT_EQ(PairByCoordinates(start, target, etta), TwoLoops(start, target, etta)) << size;
    }
}

TEST_F(CoordinatePairs, PointsThatAreNowherePairWithNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN(),
                 far = std::numeric_limits<double>::infinity();
    Expected start, target;
    start.Add(nan, 0, 0);
    start.Add(far, 0, 0);
    start.Add(0, 0, 0);
    target.Add(far, 0, 0);
    target.Add(0, nan, 0);
    target.Add(0, 0, 0.25);
    EXPECT_EQ(PairByCoordinates(start, target, 1.0F), (std::vector<std::int32_t>{0, 0, 0, 3}));
}

TEST_F(CoordinatePairs, EmptySetsHaveNoPairs) {
    const Expected none, one = Cloud(1, 1);
    EXPECT_EQ(PairByCoordinates(none, one, 10).size(), 1u);
    EXPECT_EQ(PairByCoordinates(one, none, 10), (std::vector<std::int32_t>{0, 0}));
}

TEST_F(CoordinatePairs, CoincidentPointsPairInTheirOrderAtOnce) {
    Expected start, target;
    for (int i = 0; i < 30000; ++i) {
        start.Add(1, 2, 3);
        target.Add(1, 2, 3);
    }
    const std::vector<std::int32_t> partner = PairByCoordinates(start, target, 1e9F);
    for (std::size_t i = 1; i < partner.size(); ++i) ASSERT_EQ(partner[i], static_cast<std::int32_t>(i));
}

TEST_F(CoordinatePairs, SetsFarFromEachOtherPairAtOnceWithAHugeTolerance) {
    Expected start, target;
    for (int i = 0; i < 30000; ++i) {
        start.Add(Uniform(1), Uniform(1), Uniform(1));
        target.Add(1000 + Uniform(1), Uniform(1), Uniform(1));
    }
    const std::vector<std::int32_t> partner = PairByCoordinates(start, target, 1e9F);
    std::vector<bool> used(partner.size());
    for (std::size_t i = 1; i < partner.size(); ++i) {
        ASSERT_NE(partner[i], 0);
        ASSERT_FALSE(used[static_cast<std::size_t>(partner[i])]);
        used[static_cast<std::size_t>(partner[i])] = true;
    }
}

TEST_F(CoordinatePairs, ALargeSetLetsTheCallerInBeforeTheFirstPointIsSearchedAndCanBeStoppedThere) {
    Expected start, target;
    for (int i = 0; i < 300000; ++i) {
        start.Add(i, 0, 0);
        target.Add(i, 0, 0);
    }
    int calls = 0;
    const std::vector<std::int32_t> stopped =
        PairByCoordinates(start, target, 0.5F, [&calls](std::size_t done) {
            ++calls;
            EXPECT_EQ(done, 0U);
            return false;
        });
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(stopped, std::vector<std::int32_t>(300001));

    int before = 0;
    const std::vector<std::int32_t> whole =
        PairByCoordinates(start, target, 0.5F, [&before](std::size_t done) {
            if (done == 0) ++before;
            return true;
        });
    EXPECT_GT(before, 10);
    for (std::size_t i = 1; i < whole.size(); ++i) ASSERT_EQ(whole[i], static_cast<std::int32_t>(i));
}

}  // namespace
