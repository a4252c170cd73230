// Sums and trends of a series.
#include "fit/trend.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace corvinade::fit;

namespace {

bool IsConstant(const Column& a, double percent) {
    bool constant = false;
    ArrayTrend(a, percent, constant);
    return constant;
}

}  // namespace

TEST(Trend, AnEvenPaceIsConstantUpOrDown) {
    EXPECT_TRUE(IsConstant({0, 1, 3, 5, 7}, 0));
    EXPECT_TRUE(IsConstant({0, 7, 5, 3, 1}, 0));
    EXPECT_TRUE(IsConstant({0, 4, 4, 4}, 0));
}

TEST(Trend, StepsMayDifferFromTheFirstByAShareOfIt) {
    EXPECT_TRUE(IsConstant({0, 0, 100, 190, 300}, 10));   // steps 100, 90, 110
    EXPECT_FALSE(IsConstant({0, 0, 100, 189, 289}, 10));  // 89
    EXPECT_TRUE(IsConstant({0, 0, -100, -190}, 10));
    EXPECT_TRUE(IsConstant({0, 0, -100, -190}, -10)) << "the share counts without its sign";
    EXPECT_FALSE(IsConstant({0, 4, 4, 4.001}, 50)) << "of a first step of 0 every share is 0";
}

TEST(Trend, AllStepsCountAndNotOnlyTheLast) {
    EXPECT_FALSE(IsConstant({0, 0, 1, 5, 6, 7}, 10));
}

TEST(Trend, ASeriesWithoutASecondStepIsConstant) {
    EXPECT_TRUE(IsConstant({}, 0));
    EXPECT_TRUE(IsConstant({0, 1}, 0));
    EXPECT_TRUE(IsConstant({0, 1, 2}, 0));
}

TEST(Trend, AValueThatIsNoNumberHasNoPace) {
    EXPECT_FALSE(IsConstant({0, 1, 2, std::nan(""), 4}, 1000));
    EXPECT_FALSE(IsConstant({0, std::nan(""), 2, 3}, 1000));
}

TEST(Trend, TheSumLeavesElementZeroOut) {
    double sum = -1;
    SummeArray({1000, 1, 2, 3.5}, sum);
    EXPECT_EQ(sum, 6.5);
    SummeArray({1000}, sum);
    EXPECT_EQ(sum, 0);
    SummeArray({}, sum);
    EXPECT_EQ(sum, 0);
}
