// The search for common distances, compared with the two loops that it stands for.
#include "import/distance_search.h"

#include <cmath>
#include <limits>
#include <random>

#include "support/fixture.h"

using namespace corvinade;

namespace {

std::vector<DistanceCandidate> TwoLoops(const std::vector<double>& start, const std::vector<double>& target,
                                        float etta) {
    std::vector<DistanceCandidate> found;
    for (std::size_t r = 0; r < start.size(); ++r) {
        double best1 = 1e10, best2 = 1e10, match = 0;
        std::size_t bestRow = target.size();
        for (std::size_t s = 0; s < target.size(); ++s) {
            const double difference = start[r] - target[s];
            if (std::fabs(best1) > std::fabs(difference)) {
                best1 = difference;
                bestRow = s;
                match = target[s];
            }
        }
        for (std::size_t s = 0; s < target.size(); ++s) {
            if (s == bestRow) continue;
            const double difference = match - target[s];
            if (std::fabs(best2) > std::fabs(difference)) best2 = difference;
        }
        if (static_cast<float>(std::fabs(best1)) < etta && static_cast<float>(std::fabs(best2)) > etta)
            found.push_back({static_cast<std::int64_t>(r), static_cast<std::int64_t>(bestRow), best1, best2});
        if (found.size() > 5) break;
    }
    return found;
}

class DistanceSearch : public Program {
protected:
    std::mt19937 random_{17};
    double Uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }

    std::vector<double> Distances(int count, double high, double step = 0) {
        std::vector<double> distances;
        for (int i = 0; i < count; ++i) {
            const double d = Uniform(0, high);
            distances.push_back(step > 0 ? std::round(d / step) * step : d);
        }
        return distances;
    }
    static void ExpectLoops(const std::vector<double>& start, const std::vector<double>& target) {
        const float never = std::numeric_limits<float>::quiet_NaN();
        for (const float etta : {0.0F, -1.0F, 1e-6F, 0.01F, 0.1F, 0.8F, 5.0F, 1e5F, 1e9F, 9.9e9F, 1e10F,
                                 2e10F, std::numeric_limits<float>::infinity(), never})
            ASSERT_EQ(SearchDistances(start, target, etta), TwoLoops(start, target, etta)) << etta;
    }
};

TEST_F(DistanceSearch, RandomTablesGiveTheAnswerOfTheLoops) {
    for (int round = 0; round < 40; ++round) {
        const std::vector<double> target = Distances(1 + static_cast<int>(random_() % 400), 1000);
        std::vector<double> start = Distances(150, 1000);
        for (double& d : start)
            if (random_() % 3 == 0) d = target[random_() % target.size()] + Uniform(-0.05, 0.05);
        ExpectLoops(start, target);
    }
}

TEST_F(DistanceSearch, NothingFoundInTheFirstRowsGivesTheAnswerOfTheLoops) {
    for (int round = 0; round < 40; ++round) {
        const std::vector<double> target = Distances(300, 1000);
        std::vector<double> start(50, 1e6);
        for (int i = 0; i < 200; ++i) start.push_back(target[random_() % target.size()] + Uniform(-0.3, 0.3));
        ExpectLoops(start, target);
    }
}

TEST_F(DistanceSearch, EqualDistancesGiveTheAnswerOfTheLoops) {
    for (const double step : {0.5, 1.0, 7.0, 50.0})
        for (int round = 0; round < 20; ++round) {
            const std::vector<double> target = Distances(static_cast<int>(1 + random_() % 30), 100, step);
            std::vector<double> start = Distances(60, 100, step / 2);  // often in the middle of two
            ExpectLoops(start, target);
        }
}

TEST_F(DistanceSearch, TinyTablesGiveTheAnswerOfTheLoops) {
    for (const int count : {0, 1, 3, 6})
        for (int round = 0; round < 40; ++round) {
            const std::vector<double> target = Distances(count, 10);
            std::vector<double> start = Distances(count + 10, 10);
            for (std::size_t i = 0; i < target.size(); ++i) start[i] = target[i] + 0.001;
            ExpectLoops(start, target);
            ExpectLoops(target, start);
        }
}

TEST_F(DistanceSearch, RowsOfZeroAreSearchedLikeAnyOther) {
    for (const std::size_t zeros : {1, 2, 50}) {
        std::vector<double> target = Distances(20, 100);
        target.insert(target.end(), zeros, 0.0);
        std::vector<double> start = Distances(20, 1);
        for (int i = 0; i < 20; ++i) start.push_back(target[random_() % target.size()]);
        ExpectLoops(start, target);
    }
}

TEST_F(DistanceSearch, TwoRowsOfZeroDecideWhatMoreOfThemWould) {
    for (int round = 0; round < 20; ++round) {
        std::vector<double> target = Distances(20, 10);
        std::vector<double> start = Distances(40, 1);
        target.insert(target.end(), 2, 0.0);
        std::vector<double> all = target;
        all.insert(all.end(), 30, 0.0);
        for (const float etta : {0.01F, 0.5F, 3.0F})
            ASSERT_EQ(SearchDistances(start, target, etta), TwoLoops(start, all, etta));
    }
}

TEST_F(DistanceSearch, FarPointsAndUnevenTablesGiveTheAnswerOfTheLoops) {
    for (int round = 0; round < 20; ++round) {
        std::vector<double> target = Distances(200, 1000);
        for (int i = 0; i < 40; ++i) target.push_back(1e7 + Uniform(0, 1000));
        for (int i = 0; i < 40; ++i) target.push_back(std::pow(10, Uniform(-12, 12)));
        target.push_back(1e300);
        std::vector<double> start;
        for (int i = 0; i < 200; ++i)
            start.push_back(target[random_() % target.size()] * (1 + Uniform(-1e-4, 1e-4)));
        ExpectLoops(start, target);
    }
}

TEST_F(DistanceSearch, DistancesThatAreNoFiniteNumbersMatchNothing) {
    const double inf = std::numeric_limits<double>::infinity(),
                 nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> target = {inf, 5, nan, 1e300, inf, 80};
    std::vector<double> start = {nan, inf, nan, inf, nan, inf, nan, 5.05, 80.1, 1e300, inf};
    ExpectLoops(start, target);
    ExpectLoops(target, start);
    ExpectLoops(start, std::vector<double>(30, nan));
}

TEST_F(DistanceSearch, DistancesThatRoundingMakesEquallyNearGiveTheAnswerOfTheLoops) {
    for (int round = 0; round < 40; ++round) {
        std::vector<double> target, start;
        for (int i = 0; i < 20; ++i) target.push_back(Uniform(0, 1e-9));
        for (int i = 0; i < 6; ++i) target.push_back(Uniform(0.5e9, 3e9));
        std::shuffle(target.begin(), target.end(), random_);
        for (int i = 0; i < 40; ++i)
            start.push_back(target[random_() % target.size()] / (i % 2 == 0 ? 2 : 1));
        ExpectLoops(start, target);
        for (const float etta : {0.7e9F, 1.5e9F})
            ASSERT_EQ(SearchDistances(start, target, etta), TwoLoops(start, target, etta));
    }
}

TEST_F(DistanceSearch, HalfAMillionLevelDistancesAreSearchedAtOnce) {
    const std::vector<double> target(500000, 100.0), start(500000, 100.0);
    EXPECT_TRUE(SearchDistances(start, target, 0.5F).empty());
}

TEST_F(DistanceSearch, HalfAMillionDistancesInTheMiddleOfTwoAreSearchedAtOnce) {
    std::vector<double> target, start;
    for (int i = 0; i < 500000; ++i) {
        target.push_back(i % 1000);
        start.push_back(i % 999 + 0.5);
    }
    EXPECT_TRUE(SearchDistances(start, target, 0.8F).empty());
}

TEST_F(DistanceSearch, TheCallBeforeEachRowCanEndIt) {
    std::vector<std::int64_t> rows;
    const std::vector<double> table = {10, 20, 30, 40, 50, 60, 70, 80, 90};
    const auto found = SearchDistances(table, table, 0.5F, [&](std::int64_t row, int count) {
        EXPECT_EQ(row, count);
        rows.push_back(row);
        return row < 4;
    });
    EXPECT_EQ(rows.size(), 5u);
    EXPECT_EQ(found.size(), 4u);
    EXPECT_EQ(SearchDistances(table, table, 0.5F).size(), 6u);
}

TEST_F(DistanceSearch, RowsOfATableStandForPairsInTheirOrder) {
    const std::vector<double> x = {0, 0, 3, 0, 0}, y = {0, 0, 0, 4, 0}, z = {0, 0, 0, 0, 12};
    EXPECT_EQ(DistancesOfPairs(x, y, z, 4),
              (std::vector<double>{3, 4, 12, 5, std::sqrt(9.0 + 144.0), std::sqrt(16.0 + 144.0)}));
    for (const std::int64_t count : {2, 3, 7, 50}) {
        std::int64_t row = 0;
        for (std::int64_t i = 1; i <= count; ++i)
            for (std::int64_t j = i + 1; j <= count; ++j, ++row) {
                ASSERT_EQ(PairOfRow(row, count).First, i);
                ASSERT_EQ(PairOfRow(row, count).Second, j);
            }
    }
    EXPECT_TRUE(DistancesOfPairs(x, y, z, 0).empty());
    EXPECT_TRUE(DistancesOfPairs(x, y, z, 1).empty());
}

}  // namespace
