// Points that grow and shrink together.
#include "core/point_set.h"

#include <gtest/gtest.h>

#include <utility>

using namespace corvinade;

namespace {

using Texts = std::vector<std::string>;
using Tagged = std::vector<TaggedValue>;
using Numbers = std::vector<double>;

PointSet TwoPoints() {
    PointSet points;
    points.Add("a", 1, {}, 3);
    points.Add("b", {}, 5, 6);
    return points;
}

void ExpectEnds(const PointSet& points, int name, int coordinates) {
    EXPECT_EQ(UpperBound(points.Name), name);
    EXPECT_EQ(UpperBound(points.X), coordinates);
    EXPECT_EQ(UpperBound(points.Y), coordinates);
    EXPECT_EQ(UpperBound(points.Z), coordinates);
}

}  // namespace

TEST(PointSets, ANewOneHasAnEmptyElementZeroAlone) {
    const PointSet points;
    EXPECT_EQ(points.Count(), 0);
    ExpectEnds(points, 0, 0);
    EXPECT_EQ(points.Name[0], "");
    EXPECT_FALSE(points.X[0]);
    EXPECT_FALSE(points.Y[0]);
    EXPECT_EQ(points.Z[0], 0);
}

TEST(PointSets, GrowTogetherAndKeepEmptyValues) {
    PointSet points = TwoPoints();
    EXPECT_EQ(points.Count(), 2);
    EXPECT_EQ(points.Name, (Texts{"", "a", "b"}));
    EXPECT_EQ(points.X, (Tagged{{}, 1.0, {}}));
    EXPECT_EQ(points.Y, (Tagged{{}, {}, 5.0}));
    EXPECT_EQ(points.Z, (Numbers{0, 3, 6}));
    EXPECT_EQ(points.Point(2)(1), 0);
    EXPECT_EQ(points.Point(2)(2), 5);
    EXPECT_EQ(points.Point(2)(3), 6);
    points.Append(TwoPoints());
    EXPECT_EQ(points.Name, (Texts{"", "a", "b", "a", "b"}));
    EXPECT_EQ(points.X, (Tagged{{}, 1.0, {}, 1.0, {}}));
    points.SetPoint(4, 7, 8, 9);
    EXPECT_EQ(points.X[4], 7);
    EXPECT_EQ(points.Y[4], 8);
    EXPECT_EQ(points.Z[4], 9);
    points.Resize(1);
    EXPECT_EQ(points.Count(), 1);
    ExpectEnds(points, 1, 1);
    points.Resize(3);
    EXPECT_EQ(points.Count(), 3);
    ExpectEnds(points, 3, 3);
    EXPECT_EQ(points.Name[3], "");
    EXPECT_FALSE(points.X[3]);
}

TEST(PointSets, ReachOnlyLengthens) {
    PointSet points = TwoPoints();
    points.Reach(1);
    EXPECT_EQ(points.Count(), 2);
    points.Reach(4);
    EXPECT_EQ(points.Count(), 4);
    ExpectEnds(points, 4, 4);
    EXPECT_EQ(points.Name[1], "a");
}

TEST(PointSets, WhatStandsBehindThePointsIsKeptUntilTheyGrow) {
    PointSet points = TwoPoints();
    points.SpareCoordinates(3);
    EXPECT_EQ(points.Count(), 2);
    ExpectEnds(points, 2, 5);
    points.CountOnly(1);
    EXPECT_EQ(points.Count(), 1);
    EXPECT_FALSE(points.CountsAll());
    ExpectEnds(points, 2, 5);
    const PointSet copy = points;
    EXPECT_EQ(copy.Count(), 1);
    ExpectEnds(copy, 2, 5);
    points.Add("c", 7, 8, 9);
    EXPECT_EQ(points.Name, (Texts{"", "a", "c"}));
    EXPECT_EQ(points.X, (Tagged{{}, 1.0, 7.0}));
    EXPECT_EQ(points.Count(), 2);
    ExpectEnds(points, 2, 2);
    points.CountOnly(0);
    points.CountAll();
    EXPECT_EQ(points.Count(), 2);
    EXPECT_TRUE(points.CountsAll());
}

TEST(PointSets, ArraysOfDifferentLengthsAreNone) {
    const PointSet points({{"", "a"}, {{}, 1.0, 9.0}, {{}, {}}, {0, 3}});
    EXPECT_EQ(points.Count(), 1);
    EXPECT_EQ(points.X.size(), 3U);
    EXPECT_DEATH(PointSet({{"", "a"}, {{}}, {{}, 1.0}, {0, 1}}), "internal error");
    EXPECT_DEATH(PointSet({{"", "a"}, {{}, 1.0}, {{}, 1.0}, {0}}), "internal error");
    EXPECT_DEATH(PointSet({{}, {{}}, {{}}, {0}}), "internal error");
    PointSet two = TwoPoints();
    EXPECT_DEATH(two.CountOnly(3), "internal error");
    EXPECT_DEATH(two.CountOnly(-1), "internal error");
}

TEST(PointSets, AColumnIsExchangedWhereTheOtherReaches) {
    PointSet points = TwoPoints();
    Tagged x = {{}, {}, 11.0};
    EXPECT_TRUE(points.Exchange(points.X, x));
    EXPECT_EQ(points.X, (Tagged{{}, {}, 11.0}));
    EXPECT_EQ(x, (Tagged{{}, 1.0, {}}));
    Tagged shorter = {{}, 1.0};
    EXPECT_FALSE(points.Exchange(points.Y, shorter));
    EXPECT_EQ(points.Y, (Tagged{{}, {}, 5.0}));
    Texts names = {"", "a", "b", "c"};
    EXPECT_FALSE(points.Exchange(points.Name, names)) << "there are no coordinates for it";
    names.resize(2);
    EXPECT_FALSE(points.Exchange(points.Name, names)) << "a point would be without a name";
    EXPECT_EQ(points.Name, (Texts{"", "a", "b"}));
}

TEST(PointSets, AMovedOneIsWithoutPointsAndSwapsTakeTheCounts) {
    PointSet points = TwoPoints();
    points.CountOnly(1);
    PointSet moved(static_cast<PointSet&&>(points));
    EXPECT_EQ(moved.Count(), 1);
    EXPECT_EQ(moved.Name.size(), 3U);
    EXPECT_EQ(points.Count(), 0);
    ExpectEnds(points, 0, 0);
    PointSet other = TwoPoints();
    std::swap(moved, other);
    EXPECT_EQ(moved.Count(), 2);
    EXPECT_EQ(other.Count(), 1);
}

TEST(PointSets, ACopyUnderOtherNamesEndsWithThem) {
    PointSet points;
    points.Resize(5);
    points.Copy(TwoPoints(), {"", "one"});
    EXPECT_EQ(points.Count(), 1);
    EXPECT_EQ(points.Name, (Texts{"", "one"}));
    EXPECT_EQ(points.X, (Tagged{{}, 1.0}));
    EXPECT_EQ(points.Y, (Tagged{{}, {}}));
    EXPECT_EQ(points.Z, (Numbers{0, 3}));
}
