// The trumpet plot: its axes, the places of its points, and the pair at a place.
#include "analysis/trumpet_plot.h"

#include <cmath>

#include "analysis/distance_job.h"
#include "core/numbers.h"

using namespace corvinade;

namespace {

class TrumpetPlots : public DistanceJob {
protected:
    static TrumpetRange RangeOf(const DistancePoints& points) {
        TrumpetRange range;
        RangeOfPairs(points, range);
        return range;
    }
    static double Number(const std::string& text) {
        double value = 0;
        EXPECT_TRUE(TextToNumber(text, value)) << text;
        return value;
    }
    TrumpetPlace place_{640, 480, 70, 20, 10, 40, 1};
};

TEST_F(TrumpetPlots, XRunsFromZeroAndBothAxesHoldAllPairsWithAMargin) {
    const TrumpetAxes axes = AxesOf({3, 16, -2, 3});
    EXPECT_EQ(axes.XLow, 0);
    EXPECT_GT(axes.XHigh, 16);
    EXPECT_LT(axes.XHigh, 18);
    EXPECT_LT(axes.YLow, -2);
    EXPECT_GT(axes.YLow, -2.5);
    EXPECT_GT(axes.YHigh, 3);
    EXPECT_LT(axes.YHigh, 3.5);
}

TEST_F(TrumpetPlots, AxesAreNeverEmpty) {
    for (const TrumpetRange& range : {TrumpetRange{},
                                      {1, 0, 0, 0},
                                      {1, 100, 0.5F, 0.5F},
                                      {1, 1e-30F, -3e30F, -3e30F},
                                      {2, 3e38F, 0, 3e38F}}) {
        const TrumpetAxes axes = AxesOf(range);
        EXPECT_LT(axes.XLow, axes.XHigh);
        EXPECT_LT(axes.YLow, axes.YHigh);
        EXPECT_TRUE(std::isfinite(axes.XHigh - axes.XLow) && std::isfinite(axes.YHigh - axes.YLow));
        const TrumpetPlot plot = PlotOf(range, place_);
        EXPECT_LT(plot.XTicks.size(), 100u);
        EXPECT_LT(plot.YTicks.size(), 100u);
    }
}

TEST_F(TrumpetPlots, TicksAreRoundValuesOfTheShownUnitThatTellThemselvesApart) {
    for (const double factor : {1.0, 0.001, 1 / 25.4}) {
        Units.LengthFactor = factor;
        for (const auto& [low, high] :
             {std::pair{0.0, 1680.0}, {-0.0123, 0.0077}, {1e5, 1e5 + 3}, {-7.0, 0.0}}) {
            const std::vector<TrumpetTick> ticks = TicksOf(low, high, 8);
            ASSERT_GE(ticks.size(), 2u);
            ASSERT_LE(ticks.size(), 9u);
            for (std::size_t k = 0; k < ticks.size(); ++k) {
                EXPECT_GE(ticks[k].Place, low - 1e-9 * (high - low));
                EXPECT_LE(ticks[k].Place, high + 1e-9 * (high - low));
                EXPECT_NEAR(Number(ticks[k].Text), ticks[k].Place * factor, 1e-9 * (high - low) * factor);
                if (k > 0) {
                    EXPECT_LT(Number(ticks[k - 1].Text), Number(ticks[k].Text));
                }
            }
        }
    }
}

TEST_F(TrumpetPlots, TicksUseTheSystemsDelimiter) {
    Headless.Decimal = ',';
    EXPECT_EQ(TicksOf(0, 1, 2).at(1).Text, "0,5");
}

TEST_F(TrumpetPlots, EveryPairLiesWhereItsDistanceAndItsDifferencePutIt) {
    Triangle();
    const DistancePoints points = TakeDistancePoints(false);
    const TrumpetPlot plot = PlotOf(RangeOf(points), place_);
    // The corners of the axes are the corners of the room between the margins.
    EXPECT_DOUBLE_EQ(plot.X(0), 70);
    EXPECT_DOUBLE_EQ(plot.X(plot.Axes.XHigh), 630);
    EXPECT_DOUBLE_EQ(plot.Y(plot.Axes.YHigh), 20);
    EXPECT_DOUBLE_EQ(plot.Y(plot.Axes.YLow), 440);
    const TrumpetRaster raster = RasterOf(points, plot);
    EXPECT_TRUE(raster.Whole);
    const double distances[] = {6, 16, 10}, deltas[] = {1, 3, -2};
    const int from[] = {1, 1, 2}, to[] = {2, 3, 3};
    for (int k = 0; k < 3; ++k) {
        const TrumpetRaster::PairAt pair = PairNear(raster, plot.X(distances[k]), plot.Y(deltas[k]), 1);
        EXPECT_EQ(pair.From, from[k]);
        EXPECT_EQ(pair.To, to[k]);
    }
}

TEST_F(TrumpetPlots, ThePairUnderTheMouseIsTheNearestWithinReach) {
    Cloud(30);
    const DistancePoints points = TakeDistancePoints(false);
    for (const double scale : {1.0, 1.5, 2.0}) {
        place_.Scale = scale;
        const TrumpetPlot plot = PlotOf(RangeOf(points), place_);
        const TrumpetRaster raster = RasterOf(points, plot);
        int found = 0;
        for (double x = 60; x < 640; x += 7.3)
            for (double y = 10; y < 480; y += 9.1) {
                double least = 1e9;
                for (int i = 1; i <= 30; ++i)
                    for (int j = i + 1; j <= 30; ++j) {
                        const TrumpetPair pair = PairOfPoints(points, i, j);
                        least =
                            std::min(least, std::hypot(plot.X(pair.ToDistance) - x, plot.Y(pair.DeltaS) - y));
                    }
                const TrumpetRaster::PairAt pair = PairNear(raster, x, y, 6);
                if (pair.From == 0) {
                    EXPECT_GT(least, 6 - 1);
                    continue;
                }
                ++found;
                const TrumpetPair at = PairOfPoints(points, pair.From, pair.To);
                // Known to a pixel: the middle of a pixel stands for all of it.
                EXPECT_NEAR(std::hypot(plot.X(at.ToDistance) - x, plot.Y(at.DeltaS) - y), least, 1.5);
            }
        EXPECT_GT(found, 100);
    }
}

TEST_F(TrumpetPlots, PairsOnOnePlaceAreThereOnceAndBearTheFirstName) {
    for (int i = 1; i <= 4; ++i) Pair("P" + std::to_string(i), {0, 0, 0}, {0, 0, 0});
    const DistancePoints points = TakeDistancePoints(false);
    const TrumpetRaster raster = RasterOf(points, PlotOf(RangeOf(points), place_));
    int pixels = 0;
    for (const TrumpetRaster::PairAt& pixel : raster.Pixels) pixels += pixel.From != 0;
    EXPECT_EQ(pixels, 1);
    const TrumpetPlot plot = PlotOf(RangeOf(points), place_);
    const TrumpetRaster::PairAt pair = PairNear(raster, plot.X(0), plot.Y(0), 3);
    EXPECT_EQ(pair.From, 1);
    EXPECT_EQ(pair.To, 2);
}

TEST_F(TrumpetPlots, APictureWithoutRoomHoldsNoFault) {
    Triangle();
    const DistancePoints points = TakeDistancePoints(false);
    for (const TrumpetPlace& place : {TrumpetPlace{1, 1}, {0, 0}, {90, 70}}) {
        const TrumpetPlot plot = PlotOf(RangeOf(points), place);
        EXPECT_GE(RasterOf(points, plot).Pixels.size(), 1u);
    }
    EXPECT_EQ(PairNear(TrumpetRaster{}, 5, 5, 6).From, 0);
    EXPECT_EQ(PairNear(RasterOf(points, PlotOf(RangeOf(points), place_)), 1e300, std::nan(""), 6).From, 0);
}

TEST_F(TrumpetPlots, APairIsToldInTheShownUnit) {
    Triangle();
    Units.LengthFactor = 0.1;
    Job.LengthUnitName = "centimeter";
    Job.NameOCS = "Robot";
    EXPECT_EQ(PairInWords(TakeDistancePoints(false), 1, 3),
              "A - C: distance 1.600, delta s 0.300 centimeter");
    EXPECT_EQ(TrumpetXTitle(), "Distance in Robot [centimeter]");
    EXPECT_EQ(TrumpetYTitle(), "delta s [centimeter]");
}

}  // namespace
