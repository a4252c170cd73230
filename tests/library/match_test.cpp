// Which points are the same, by the library: against the order that the test itself has made.
#include "corvinade/match.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "corvinade/transformation.h"

using namespace corvinade;

namespace {

template <class Work>
std::string WhatOf(Work work) {
    try {
        work();
    } catch (const InvalidInput& error) {
        return error.what();
    }
    return "";
}

// Marks of a cell, and the same in another order with errors of some hundredths; three of either are the
// other's no points.
struct Sets {
    std::vector<double> Start, Target;
    std::vector<std::ptrdiff_t> Partner;

    explicit Sets(const Chain& way) {
        constexpr std::size_t kCommon = 14, kAlone = 3;
        std::mt19937_64 random(5);
        std::uniform_real_distribution<double> place(-1500, 1500), error(-0.02, 0.02);
        for (std::size_t i = 0; i < 3 * (kCommon + kAlone); ++i) Start.push_back(place(random));
        std::vector<double> there(Start.size());
        Apply(MatrixOf(way), Start, there);
        std::vector<std::size_t> order(kCommon + kAlone);
        std::iota(order.begin(), order.end(), 0U);
        std::shuffle(order.begin(), order.end(), random);
        Partner.assign(kCommon + kAlone, kNoPartner);
        for (const std::size_t i : order) {
            const bool common = i < kCommon;
            if (common) Partner[i] = static_cast<std::ptrdiff_t>(Target.size() / 3);
            for (std::size_t axis = 0; axis < 3; ++axis)
                Target.push_back(common ? there[3 * i + axis] + error(random) : 5000 + place(random));
        }
    }
};

}  // namespace

TEST(Matching, ByCoordinatesFindsThePartnersInOneSystem) {
    const Sets sets({});
    EXPECT_EQ(MatchByCoordinates(Points(sets.Start), Points(sets.Target), 0.5), sets.Partner);
    // The first one takes the nearest.
    const std::vector<double> two{0, 0, 0, 1, 0, 0}, one{0.6, 0, 0};
    EXPECT_EQ(MatchByCoordinates(Points(two), Points(one), 0.8),
              (std::vector<std::ptrdiff_t>{0, kNoPartner}));
    EXPECT_EQ(MatchByCoordinates(Points(two), Points(one), 0.5),
              (std::vector<std::ptrdiff_t>{kNoPartner, 0}));
}

TEST(Matching, ByDistancesFindsThemInAnyTwoSystems) {
    for (const Chain& way : {Chain{}, Chain{.Translation = {1200, -3400, 560}, .Rotation = {0.4, -1.2, 2.5}},
                             Chain{.Translation = {1e5, 2e5, -3e4}, .Rotation = {-3, 0.1, 1.5}}}) {
        const Sets sets(way);
        EXPECT_EQ(MatchByDistances(Points(sets.Start), Points(sets.Target), 0.2), sets.Partner);
    }
    // Points as columns, and in the other direction.
    const Sets sets({.Rotation = {0, 0, 1}});
    const std::size_t count = sets.Start.size() / 3;
    std::vector<double> columns;
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t i = 0; i < count; ++i) columns.push_back(sets.Start[3 * i + axis]);
    const auto back = MatchByDistances(
        Points(sets.Target), Points(columns.data(), count, 1, static_cast<std::ptrdiff_t>(count)), 0.2);
    for (std::size_t i = 0; i < count; ++i) {
        if (sets.Partner[i] == kNoPartner) continue;
        EXPECT_EQ(back[static_cast<std::size_t>(sets.Partner[i])], static_cast<std::ptrdiff_t>(i));
    }
}

TEST(Matching, HasNoPartnersWhereNoDistancesAreAlike) {
    const Sets sets({});
    const std::vector<double> others{0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 4};
    EXPECT_EQ(MatchByDistances(Points(sets.Start), Points(others), 0.2),
              std::vector<std::ptrdiff_t>(17, kNoPartner));
}

TEST(Matching, SaysWhatIsWrongAndEndsWhenTold) {
    const Sets sets({});
    const Points start(sets.Start), target(sets.Target);
    for (const auto match : {MatchByCoordinates, MatchByDistances}) {
        EXPECT_NE(WhatOf([&] { match(start, target, 0, {}); }).find("above 0 mm"), std::string::npos);
        EXPECT_NE(WhatOf([&] { match(start, target, NAN, {}); }).find("above 0 mm"), std::string::npos);
        EXPECT_NE(WhatOf([&] { match(start, Points(), 1, {}); }).find("target: points were expected"),
                  std::string::npos);
        const std::vector<double> bad{1, 2, INFINITY};
        EXPECT_NE(WhatOf([&] { match(Points(bad), target, 1, {}); }).find("start: finite numbers"),
                  std::string::npos);
    }
    EXPECT_THROW(MatchByDistances(start, target, 0.2, [] { return true; }), Stopped);
    const std::vector<double> many(3 * 50000, 1.0);
    EXPECT_NE(WhatOf([&] { MatchByDistances(start, Points(many), 1); }).find("does not fit into memory"),
              std::string::npos);
}
