// What plots draw on a picture in memory, pixel by pixel, and the trumpet plot as a PNG file would hold it.
#include <QImage>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <set>
#include <vector>

#include "analysis/trumpet_plot.h"
#include "graphics/trumpet_paint.h"
#include "paint/image.h"
#include "paint/picture.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

struct PlotSurface {
    Surface Screen;
    PlotSurface(int width, int height, double scale = 1) {
        Screen.Width = width;
        Screen.Height = height;
        Screen.Scale = scale;
        FillSurfaceWithPicture(Screen);
        Screen.Clear(Screen, 0);
    }
    ~PlotSurface() { Screen.Close(Screen); }
    PlotSurface(const PlotSurface&) = delete;
    PlotSurface& operator=(const PlotSurface&) = delete;

    using Pixels = std::set<std::pair<int, int>>;
    // Those that are not black.
    Pixels Painted() {
        Screen.Refresh(Screen);
        Pixels pixels;
        for (int row = 0; row < Screen.PixelHeight; ++row)
            for (int column = 0; column < Screen.PixelWidth; ++column)
                if (Screen.Pixels[row * Screen.Stride + column] != 0xff000000U) pixels.emplace(column, row);
        return pixels;
    }
    void Rows(const std::vector<SpotRow>& rows, double radius) { Screen.Spots(Screen, rows, radius, kWhite); }
    static constexpr Colour kWhite = 0xffffff;
};
using Pixels = PlotSurface::Pixels;
constexpr Colour kWhite = PlotSurface::kWhite;

Pixels Block(int left, int top, int right, int bottom) {
    Pixels pixels;
    for (int row = top; row <= bottom; ++row)
        for (int column = left; column <= right; ++column) pixels.emplace(column, row);
    return pixels;
}

TEST(PlotStrokes, ARuleCoversThePixelsThatHoldItsPlace) {
    for (const double place : {7.0, 7.3, 7.5, 7.99}) {
        PlotSurface plot(20, 20);
        plot.Screen.Rule(plot.Screen, 3, place, 12, place, kWhite);
        EXPECT_EQ(plot.Painted(), Block(3, 7, 12, 7)) << place;
        PlotSurface upright(20, 20);
        upright.Screen.Rule(upright.Screen, place, 12, place, 3, kWhite);
        EXPECT_EQ(upright.Painted(), Block(7, 3, 7, 12)) << place;
    }
}

TEST(PlotStrokes, OnAFinerScreenARuleIsFinerToo) {
    PlotSurface plot(20, 20, 2);
    plot.Screen.Rule(plot.Screen, 3, 7.6, 12, 7.6, kWhite);
    EXPECT_EQ(plot.Painted(), Block(6, 15, 24, 15));
    PlotSurface broken(20, 20, 1.5);
    broken.Screen.Rule(broken.Screen, 4, 2, 4, 8, kWhite);
    EXPECT_EQ(broken.Painted(), Block(6, 3, 6, 12));
}

TEST(PlotStrokes, AFrameIsClosedAndHollow) {
    PlotSurface plot(20, 20);
    plot.Screen.Frame(plot.Screen, 3, 4, 12, 9, kWhite);
    Pixels frame = Block(3, 4, 12, 9);
    for (const auto& inside : Block(4, 5, 11, 8)) frame.erase(inside);
    EXPECT_EQ(plot.Painted(), frame);
}

TEST(PlotStrokes, ASpotHasItsMiddleAndItsAreaAtEveryScale) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        PlotSurface plot(40, 40, scale);
        plot.Screen.Spot(plot.Screen, 17.3, 21.6, 6, kWhite, "told by no picture");
        plot.Screen.Refresh(plot.Screen);
        double sum = 0, x = 0, y = 0;
        for (int row = 0; row < plot.Screen.PixelHeight; ++row)
            for (int column = 0; column < plot.Screen.PixelWidth; ++column) {
                const double light = (plot.Screen.Pixels[row * plot.Screen.Stride + column] & 0xffU) / 255.0;
                sum += light;
                x += light * (column + 0.5) / scale;
                y += light * (row + 0.5) / scale;
            }
        EXPECT_NEAR(x / sum, 17.3, 0.05) << scale;
        EXPECT_NEAR(y / sum, 21.6, 0.05) << scale;
        EXPECT_NEAR(sum / (scale * scale), std::numbers::pi * 36, 0.03 * std::numbers::pi * 36) << scale;
    }
}

TEST(PlotStrokes, AfterASpotOtherStrokesAreAsTheyWere) {
    PlotSurface with(40, 40), without(40, 40);
    for (PlotSurface* plot : {&with, &without}) {
        plot->Screen.Line(plot->Screen, 5, 5, 30, 12, kWhite, 1);
        if (plot == &with) plot->Screen.Spot(plot->Screen, 33, 33, 2, 0, "");
        plot->Screen.Line(plot->Screen, 5, 9, 30, 17, kWhite, 1);
        plot->Screen.Circle(plot->Screen, 15, 25, 6, kWhite, kNoFill, 2);
    }
    EXPECT_EQ(with.Painted(), without.Painted());
}

TEST(PlotStrokes, MarksSideBySideAreSquaresWithoutCorners) {
    PlotSurface plot(30, 20);
    plot.Rows({{10.5, 8.5, 0}}, 1);
    EXPECT_EQ(plot.Painted(), (Pixels{{10, 7}, {9, 8}, {10, 8}, {11, 8}, {10, 9}}));
    PlotSurface row(30, 20);
    row.Rows({{10.5, 8.5, 4}}, 2);
    Pixels expected = Block(8, 7, 16, 9);
    expected.merge(Block(9, 6, 15, 10));
    EXPECT_EQ(row.Painted(), expected);
    PlotSurface fine(30, 20, 2);
    fine.Rows({{10.25, 8.25, 1.5}}, 0);
    EXPECT_EQ(fine.Painted(), Block(20, 16, 23, 16));
}

TEST(PlotStrokes, WhatLiesOutsideOrNowhereHarmsNothing) {
    PlotSurface plot(20, 20);
    const double nan = std::nan(""), far = 1e300;
    for (const double place : {nan, far, -far, -40.0, 60.0}) {
        plot.Screen.Rule(plot.Screen, place, place, place, place, kWhite);
        plot.Screen.Spot(plot.Screen, place, place, 3, kWhite, "");
        plot.Screen.Spot(plot.Screen, 5, 5, place == 60 ? nan : -1, kWhite, "");
        plot.Screen.LineText(plot.Screen, place, place, TextAnchor::End, "text", kWhite, {});
        plot.Rows({{place, place, 3}}, 2);
        plot.Rows({{5, place, far}}, 2);
        plot.Rows({{5, 5, 1}}, nan);
    }
    EXPECT_EQ(plot.Painted(), Pixels{});
    plot.Screen.Rule(plot.Screen, -far, 4, far, 4, kWhite);
    EXPECT_EQ(plot.Painted(), Block(0, 4, 19, 4));
}

TEST(PlotStrokes, TextsBeginStandAndEndAtTheirPlace) {
    const auto box = [](TextAnchor anchor) {
        PlotSurface plot(200, 60);
        plot.Screen.LineText(plot.Screen, 100, 40, anchor, "HHHH", kWhite, {.Size = 12});
        const Pixels painted = plot.Painted();
        std::array<int, 4> edges = {1000, 1000, -1, -1};
        for (const auto& [x, y] : painted)
            edges = {std::min(edges[0], x), std::min(edges[1], y), std::max(edges[2], x),
                     std::max(edges[3], y)};
        return edges;
    };
    const double width = FontTextWidth({.Size = 12}, "HHHH");
    const auto start = box(TextAnchor::Start), middle = box(TextAnchor::Middle), end = box(TextAnchor::End);
    // Beside its stems an H has some air.
    EXPECT_NEAR(start[0], 100, 3);
    EXPECT_NEAR(end[2], 100, 3);
    EXPECT_NEAR(middle[0] + middle[2], 200, 3);
    EXPECT_NEAR(start[2] - start[0], width, 5);
    for (const auto& edges : {start, middle, end}) EXPECT_EQ(edges[3], 39) << "it stands on the line";
}

// The whole plot on a picture: the ground in its corner, a spot on each pair, letters below the axes.
TEST(PlotStrokes, TheTrumpetPlotIsPaintedAtEveryScale) {
    DistancePoints points;
    const double starts[] = {0, 100, 260}, targets[] = {0, 101, 259};
    for (int i = 0; i < 3; ++i) {
        points.Names.push_back(std::string(1, static_cast<char>('A' + i)));
        for (std::size_t axis = 0; axis < 3; ++axis) {
            points.From[axis].push_back(axis == 0 ? starts[i] : 0);
            points.To[axis].push_back(axis == 0 ? targets[i] : 0);
        }
    }
    TrumpetRange range;
    RangeOfPairs(points, range);
    for (const double scale : {1.0, 1.5, 2.0}) {
        TrumpetPlace place{400, 300, 70, 40, 20, 60, scale};
        const TrumpetPlot plot = PlotOf(range, place);
        PlotSurface sheet(400, 300, scale);
        TrumpetLook look;
        look.Colours = {0x102030, 0xffffff, 0x404040, 0x808080, 0xa0a0a0, 0x0000ff};
        PaintTrumpet(sheet.Screen, points, plot, RasterOf(points, plot), look);
        const QImage image = BarePictureOf(sheet.Screen);
        EXPECT_EQ(image.width(), static_cast<int>(400 * scale));
        EXPECT_EQ(image.pixel(1, 1), 0xff302010U);
        // Pairs A B, B C and A C.
        const double at[][2] = {{101, 1}, {158, -2}, {259, -1}};
        for (const auto& [distance, delta] : at)
            EXPECT_EQ(image.pixel(static_cast<int>(plot.X(distance) * scale),
                                  static_cast<int>(plot.Y(delta) * scale)),
                      0xffff0000U)
                << distance << " at " << scale;
        EXPECT_EQ(image.pixel(static_cast<int>(plot.X(50) * scale), static_cast<int>(plot.Y(0) * scale)),
                  0xff808080U);
        int letters = 0;
        for (int row = static_cast<int>(245 * scale); row < image.height(); ++row)
            for (int column = 0; column < image.width(); ++column)
                letters += image.pixel(column, row) != 0xff302010U ? 1 : 0;
        EXPECT_GT(letters, 100);
    }
}

}  // namespace
