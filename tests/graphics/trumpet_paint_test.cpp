// The trumpet plot as it is painted: what stands where, whatever the surface is.
#include "graphics/trumpet_paint.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "analysis/distance_job.h"

using namespace corvinade;

namespace {

// A surface that notes what plots draw on it.
struct Noted {
    struct Line {
        double X1, Y1, X2, Y2;
        Colour Ink;
    };
    struct Words {
        double X, Y;
        TextAnchor Anchor;
        std::string Text;
        Colour Ink;
    };
    struct Mark {
        double X, Y, Radius;
        Colour Ink;
        std::string Text;
    };
    std::vector<Line> Rules, Frames;
    std::vector<Words> Texts;
    std::vector<Mark> Spots;
    std::vector<SpotRow> Rows;
    std::vector<Colour> Grounds;
    int Shown = 0;
};

Noted& NotesOf(Surface& screen) {
    return *static_cast<Noted*>(screen.Own);
}

Surface SurfaceOn(Noted& noted) {
    Surface screen;
    screen.Own = &noted;
    screen.Clear = [](Surface& s, Colour ground) { NotesOf(s).Grounds.push_back(ground); };
    screen.Rule = [](Surface& s, double x1, double y1, double x2, double y2, Colour ink) {
        NotesOf(s).Rules.push_back({x1, y1, x2, y2, ink});
    };
    screen.Frame = [](Surface& s, double left, double top, double right, double bottom, Colour ink) {
        NotesOf(s).Frames.push_back({left, top, right, bottom, ink});
    };
    screen.LineText = [](Surface& s, double x, double y, TextAnchor anchor, const std::string& text,
                         Colour ink, const TextFont&) {
        NotesOf(s).Texts.push_back({x, y, anchor, text, ink});
    };
    screen.Spot = [](Surface& s, double x, double y, double radius, Colour ink, const std::string& words) {
        NotesOf(s).Spots.push_back({x, y, radius, ink, words});
    };
    screen.Spots = [](Surface& s, std::span<const SpotRow> rows, double, Colour) {
        NotesOf(s).Rows.insert(NotesOf(s).Rows.end(), rows.begin(), rows.end());
    };
    screen.Refresh = [](Surface& s) { ++NotesOf(s).Shown; };
    return screen;
}

class TrumpetPainted : public DistanceJob {
protected:
    void Paint(const TrumpetLook& look = {}) {
        TrumpetRange range;
        RangeOfPairs(points_, range);
        plot_ = PlotOf(range, place_);
        raster_ = RasterOf(points_, plot_);
        Surface screen = SurfaceOn(noted_);
        PaintTrumpet(screen, points_, plot_, raster_, look);
    }
    const Noted::Words* TextOf(const std::string& text) const {
        for (const Noted::Words& one : noted_.Texts)
            if (one.Text == text) return &one;
        return nullptr;
    }
    TrumpetPlace place_{640, 480, 70, 40, 20, 60, 1};
    DistancePoints points_;
    TrumpetPlot plot_;
    TrumpetRaster raster_;
    Noted noted_;
};

TEST_F(TrumpetPainted, EveryPairOfAFewIsASpotWhereItsNumbersPutIt) {
    Triangle();
    Job.LengthUnitName = "millimeter";
    points_ = TakeDistancePoints(false);
    TrumpetLook look;
    look.Colours.Point = 5;
    look.NamePairs = true;
    Paint(look);
    ASSERT_EQ(noted_.Spots.size(), 3u);
    EXPECT_TRUE(noted_.Rows.empty());
    const std::map<std::string, std::pair<double, double>> pairs = {
        {"A - B", {6, 1}}, {"A - C", {16, 3}}, {"B - C", {10, -2}}};
    // The room between the margins, by the axes.
    const TrumpetAxes& a = plot_.Axes;
    for (const Noted::Mark& spot : noted_.Spots) {
        const auto [distance, delta] = pairs.at(spot.Text.substr(0, 5));
        EXPECT_NEAR(spot.X, 70 + 550 * distance / a.XHigh, 1e-9);
        EXPECT_NEAR(spot.Y, 40 + 380 * (a.YHigh - delta) / (a.YHigh - a.YLow), 1e-9);
        EXPECT_EQ(spot.Ink, 5);
        EXPECT_NE(spot.Text.find("millimeter"), std::string::npos);
    }
    EXPECT_EQ(noted_.Shown, 1);
}

TEST_F(TrumpetPainted, WordsAreMadeOnlyWhereTheyAreWanted) {
    Triangle();
    points_ = TakeDistancePoints(false);
    Paint();
    ASSERT_EQ(noted_.Spots.size(), 3u);
    for (const Noted::Mark& spot : noted_.Spots) EXPECT_EQ(spot.Text, "");
}

TEST_F(TrumpetPainted, RulesStandAtTheirNumbersAndSpanTheFrame) {
    Triangle();
    points_ = TakeDistancePoints(false);
    TrumpetLook look;
    look.Colours = {1, 2, 3, 4, 5, 6};
    Paint(look);
    EXPECT_EQ(noted_.Grounds, std::vector<Colour>{1});
    ASSERT_EQ(noted_.Frames.size(), 1u);
    const Noted::Line frame = noted_.Frames[0];
    EXPECT_EQ(frame.X1, 70);
    EXPECT_EQ(frame.Y1, 40);
    EXPECT_EQ(frame.X2, 620);
    EXPECT_EQ(frame.Y2, 420);
    EXPECT_EQ(frame.Ink, 5);
    int upright = 0, level = 0, zero = 0;
    for (const Noted::Line& rule : noted_.Rules) {
        if (rule.X1 == rule.X2) {
            ++upright;
            EXPECT_EQ(rule.Y1, 40);
            EXPECT_EQ(rule.Y2, 420);
        } else {
            EXPECT_EQ(rule.Y1, rule.Y2);
            EXPECT_EQ(rule.X1, 70);
            EXPECT_EQ(rule.X2, 620);
            (rule.Ink == 4 ? zero : level) += 1;
        }
        EXPECT_EQ(rule.Ink, rule.Ink == 4 ? 4 : 3);
    }
    EXPECT_EQ(upright, static_cast<int>(plot_.XTicks.size()));
    EXPECT_EQ(level, static_cast<int>(plot_.YTicks.size()));
    EXPECT_EQ(zero, 1) << "delta s is on both sides of 0";
    for (const TrumpetTick& tick : plot_.XTicks) {
        const auto number = std::find_if(
            noted_.Texts.begin(), noted_.Texts.end(),
            [&](const Noted::Words& w) { return w.Text == tick.Text && w.Anchor == TextAnchor::Middle; });
        ASSERT_NE(number, noted_.Texts.end()) << tick.Text;
        EXPECT_NEAR(number->X, 70 + 550 * tick.Place / plot_.Axes.XHigh, 1e-9);
        EXPECT_EQ(number->Ink, 2);
    }
}

TEST_F(TrumpetPainted, WithoutZeroBetweenThemNoRuleStandsAtZero) {
    Pair("A", {0, 0, 0}, {0, 0, 0});
    Pair("B", {10, 0, 0}, {12, 0, 0});
    Pair("C", {0, 20, 0}, {0, 25, 0});
    points_ = TakeDistancePoints(false);
    TrumpetLook look;
    look.Colours.Zero = 4;
    Paint(look);
    ASSERT_GT(plot_.Axes.YLow, 0);
    for (const Noted::Line& rule : noted_.Rules) EXPECT_NE(rule.Ink, 4);
}

// Letters of any size stand beside the frame and below each other, and none leave the room that is kept.
TEST_F(TrumpetPainted, TextsLeaveNeitherThePictureNorEachOthersPlace) {
    Triangle();
    points_ = TakeDistancePoints(false);
    for (const double height : {8.0, 15.0, 30.0, 60.0}) {
        TrumpetLook look;
        look.Letters.Height = height;
        look.Letters.Ascent = 0.8 * height;
        place_.Top = static_cast<int>(height) + 12;
        place_.Bottom = static_cast<int>(2 * height) + 15;
        noted_ = {};
        Paint(look);
        const double bottom = 480 - place_.Bottom, descent = 0.2 * height;
        const Noted::Words* xTitle = TextOf(TrumpetXTitle());
        const Noted::Words* yTitle = TextOf(TrumpetYTitle());
        ASSERT_TRUE(xTitle != nullptr && yTitle != nullptr);
        EXPECT_LE(xTitle->Y + descent, 480 + 1e-9) << height;
        EXPECT_GE(yTitle->Y - look.Letters.Ascent, 0) << height;
        EXPECT_LE(yTitle->Y, place_.Top);
        for (const Noted::Words& text : noted_.Texts) {
            if (text.Anchor != TextAnchor::Middle) continue;
            EXPECT_GT(text.Y - look.Letters.Ascent, bottom) << height;
            EXPECT_LT(text.Y + descent, xTitle->Y - look.Letters.Ascent) << height;
        }
        // The numbers of delta s have the middle of their lines at their rules.
        for (const TrumpetTick& tick : plot_.YTicks) {
            const auto number = std::find_if(
                noted_.Texts.begin(), noted_.Texts.end(),
                [&](const Noted::Words& w) { return w.Text == tick.Text && w.Anchor == TextAnchor::End; });
            ASSERT_NE(number, noted_.Texts.end());
            EXPECT_NEAR(number->Y - look.Letters.Ascent + height / 2, plot_.Y(tick.Place), 1e-9);
        }
    }
}

TEST_F(TrumpetPainted, ManyPairsAreRowsThatCoverThePixelsOfTheRasterAndNoOthers) {
    Cloud(80);
    points_ = TakeDistancePoints(false);
    ASSERT_GT(points_.Pairs(), kMostTrumpetSpots);
    for (const double scale : {1.0, 1.5, 2.0}) {
        place_.Scale = scale;
        noted_ = {};
        Paint();
        EXPECT_TRUE(noted_.Spots.empty());
        std::vector<bool> covered(raster_.Pixels.size());
        for (const SpotRow& row : noted_.Rows) {
            const double x = (row.X - place_.Left) * scale - 0.5, y = (row.Y - place_.Top) * scale - 0.5;
            for (int k = 0; k <= std::lround(row.Length * scale); ++k) {
                EXPECT_NEAR(y, std::round(y), 1e-6);
                const auto at = static_cast<std::size_t>(std::lround(y) * raster_.Width + std::lround(x) + k);
                EXPECT_FALSE(covered.at(at)) << "twice";
                covered.at(at) = true;
            }
        }
        for (std::size_t i = 0; i < covered.size(); ++i)
            ASSERT_EQ(covered[i], raster_.Pixels[i].From != 0) << i;
    }
}

TEST_F(TrumpetPainted, ACancelledDrawingSaysSo) {
    Triangle();
    points_ = TakeDistancePoints(false);
    TrumpetLook look;
    look.NotAllPairs = true;
    Paint(look);
    EXPECT_NE(TextOf(TrumpetYTitle() + "   (cancelled: not all pairs)"), nullptr);
    EXPECT_EQ(TextOf(TrumpetYTitle()), nullptr);
}

// Points that are gone since the raster was filled, and a surface that draws no plots.
TEST_F(TrumpetPainted, WhatIsNotThereIsLeftOut) {
    Triangle();
    points_ = TakeDistancePoints(false);
    Paint();
    noted_ = {};
    points_.Names.pop_back();
    Surface screen = SurfaceOn(noted_);
    PaintTrumpet(screen, points_, plot_, raster_, {});
    EXPECT_EQ(noted_.Spots.size(), 1u) << "A - B";
    noted_ = {};
    screen.Rule = nullptr;
    PaintTrumpet(screen, points_, plot_, raster_, {});
    Surface none;
    PaintTrumpet(none, points_, plot_, raster_, {});
    EXPECT_TRUE(noted_.Grounds.empty());
}

}  // namespace
